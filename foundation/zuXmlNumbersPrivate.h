// zuXmlNumbersPrivate.h - numbers and white space in the text of documents. Group: XML objects.
#pragma once

#include <string>
#include <string_view>

// Not for clients: nothing here is exported. Each `take` function takes one item, and the white space before it, from
// the front of the text; when there is none it returns false and `value` is unchanged.

inline std::string_view zuXmlTrimmed(std::string_view text) {
  char const* const white = " \t\r\n";
  std::size_t const first = text.find_first_not_of(white);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(white) - first + 1);
}

inline bool zuXmlIsBlank(std::string_view text) { return text.find_first_not_of(" \t\r\n") == std::string_view::npos; }

/// A decimal number, or nan, inf, and with a payload nan(0xf); a number that no double is near to is none.
bool zuXmlTakeReal(std::string_view& text, double& value);
bool zuXmlTakeInteger(std::string_view& text, long long& value);

/// The shortest text that reads back to the same double, bit for bit.
void zuXmlAppendReal(std::string& text, double value);
