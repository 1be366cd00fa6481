#include <limits>

#include "geometry/zuAxisAlignedBoundingBox.h"
#include "tests/testValues.h"

namespace {

using Box = ZuAxisAlignedBoundingBox;

double constexpr theNan = std::numeric_limits<double>::quiet_NaN();

/// A box with corners on a coarse grid, so that touching faces are common.
Box gridBox(RandomValues& random) {
  auto const coordinate = [&random] { return static_cast<double>(random.index(6)); };
  double const x = coordinate(), y = coordinate(), z = coordinate();
  return {x, x + coordinate(), y, y + coordinate(), z, z + coordinate()};
}

/// Whether the boxes share a point of the grid in every coordinate, found by trying all.
bool shareAGridPoint(Box const& a, Box const& b) {
  bool shared[3] = {false, false, false};
  for (unsigned int axis = 0; axis < 3; ++axis)
    for (double x = 0; x < 12; ++x)
      shared[axis] |=
          a.minCorner()[axis] <= x && x <= a.maxCorner()[axis] && b.minCorner()[axis] <= x && x <= b.maxCorner()[axis];
  return shared[0] && shared[1] && shared[2];
}

}  // namespace

TEST(AxisAlignedBoundingBox, BoxesIntersectWhenTheyShareAPointAndThenOnEveryAxis) {
  TracedValues random(421);
  int shared = 0;
  for (int i = 0; i < 500; ++i) {
    Box const a = gridBox(random), b = gridBox(random);
    bool const expected = shareAGridPoint(a, b);
    EXPECT_TRUE(a.testIntersection(b) == expected && b.testIntersection(a) == expected);
    EXPECT_EQ(a.hasXOverlap(b) && a.hasYOverlap(b) && a.hasZOverlap(b), expected);
    Box const beside(ZuVector(b.xMin(), a.yMin(), a.zMin()), ZuVector(b.xMax(), a.yMax(), a.zMax()));
    EXPECT_EQ(a.hasXOverlap(beside), a.testIntersection(beside));
    EXPECT_TRUE(a.hasYOverlap(beside) && a.hasZOverlap(beside));
    shared += expected;
  }
  EXPECT_TRUE(shared > 100 && shared < 400) << shared;
}

TEST(AxisAlignedBoundingBox, NanIntersectsEverythingButOverlapsNothing) {
  Box const broken({theNan, theNan, theNan}, {theNan, theNan, theNan}), box(0, 1, 0, 1, 0, 1);
  EXPECT_TRUE(broken.testIntersection(box) && box.testIntersection(broken));
  EXPECT_FALSE(broken.hasXOverlap(box) || broken.hasYOverlap(box) || broken.hasZOverlap(box));
  EXPECT_FALSE(box.hasXOverlap(broken) || box.hasYOverlap(broken) || box.hasZOverlap(broken));
  Box grown(box);
  grown.expandSelfToInclude(broken);
  EXPECT_EQ(grown, box);
}

TEST(AxisAlignedBoundingBox, FindIntersectionAndGrowingByNoBoxesHaveNoEffect) {
  Box box = Box::testObject();
  EXPECT_FALSE(Box(0, 1, 0, 1, 0, 1).findIntersection(Box(0, 1, 0, 1, 0, 1), box));
  box.expandSelfToInclude(Box::Boxes());
  box.resizeToVector(Box::Boxes());
  EXPECT_EQ(box, Box::testObject());
  EXPECT_EQ(Box(Box::Boxes()), Box());
}

TEST(AxisAlignedBoundingBox, GrowsToTheSmallestBoxAroundAll) {
  TracedValues random(422);
  for (unsigned int count = 1; count < 20; ++count) {
    Box::Boxes boxes;
    ZuVector minimum(1e9, 1e9, 1e9), maximum = -minimum;
    for (unsigned int i = 0; i < count; ++i) {
      ZuVector const corner = random.vector(5.0), opposite = corner + random.vector(2.0);
      boxes.pushBack(Box(corner, opposite));
      for (unsigned int axis = 0; axis < 3; ++axis) {
        minimum[axis] = std::min(minimum[axis], corner[axis]);
        maximum[axis] = std::max(maximum[axis], opposite[axis]);
      }
    }
    Box const expected(minimum, maximum);
    Box grown = boxes[0], grownOneByOne = boxes[0], resized = Box::testObject();
    grown.expandSelfToInclude(boxes);
    for (Box const& box : boxes) grownOneByOne.expandSelfToInclude(box);
    resized.resizeToVector(boxes);
    EXPECT_TRUE(grown == expected && grownOneByOne == expected && resized == expected && Box(boxes) == expected);
    Box& last = boxes[count - 1];
    last.resizeToVector(boxes);
    EXPECT_EQ(last, expected) << "a box of the vector itself";
  }
}

TEST(AxisAlignedBoundingBox, LongestAxisIsTheFirstOfTheLargestPositiveExtents) {
  struct Case {
    ZuVector extents;
    unsigned int axis;
  } const cases[] = {{{2, 2, 2}, 0},    {{1, 2, 2}, 1},     {{1, 2, 3}, 2}, {{3, 2, 3}, 0},     {{0, 0, 0}, 0},
                     {{-1, -1, -1}, 0}, {{-5, -1, 0.5}, 2}, {{0, 1, 0}, 1}, {{theNan, 1, 0}, 1}};
  for (Case const& c : cases) EXPECT_EQ(Box({-1, -1, -1}, ZuVector(-1, -1, -1) + c.extents).longestAxis(), c.axis);
}

TEST(AxisAlignedBoundingBox, Measures) {
  Box box(1, 3, -4, -1, 0, 0);
  EXPECT_EQ(box.midPoint(), ZuVector(2, -2.5, 0));
  EXPECT_EQ(box.errorMetric(), 3.0 * 4.0 * 1.0);
  box.enlarge(0.5);
  EXPECT_EQ(box, Box(0.75, 3.25, -4.25, -0.75, -0.25, 0.25));
  box.enlarge(-1.5);
  EXPECT_EQ(box, Box(1.5, 2.5, -3.5, -1.5, 0.5, -0.5));
  Box negativeZero(-0.0, -0.0, 0, 0, 0, 0);
  negativeZero.enlarge(0.0);
  EXPECT_TRUE(std::signbit(negativeZero.xMin()) && std::signbit(negativeZero.xMax()));
}

TEST(AxisAlignedBoundingBox, EveryCoordinateIsSetAlone) {
  Box box;
  box.setXMin(-1.0);
  box.setXMax(2.0);
  box.setYMin(-3.0);
  box.setYMax(5.0);
  box.setZMin(0.25);
  box.setZMax(7.5);
  EXPECT_EQ(box, Box::testObject());
  EXPECT_EQ(Box(box.xMin(), box.xMax(), box.yMin(), box.yMax(), box.zMin(), box.zMax()), box);
}
