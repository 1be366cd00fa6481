// The flat figures: rectangles and discs.
#include "geometry/zuRectangle.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "geometry/zuCircle.h"
#include "geometry/zuGeomTriangle.h"
#include "geometry/zuLineSegment.h"
#include "tests/minimumNorm.h"
#include "tests/testValues.h"

namespace {

/// One in four has lost one of its sides or both.
ZuRectangle randomRectangle(RandomValues& random) {
  unsigned int const flat = random.index(8);
  return ZuRectangle(random.vector(), flat == 0 ? ZuVector() : random.vector(),
                     flat <= 1 ? ZuVector() : random.vector());
}

std::vector<ZuVector> cornersOf(ZuRectangle const& r) { return {r.corner(0), r.corner(1), r.corner(2), r.corner(3)}; }
std::vector<ZuVector> endsOf(ZuLineSegment const& s) { return {s.endpoint0(), s.endpoint1()}; }

ZuLineSegment randomSegment(RandomValues& random) {
  ZuVector const end = random.vector(1.5);
  return ZuLineSegment(end, random.index(8) == 0 ? end : random.vector(1.5));
}

}  // namespace

TEST(Rectangle, DistancesAreThoseOfTheHullOfTheCorners) {
  TracedValues random(61);
  int crossing = 0;
  for (int i = 0; i < 400; ++i) {
    ZuRectangle const r = randomRectangle(random), other = randomRectangle(random);
    ZuLineSegment const s = randomSegment(random);
    ZuGeomTriangle const t(random.vector(1.5), random.vector(1.5), random.vector(1.5));
    ZuVector const p = random.vector(2.0);
    EXPECT_NEAR(r.distanceTo(p), MinimumNorm::distance(cornersOf(r), {p}), 1e-14);
    EXPECT_NEAR(r.distanceTo(t), MinimumNorm::distance(cornersOf(r), {t.point(0), t.point(1), t.point(2)}), 1e-14);
    EXPECT_NEAR(r.distanceTo(other), MinimumNorm::distance(cornersOf(r), cornersOf(other)), 1e-14);
    ZuVector onRectangle, onSegment;
    double const d = r.distanceTo(s, onRectangle, onSegment);
    EXPECT_NEAR(d, MinimumNorm::distance(cornersOf(r), endsOf(s)), 1e-14);
    EXPECT_EQ(d, r.distanceTo(s));
    EXPECT_NEAR(onRectangle.distanceTo(onSegment), d, 1e-15);
    EXPECT_NEAR(std::max(r.distanceTo(onRectangle), s.distanceTo(onSegment)), 0.0, 1e-15);
    crossing += d == 0.0;
  }
  EXPECT_TRUE(crossing > 20 && crossing < 380) << crossing;
}

TEST(Rectangle, CornersRunCounterClockwiseAboutTheNormal) {
  ZuRectangle const r({1, 2, 3}, {2, 0, 0}, {5, 1, 0});
  EXPECT_TRUE(r.halfEdge(1) == ZuVector(0, 1, 0) && r.normal() == ZuVector(0, 0, 1) && r.area() == 8.0);
  ZuVector const expected[] = {{3, 3, 3}, {-1, 3, 3}, {-1, 1, 3}, {3, 1, 3}};
  for (unsigned int i = 0; i < 4; ++i) {
    EXPECT_EQ(r.corner(i), expected[i]);
    EXPECT_EQ(r.side(i), ZuLineSegment(expected[i], expected[(i + 1) % 4]));
  }
  ZuCoordinateSystemTransformation const x = ZuCoordinateSystemTransformation::testObject();
  EXPECT_TRUE((x * r).corner(1).approxEq(x * expected[1], 1e-14));
  PrintSink sink;
  EXPECT_TRUE(r.corner(4) == expected[0] && r.halfEdge(2) == r.halfEdge(1) && r.side(7) == r.side(0));
  EXPECT_EQ(sink.take(),
            (Messages{"ZuRectangle::corner-->index 4 out of range", "ZuRectangle::halfEdge-->index 2 out of range",
                      "ZuRectangle::side-->index 7 out of range"}));
}

TEST(Rectangle, ObliqueHalfEdgesOfADocumentAreMadePerpendicular) {
  ZuRectangle r;
  ASSERT_TRUE(r.readFromBuffer("<r><halfEdge0>2 0 0</halfEdge0><halfEdge1>1 3 0</halfEdge1></r>"));
  EXPECT_EQ(r.halfEdge(1), ZuVector(0, 3, 0));
  ASSERT_TRUE(r.readFromBuffer("<r><halfEdge0>2 0 0</halfEdge0><halfEdge1>1e-7 3 0</halfEdge1></r>"));
  EXPECT_EQ(r.halfEdge(1), ZuVector(1e-7, 3, 0));
}

TEST(Circle, DistancesToPointsAreThoseOfTheDiscAndTheRim) {
  TracedValues random(62);
  for (int i = 0; i < 1000; ++i) {
    ZuCircle const c(random.vector(), random.direction(), random.real(0.0, 1.0));
    ZuVector const across = (c.closestPointOnRim(random.vector()) - c.center()).unitVector();
    double const rho = random.real(0.0, 2.0), height = random.real();
    ZuVector const p = c.center() + across * rho + c.normal() * height;
    EXPECT_NEAR(c.distanceTo(p), std::hypot(height, std::max(rho - c.radius(), 0.0)), 1e-14);
    EXPECT_NEAR(c.closestPointOnRim(p).distanceTo(p), std::hypot(height, rho - c.radius()), 1e-14);
  }
  ZuCircle const c({1, 2, 3}, {0, 0, 5}, 2);
  EXPECT_EQ(c.closestPoint({1, 2, 9}), ZuVector(1, 2, 3));
  EXPECT_EQ(c.closestPointOnRim({1, 2, 9}).distanceTo({1, 2, 3}), 2.0);
}

TEST(Circle, DistanceToASegmentIsLeastAtItsParameter) {
  TracedValues random(63);
  int crossing = 0, inner = 0;
  for (int i = 0; i < 2000; ++i) {
    ZuCircle const c(random.vector(), random.direction(), random.real(0.0, 1.0));
    ZuLineSegment const s = randomSegment(random);
    double t;
    ZuVector closest;
    double const d = c.distanceTo(s, t, closest);
    ASSERT_TRUE(t >= 0.0 && t <= 1.0);
    ZuVector const p = s.endpoint0() + t * s.delta();
    EXPECT_NEAR(std::abs(closest.distanceTo(p) - d) + c.distanceTo(closest), 0.0, 2e-15);
    crossing += d == 0.0;
    inner += d > 0.0 && t > 0.0 && t < 1.0;
    // Convex along the segment: no better than either neighbour, so no better than any.
    for (double const step : {-1e-3, 1e-3, -1e-6, 1e-6}) {
      double const u = std::clamp(t + step, 0.0, 1.0);
      EXPECT_GE(c.distanceTo(s.endpoint0() + u * s.delta()), d - 1e-15);
    }
  }
  EXPECT_GT(crossing, 100);
  EXPECT_GT(inner, 400);
}

TEST(Circle, ANormalWithoutDirectionIsRefused) {
  PrintSink sink;
  ZuCircle const c({1, 2, 3}, {0, 0, 0}, 2);
  EXPECT_EQ(sink.take(), Messages{"ZuCircle::setNormal-->no direction (0 0 0)"});
  EXPECT_EQ(c.normal(), ZuVector(0, 0, 1));
  ZuCircle read;
  ASSERT_TRUE(read.readFromBuffer("<c><normal>0 3 4</normal></c>"));
  EXPECT_TRUE(read.normal().approxEq({0, 0.6, 0.8}, 1e-15));
  ASSERT_TRUE(read.readFromBuffer("<c><normal>0 0 0</normal></c>"));
  EXPECT_EQ(read.normal(), ZuVector(0, 0, 1));
}
