// zuXmlTransportPrivate.h - bytes of documents: files, streams and compressed forms. Group: XML objects.
#pragma once

#include <iosfwd>
#include <string>

/// What ZuXmlObject's whole-document operations share. Not for clients: nothing here is exported.
///
/// Every function prints one line that names the file or document and returns false when it fails; a lack of memory
/// throws.
namespace ZuXmlTransport {

enum class Form { PLAIN, GZIP, ZSTANDARD };

/// The form of some bytes, told by how they begin.
Form formOf(std::string const& bytes);

/// Refuses more than ZuXmlReader::m_theMaximumDocumentSize bytes, and what is not a regular file, without waiting.
bool readFile(std::string const& fileName, std::string& bytes);
/// Writes beside a regular file and renames, so that the file is whole, old or new, also when the process is killed. A
/// link is followed, the rights of an old file are kept. What is not a regular file (/dev/stdout) is written to.
bool writeFile(std::string const& fileName, std::string const& bytes);
/// Reads to the end. The state of the stream stays as it is.
bool readStream(std::istream& stream, std::string const& name, std::string& bytes);

bool compress(Form form, std::string const& name, std::string const& plain, std::string& bytes);
/// Takes one gzip member or one Zstandard frame and nothing behind it. The memory grows with the text, not with the
/// size that is claimed; what would become larger than ZuXmlReader::m_theMaximumDocumentSize is refused before any
/// memory is taken for it.
bool decompress(Form form, std::string const& name, std::string const& bytes, std::string& plain);

}  // namespace ZuXmlTransport
