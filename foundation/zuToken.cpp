#include "foundation/zuToken.h"

#include <functional>
#include <mutex>
#include <set>

namespace {

/// Returns the pool's copy of the text. Static tokens are built at load time, in any order among the libraries, and are
/// used until the process ends: the pool is built on first use and never destroyed.
std::string const* intern(std::string_view text) {
  static std::mutex& theMutex = *new std::mutex;
  static auto& thePool = *new std::set<std::string, std::less<>>;
  std::lock_guard<std::mutex> const lock(theMutex);
  auto const found = thePool.find(text);
  return &*(found != thePool.end() ? found : thePool.emplace(text).first);
}

}  // namespace

ZuToken::ZuToken() : m_Text(intern({})) {}

ZuToken::ZuToken(char const* text) : m_Text(intern(text != nullptr ? text : "")) {}

ZuToken::ZuToken(std::string const& text) : m_Text(intern(text)) {}

ZuToken::ZuToken(std::string_view text) : m_Text(intern(text)) {}

ZuToken& ZuToken::operator=(std::string const& text) {
  m_Text = intern(text);
  return *this;
}
