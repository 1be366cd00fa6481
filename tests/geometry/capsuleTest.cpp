#include "geometry/zuCapsule.h"

#include "geometry/zuAxisAlignedBoundingBox.h"
#include "tests/meshSamples.h"
#include "tests/minimumNorm.h"
#include "tests/solidChecks.h"
#include "tests/testValues.h"

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

std::vector<ZuVector> endsOf(ZuLineSegment const& s) { return {s.endpoint0(), s.endpoint1()}; }

double mostOutside(ZuCapsule const& c, ZuXmlVectorVector const& points) {
  double most = -std::numeric_limits<double>::infinity();
  for (ZuVector const& p : points) most = std::max(most, c.distanceTo(p));
  return most;
}

class Capsule : public SolidTest {};

}  // namespace

TEST_F(Capsule, DistancesAreThoseOfTheCoresMinusTheRadiiAndWitnessPointsLieInBothSolids) {
  TracedValues random(31);
  int overlapping = 0, bounded = 0;
  for (int i = 0; i < 3000; ++i) {
    ZuCapsule const a = randomCapsule(random), b = randomCapsule(random);
    ZuCoordinateSystemTransformation const x = random.transformation(i % 2 == 0 ? 0.8 : 0.2);
    ZuLineSegment const &core = a.lineSegment(), other = x * b.lineSegment();
    double const apart = MinimumNorm::distance(endsOf(core), endsOf(other)) - a.radius() - b.radius();
    ZuVector w1, w2, u1, u2, direction;
    double const d = witness(a, b, x, w1, w2);
    ASSERT_NEAR(d, std::max(apart, -std::max(a.radius(), b.radius())), 1e-12);
    ASSERT_NEAR(d, distance(a, b, x), 1e-13);
    ASSERT_NEAR(a.distanceTo(other), apart + b.radius(), 1e-12);
    ZuSphere const ball(b.lineSegment().endpoint0(), b.radius(), 3);
    ASSERT_NEAR(distance(a, ball, x), a.distanceTo(x * ball.center()) - ball.radius(), 1e-14);
    bool const isBounded = d == -std::max(a.radius(), b.radius());
    ASSERT_NEAR((x * w2 - w1).mag(), std::abs(d), 1e-13);
    for (double const outside : {a.distanceTo(w1), b.distanceTo(w2)})
      ASSERT_TRUE(outside <= 1e-13 && (isBounded || outside >= -1e-13)) << outside;
    ASSERT_NEAR(witness(b, a, x.inverse(), u2, u1), d, 1e-13);
    ASSERT_TRUE(u1.approxEq(w1, 1e-11) && u2.approxEq(w2, 1e-11));
    double d2 = 0.0;
    ASSERT_EQ(a.computePenetrationDistanceAndSupportPoints(b, x, u1, u2, d2, direction), d <= 0.0);
    ASSERT_EQ(d2, d);
    ASSERT_TRUE((w1 + direction * d).approxEq(x * w2, 1e-13));
    overlapping += d < 0.0;
    bounded += isBounded;
  }
  EXPECT_TRUE(overlapping < 2500 && bounded > 30 && bounded < overlapping - 500) << overlapping << ' ' << bounded;
  // The depth of two capsules is bounded by the larger radius, that of a sphere is not.
  ZuCapsule const thin = capsule({0, 0, 0}, {0, 0, 4}, 1), thick = capsule({0, 0, 0}, {0, 0, 4}, 2);
  EXPECT_TRUE(distance(thin, thick, {}) == -2.0 && distance(thick, thin, {}) == -2.0);
  EXPECT_EQ(distance(thin, ZuSphere(ZuVector(0, 0, 1), 2, 3), {}), -3.0);
}

TEST_F(Capsule, CoresThatMeetAreSeparatedAlongTheirCommonPerpendicular) {
  ZuVector const meeting(0.3, 0.7, -0.1);
  std::pair<ZuVector, ZuVector> const theCases[] = {
      {{2, 1, 0}, {-1, 3, 0.5}}, {{1, 2, 3}, {2, 4, 6}}, {{1, 2, 3}, {}}, {{}, {0, 1, 1}}, {{}, {}}};
  for (auto const& [delta1, delta2] : theCases) {
    ZuCapsule const a = capsule(meeting - delta1 * 0.4, meeting + delta1 * 0.6, 0.5);
    ZuCapsule const b = capsule(meeting - delta2 * 0.7, meeting + delta2 * 0.3, 0.5);
    ZuVector w1, w2, n;
    double d = 0.0;
    EXPECT_TRUE(a.computeDistanceAndWitnessPoints(b, {}, false, w1, w2, d, n) && d == -0.5) << d;
    EXPECT_NEAR(n.mag(), 1.0, 1e-15);
    EXPECT_NEAR(std::abs(n.dot(delta1)) + std::abs(n.dot(delta2)), 0.0, 1e-14);
    EXPECT_NEAR((w1 - w2).mag(), 0.5, 1e-15);
  }
}

TEST_F(Capsule, ContactsTakeTheOtherShapeAsItStands) {
  auto const upright = [](double radius) { return capsule({0, 0, 0}, {0, 0, 4}, radius); };
  ZuCapsule const touching = capsule({2, 0, 1}, {5, 0, 1}, 1);
  ZuSphere const ball(ZuVector(0, 3, 4), 2, 3);
  ZuCoordinateSystemTransformation const far(ZuVector(100, 0, 0));
  for (ZuShape const* other : std::vector<ZuShape const*>{&touching, &ball}) {
    EXPECT_TRUE(touch(upright(1), *other, far) && distance(upright(1), *other, far) > 90.0);
    EXPECT_FALSE(touch(upright(1 - 1e-12), *other, {}));
  }
  EXPECT_TRUE(touch(upright(1 + 1e-12), touching.physicalExtent(), far));
  EXPECT_FALSE(touch(upright(0.99), touching.physicalExtent(), far));
  ZuShape::KeyPairs pairs;
  upright(1).checkIntersect(ball, far, m_Descriptor, m_State, &pairs);
  ASSERT_EQ(pairs.size(), 1U);
  EXPECT_EQ(pairs[0].second, m_Descriptor.key2());
}

TEST_F(Capsule, PairsThatItDoesNotAnswerPrintBothTypesAndAreNeutral) {
  struct : ZuCapsule {
    ZuShapeValues type() const override { return HALF_SPACE; }
  } const other;
  ZuCapsule const before = capsule({0, 0, 0}, {0, 0, 4}, 1);
  for (int type = ZuShape::ELLIPSOID; type <= ZuShape::EXTENT_INTERSECTION; ++type)
    expectUnanswered("ZuCapsule", before, type);
  ZuCapsule a = before;
  PrintSink sink;
  a.fitFromShape(other);
  EXPECT_EQ(sink.take(), Messages{"ZuCapsule::fitFromShape-->expand from shapeID (4) to shapeID (9) not supported"});
  EXPECT_EQ(a, before);
}

TEST_F(Capsule, SupportPointIsTheFartherEndMovedByTheRadius) {
  ZuCapsule const c = capsule({1, 0, 0}, {3, 0, 0}, 0.5);
  std::pair<ZuVector, ZuVector> const theCases[] = {{{2, 0, 0}, {3.5, 0, 0}},   {{-1e-310, 0, 0}, {0.5, 0, 0}},
                                                    {{0, 0, 7}, {1, 0, 0.5}},   {{0, 0, 0}, {1, 0, 0}},
                                                    {{-0.0, 0, 0}, {1, 0, 0}},  {{0, 1e300, 0}, {1, 0.5, 0}},
                                                    {{3, 4, 0}, {3.3, 0.4, 0}}, {{-3, 4, 0}, {0.7, 0.4, 0}}};
  for (auto const& [direction, expected] : theCases) {
    EXPECT_TRUE(c.supportPoint(direction).approxEq(expected, 1e-15)) << direction.x();
    EXPECT_EQ(c.computeSupportPoint(direction), c.supportPoint(direction));
  }
  PrintSink sink;
  EXPECT_EQ(c.supportPoint({std::nan(""), 0, 0}), ZuVector(1, 0, 0));
  EXPECT_EQ(sink.take(), Messages{"ZuCapsule support point calculation failed.\n"});
}

TEST_F(Capsule, SegmentsAreCutWhereTheyEnterAndLeave) {
  TracedValues random(33);
  int hits = 0;
  for (int i = 0; i < 3000; ++i) {
    ZuCapsule const c = randomCapsule(random);
    hits += checkSegment(c, {random.vector(3.0), i % 3 == 0 ? randomPointOf(random, c) : random.vector(3.0)});
  }
  EXPECT_TRUE(hits > 900 && hits < 2500) << hits;
}

TEST_F(Capsule, TouchingAndDegenerateSegmentsHitInOnePoint) {
  ZuCapsule const c = capsule({0, 0, 0}, {0, 0, 4}, 1);
  ZuShapePointEvent event;
  std::tuple<ZuVector, ZuVector, double, double, ZuVector> const theCases[] = {
      {{1, -2, 3}, {1, 2, 3}, 0.5, 0.5, {1, 0, 0}},            // touches the tube
      {{-1, 0, 5}, {3, 0, 5}, 0.25, 0.25, {0, 0, 1}},          // touches the end
      {{1, 0, -4}, {1, 0, 8}, 4.0 / 12, 8.0 / 12, {1, 0, 0}},  // along the tube
      {{0, 0, 5}, {0, 0, 5}, 0, 0, {0, 0, 1}}};
  for (auto const& [from, to, entry, exit, normal] : theCases) {
    ASSERT_TRUE(c.intersectLineSegment(ZuLineSegment(from, to), event));
    EXPECT_NEAR(std::abs(event.entry.t - entry) + std::abs(event.exit.t - exit), 0.0, 1e-15);
    EXPECT_TRUE(event.entry.normal.approxEq(normal, 1e-15));
  }
  EXPECT_FALSE(c.intersectLineSegment(ZuLineSegment({1.0000001, -2, 3}, {1.0000001, 2, 3}), event));
  ZuCapsule const bare = capsule({0, 0, 0}, {0, 0, 4}, 0);
  ASSERT_TRUE(bare.intersectLineSegment(ZuLineSegment({-1, 0, 1}, {1, 0, 1}), event));
  EXPECT_TRUE(event.exit.t == 0.5 && event.entry.normal == ZuVector());
}

TEST_F(Capsule, FitsEncloseTheRealMeshesTightlyAndMoveWithThem) {
  TracedValues random(34);
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
  TracedValues random(35);
  ZuCapsule const original = capsule({1, 2, 3}, {3, -1, 2}, 0.7);
  ZuXmlVectorVector points;
  for (int i = 0; i < 5000; ++i) points.pushBack(original.supportPoint(random.direction()));
  ZuCapsule fit;
  fit.fitToPoints(points);
  EXPECT_NEAR(fit.volume() / original.volume(), 1.0, 1e-2);
  for (auto const& [corners, length, radius] : std::vector<std::tuple<std::vector<ZuVector>, double, double>>{
           {{{1, 2, 3}}, 0, 0},
           {{{1, 2, 3}, {1, 2, 3}, {1, 2, 3}}, 0, 0},
           {{{1, 2, 3}, {2, 4, 6}, {4, 8, 12}}, 3 * std::sqrt(14.0), 0},
           {{{0, 0, 0}, {0, 0, 10}, {0, 1, 5}}, 9.9, 0.5}}) {
    ZuXmlVectorVector const list(corners);
    fit.fitToPoints(list);
    EXPECT_NEAR(fit.lineSegment().length(), length, 0.5 * radius + 1e-7);
    EXPECT_NEAR(fit.radius(), radius, 0.1 * radius + 1e-7);
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
  TracedValues random(36);
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
  TracedValues random(37);
  for (int i = 0; i < 50; ++i) {
    ZuCapsule const c = randomCapsule(random);
    checkMovesAndScales(c, random);
    ZuCapsule mirrored = c;
    mirrored.scaleBy(-2.0);
    ZuVector const p = random.vector(3.0);
    EXPECT_NEAR(mirrored.distanceTo(p * -2.0), c.distanceTo(p) * 2.0, 1e-13);
    ZuAxisAlignedBoundingBox box(-9.0, 9.0, -9.0, 9.0, -9.0, 9.0);
    box.resize(c);
    for (ZuVector const& axis : {ZuVector(2, 0, 0), ZuVector(0, 2, 0), ZuVector(0, 0, 2)}) {
      EXPECT_NEAR(box.maxCorner().dot(axis), c.supportPoint(axis).dot(axis), 2e-15);
      EXPECT_NEAR(box.minCorner().dot(axis), c.supportPoint(-axis).dot(axis), 2e-15);
    }
  }
  EXPECT_NEAR(capsule({0, 0, 0}, {0, 0, 3}, 2).volume(), 12 * M_PI + 32 * M_PI / 3, 1e-13);
}

TEST_F(Capsule, TessellationsCloseFaceOutwardAndConverge) {
  for (ZuVector const& delta : {ZuVector(1, -2, 0.5), ZuVector()})
    checkTessellations(capsule({1, 2, 3}, ZuVector(1, 2, 3) + delta, 0.7));
}
