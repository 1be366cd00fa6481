#include "geometry/zuCapsule.h"

#include "geometry/zuAxisAlignedBoundingBox.h"
#include "tests/randomSolids.h"

namespace {

ZuCapsule capsule(ZuVector const& end0, ZuVector const& end1, double radius) {
  return ZuCapsule(ZuLineSegment(end0, end1), radius);
}

class Capsule : public SolidTest {};

}  // namespace

TEST_F(Capsule, TheDepthOfTwoIsBoundedByTheLargerRadiusAndThatOfASphereIsNot) {
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
  ZuCapsule const before = capsule({0, 0, 0}, {0, 0, 4}, 1);
  for (int type = ZuShape::ELLIPSOID; type <= ZuShape::EXTENT_INTERSECTION; ++type)
    expectUnanswered("ZuCapsule", before, type);
  ZuCapsule a = before;
  PrintSink sink;
  a.fitFromShape(Disguised<ZuCapsule>(ZuShape::HALF_SPACE));
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

TEST_F(Capsule, FitsAreTightRecoverACapsuleAndTakeDegenerateSets) {
  // 3.338 when this was written; a lasting search from many more starts reaches 3.334.
  checkFitsToRealMeshes<ZuCapsule>(3.35, 1e-12, 0.02);
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

TEST_F(Capsule, TheBoxAroundItTouchesItAndTheVolumeIsThatOfItsParts) {
  TracedValues random(37);
  for (int i = 0; i < 50; ++i) {
    ZuCapsule const c = randomCapsule(random);
    ZuAxisAlignedBoundingBox box(-9.0, 9.0, -9.0, 9.0, -9.0, 9.0);
    box.resize(c);
    for (ZuVector const& axis : {ZuVector(2, 0, 0), ZuVector(0, 2, 0), ZuVector(0, 0, 2)}) {
      EXPECT_NEAR(box.maxCorner().dot(axis), c.supportPoint(axis).dot(axis), 2e-15);
      EXPECT_NEAR(box.minCorner().dot(axis), c.supportPoint(-axis).dot(axis), 2e-15);
    }
  }
  EXPECT_NEAR(capsule({0, 0, 0}, {0, 0, 3}, 2).volume(), 12 * M_PI + 32 * M_PI / 3, 1e-13);
}
