#include "foundation/zuXmlWriter.h"

#include <algorithm>
#include <cstdio>

#include "foundation/zuPrint.h"
#include "foundation/zuXmlCharactersPrivate.h"
#include "foundation/zuXmlNumbersPrivate.h"
#include "foundation/zuXmlReader.h"

namespace {

char const* reference(char character) {
  switch (character) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\r':
      return "&#13;";
    case '\n':
      return "&#10;";
    default:
      return "&#9;";
  }
}

}  // namespace

ZuXmlWriter::ZuXmlWriter(std::string& out) : m_Out(out) {}

void ZuXmlWriter::declaration() { m_Out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"; }

void ZuXmlWriter::open(ZuToken const& name) {
  if (m_Suppressed > 0 || m_Open.size() >= ZuXmlReader::m_theMaximumNesting) {
    fail("open", "elements nested more than " + std::to_string(ZuXmlReader::m_theMaximumNesting) + " deep");
    ++m_Suppressed;
    return;
  }
  checkName(name);
  endStartTag();
  newLine();
  m_Out += '<';
  m_Out += name.token();
  m_Open.push_back(name);
  m_InStartTag = true;
  m_ChildrenWritten = false;
}

void ZuXmlWriter::close() {
  if (m_Suppressed > 0) {
    --m_Suppressed;
    return;
  }
  endStartTag();
  ZuToken const name = m_Open.back();
  m_Open.pop_back();
  if (m_ChildrenWritten) newLine();
  m_Out += "</";
  m_Out += name.token();
  m_Out += '>';
  m_ChildrenWritten = true;
  if (m_Open.empty()) m_Out += '\n';
}

void ZuXmlWriter::beginAttribute(ZuToken const& name) {
  checkName(name);
  m_Out += ' ';
  m_Out += name.token();
  m_Out += "=\"";
  m_InAttribute = true;
}

void ZuXmlWriter::endAttribute() {
  m_Out += '"';
  m_InAttribute = false;
}

void ZuXmlWriter::text(std::string_view text) {
  if (m_Suppressed > 0) return;
  if (!m_InAttribute) endStartTag();
  std::size_t markup = 0;
  std::size_t const fault = zuXmlFindFault(text, markup);
  if (fault < text.size()) {
    char why[64];
    std::snprintf(why, sizeof why, "XML can't carry the byte 0x%02x", static_cast<unsigned char>(text[fault]));
    return fail("text", why);
  }
  for (std::size_t begin = 0; begin < text.size();) {
    std::size_t const end = std::min(text.find_first_of(m_InAttribute ? "&<>\"\r\n\t" : "&<>\r", begin), text.size());
    m_Out.append(text, begin, end - begin);
    if (end < text.size()) m_Out += reference(text[end]);
    begin = end + 1;
  }
}

void ZuXmlWriter::reals(double const* values, unsigned int count) {
  if (m_Suppressed > 0) return;
  if (!m_InAttribute) endStartTag();
  for (unsigned int i = 0; i < count; ++i) {
    if (i > 0) m_Out += ' ';
    zuXmlAppendReal(m_Out, values[i]);
  }
}

void ZuXmlWriter::integer(long long value) { text(std::to_string(value)); }

void ZuXmlWriter::checkName(ZuToken const& name) {
  if (!zuXmlIsName(name.token())) fail("open", '"' + name.token() + "\" is no name of XML");
}

void ZuXmlWriter::fail(char const* function, std::string const& why) {
  if (!m_Failed) Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuXmlWriter::%s-->%s", function, why.c_str());
  m_Failed = true;
}

void ZuXmlWriter::endStartTag() {
  if (m_InStartTag) m_Out += '>';
  m_InStartTag = false;
}

void ZuXmlWriter::newLine() {
  m_Out += '\n';
  m_Out.append(2 * m_Open.size(), ' ');
}

std::string zuXmlText(double value) {
  std::string text;
  zuXmlAppendReal(text, value);
  return text;
}
