#include "foundation/zuPrint.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>

#include "tests/printSink.h"

TEST(Print, LongMessagesArriveWholeAndThoseOfSeveralThreadsAreNeitherMixedNorLost) {
  PrintSink sink;
  std::string const text(5000, 'x');
  auto const writer = [&text](int thread) {
    for (int i = 0; i < 200; ++i) Zu::Print::instance().write(4, "%d:%d%s", thread, i, text.c_str());
  };
  std::thread first(writer, 1), second(writer, 2);
  first.join();
  second.join();
  EXPECT_EQ(sink.types(), std::vector<int>(400, 4));
  std::set<std::string> const different(sink.messages().begin(), sink.messages().end());
  EXPECT_EQ(different.size(), 400U);
  for (int i = 0; i < 200; ++i) EXPECT_TRUE(different.count("1:" + std::to_string(i) + text)) << i;
}

TEST(Print, ASinkMayPrintWithoutDeadlockAndMayThrow) {
  testing::internal::CaptureStderr();
  Zu::Print::instance().setSink([](int, std::string const&) {
    Zu::Print::instance().write(4, "from inside");
    throw 1;
  });
  Zu::Print::instance().write(4, "from outside");
  Zu::Print::instance().setSink({});
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "from inside\nfrom outside\n");
}
