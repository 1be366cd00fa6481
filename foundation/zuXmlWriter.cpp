#include "foundation/zuXmlWriter.h"

#include "foundation/zuPrint.h"
#include "foundation/zuXmlNumbers.h"
#include "foundation/zuXmlReader.h"

namespace {

/// Bytes of the UTF-8 sequence at the front of the text; 0 when it is none, or one that XML 1.0 can't carry.
unsigned int characterLength(std::string_view text) {
  auto const byte = [&](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
  auto const follows = [&](std::size_t i) { return (byte(i) & 0xC0U) == 0x80U; };
  unsigned int const lead = byte(0);
  if (lead < 0x80U) return lead >= 0x20U || lead == '\t' || lead == '\n' || lead == '\r' ? 1 : 0;
  if (lead >= 0xC2U && lead <= 0xDFU) return follows(1) ? 2 : 0;
  if (lead >= 0xE0U && lead <= 0xEFU && follows(1) && follows(2)) {
    unsigned int const code = (lead & 0xFU) << 12 | (byte(1) & 0x3FU) << 6 | (byte(2) & 0x3FU);
    bool const surrogate = code >= 0xD800U && code <= 0xDFFFU;
    return code >= 0x800U && !surrogate && code < 0xFFFEU ? 3 : 0;
  }
  if (lead >= 0xF0U && lead <= 0xF4U && follows(1) && follows(2) && follows(3)) {
    unsigned int const top = (lead & 0x7U) << 2 | (byte(1) & 0x30U) >> 4;
    return top >= 1 && top <= 0x10U ? 4 : 0;
  }
  return 0;
}

}  // namespace

ZuXmlWriter::ZuXmlWriter(std::string& out) : m_Out(out) {}

void ZuXmlWriter::declaration() { m_Out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"; }

void ZuXmlWriter::open(ZuToken const& name) {
  if (m_Suppressed > 0 || m_Open.size() >= ZuXmlReader::m_theMaximumNesting) {
    if (!m_Failed) {
      Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuXmlWriter::open-->elements nested more than %u deep",
                                  ZuXmlReader::m_theMaximumNesting);
    }
    m_Failed = true;
    ++m_Suppressed;
    return;
  }
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
  while (!text.empty()) {
    unsigned int const length = characterLength(text);
    if (length == 0) {
      Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuXmlWriter::text-->XML can't carry the byte 0x%02x",
                                  static_cast<unsigned int>(static_cast<unsigned char>(text[0])));
      m_Failed = true;
      return;
    }
    switch (text[0]) {
      case '&':
        m_Out += "&amp;";
        break;
      case '<':
        m_Out += "&lt;";
        break;
      case '>':
        m_Out += "&gt;";
        break;
      case '"':
        m_Out += "&quot;";
        break;
      case '\r':
        m_Out += "&#13;";
        break;
      case '\n':
        m_Out += m_InAttribute ? "&#10;" : "\n";
        break;
      case '\t':
        m_Out += m_InAttribute ? "&#9;" : "\t";
        break;
      default:
        m_Out.append(text.data(), length);
    }
    text.remove_prefix(length);
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
