#include "foundation/zuXmlCharactersPrivate.h"

#include <charconv>
#include <cstdint>
#include <cstring>
#include <utility>

namespace {

// Eight bytes at a time, as one word: nearly all of a document are printable ASCII.
constexpr std::uint64_t theOnes = 0x0101010101010101U;
constexpr std::uint64_t theHighBits = 0x80 * theOnes;

/// True when every byte is in [0x20, 0x80).
bool isPrintable(std::uint64_t word) { return (((word - 0x20 * theOnes) | word) & theHighBits) == 0; }

/// How many bytes of a printable word are '<' or '=', which differ in the lowest bit alone.
std::size_t markupOf(std::uint64_t word) {
  std::uint64_t const zeroWhereMarkup = (word | theOnes) ^ ('=' * theOnes);
  std::uint64_t const oneWhereOther = ((zeroWhereMarkup + 0x7F * theOnes) & theHighBits) >> 7;
  return 8 - static_cast<std::size_t>(oneWhereOther * theOnes >> 56);  // the product sums the bytes up in the highest
}

static_assert(('<' | 1) == '=');

constexpr std::pair<std::string_view, char> theEntities[] = {
    {"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"quot", '"'}, {"apos", '\''}};

bool appendCharacter(std::string& out, unsigned int code) {
  auto const tail = [code](unsigned int shift) { return static_cast<char>(0x80U | ((code >> shift) & 0x3FU)); };
  char bytes[4] = {static_cast<char>(code)};
  unsigned int length = 1;
  if (code >= 0x10000U) {
    length = 4;
    bytes[0] = static_cast<char>(0xF0U | code >> 18);
  } else if (code >= 0x800U) {
    length = 3;
    bytes[0] = static_cast<char>(0xE0U | code >> 12);
  } else if (code >= 0x80U) {
    length = 2;
    bytes[0] = static_cast<char>(0xC0U | code >> 6);
  }
  for (unsigned int i = 1; i < length; ++i) bytes[i] = tail(6 * (length - 1 - i));
  if (code > 0x10FFFFU || zuXmlCharacterLength({bytes, length}) != length) return false;
  out.append(bytes, length);
  return true;
}

/// The reference without its '&' and ';'.
bool appendReference(std::string& out, std::string_view reference) {
  if (reference.substr(0, 1) != "#") {
    for (auto const& [name, character] : theEntities) {
      if (reference == name) {
        out += character;
        return true;
      }
    }
    return false;
  }
  bool const hexadecimal = reference.substr(0, 2) == "#x";
  std::string_view const digits = reference.substr(hexadecimal ? 2 : 1);
  unsigned int code = 0;
  char const* const end = digits.data() + digits.size();
  auto const [after, error] = std::from_chars(digits.data(), end, code, hexadecimal ? 16 : 10);
  return error == std::errc() && after == end && appendCharacter(out, code);
}

}  // namespace

unsigned int zuXmlCharacterLength(std::string_view text) {
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

std::size_t zuXmlFindFault(std::string_view text, std::size_t& markup) {
  markup = 0;
  for (std::size_t at = 0; at < text.size();) {
    std::uint64_t word = 0;
    if (at + sizeof word <= text.size()) std::memcpy(&word, text.data() + at, sizeof word);
    if (isPrintable(word)) {
      markup += markupOf(word);
      at += sizeof word;
      continue;
    }
    unsigned int const length = zuXmlCharacterLength(text.substr(at));
    if (length == 0) return at;
    if (text[at] == '<' || text[at] == '=') ++markup;
    at += length;
  }
  return text.size();
}

bool zuXmlIsName(std::string_view name) {
  auto const isLetter = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || static_cast<unsigned char>(c) >= 0x80U;
  };
  if (name.empty() || !isLetter(name[0])) return false;
  for (char const c : name) {
    if (!isLetter(c) && !(c >= '0' && c <= '9') && c != '-' && c != '.') return false;
  }
  std::size_t markup = 0;
  return zuXmlFindFault(name, markup) == name.size();
}

bool zuXmlAppendDecoded(std::string& out, std::string_view raw) {
  for (;;) {
    std::size_t const begin = raw.find('&');
    out.append(raw.substr(0, begin));
    if (begin == std::string_view::npos) return true;
    std::size_t const end = raw.find(';', begin);
    if (end == std::string_view::npos || !appendReference(out, raw.substr(begin + 1, end - begin - 1))) return false;
    raw.remove_prefix(end + 1);
  }
}
