// printSink.h - collects what the libraries print while a test runs.
#pragma once

#include <string>
#include <vector>

#include "foundation/zuPrint.h"

/// Takes all messages from its construction to its destruction; standard error gets them again afterwards.
class PrintSink {
 public:
  PrintSink() {
    Zu::Print::instance().setSink([this](int type, std::string const& message) {
      m_Types.push_back(type);
      m_Messages.push_back(message);
    });
  }
  ~PrintSink() { Zu::Print::instance().setSink({}); }
  PrintSink(PrintSink const&) = delete;
  PrintSink& operator=(PrintSink const&) = delete;

  std::vector<std::string> const& messages() const { return m_Messages; }
  std::vector<int> const& types() const { return m_Types; }
  /// The messages since the last call of take().
  std::vector<std::string> take() {
    m_Types.clear();
    return std::move(m_Messages);
  }

 private:
  std::vector<int> m_Types;
  std::vector<std::string> m_Messages;
};
