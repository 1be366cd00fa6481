// zuToken.h - interned name of an XML element or attribute. Group: values.
#pragma once

#include <string>
#include <string_view>

#include "foundation/zuExport.h"

/// An interned name: two tokens are equal exactly when their texts are.
///
/// A token is one pointer into a process-wide pool that only grows, so copying and comparing cost one word, and the
/// text lives as long as the process. Building one looks the text up under a lock: O(log n) in the number of names.
/// Thread-safe. The default token is the empty name.
class ZU_API ZuToken {
 public:
  ZuToken();
  ZuToken(char const* text);         // NOLINT: names stand for tokens wherever a token is expected
  ZuToken(std::string const& text);  // NOLINT
  explicit ZuToken(std::string_view text);
  ZuToken(ZuToken const&) = default;
  ZuToken& operator=(ZuToken const&) = default;
  ZuToken& operator=(std::string const& text);

  std::string const& token() const { return *m_Text; }

  /// By text: one comparison of pointers for equal names of the pool. (A reader's token of a name that was not in the
  /// pool is beside it, and may be compared with one that was made later.)
  bool operator==(ZuToken const& other) const { return m_Text == other.m_Text || *m_Text == *other.m_Text; }
  bool operator!=(ZuToken const& other) const { return !(*this == other); }
  /// Alphabetical, so that maps keyed by tokens have the same order on every run.
  bool operator<(ZuToken const& other) const { return *m_Text < *other.m_Text; }

 private:
  friend class ZuXmlReader;
  /// The pool's copy of the text; null when no token of that name has been made.
  static std::string const* pooled(std::string_view text);
  /// A text that is not in the pool makes a token that differs from every other and lives as long as the text.
  explicit ZuToken(std::string const* text) : m_Text(text) {}

  std::string const* m_Text;
};
