#include "geometry/zuCapsule.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "geometry/zuAxisAlignedBoundingBox.h"
#include "geometry/zuPolyPhysicalExtent.h"
#include "geometry/zuShapePointEvent.h"
#include "geometry/zuSphere.h"
#include "tests/extentChecks.h"
#include "tests/minimumNorm.h"
#include "tests/objReader.h"
#include "tests/proximityFixture.h"
#include "tests/randomValues.h"
#include "tests/valuePrinters.h"

namespace {

ZuCapsule capsule(ZuVector const& end0, ZuVector const& end1, double radius) {
  return ZuCapsule(ZuLineSegment(end0, end1), radius);
}

/// Of any slenderness; one in eight is a ball.
ZuCapsule randomCapsule(RandomValues& random) {
  ZuVector const end = random.vector(0.8);
  ZuVector const delta = random.index(8) == 0 ? ZuVector() : random.vector(random.scale(0.01, 3.0));
  return capsule(end, end + delta, random.real(0.0, 0.8));
}

ZuVector randomPointOf(RandomValues& random, ZuCapsule const& c) {
  ZuVector point;
  c.lineSegment().computePointOnLineSegment(random.real(-0.3, 1.3), point);
  return point + random.direction() * c.radius() * std::cbrt(random.real(0.0, 1.0));
}

double leastCoreDistance(ZuLineSegment const& a, ZuLineSegment const& b) {
  return MinimumNorm::distance({a.endpoint0(), a.endpoint1()}, {b.endpoint0(), b.endpoint1()});
}

double mostOutside(ZuCapsule const& c, ZuXmlVectorVector const& points) {
  double most = -std::numeric_limits<double>::infinity();
  for (ZuVector const& p : points) most = std::max(most, c.distanceTo(p));
  return most;
}

class Capsule : public ProximityTest {};

}  // namespace

TEST_F(Capsule, DistancesToSpheresAndCapsulesAreThoseOfTheCoresMinusTheRadii) {
  RandomValues random(31);
  SCOPED_TRACE(random.trace());
  int overlapping = 0;
  for (int i = 0; i < 2000; ++i) {
    ZuCapsule const a = randomCapsule(random), b = randomCapsule(random);
    ZuCoordinateSystemTransformation const x = random.transformation(0.8);
    double const d = leastCoreDistance(a.lineSegment(), x * b.lineSegment()) - a.radius() - b.radius();
    EXPECT_NEAR(distance(a, b, x), std::max(d, -std::max(a.radius(), b.radius())), 1e-12);
    overlapping += d < 0.0;
    ZuSphere const ball(b.lineSegment().endpoint0(), b.radius(), 3);
    EXPECT_NEAR(distance(a, ball, x), a.distanceTo(x * ball.center()) - ball.radius(), 1e-14);
    EXPECT_NEAR(a.distanceTo(x * b.lineSegment()), d + b.radius(), 1e-12);
  }
  EXPECT_TRUE(overlapping > 400 && overlapping < 1600) << overlapping;
  // The depth of two capsules is bounded by the larger radius, that of a sphere is not.
  ZuCapsule const thin = capsule({0, 0, 0}, {0, 0, 4}, 1), thick = capsule({0, 0, 0}, {0, 0, 4}, 2);
  EXPECT_TRUE(distance(thin, thick, {}) == -2.0 && distance(thick, thin, {}) == -2.0);
  EXPECT_EQ(distance(thin, ZuSphere(ZuVector(0, 0, 1), 2, 3), {}), -3.0);
  EXPECT_EQ(thin.distanceTo(ZuVector(0, 0, 3)), -1.0);
}

TEST_F(Capsule, WitnessPointsLieInBothSolidsAndAreApartByTheDistance) {
  RandomValues random(32);
  SCOPED_TRACE(random.trace());
  int bounded = 0;
  for (int i = 0; i < 2000; ++i) {
    ZuCapsule const a = randomCapsule(random), b = randomCapsule(random);
    ZuCoordinateSystemTransformation const x = random.transformation(i % 2 == 0 ? 0.8 : 0.2);
    ZuVector w1, w2, u1, u2, direction;
    double const d = witness(a, b, x, w1, w2);
    ASSERT_NEAR(d, distance(a, b, x), 1e-13);
    ASSERT_NEAR((x * w2 - w1).mag(), std::abs(d), 1e-13);
    bool const isBounded = d == -std::max(a.radius(), b.radius());
    bounded += isBounded;
    for (double const outside : {a.distanceTo(w1), b.distanceTo(w2)})
      ASSERT_TRUE(outside <= 1e-13 && (isBounded || outside >= -1e-13)) << outside;
    ASSERT_NEAR(witness(b, a, x.inverse(), u2, u1), d, 1e-13);
    ASSERT_TRUE(u1.approxEq(w1, 1e-11) && u2.approxEq(w2, 1e-11));
    double d2 = 0.0;
    ASSERT_EQ(a.computePenetrationDistanceAndSupportPoints(b, x, u1, u2, d2, direction), d <= 0.0);
    ASSERT_EQ(d2, d);
    ASSERT_TRUE((w1 + direction * d).approxEq(x * w2, 1e-13));
  }
  EXPECT_TRUE(bounded > 20 && bounded < 1000) << bounded;
}

TEST_F(Capsule, CoresThatMeetAreSeparatedAlongTheirCommonPerpendicular) {
  struct {
    ZuVector delta1, delta2;
  } const theCases[] = {{{2, 1, 0}, {-1, 3, 0.5}}, {{1, 2, 3}, {2, 4, 6}}, {{1, 2, 3}, {}}, {{}, {0, 1, 1}}, {{}, {}}};
  ZuVector const meeting(0.3, 0.7, -0.1);
  for (auto const& c : theCases) {
    ZuCapsule const a = capsule(meeting - c.delta1 * 0.4, meeting + c.delta1 * 0.6, 0.5);
    ZuCapsule const b = capsule(meeting - c.delta2 * 0.7, meeting + c.delta2 * 0.3, 0.5);
    ZuVector w1, w2, n;
    double d = 0.0;
    EXPECT_TRUE(a.computeDistanceAndWitnessPoints(b, {}, false, w1, w2, d, n));
    EXPECT_EQ(d, -0.5);
    EXPECT_NEAR(n.mag(), 1.0, 1e-15);
    EXPECT_NEAR(std::abs(n.dot(c.delta1)) + std::abs(n.dot(c.delta2)), 0.0, 1e-14);
    EXPECT_NEAR((w1 - w2).mag(), 0.5, 1e-15);
  }
}

TEST_F(Capsule, ContactsTakeTheOtherShapeAsItStands) {
  ZuCapsule const a = capsule({0, 0, 0}, {0, 0, 4}, 1);
  ZuCapsule const touching = capsule({2, 0, 1}, {5, 0, 1}, 1);
  ZuSphere const ball(ZuVector(0, 3, 4), 2, 3);
  ZuPolyPhysicalExtent const& mesh = static_cast<ZuPolyPhysicalExtent const&>(touching.physicalExtent());
  ZuCoordinateSystemTransformation const far(ZuVector(100, 0, 0));
  for (ZuShape const* other : std::vector<ZuShape const*>{&touching, &ball}) {
    EXPECT_TRUE(touch(a, *other, far));
    EXPECT_GT(distance(a, *other, far), 90.0);
    EXPECT_FALSE(touch(capsule({0, 0, 0}, {0, 0, 4}, 1 - 1e-12), *other, {}));
  }
  EXPECT_TRUE(touch(capsule({0, 0, 0}, {0, 0, 4}, 1 + 1e-12), mesh, far));
  EXPECT_FALSE(touch(capsule({0, 0, 0}, {0, 0, 4}, 0.99), mesh, far));
  ZuShape::KeyPairs pairs;
  a.checkIntersect(ball, far, m_Descriptor, m_State, &pairs);
  ASSERT_EQ(pairs.size(), 1U);
  EXPECT_EQ(pairs[0].second, m_Descriptor.key2());
}

TEST_F(Capsule, PairsThatItDoesNotAnswerPrintBothTypesAndAreNeutral) {
  struct Other : ZuCapsule {
    explicit Other(int type) : m_Type(static_cast<ZuShapeValues>(type)) {}
    ZuShapeValues type() const override { return m_Type; }
    ZuShapeValues m_Type;
  };
  ZuCapsule a = capsule({0, 0, 0}, {0, 0, 4}, 1);
  ZuVector w1(1, 2, 3), w2, direction;
  double d = 7.0;
  for (int type = ZuShape::ELLIPSOID; type <= ZuShape::EXTENT_INTERSECTION; ++type) {
    Other const other(type);
    PrintSink sink;
    EXPECT_EQ(distance(a, other, {}), 0.0);
    EXPECT_FALSE(touch(a, other, {}) || witness(a, other, {}, w1, w2) != 0.0);
    EXPECT_FALSE(a.computeDistanceAndWitnessPoints(other, {}, false, w1, w2, d, direction));
    std::string const pair = " from shapeID (4) to shapeID (" + std::to_string(type) + ") not supported";
    EXPECT_EQ(sink.take(), (std::vector<std::string>{"ZuCapsule::distanceTo-->Distance" + pair,
                                                     "ZuCapsule::checkIntersect-->Check" + pair,
                                                     "ZuCapsule::distanceAndWitnessPointsTo-->Distance" + pair}));
  }
  PrintSink sink;
  a.fitFromShape(Other(ZuShape::HALF_SPACE));
  EXPECT_EQ(sink.take(),
            std::vector<std::string>{"ZuCapsule::fitFromShape-->expand from shapeID (4) to shapeID (9) not supported"});
  EXPECT_TRUE(w1 == ZuVector(1, 2, 3) && d == 7.0 && a == capsule({0, 0, 0}, {0, 0, 4}, 1));
}

TEST_F(Capsule, SupportPointIsTheFartherEndMovedByTheRadius) {
  ZuCapsule const c = capsule({1, 0, 0}, {3, 0, 0}, 0.5);
  struct {
    ZuVector direction, expected;
  } const theCases[] = {{{2, 0, 0}, {3.5, 0, 0}},   {{-1e-310, 0, 0}, {0.5, 0, 0}}, {{0, 0, 7}, {1, 0, 0.5}},
                        {{0, 0, 0}, {1, 0, 0}},     {{-0.0, 0, 0}, {1, 0, 0}},      {{0, 1e300, 0}, {1, 0.5, 0}},
                        {{3, 4, 0}, {3.3, 0.4, 0}}, {{-3, 4, 0}, {0.7, 0.4, 0}}};
  for (auto const& k : theCases) {
    EXPECT_TRUE(c.supportPoint(k.direction).approxEq(k.expected, 1e-15)) << k.direction.x();
    EXPECT_EQ(c.computeSupportPoint(k.direction), c.supportPoint(k.direction));
  }
  PrintSink sink;
  EXPECT_EQ(c.supportPoint({std::nan(""), 0, 0}), ZuVector(1, 0, 0));
  EXPECT_EQ(sink.take(), std::vector<std::string>{"ZuCapsule support point calculation failed.\n"});
}

TEST_F(Capsule, SegmentsAreCutWhereTheyEnterAndLeave) {
  RandomValues random(33);
  SCOPED_TRACE(random.trace());
  int hits = 0;
  for (int i = 0; i < 3000; ++i) {
    ZuCapsule const c = randomCapsule(random);
    ZuLineSegment const s(random.vector(3.0), i % 3 == 0 ? randomPointOf(random, c) : random.vector(3.0));
    ZuShapePointEvent event;
    ASSERT_EQ(c.intersectLineSegment(s, event), c.checkIntersect(s));
    hits += event.hit;
    if (!event.hit) continue;
    EXPECT_EQ(event.startsInside, c.distanceTo(s.endpoint0()) < 0.0);
    EXPECT_EQ(event.endsInside, c.distanceTo(s.endpoint1()) < 0.0);
    for (auto const& [point, inside] : {std::pair(event.entry, event.startsInside), {event.exit, event.endsInside}}) {
      ASSERT_TRUE(point.point.approxEq(s.endpoint0() + point.t * s.delta(), 1e-14));
      EXPECT_NEAR(c.distanceTo(point.point), 0.0, inside ? 1.0 : 1e-12);
      ASSERT_NEAR(c.distanceTo(point.point + point.normal), inside ? c.distanceTo(point.point) : 1.0, 1e-10);
    }
    for (double t = 0.0625; t < 1.0; t += 0.0625) {
      double const d = c.distanceTo(s.endpoint0() + t * s.delta());
      bool const between = t > event.entry.t && t < event.exit.t;
      EXPECT_TRUE(std::abs(d) <= 1e-12 || (d < 0.0) == between) << t;
    }
  }
  EXPECT_TRUE(hits > 900 && hits < 2500) << hits;
}

TEST_F(Capsule, TouchingAndDegenerateSegmentsHitInOnePoint) {
  ZuCapsule const c = capsule({0, 0, 0}, {0, 0, 4}, 1);
  struct {
    ZuVector from, to;
    double entry, exit;
    ZuVector normal;
  } const theCases[] = {
      {{1, -2, 3}, {1, 2, 3}, 0.5, 0.5, {1, 0, 0}},            // touches the tube
      {{-1, 0, 5}, {3, 0, 5}, 0.25, 0.25, {0, 0, 1}},          // touches the end
      {{1, 0, -4}, {1, 0, 8}, 4.0 / 12, 8.0 / 12, {1, 0, 0}},  // along the tube
      {{0, 0, 5}, {0, 0, 5}, 0, 0, {0, 0, 1}},
  };
  ZuShapePointEvent event;
  for (auto const& k : theCases) {
    ASSERT_TRUE(c.intersectLineSegment(ZuLineSegment(k.from, k.to), event));
    EXPECT_NEAR(std::abs(event.entry.t - k.entry) + std::abs(event.exit.t - k.exit), 0.0, 1e-15);
    EXPECT_TRUE(event.entry.normal.approxEq(k.normal, 1e-15));
  }
  EXPECT_FALSE(c.intersectLineSegment(ZuLineSegment({1.0000001, -2, 3}, {1.0000001, 2, 3}), event));
  ZuCapsule const bare = capsule({0, 0, 0}, {0, 0, 4}, 0);
  ASSERT_TRUE(bare.intersectLineSegment(ZuLineSegment({-1, 0, 1}, {1, 0, 1}), event));
  EXPECT_TRUE(event.exit.t == 0.5 && event.entry.normal == ZuVector());
}

TEST_F(Capsule, FitsEncloseTheRealMeshesTightlyAndMoveWithThem) {
  RandomValues random(34);
  double sumOfRatios = 0.0;
  for (std::string const& name : realMeshes()) {
    ZuXmlVectorVector points(ObjMesh::read(sharedFile("data/objects/" + name)).points);
    if (points.empty()) GTEST_SKIP() << "no shared meshes";
    ZuTriPhysicalExtent hull;
    ASSERT_TRUE(hull.convexHull(points)) << name;
    ZuCapsule fit, movedFit;
    fit.fitToPoints(points);
    EXPECT_LE(mostOutside(fit, points), 1e-12) << name;
    sumOfRatios += fit.volume() / extentVolume(hull);
    if (points.size() > 2000) continue;
    ZuCoordinateSystemTransformation const x = random.transformation();
    for (ZuVector& p : points) p = x * p;
    movedFit.fitToPoints(points);
    EXPECT_NEAR(movedFit.volume() / fit.volume(), 1.0, 0.02) << name;
  }
  // 3.338 when this was written; a lasting search from many more starts reaches 3.334.
  EXPECT_LT(sumOfRatios / static_cast<double>(realMeshes().size()), 3.35);
}

TEST_F(Capsule, FitsRecoverACapsuleAndTakeDegenerateSets) {
  RandomValues random(35);
  SCOPED_TRACE(random.trace());
  ZuCapsule const original = capsule({1, 2, 3}, {3, -1, 2}, 0.7);
  ZuXmlVectorVector points;
  for (int i = 0; i < 5000; ++i) points.pushBack(original.supportPoint(random.direction()));
  ZuCapsule fit;
  fit.fitToPoints(points);
  EXPECT_NEAR(fit.volume() / original.volume(), 1.0, 1e-2);
  struct {
    std::vector<ZuVector> points;
    double length, radius;
  } const theCases[] = {{{{1, 2, 3}}, 0, 0},
                        {{{1, 2, 3}, {1, 2, 3}, {1, 2, 3}}, 0, 0},
                        {{{1, 2, 3}, {2, 4, 6}, {4, 8, 12}}, 3 * std::sqrt(14.0), 0},
                        {{{0, 0, 0}, {0, 0, 10}, {0, 1, 5}}, 9.9, 0.5}};
  for (auto const& k : theCases) {
    ZuXmlVectorVector const list(k.points);
    fit.fitToPoints(list);
    EXPECT_NEAR(fit.lineSegment().length(), k.length, 0.5 * k.radius + 1e-7);
    EXPECT_NEAR(fit.radius(), k.radius, 0.1 * k.radius + 1e-7);
    EXPECT_LE(mostOutside(fit, list), 1e-14);
  }
  for (ZuXmlVectorVector const& bad : {ZuXmlVectorVector(), ZuXmlVectorVector({{0, 0, HUGE_VAL}})}) {
    ZuCapsule untouched = original;
    PrintSink sink;
    untouched.fitToPoints(bad);
    EXPECT_EQ(sink.messages().size(), 1U);
    EXPECT_EQ(untouched, original);
  }
}

TEST_F(Capsule, ExpandingKeepsWhatWasInsideAndTakesInTheRest) {
  RandomValues random(36);
  SCOPED_TRACE(random.trace());
  for (int i = 0; i < 500; ++i) {
    ZuCapsule const before = randomCapsule(random), other = randomCapsule(random);
    ZuCapsule grown = before, grownForPoints = before;
    bool const hasGrown = grown.expandToInclude(other);
    EXPECT_EQ(hasGrown, grown.radius() > before.radius());
    EXPECT_EQ(grown.lineSegment(), before.lineSegment());
    ZuXmlVectorVector points;
    for (int k = 0; k < 20; ++k) points.pushBack(random.vector(2.0));
    EXPECT_EQ(grownForPoints.expandToInclude(points), mostOutside(before, points) > 0.0);
    EXPECT_LE(mostOutside(grownForPoints, points), 1e-13);
    for (int k = 0; k < 50; ++k) {
      ZuVector const direction = random.direction();
      EXPECT_LE(grown.distanceTo(other.supportPoint(direction)), 1e-13);
      EXPECT_LE(grownForPoints.distanceTo(before.supportPoint(direction)), 1e-13);
    }
    EXPECT_FALSE(grown.expandToInclude(ZuCapsule(other.lineSegment(), other.radius() - 1e-12)));
  }
  ZuCapsule longer = capsule({0, 0, 0}, {0, 0, 4}, 1);
  EXPECT_FALSE(longer.expandToInclude(ZuXmlVectorVector({{1, 0, 2}, {0, 0, 5}})));
  EXPECT_TRUE(longer.expandToInclude(ZuXmlVectorVector({{0, 0, 9}})));
  EXPECT_EQ(longer, capsule({0, 0, 0}, {0, 0, 8}, 1));
}

TEST_F(Capsule, MovingScalingAndVolumeAgree) {
  RandomValues random(37);
  for (int i = 0; i < 50; ++i) {
    ZuCapsule const c = randomCapsule(random);
    ZuCoordinateSystemTransformation const x = random.transformation();
    double const factor = random.real(-3.0, 3.0);
    ZuCapsule moved = c, scaled = c;
    moved.transformBy(x);
    scaled.scaleBy(factor);
    ZuVector const p = random.vector(3.0);
    EXPECT_NEAR(moved.distanceTo(x * p), c.distanceTo(p), 1e-14);
    EXPECT_NEAR(scaled.distanceTo(factor * p), std::abs(factor) * c.distanceTo(p), 1e-13);
    EXPECT_NEAR(scaled.volume(), std::abs(factor * factor * factor) * c.volume(), 1e-12);
    ZuAxisAlignedBoundingBox box(-9.0, 9.0, -9.0, 9.0, -9.0, 9.0);
    box.resize(c);
    for (unsigned int axis = 0; axis < 3; ++axis) {
      ZuVector direction;
      direction[axis] = 2.0;
      EXPECT_NEAR(box.maxCorner()[axis], c.supportPoint(direction)[axis], 1e-15);
      EXPECT_NEAR(box.minCorner()[axis], c.supportPoint(-direction)[axis], 1e-15);
    }
  }
  EXPECT_NEAR(capsule({0, 0, 0}, {0, 0, 3}, 2).volume(), 12 * M_PI + 32 * M_PI / 3, 1e-13);
}

TEST_F(Capsule, TessellationsCloseFaceOutwardAndConverge) {
  for (ZuVector const& delta : {ZuVector(1, -2, 0.5), ZuVector()}) {
    ZuCapsule c = capsule({1, 2, 3}, ZuVector(1, 2, 3) + delta, 0.7);
    double missing = 0.0;
    for (unsigned int level = 0; level < 5; ++level) {
      c.setDetailLevel(level);
      c.setRadius(0.7);
      ZuBasePhysicalExtent const& extent = c.physicalExtent();
      EXPECT_EQ(&extent, &c.physicalExtent());
      EXPECT_TRUE(extent.isConvex() && facetsCloseAndAreConvex(extent));
      for (ZuVector const& p : extent.points()) ASSERT_NEAR(c.distanceTo(p), 0.0, 1e-14);
      double const lost = 1.0 - extentVolume(extent) / c.volume();
      EXPECT_TRUE(level < 2 || std::abs(missing / lost - 4.0) < 0.4) << missing / lost;
      missing = lost;
    }
    EXPECT_LT(missing, 0.01);
  }
}
