#include <gtest/gtest.h>

#include <limits>

#include "geometry/zuGjkTriangle.h"

TEST(GjkTriangle, EveryFieldCountsInEqualityAndResetClearsIt) {
  ZuGJKTriangle const fresh;
  EXPECT_EQ(fresh.valid(), 1);
  for (unsigned int i = 0; i < 10; ++i) {
    ZuGJKTriangle t;
    if (i < 3) t.setVertexIndex(i, -7);
    if (i >= 3 && i < 6) t.setFlag(i - 3, true);
    if (i == 6) t.setClosestPoint(ZuVector(0, 0, 1e-300));
    if (i == 7) t.setDistance(-1e-300);
    if (i == 8) t.setBarycentric(ZuVector(0, 1, 0));
    if (i == 9) t.setValid(0);
    EXPECT_FALSE(t == fresh) << i;
    t.reset();
    EXPECT_TRUE(t == fresh) << i;
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
