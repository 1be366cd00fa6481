#include "foundation/zuXmlNumbers.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace {

constexpr std::uint64_t theMantissa = (std::uint64_t{1} << 52) - 1;

std::uint64_t bitsOf(double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

double doubleOf(std::uint64_t bits) {
  double value = 0.0;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

void skipWhite(std::string_view& text) {
  std::size_t first = 0;
  while (first < text.size() &&
         (text[first] == ' ' || text[first] == '\n' || text[first] == '\t' || text[first] == '\r')) {
    ++first;
  }
  text.remove_prefix(first);
}

bool endsHere(std::string_view text) {
  return text.empty() || text[0] == ' ' || text[0] == '\n' || text[0] == '\t' || text[0] == '\r';
}

bool takeWord(std::string_view& text, std::string_view word) {
  if (text.substr(0, word.size()) != word) return false;
  text.remove_prefix(word.size());
  return true;
}

/// "nan", or "nan(0x...)" with the bits of the mantissa.
bool takeNan(std::string_view& text, bool negative, double& value) {
  if (!takeWord(text, "nan")) return false;
  std::uint64_t mantissa = bitsOf(std::numeric_limits<double>::quiet_NaN()) & theMantissa;
  if (takeWord(text, "(0x")) {
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), mantissa, 16);
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    if (error != std::errc() || mantissa == 0 || mantissa > theMantissa || !takeWord(text, ")")) return false;
  }
  std::uint64_t const infinity = bitsOf(std::numeric_limits<double>::infinity());
  value = doubleOf(infinity | mantissa | (negative ? std::uint64_t{1} << 63 : 0));
  return true;
}

}  // namespace

bool zuXmlTakeReal(std::string_view& text, double& value) {
  skipWhite(text);
  char const* const end = text.data() + text.size();
  double number = 0.0;
  auto const [after, error] = std::from_chars(text.data(), end, number);
  if (error == std::errc() && std::isfinite(number)) {
    text.remove_prefix(static_cast<std::size_t>(after - text.data()));
  } else {
    bool const negative = takeWord(text, "-");
    if (!negative) takeWord(text, "+");
    if (takeWord(text, "inf")) {
      number = negative ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
    } else if (!takeNan(text, negative, number)) {
      auto const [last, again] = std::from_chars(text.data(), text.data() + text.size(), number);
      if (negative || again != std::errc() || !std::isfinite(number) || text[0] == '-') return false;
      text.remove_prefix(static_cast<std::size_t>(last - text.data()));  // a number with a plus sign
    }
  }
  if (!endsHere(text)) return false;
  value = number;
  return true;
}

bool zuXmlTakeInteger(std::string_view& text, long long& value) {
  skipWhite(text);
  auto const [after, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc()) return false;
  text.remove_prefix(static_cast<std::size_t>(after - text.data()));
  return endsHere(text);
}

void zuXmlAppendReal(std::string& text, double value) {
  char buffer[40];
  char* end = buffer + sizeof buffer;
  std::uint64_t const mantissa = bitsOf(value) & theMantissa;
  if (!std::isnan(value) || mantissa == (bitsOf(std::numeric_limits<double>::quiet_NaN()) & theMantissa)) {
    end = std::to_chars(buffer, end, value).ptr;  // "nan" and "-nan" among them
    text.append(buffer, end);
    return;
  }
  text += std::signbit(value) ? "-nan(0x" : "nan(0x";
  end = std::to_chars(buffer, end, mantissa, 16).ptr;
  text.append(buffer, end);
  text += ')';
}
