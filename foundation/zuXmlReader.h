// zuXmlReader.h - a checked cursor over an XML document. Group: XML objects.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "foundation/zuExport.h"
#include "foundation/zuToken.h"

/// Parses a document and walks over it, one element at a time.
///
/// The document is XML 1.0 in UTF-8. A document type declaration is passed over: only the five entities of XML itself
/// and character references are replaced, any other reference refuses the document, and nothing outside the document is
/// ever opened. Everything that is wrong with a document is told by one line, that of the first fault, and ends the
/// reading.
class ZU_API ZuXmlReader {
 public:
  /// Elements inside elements: beyond this a document is refused, so that reading it can't exhaust the stack.
  static constexpr unsigned int m_theMaximumNesting = 256;
  /// Bytes of a plain document, also after decompression: beyond this a document is refused.
  static constexpr std::size_t m_theMaximumDocumentSize = std::size_t{1} << 30;
  /// Signs '<' and '=' in a document, of which every tag and every attribute has one: beyond this it is refused. The
  /// parsed form takes up to 128 bytes for each, so 2 GiB at most; a list of 8 million vectors has as many.
  static constexpr std::size_t m_theMaximumMarkup = std::size_t{1} << 24;

  /// Numbers that one element may be read into at once: those of a 4x4 matrix.
  static constexpr unsigned int m_theMaximumReals = 16;

  /// The name tells the document in messages.
  explicit ZuXmlReader(std::string const& documentName = "buffer");
  ~ZuXmlReader();
  ZuXmlReader(ZuXmlReader const&) = delete;
  ZuXmlReader& operator=(ZuXmlReader const&) = delete;

  /// Parses the document, which must outlive the reader, and stands on its root element; prints the fault and returns
  /// false when it is not well formed.
  bool open(std::string_view document);

  // The current element, or the current attribute of it.

  std::string_view name() const;
  /// The token of that name. Names that the process has no token of are not kept: such a token differs from every other
  /// one, and is valid as long as the reader.
  ZuToken token();
  /// Line of the current element in the document; the first is 1, 0 before open(). Costs a pass over the document.
  unsigned int line() const;
  /// The character data of the current element or the value of the current attribute; valid until the next call. An
  /// element inside, or an attribute of the element, refuses the document.
  std::string_view text();

  // The cursor. Text between elements refuses the document.

  /// Moves to the first element inside the current one; false, and the cursor stays, when there is none.
  bool firstChild();
  /// The same for an element that holds no attributes: one of them refuses the document.
  bool firstItem() { return hasNoAttributes() && firstChild(); }
  /// Moves to the next element beside the current one; false when there is none or the document has been refused, and
  /// then the cursor is on the enclosing element again.
  bool nextSibling();
  /// Moves to the first or next attribute; false when there is none, and then the cursor is on the element again.
  /// Namespace declarations and attributes of a foreign namespace are passed over.
  bool firstAttribute();
  bool nextAttribute();

  // Numbers, separated by white space, from text(). All refuse the document, and the values are unchanged, when the
  // text is not exactly that.

  /// Not more than m_theMaximumReals; more refuse the document.
  bool readReals(double* values, unsigned int count);
  bool readInteger(long long lowest, long long highest, long long& value);
  bool readBool(bool& value);

  /// Prints "ZuXmlReader::read-->NAME, line N: TEXT" for the first fault of the document; always returns false.
  bool refuse(char const* format, ...) __attribute__((format(printf, 2, 3)));
  /// Like refuse(), for a caller that has printed a line of its own.
  bool refuseSilently();
  bool refused() const { return m_Refused; }

 private:
  friend class ZuXmlReadScope;
  struct Cursor;
  bool checkText();
  bool parse();
  bool refuseAt(std::size_t offset, char const* why);
  bool appendDecoded(std::string_view raw);
  std::string_view decoded(std::string_view raw);
  std::string_view joinedText();
  bool hasNoAttributes();
  bool atElement();

  std::string m_DocumentName;
  std::string_view m_Document;
  std::unique_ptr<Cursor> m_Cursor;
  unsigned int m_OpenObjects = 0;
  bool m_Refused = false;
};

/// Marks that an object is being read, for as long as it lives: the outermost one reads into a fresh object first.
class ZuXmlReadScope {
 public:
  explicit ZuXmlReadScope(ZuXmlReader& reader) : m_Reader(reader) { ++m_Reader.m_OpenObjects; }
  ~ZuXmlReadScope() { --m_Reader.m_OpenObjects; }
  ZuXmlReadScope(ZuXmlReadScope const&) = delete;
  ZuXmlReadScope& operator=(ZuXmlReadScope const&) = delete;
  static bool isOutermost(ZuXmlReader const& reader) { return reader.m_OpenObjects == 0; }

 private:
  ZuXmlReader& m_Reader;
};
