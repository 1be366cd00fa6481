#include "foundation/zuPrint.h"

#include <cstdarg>
#include <cstdio>
#include <utility>

namespace Zu {
namespace {

/// printf into a string. Short messages, nearly all of them, are formatted once.
std::string formatted(char const* format, std::va_list arguments) __attribute__((format(printf, 1, 0)));

std::string formatted(char const* format, std::va_list arguments) {
  char shortText[512];
  std::va_list again;
  va_copy(again, arguments);
  int const length = std::vsnprintf(shortText, sizeof shortText, format, arguments);
  std::string text;
  if (length >= 0 && static_cast<std::size_t>(length) < sizeof shortText) {
    text.assign(shortText, static_cast<std::size_t>(length));
  } else if (length >= 0) {
    text.resize(static_cast<std::size_t>(length) + 1);
    std::vsnprintf(text.data(), text.size(), format, again);
    text.pop_back();
  }
  va_end(again);
  return text;
}

void toStandardError(std::string message) {
  if (message.empty() || message.back() != '\n') message += '\n';
  std::fwrite(message.data(), 1, message.size(), stderr);
}

thread_local bool theThreadIsInSink = false;

}  // namespace

Print& Print::instance() {
  static Print& thePrinter = *new Print;  // static objects may print until the process ends
  return thePrinter;
}

void Print::write(int type, char const* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::string const message = formatted(format, arguments);
  va_end(arguments);
  deliver(type, message);
}

void Print::setSink(std::function<void(int, std::string const&)> sink) {
  std::lock_guard<std::mutex> const lock(m_Mutex);
  m_Sink = std::move(sink);
}

void Print::deliver(int type, std::string const& message) {
  if (theThreadIsInSink) return toStandardError(message);
  std::lock_guard<std::mutex> const lock(m_Mutex);
  if (!m_Sink) return toStandardError(message);
  theThreadIsInSink = true;
  try {
    m_Sink(type, message);
  } catch (...) {
    toStandardError(message);  // a sink that throws must not turn a message into an exception of the library
  }
  theThreadIsInSink = false;
}

}  // namespace Zu
