#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <vector>

#include "geometry/zuGjkTriangle.h"

TEST(GjkTriangle, EveryFieldCountsInEqualityAndResetClearsIt) {
  std::vector<std::function<void(ZuGJKTriangle&)>> const changes = {
      [](ZuGJKTriangle& t) { t.setVertexIndex(0, 7); },
      [](ZuGJKTriangle& t) { t.setVertexIndex(1, -7); },
      [](ZuGJKTriangle& t) { t.setVertexIndex(2, 7); },
      [](ZuGJKTriangle& t) { t.setFlag(0, true); },
      [](ZuGJKTriangle& t) { t.setFlag(1, true); },
      [](ZuGJKTriangle& t) { t.setFlag(2, true); },
      [](ZuGJKTriangle& t) { t.setClosestPoint(ZuVector(0, 0, 1e-300)); },
      [](ZuGJKTriangle& t) { t.setDistance(-1e-300); },
      [](ZuGJKTriangle& t) { t.setBarycentric(ZuVector(0, 1, 0)); },
      [](ZuGJKTriangle& t) { t.setValid(0); }};
  ZuGJKTriangle const fresh;
  EXPECT_EQ(fresh.valid(), 1);
  for (std::size_t i = 0; i < changes.size(); ++i) {
    ZuGJKTriangle changed;
    changes[i](changed);
    EXPECT_FALSE(changed == fresh) << "change " << i;
    EXPECT_TRUE(ZuGJKTriangle(changed) == changed) << "change " << i;
    changed.reset();
    EXPECT_TRUE(changed == fresh) << "change " << i;
  }
}

TEST(GjkTriangle, DistancesOfWhichNeitherIsLessAreEqual) {
  ZuGJKTriangle a(1, 2, 3), b(1, 2, 3);
  a.setDistance(std::numeric_limits<double>::quiet_NaN());
  b.setDistance(4.0);
  EXPECT_TRUE(a == b);
}

TEST(GjkTriangle, APositionThatDoesNotExistReadsZeroAndIsNotWritten) {
  ZuGJKTriangle t(1, 2, 3);
  t.setVertexIndex(3, 9);
  t.setFlag(3, true);
  EXPECT_EQ(t.vertexIndex(3), 0);
  EXPECT_FALSE(t.flag(3));
  EXPECT_TRUE(t == ZuGJKTriangle(1, 2, 3));
}
