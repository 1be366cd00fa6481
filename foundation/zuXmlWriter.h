// zuXmlWriter.h - writes an XML document into a string. Group: XML objects.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "foundation/zuExport.h"
#include "foundation/zuToken.h"

/// Appends a document, in UTF-8, to a string. Elements that hold elements are indented, text is written as it is.
///
/// The first thing that XML or ZuXmlReader can't take (a control character, a byte that is not UTF-8, a name with a
/// blank, too deep a nesting) prints one line and makes failed() true; what is written is then of no use.
class ZU_API ZuXmlWriter {
 public:
  /// The string must outlive the writer.
  explicit ZuXmlWriter(std::string& out);

  /// The line before the root element.
  void declaration();
  void open(ZuToken const& name);
  void close();
  /// From here to endAttribute() text is the value of an attribute of the element just opened.
  void beginAttribute(ZuToken const& name);
  void endAttribute();

  /// Escapes what XML reserves, and what reading would take for other white space.
  void text(std::string_view text);
  /// Shortest texts that read back to the same doubles, separated by blanks.
  void reals(double const* values, unsigned int count);
  void integer(long long value);

  bool failed() const { return m_Failed; }

 private:
  void checkName(ZuToken const& name);
  void fail(char const* function, std::string const& why);
  void endStartTag();
  void newLine();

  std::string& m_Out;
  std::vector<ZuToken> m_Open;
  bool m_InStartTag = false;
  bool m_InAttribute = false;
  bool m_ChildrenWritten = false;
  bool m_Failed = false;
  unsigned int m_Suppressed = 0;
};

/// The text of one number, as the writer writes it.
ZU_API std::string zuXmlText(double value);
