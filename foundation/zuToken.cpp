#include "foundation/zuToken.h"

#include <functional>
#include <mutex>
#include <set>

namespace {

/// Static tokens are built at load time, in any order among the libraries, and are used until the process ends: the
/// pool is built on first use and never destroyed.
struct Pool {
  std::mutex mutex;
  std::set<std::string, std::less<>> texts;

  static Pool& instance() {
    static Pool& thePool = *new Pool;
    return thePool;
  }
};

std::string const* intern(std::string_view text) {
  Pool& pool = Pool::instance();
  std::lock_guard<std::mutex> const lock(pool.mutex);
  auto const found = pool.texts.find(text);
  return &*(found != pool.texts.end() ? found : pool.texts.emplace(text).first);
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

std::string const* ZuToken::pooled(std::string_view text) {
  Pool& pool = Pool::instance();
  std::lock_guard<std::mutex> const lock(pool.mutex);
  auto const found = pool.texts.find(text);
  return found == pool.texts.end() ? nullptr : &*found;
}
