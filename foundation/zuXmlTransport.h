// zuXmlTransport.h - bytes of documents: files, streams and compressed forms. Group: XML objects.
#pragma once

#include <iosfwd>
#include <string>

/// What ZuXmlObject's whole-document operations share. Not for clients: nothing here is exported.
///
/// Every function prints one line that names the file or document and returns false when it fails.
namespace ZuXmlTransport {

enum class Form { PLAIN, GZIP, ZSTANDARD };

/// The form of some bytes, told by how they begin.
Form formOf(std::string const& bytes);

/// Refuses more than ZuXmlReader::m_theMaximumDocumentSize bytes, and what is not a regular file.
bool readFile(std::string const& fileName, std::string& bytes);
/// Writes beside the file and renames, so that the file is whole, old or new, whatever happens.
bool writeFile(std::string const& fileName, std::string const& bytes);
bool readStream(std::istream& stream, std::string const& name, std::string& bytes);

bool compress(Form form, std::string const& name, std::string const& plain, std::string& bytes);
/// Refuses what would become larger than ZuXmlReader::m_theMaximumDocumentSize, before it does.
bool decompress(Form form, std::string const& name, std::string const& bytes, std::string& plain);

}  // namespace ZuXmlTransport
