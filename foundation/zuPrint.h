// zuPrint.h - the process-wide channel for warnings and errors. Group: printing.
#pragma once

#include <functional>
#include <mutex>
#include <string>

#include "foundation/zuExport.h"

namespace Zu {

/// What a message is; the values are part of the interface.
enum PrintType : int {
  PRINT_NOTE = 0,     ///< a diagnostic note
  PRINT_WARNING = 4,  ///< every warning and error of the libraries
};

/// Prints one-line messages. The libraries report every failure here and then return a neutral value.
///
/// Messages go to standard error, or to the sink when one is set. Thread-safe: a message is never mixed with another,
/// and the sink is called by one thread at a time. A sink that prints in turn is answered on standard error.
class ZU_API Print {
 public:
  static Print& instance();

  /// Formats as printf does and hands over the whole message; a message to standard error gets a line end if it has
  /// none.
  void write(int type, char const* format, ...) __attribute__((format(printf, 3, 4)));

  /// Redirects all messages; an empty function restores standard error.
  void setSink(std::function<void(int type, std::string const& message)> sink);

 private:
  Print() = default;
  void deliver(int type, std::string const& message);

  std::mutex m_Mutex;
  std::function<void(int, std::string const&)> m_Sink;
};

}  // namespace Zu
