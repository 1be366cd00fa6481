// oneMessage.h - whether something was refused as it should be: with one message.
#pragma once

#include "tests/testValues.h"

/// Whether there is one message, in one line, and with that part.
inline testing::AssertionResult saysOnce(PrintSink const& sink, std::string const& part) {
  if (sink.messages().size() != 1) return testing::AssertionFailure() << sink.messages().size() << " messages";
  std::string const& message = sink.messages()[0];
  bool const asTold = message.find(part) != std::string::npos && message.find('\n') == std::string::npos;
  return (asTold ? testing::AssertionSuccess() : testing::AssertionFailure()) << message;
}
