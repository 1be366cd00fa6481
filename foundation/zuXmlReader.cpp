#include "foundation/zuXmlReader.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <pugixml.hpp>
#include <set>

#include "foundation/zuPrint.h"
#include "foundation/zuXmlCharactersPrivate.h"
#include "foundation/zuXmlNumbersPrivate.h"

namespace {

bool isForeign(std::string_view name) { return name == "xmlns" || name.find(':') != std::string_view::npos; }

pugi::xml_attribute ownAttribute(pugi::xml_attribute attribute) {
  while (!attribute.empty() && isForeign(attribute.name())) attribute = attribute.next_attribute();
  return attribute;
}

}  // namespace

struct ZuXmlReader::Cursor {
  pugi::xml_document document;
  pugi::xml_node element;
  pugi::xml_attribute attribute;
  std::string text;
  std::set<std::string, std::less<>> unknownNames;
  unsigned int depth = 0;
};

ZuXmlReader::ZuXmlReader(std::string const& documentName)
    : m_DocumentName(documentName), m_Cursor(std::make_unique<Cursor>()) {}

ZuXmlReader::~ZuXmlReader() = default;

bool ZuXmlReader::open(std::string_view document) {
  m_Document = document;
  m_Refused = false;
  m_Cursor->element = pugi::xml_node();
  m_Cursor->attribute = pugi::xml_attribute();
  m_Cursor->depth = 1;
  return checkText() && parse();
}

bool ZuXmlReader::checkText() {
  if (m_Document.size() > m_theMaximumDocumentSize) return refuse("larger than a document may be");
  std::size_t markup = 0;
  std::size_t const fault = zuXmlFindFault(m_Document, markup);
  if (fault < m_Document.size()) return refuseAt(fault, "a byte that is no character of XML in UTF-8");
  return markup <= m_theMaximumMarkup || refuse("more elements and attributes than a document may have");
}

bool ZuXmlReader::parse() {
  // References are replaced where text is asked for, since the parser lets unknown ones pass. As a fragment, text
  // outside the root element is kept, and can be refused.
  unsigned int const options = (pugi::parse_default & ~pugi::parse_escapes) | pugi::parse_fragment |
                               pugi::parse_embed_pcdata | pugi::parse_ws_pcdata_single;
  // The parser works on a copy, so that the document still has the lines that messages tell.
  pugi::xml_parse_result const result =
      m_Cursor->document.load_buffer(m_Document.data(), m_Document.size(), options, pugi::encoding_utf8);
  auto const offset = static_cast<std::size_t>(std::max<std::ptrdiff_t>(result.offset, 0));
  if (!result) return refuseAt(offset, result.description());
  pugi::xml_node const root = m_Cursor->document.first_child();
  if (root.empty()) return refuse("no element");
  for (pugi::xml_node node = root; !node.empty(); node = node.next_sibling()) {
    if (node.type() != pugi::node_element) return refuse("text outside the root element");
  }
  m_Cursor->element = root;
  return root.next_sibling().empty() || refuse("a second root element");
}

bool ZuXmlReader::refuseAt(std::size_t offset, char const* why) {
  auto const end = m_Document.begin() + static_cast<std::ptrdiff_t>(std::min(offset, m_Document.size()));
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuXmlReader::open-->%s, line %ld: %s", m_DocumentName.c_str(),
                              static_cast<long>(std::count(m_Document.begin(), end, '\n')) + 1, why);
  return refuseSilently();
}

std::string_view ZuXmlReader::name() const {
  return m_Cursor->attribute.empty() ? m_Cursor->element.name() : m_Cursor->attribute.name();
}

ZuToken ZuXmlReader::token() {
  std::string const* const known = ZuToken::pooled(name());
  return ZuToken(known != nullptr ? known : &*m_Cursor->unknownNames.emplace(name()).first);
}

unsigned int ZuXmlReader::line() const {
  std::ptrdiff_t const offset = m_Cursor->element.offset_debug();
  if (m_Cursor->element.empty() || offset < 0) return 0;
  auto const end = m_Document.begin() + std::min(offset, static_cast<std::ptrdiff_t>(m_Document.size()));
  return static_cast<unsigned int>(std::count(m_Document.begin(), end, '\n')) + 1;
}

std::string_view ZuXmlReader::text() {
  if (m_Refused) return {};
  if (!m_Cursor->attribute.empty()) return decoded(m_Cursor->attribute.value());
  if (!hasNoAttributes()) return {};
  return m_Cursor->element.first_child().empty() ? decoded(m_Cursor->element.value()) : joinedText();
}

/// The text of the element when it is in pieces: CDATA sections, or parts between comments.
std::string_view ZuXmlReader::joinedText() {
  m_Cursor->text.clear();
  bool whole = appendDecoded(m_Cursor->element.value());
  for (pugi::xml_node piece = m_Cursor->element.first_child(); whole && !piece.empty(); piece = piece.next_sibling()) {
    if (piece.type() == pugi::node_element) {
      whole = refuse("<%.64s> inside <%.64s>, which holds text", piece.name(), m_Cursor->element.name());
    } else if (piece.type() == pugi::node_cdata) {
      m_Cursor->text += piece.value();
    } else {
      whole = appendDecoded(piece.value());
    }
  }
  return whole ? std::string_view(m_Cursor->text) : std::string_view();
}

bool ZuXmlReader::appendDecoded(std::string_view raw) {
  return zuXmlAppendDecoded(m_Cursor->text, raw) || refuse("'&' before no character or entity of XML");
}

std::string_view ZuXmlReader::decoded(std::string_view raw) {
  if (raw.find('&') == std::string_view::npos) return raw;
  m_Cursor->text.clear();
  return appendDecoded(raw) ? std::string_view(m_Cursor->text) : std::string_view();
}

bool ZuXmlReader::hasNoAttributes() {
  pugi::xml_attribute const first = m_Cursor->element.first_attribute();
  if (first.empty() || ownAttribute(first).empty()) return true;
  return refuse("unknown attribute \"%.64s\"", ownAttribute(first).name());
}

/// Passes over what stands before the next element; text other than white space is not to be lost in silence.
bool ZuXmlReader::atElement() {
  while (!m_Cursor->element.empty() && m_Cursor->element.type() != pugi::node_element) {
    if (!zuXmlIsBlank(m_Cursor->element.value())) {
      m_Cursor->element = m_Cursor->element.parent();
      return refuse("text between the elements of <%.64s>", m_Cursor->element.name());
    }
    m_Cursor->element = m_Cursor->element.next_sibling();
  }
  return !m_Cursor->element.empty();
}

bool ZuXmlReader::firstChild() {
  pugi::xml_node const parent = m_Cursor->element;
  if (m_Refused) return false;
  if (!zuXmlIsBlank(parent.value())) return refuse("text between the elements of <%.64s>", parent.name());
  m_Cursor->element = parent.first_child();
  if (!atElement()) {
    m_Cursor->element = parent;
    return false;
  }
  if (m_Cursor->depth < m_theMaximumNesting) {
    ++m_Cursor->depth;
    return true;
  }
  refuse("elements nested more than %u deep", m_theMaximumNesting);
  m_Cursor->element = parent;
  return false;
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
  m_Cursor->attribute = ownAttribute(m_Cursor->element.first_attribute());
  return !m_Cursor->attribute.empty();
}

bool ZuXmlReader::nextAttribute() {
  m_Cursor->attribute = ownAttribute(m_Cursor->attribute.next_attribute());
  return !m_Cursor->attribute.empty();
}

bool ZuXmlReader::readReals(double* values, unsigned int count) {
  std::string_view rest = text();
  if (m_Refused) return false;
  std::array<double, m_theMaximumReals> numbers;
  unsigned int taken = 0;
  while (taken < std::min(count, m_theMaximumReals) && zuXmlTakeReal(rest, numbers[taken])) ++taken;
  if (taken < count || !zuXmlIsBlank(rest)) {
    return refuse("<%.64s> is not %s", std::string(name()).c_str(),
                  count == 1 ? "a number" : (std::to_string(count) + " numbers").c_str());
  }
  std::copy_n(numbers.begin(), count, values);
  return true;
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
