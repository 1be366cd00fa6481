#include "foundation/zuPrint.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>

#include "tests/printSink.h"

TEST(Print, LongMessagesArriveWhole) {
  PrintSink sink;
  std::string const text(5000, 'x');
  Zu::Print::instance().write(4, "%s%d", text.c_str(), 7);
  ASSERT_EQ(sink.messages().size(), 1U);
  EXPECT_EQ(sink.messages()[0], text + "7");
  EXPECT_EQ(sink.types()[0], 4);
}

TEST(Print, MessagesOfSeveralThreadsAreNeitherMixedNorLost) {
  PrintSink sink;
  auto const writer = [](int thread) {
    for (int i = 0; i < 200; ++i) Zu::Print::instance().write(4, "%d:%d", thread, i);
  };
  std::thread first(writer, 1);
  std::thread second(writer, 2);
  first.join();
  second.join();
  std::set<std::string> const different(sink.messages().begin(), sink.messages().end());
  EXPECT_EQ(different.size(), 400U);
  EXPECT_EQ(different.count("2:199"), 1U);
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
