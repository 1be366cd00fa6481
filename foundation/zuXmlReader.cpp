#include "foundation/zuXmlReader.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <pugixml.hpp>

#include "foundation/zuPrint.h"
#include "foundation/zuXmlNumbers.h"

namespace {

bool isBlank(char const* text) { return text[std::strspn(text, " \t\r\n")] == '\0'; }

bool isForeign(std::string_view name) { return name == "xmlns" || name.find(':') != std::string_view::npos; }

}  // namespace

struct ZuXmlReader::Cursor {
  pugi::xml_document document;
  pugi::xml_node element;
  pugi::xml_attribute attribute;
  std::string joinedText;
  unsigned int depth = 0;
};

ZuXmlReader::ZuXmlReader(std::string const& documentName)
    : m_DocumentName(documentName), m_Cursor(std::make_unique<Cursor>()) {}

ZuXmlReader::~ZuXmlReader() = default;

bool ZuXmlReader::open(std::string text) {
  if (text.size() > m_theMaximumDocumentSize) return refuse("larger than a document may be");
  m_Text = std::move(text);
  m_Refused = false;
  unsigned int const options = pugi::parse_default | pugi::parse_ws_pcdata_single;
  // The parser works on a copy, so that the text still has the lines that messages tell.
  pugi::xml_parse_result const result =
      m_Cursor->document.load_buffer(m_Text.data(), m_Text.size(), options, pugi::encoding_utf8);
  m_Cursor->element = m_Cursor->document.document_element();
  m_Cursor->attribute = pugi::xml_attribute();
  m_Cursor->depth = 1;
  if (!result) {
    auto const fault = std::min(static_cast<std::size_t>(std::max<std::ptrdiff_t>(result.offset, 0)), m_Text.size());
    auto const begin = m_Text.begin();
    m_Cursor->element = pugi::xml_node();
    auto const newlines = std::count(begin, begin + static_cast<std::ptrdiff_t>(fault), '\n');
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuXmlReader::open-->%s, line %ld: %s", m_DocumentName.c_str(),
                                static_cast<long>(newlines) + 1, result.description());
    return refuseSilently();
  }
  if (m_Cursor->element.empty()) return refuse("no element");
  return !m_Cursor->element.next_sibling() || isBlank(m_Cursor->element.next_sibling().value()) ||
         refuse("something follows the root element");
}

std::string_view ZuXmlReader::name() const {
  return m_Cursor->attribute.empty() ? m_Cursor->element.name() : m_Cursor->attribute.name();
}

unsigned int ZuXmlReader::line() const {
  std::ptrdiff_t const offset = m_Cursor->element.offset_debug();
  if (m_Cursor->element.empty() || offset < 0) return 0;
  auto const end = m_Text.begin() + std::min(offset, static_cast<std::ptrdiff_t>(m_Text.size()));
  return static_cast<unsigned int>(std::count(m_Text.begin(), end, '\n')) + 1;
}

std::string_view ZuXmlReader::text() {
  if (!m_Cursor->attribute.empty()) return m_Cursor->attribute.value();
  pugi::xml_node const first = m_Cursor->element.first_child();
  if (first.empty()) return {};
  bool const single = first.next_sibling().empty();
  if (single && first.type() != pugi::node_element) return first.value();
  m_Cursor->joinedText.clear();
  for (pugi::xml_node piece = first; !piece.empty(); piece = piece.next_sibling()) {
    if (piece.type() == pugi::node_element) {
      refuse("<%.64s> inside <%.64s>, which holds text", piece.name(), m_Cursor->element.name());
      return {};
    }
    m_Cursor->joinedText += piece.value();
  }
  return m_Cursor->joinedText;
}

/// Passes over what stands before the next element; text other than white space is not to be lost in silence.
bool ZuXmlReader::atElement() {
  while (!m_Cursor->element.empty() && m_Cursor->element.type() != pugi::node_element) {
    if (!isBlank(m_Cursor->element.value())) {
      m_Cursor->element = m_Cursor->element.parent();
      return refuse("text between the elements of <%.64s>", m_Cursor->element.name());
    }
    m_Cursor->element = m_Cursor->element.next_sibling();
  }
  return !m_Cursor->element.empty();
}

bool ZuXmlReader::firstChild() {
  pugi::xml_node const parent = m_Cursor->element;
  if (m_Refused || parent.first_child().empty()) return false;
  if (m_Cursor->depth >= m_theMaximumNesting) {
    return refuse("elements nested more than %u deep", m_theMaximumNesting);
  }
  m_Cursor->element = parent.first_child();
  bool const found = atElement();
  if (found) {
    ++m_Cursor->depth;
  } else {
    m_Cursor->element = parent;
  }
  return found;
}

bool ZuXmlReader::nextSibling() {
  pugi::xml_node const parent = m_Cursor->element.parent();
  m_Cursor->element = m_Refused ? pugi::xml_node() : m_Cursor->element.next_sibling();
  if (!m_Refused && atElement()) return true;
  m_Cursor->element = parent;
  --m_Cursor->depth;
  return false;
}

bool ZuXmlReader::firstAttribute() {
  m_Cursor->attribute = m_Cursor->element.first_attribute();
  if (!m_Cursor->attribute.empty() && isForeign(m_Cursor->attribute.name())) return nextAttribute();
  return !m_Cursor->attribute.empty();
}

bool ZuXmlReader::nextAttribute() {
  do {
    m_Cursor->attribute = m_Cursor->attribute.next_attribute();
  } while (!m_Cursor->attribute.empty() && isForeign(m_Cursor->attribute.name()));
  return !m_Cursor->attribute.empty();
}

bool ZuXmlReader::readReals(double* values, unsigned int count) {
  std::string_view rest = text();
  if (m_Refused) return false;
  for (unsigned int i = 0; i < count; ++i) {
    if (!zuXmlTakeReal(rest, values[i])) return refuse("<%.64s> is not %u numbers", std::string(name()).c_str(), count);
  }
  return zuXmlIsBlank(rest) || refuse("<%.64s> is more than %u numbers", std::string(name()).c_str(), count);
}

bool ZuXmlReader::readInteger(long long lowest, long long highest, long long& value) {
  std::string_view rest = text();
  if (m_Refused) return false;
  long long number = 0;
  if (!zuXmlTakeInteger(rest, number) || !zuXmlIsBlank(rest) || number < lowest || number > highest) {
    return refuse("<%.64s> is not a whole number from %lld to %lld", std::string(name()).c_str(), lowest, highest);
  }
  value = number;
  return true;
}

bool ZuXmlReader::readBool(bool& value) {
  std::string_view const word = zuXmlTrimmed(text());
  if (m_Refused) return false;
  bool const isTrue = word == "true" || word == "1";
  if (!isTrue && word != "false" && word != "0") {
    return refuse("<%.64s> is neither true nor false", std::string(name()).c_str());
  }
  value = isTrue;
  return true;
}

bool ZuXmlReader::refuse(char const* format, ...) {
  if (m_Refused) return false;
  char message[512];
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(message, sizeof message, format, arguments);
  va_end(arguments);
  // Names of elements come from the document: what they hold must not make two lines of one.
  std::replace_if(
      message, message + std::strlen(message), [](char c) { return static_cast<unsigned char>(c) < ' '; }, '?');
  if (line() == 0) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuXmlReader::read-->%s: %s", m_DocumentName.c_str(), message);
  } else {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuXmlReader::read-->%s, line %u: %s", m_DocumentName.c_str(),
                                line(), message);
  }
  return refuseSilently();
}

bool ZuXmlReader::refuseSilently() {
  m_Refused = true;
  return false;
}
