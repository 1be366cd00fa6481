#include "foundation/zuDataMap.h"

#include <gtest/gtest.h>

#include "tests/allocationCounter.h"
#include "tests/printSink.h"

TEST(DataMap, AValueIsFoundByNameAndKind) {
  ZuDataMap map = ZuDataMap::testObject();
  double real = -1.0;
  std::string text = "none";
  unsigned int count = 9;
  EXPECT_TRUE(map.lookup("friction", real) && map.lookup("material", text) && map.lookup("layers", count));
  EXPECT_TRUE(real == 0.1 && text == "steel & rubber" && count == 3U);
  EXPECT_FALSE(map.lookup("layers", real) || map.lookup("lustre", real));
  EXPECT_EQ(real, 0.1);
  map.add("layers", 2.5);
  EXPECT_TRUE(map.lookup("layers", real) && !map.lookup("layers", count));
  EXPECT_EQ(map.size(), 3U);
}

TEST(DataMap, EqualityTellsKindsApart) {
  ZuDataMap a, b;
  a.add("n", 1.0);
  b.add("n", 1U);
  EXPECT_FALSE(a == b);
  EXPECT_FALSE(ZuDataMap::boundingColor() == ZuDataMap::defaultManipColor());
}

TEST(DataMap, AnEmptyMapOwnsNoMemory) {
  AllocationCounter const counter;
  ZuDataMap const empty;
  ZuDataMap copy(empty);
  copy = empty;
  EXPECT_EQ(counter.count(), 0U);
}

TEST(DataMap, ReadsItsDocumentedFormAndRefusesOthers) {
  ZuDataMap map;
  EXPECT_TRUE(map.readFromBuffer(
      "<surface><entry><key>friction</key><real>0.1</real></entry><entry><text>steel &amp; rubber</text>"
      "<key>material</key></entry><entry><key>layers</key><unsigned>3</unsigned></entry></surface>"));
  EXPECT_TRUE(map == ZuDataMap::testObject());
  PrintSink sink;
  for (char const* const bad :
       {"<m><entry><real>1</real></entry></m>", "<m><entry><key>a</key></entry></m>", "<m>1</m>", "<m><key>a</key></m>",
        "<m><entry><key>a</key><real>1</real><text>1</text></entry></m>",
        "<m><entry><key>a</key><real>x</real></entry></m>",
        "<m><entry><key>a</key><real>1</real></entry><entry><key>a</key><real>2</real></entry></m>",
        "<m><entry><key>a</key><unsigned>-1</unsigned></entry></m>"}) {
    EXPECT_FALSE(map.readFromBuffer(bad)) << bad;
    EXPECT_EQ(sink.take().size(), 1U) << bad;
  }
  EXPECT_TRUE(map == ZuDataMap::testObject());
}
