#include "foundation/zuXmlNumbersPrivate.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace {

constexpr std::uint64_t theMantissa = (std::uint64_t{1} << 52) - 1;
constexpr std::uint64_t theExponent = std::uint64_t{0x7FF} << 52;  // of infinities and NaNs
constexpr std::uint64_t theSign = std::uint64_t{1} << 63;

std::uint64_t bitsOf(double const& value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
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
  std::uint64_t const bits = theExponent | mantissa | (negative ? theSign : 0);
  std::memcpy(&value, &bits, sizeof value);  // and never through a register that would quiet a signalling NaN
  return true;
}

bool takeFinite(std::string_view& text, double& value) {
  auto const [after, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || !std::isfinite(value)) return false;
  text.remove_prefix(static_cast<std::size_t>(after - text.data()));
  return true;
}

/// What std::from_chars does not take as it is meant here: infinities, NaNs, and plus signs.
bool takeOther(std::string_view& text, double& value) {
  bool const negative = takeWord(text, "-");
  bool const positive = !negative && takeWord(text, "+");
  if (takeWord(text, "inf")) {
    value = negative ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
    return true;
  }
  if (takeNan(text, negative, value)) return true;
  return positive && text.substr(0, 1) != "-" && takeFinite(text, value);
}

}  // namespace

bool zuXmlTakeReal(std::string_view& text, double& value) {
  skipWhite(text);
  double number = 0.0;
  if ((!takeFinite(text, number) && !takeOther(text, number)) || !endsHere(text)) return false;
  std::memcpy(&value, &number, sizeof value);
  return true;
}

bool zuXmlTakeInteger(std::string_view& text, long long& value) {
  skipWhite(text);
  std::string_view rest = text;
  if (takeWord(rest, "+") && rest.substr(0, 1) == "-") return false;
  long long number = 0;
  auto const [after, error] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
  rest.remove_prefix(static_cast<std::size_t>(after - rest.data()));
  if (error != std::errc() || !endsHere(rest)) return false;
  text = rest;
  value = number;
  return true;
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
