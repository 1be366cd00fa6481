#include "foundation/zuDataMap.h"

#include "tests/allocationCounter.h"
#include "tests/testValues.h"

TEST(DataMap, AValueIsFoundByNameAndKind) {
  ZuDataMap map = ZuDataMap::testObject();
  double real = -1.0;
  std::string text = "none";
  unsigned int count = 9;
  EXPECT_TRUE(map.lookup("friction", real) && map.lookup("material", text) && map.lookup("layers", count));
  EXPECT_FALSE(map.lookup("layers", real) || map.lookup("lustre", real));
  EXPECT_TRUE(real == 0.1 && text == "steel & rubber" && count == 3U);
  map.add("layers", 3.0);
  EXPECT_FALSE(map == ZuDataMap::testObject());
  EXPECT_TRUE(map.lookup("layers", real) && !map.lookup("layers", count) && map.size() == 3U);
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
