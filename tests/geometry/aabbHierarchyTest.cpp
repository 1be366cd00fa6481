#include "geometry/zuAABBHierarchyGeneration.h"
#include "tests/convexOracle.h"
#include "tests/testValues.h"

namespace {

using Hierarchy = ZuAABBHierarchyGeneration;
using Box = Hierarchy::Box;

oracle::Points cornersOf(Box const& box) {
  oracle::Points corners;
  for (int i = 0; i < 8; ++i) {
    auto const side = [&](int axis) { return ((i >> axis) % 2 == 0 ? box.low : box.high)[axis]; };
    corners.push_back({side(0), side(1), side(2)});
  }
  return corners;
}

/// Boxes, segments and triangles of a small grid, flat, thin and touching ones among them, or of a wide range of sizes.
ZuVector anyPoint(RandomValues& random, bool onGrid) {
  if (!onGrid) return random.vector(random.scale(1e-3, 1.0));
  unsigned int const i = random.index(27);
  return {i % 3 * 0.1, i / 3 % 3 * 0.1, i / 9 * 0.1};
}

}  // namespace

TEST(AabbHierarchy, FindsTheNearestBoxWithFewLooks) {
  TracedValues random(401);
  std::vector<Box> boxes;
  for (int i = 0; i < 10000; ++i) {
    ZuVector const p = random.vector();
    boxes.push_back(Box::around(p, p + random.vector(0.02)));
  }
  Hierarchy hierarchy;
  hierarchy.build(boxes);
  ASSERT_TRUE(hierarchy.validate(boxes));
  std::size_t looks = 0;
  for (int i = 0; i < 60; ++i) {
    ZuVector const a = random.vector();
    Hierarchy::SegmentBound const segment(a, a + random.vector(random.scale(1e-3, 1.0)));
    auto const bound = [&segment](Box const& box) { return segment.distanceSquaredTo(box); };
    double expected = HUGE_VAL;
    for (Box const& box : boxes) expected = std::min(expected, bound(box));
    auto const look = [&](unsigned int place, double& best) {
      ++looks;
      best = std::min(best, bound(boxes[hierarchy.order()[place]]));
    };
    EXPECT_EQ(hierarchy.nearest(HUGE_VAL, bound, look), expected);
  }
  EXPECT_LT(looks, 60 * boxes.size() / 20);
}

TEST(AabbHierarchy, BoundsAreNeverTooLargeAndThatOfASegmentIsItsDistance) {
  TracedValues random(402);
  int contacts = 0;
  for (int i = 0; i < 4000; ++i) {
    bool const onGrid = i % 2 == 0;
    Box const box = Box::around(anyPoint(random, onGrid), anyPoint(random, onGrid));
    ZuVector const a = anyPoint(random, onGrid), b = anyPoint(random, onGrid);
    // Every other triangle is a needle, of which the normal is rounding.
    ZuVector const c = random.index(2) == 0 ? anyPoint(random, onGrid) : a + (b - a) * random.real() + b * 1e-16;
    Hierarchy::SegmentBound const segment(a, b);
    Hierarchy::TriangleBound const triangle(a, b, c);
    oracle::Points const ends = oracle::placed({a, b}, {}), corners = oracle::placed({a, b, c}, {});
    double const toSegment = oracle::distance(cornersOf(box), ends);
    double const toTriangle = oracle::distance(cornersOf(box), corners);
    ASSERT_NEAR(std::sqrt(segment.distanceSquaredTo(box)), toSegment, 1e-15) << i;
    ASSERT_TRUE(toSegment > 1e-15 || segment.mayMeet(box)) << i;
    ASSERT_LE(std::sqrt(triangle.distanceSquaredTo(box)), toTriangle + 1e-15) << i;
    ASSERT_TRUE(toTriangle > 1e-15 || triangle.mayMeet(box)) << i;
    contacts += toSegment <= 1e-15;
  }
  EXPECT_TRUE(contacts > 500 && contacts < 3500) << contacts;
}

TEST(AabbHierarchy, TakesAnyBoxesAndLeavesOutThoseThatAreNone) {
  Box const unit = Box::around(ZuVector(0, 0, 0), ZuVector(1, 1, 1));
  Box const bad[] = {
      Box::around(ZuVector(std::nan(""), 0, 0)), {ZuVector(0, -HUGE_VAL, 0), ZuVector()}, {unit.high, unit.low}};
  for (std::size_t numberOfBoxes : {0U, 1U, 2U, 3U, 5U, 1000U}) {
    std::vector<Box> boxes(numberOfBoxes, unit);
    boxes.insert(boxes.begin(), std::begin(bad), std::end(bad));
    Hierarchy hierarchy;
    hierarchy.build(boxes);
    EXPECT_TRUE(hierarchy.validate(boxes)) << numberOfBoxes;
    std::size_t visited = 0;
    EXPECT_FALSE(hierarchy.anyOf([](Box const&) { return true; }, [&](unsigned int) { return ++visited == 0; }));
    EXPECT_EQ(visited, numberOfBoxes);
  }
}

TEST(AabbHierarchy, RefitFollowsMovedFacetsAndRefusesOthers) {
  TracedValues random(403);
  std::vector<Box> boxes, moved;
  for (int i = 0; i < 300; ++i) {
    ZuVector const p = random.vector();
    boxes.push_back(Box::around(p, p + random.vector(0.1)));
    moved.push_back(Box::around(p + random.vector(0.5)));
  }
  Hierarchy hierarchy;
  hierarchy.build(boxes);
  EXPECT_FALSE(hierarchy.validate(moved));
  EXPECT_TRUE(hierarchy.refit(moved) && hierarchy.validate(moved));
  moved.push_back(boxes[0]);
  EXPECT_FALSE(hierarchy.refit(moved));
  moved.pop_back();
  moved[7] = Box::around(ZuVector(0, HUGE_VAL, 0));
  EXPECT_FALSE(hierarchy.refit(moved));
}
