#include "geometry/zuAxisAlignedBoundingBox.h"

#include "tests/testValues.h"

namespace {

using Box = ZuAxisAlignedBoundingBox;

double const theNan = std::nan("");

/// A box with corners on a coarse grid, so that touching faces are common.
Box gridBox(RandomValues& random) {
  ZuVector low, size;
  for (unsigned int axis = 0; axis < 3; ++axis) low[axis] = random.index(6), size[axis] = random.index(6);
  return {low, low + size};
}

/// Whether the boxes share a point of the grid in every coordinate, found by trying all.
bool shareAGridPoint(Box const& a, Box const& b) {
  unsigned int shared = 0;
  for (unsigned int axis = 0; axis < 3; ++axis) {
    auto const holds = [axis](Box const& c, double x) { return c.minCorner()[axis] <= x && x <= c.maxCorner()[axis]; };
    for (double x = 0; x < 12; ++x)
      if (holds(a, x) && holds(b, x)) shared |= 1U << axis;
  }
  return shared == 7;
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
    boxes[count - 1].resizeToVector(boxes);  // itself one of them
    for (Box const& result : {grown, grownOneByOne, resized, Box(boxes), boxes[count - 1]}) EXPECT_EQ(result, expected);
  }
  Box box = Box::testObject();
  box.expandSelfToInclude(Box::Boxes());
  box.resizeToVector(Box::Boxes());
  EXPECT_FALSE(Box(0, 1, 0, 1, 0, 1).findIntersection(Box(0, 1, 0, 1, 0, 1), box));
  EXPECT_EQ(box, Box::testObject()) << "neither no boxes nor findIntersection() has an effect";
  EXPECT_EQ(Box(Box::Boxes()), Box());
}

TEST(AxisAlignedBoundingBox, LongestAxisIsTheFirstOfTheLargestPositiveExtents) {
  std::pair<ZuVector, unsigned int> const cases[] = {{{2, 2, 2}, 0},     {{1, 2, 2}, 1}, {{1, 2, 3}, 2},
                                                     {{3, 2, 3}, 0},     {{0, 0, 0}, 0}, {{-1, -1, -1}, 0},
                                                     {{-5, -1, 0.5}, 2}, {{0, 1, 0}, 1}, {{theNan, 1, 0}, 1}};
  for (auto const& [extents, axis] : cases)
    EXPECT_EQ(Box({-1, -1, -1}, ZuVector(-1, -1, -1) + extents).longestAxis(), axis);
}

TEST(AxisAlignedBoundingBox, EveryCoordinateIsSetAloneAndCountsInTheMeasures) {
  Box box;
  box.setXMin(1.0);
  box.setXMax(3.0);
  box.setYMin(-4.0);
  box.setYMax(-1.0);
  box.setZMin(0.5);
  box.setZMax(0.5);
  EXPECT_EQ(box, Box(1, 3, -4, -1, 0.5, 0.5));
  EXPECT_EQ(Box(box.xMin(), box.xMax(), box.yMin(), box.yMax(), box.zMin(), box.zMax()), box);
  EXPECT_EQ(box.midPoint(), ZuVector(2, -2.5, 0.5));
  EXPECT_EQ(box.errorMetric(), 3.0 * 4.0 * 1.0);
  box.enlarge(0.5);
  EXPECT_EQ(box, Box(0.75, 3.25, -4.25, -0.75, 0.25, 0.75));
  box.enlarge(-1.5);
  EXPECT_EQ(box, Box(1.5, 2.5, -3.5, -1.5, 1, 0));
  Box negativeZero(-0.0, -0.0, 0, 0, 0, 0);
  negativeZero.enlarge(0.0);
  EXPECT_TRUE(std::signbit(negativeZero.xMin()) && std::signbit(negativeZero.xMax()));
}
