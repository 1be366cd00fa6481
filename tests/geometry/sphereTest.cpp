#include "tests/meshSamples.h"
#include "tests/randomSolids.h"

namespace {

ZuCoordinateSystemTransformation shift(double x) { return ZuCoordinateSystemTransformation(ZuVector(x, 0, 0)); }

ZuSphere ball(double x, double y, double z, double radius) { return ZuSphere(ZuVector(x, y, z), radius, 3); }

class Sphere : public SolidTest {};

}  // namespace

TEST_F(Sphere, TouchingCountsAsContactButHasZeroDistance) {
  ZuSphere const a = ball(0, 0, 0, 1), b = ball(0.5, 0, 0, 0.5);
  EXPECT_EQ(distance(a, b, shift(1)), 0.0);
  EXPECT_TRUE(touch(a, b, shift(1)));
  EXPECT_FALSE(touch(a, b, shift(std::nextafter(1.0, 2.0) + 1e-15)));
  ZuShape::KeyPairs pairs;
  a.checkIntersect(b, shift(1), m_Descriptor, m_State, &pairs);
  a.checkIntersect(b, shift(9), m_Descriptor, m_State, &pairs);
  ASSERT_EQ(pairs.size(), 1U);
  EXPECT_EQ(pairs[0].first, m_Descriptor.key1());
}

TEST_F(Sphere, ConcentricSpheresLeaveTheWitnessPointsAlone) {
  ZuVector w1(7, 8, 9), w2(1, 2, 3), direction(1, 1, 1);
  double d = 5.0;
  EXPECT_TRUE(
      ball(1, 2, 3, 2).computePenetrationDistanceAndSupportPoints(ball(1, 2, 3, 0.5), {}, w1, w2, d, direction));
  EXPECT_EQ(d, -2.5);
  EXPECT_TRUE(w1 == ZuVector(7, 8, 9) && w2 == ZuVector(1, 2, 3) && direction == ZuVector());
}

TEST_F(Sphere, PairsThatItDoesNotAnswerPrintBothTypesAndAreNeutral) {
  for (int type = ZuShape::CAPSULE; type <= ZuShape::EXTENT_INTERSECTION; ++type)
    expectUnanswered("ZuSphere", ball(0, 0, 0, 1), type);
}

TEST_F(Sphere, AMeshThatJustTouchesDoesNotIntersectAndOneAroundItDoes) {
  for (bool const isConvex : {true, false}) {
    ZuTriPhysicalExtent mesh = triangleCube();
    mesh.setIsConvex(isConvex);
    EXPECT_FALSE(touch(ball(0, 0, 0, 1), mesh, shift(2)));
    EXPECT_TRUE(touch(ball(0, 0, 0, 1.0000001), mesh, shift(2)));
    EXPECT_TRUE(touch(ball(2, 0, 0, 0.01), mesh, shift(2))) << "a small ball inside";
    EXPECT_TRUE(touch(ball(0, 0, 0, 1), mesh, shift(1.999)));
  }
}

TEST_F(Sphere, PointsAndSegmentsAreMeasuredFromTheSurface) {
  ZuSphere const s = ball(1, 0, 0, 2);
  for (auto const& [point, distance, touches, contained] :
       std::vector<std::tuple<ZuVector, double, bool, bool>>{{{1, 0, 0}, -2.0, true, true},
                                                             {{3, 0, 0}, 0.0, true, true},
                                                             {{3 + 5e-13, 0, 0}, 5e-13, false, true},
                                                             {{1, 3, 4}, 3.0, false, false}}) {
    ZuLineSegment const needle(point, point);
    EXPECT_NEAR(s.distanceTo(point), distance, 1e-15);
    EXPECT_NEAR(s.distanceTo(needle), distance, 1e-15);
    EXPECT_TRUE(s.checkIntersect(point) == touches && s.checkIntersect(needle) == touches) << distance;
    EXPECT_EQ(s.contains(point), contained) << distance;
  }
  EXPECT_TRUE(s.contains(ball(2, 0, 0, 1)));
  EXPECT_FALSE(s.contains(ball(2, 0, 0, 1 + 1e-13))) << "no tolerance between spheres";
}

TEST_F(Sphere, DigitsOfHitsAreKeptFarFromASmallSphere) {
  ZuShapePointEvent event;
  ZuLineSegment const longSegment(ZuVector(-1e6, 0.0005, 0), ZuVector(1e6, 0.0005, 0));
  ASSERT_TRUE(ZuSphere::intersectSphereWithLineSegment(ZuVector(), 0.001, longSegment, event));
  EXPECT_NEAR(event.entry.point[0], -0.001 * std::sqrt(0.75), 1e-9);
  EXPECT_NEAR(event.exit.point[0], 0.001 * std::sqrt(0.75), 1e-9);
}

TEST_F(Sphere, SupportPointsAreExactAndTheZeroDirectionHasOne) {
  ZuSphere const s = ball(3, 4, 0, 2);
  EXPECT_TRUE(s.supportPoint(ZuVector(0, 0, -7)).approxEq(ZuVector(3, 4, -2), 1e-15));
  EXPECT_TRUE(s.supportPoint(ZuVector()).approxEq(ZuVector(4.2, 5.6, 0), 1e-15)) << "farthest from the origin";
  EXPECT_EQ(ball(0, 0, 0, 2).supportPoint(ZuVector()), ZuVector(0, 0, 2));
  EXPECT_TRUE(s.computeSupportPoint(ZuVector(1e-200, 0, 0)).approxEq(ZuVector(5, 4, 0), 1e-15));
}

TEST_F(Sphere, GrowingGivesTheSmallestBallAroundBoth) {
  TracedValues random(13);
  for (int i = 0; i < 500; ++i) {
    ZuSphere const a = randomBall(random), b = randomBall(random);
    ZuSphere both(a);
    both.expandSelfToInclude(b);
    double const between = a.center().distanceTo(b.center());
    EXPECT_NEAR(2 * both.radius(), std::max({2 * a.radius(), 2 * b.radius(), between + a.radius() + b.radius()}),
                1e-14);
    for (ZuSphere const* part : {&a, &b})
      EXPECT_LE(both.center().distanceTo(part->center()) + part->radius(), both.radius() + 1e-14);
  }
}

TEST_F(Sphere, FitsToPointsCapsulesAndMeshes) {
  ZuSphere s = ball(9, 9, 9, 9);
  s.fitToPoints(ZuXmlVectorVector({{1, 2, 3}}));
  EXPECT_EQ(s, ball(1, 2, 3, 0));
  s.fitToPoints(ZuXmlVectorVector({{0, 0, 0}, {2, 0, 0}, {1, 0.5, 0}}));
  EXPECT_EQ(s, ball(1, 0, 0, 1));
  s.fitFromShape(ZuCapsule(ZuLineSegment(ZuVector(-2, 1, 0), ZuVector(2, 1, 0)), 1.0));
  EXPECT_EQ(s, ball(0, 1, 0, 2)) << "half the segment, not the capsule's reach";
  s.fitFromShape(triangleCube());
  EXPECT_LE(mostOutside(s, ZuXmlVectorVector(cubePoints())), 1e-14);
  ZuSphere const before = s;
  PrintSink sink;
  s.fitToPoints(ZuXmlVectorVector());
  EXPECT_EQ(sink.take().size(), 1U);
  EXPECT_EQ(s, before);
}

TEST_F(Sphere, TessellationsCloseFaceOutwardAndConverge) {
  ZuSphere s = ball(1, 2, 3, 0.5);
  checkTessellations(s);
  s.setDetailLevel(2);
  s.setSurfaceProperty("Skin");
  EXPECT_EQ(s.physicalExtent().points().size(), 162U);
  EXPECT_EQ(s.physicalExtent().getGroupSurfaceKey(0), "Skin");
  s.setDetailLevel(4000000000U);
  s.setBVHLevel(1);
  s.setRadius(1.0);
  EXPECT_EQ(s.physicalExtent().totalNumberOfFacets(), 327680U) << "bounded";
  EXPECT_EQ(s.physicalExtent().getGroupSurfaceKey(0), "Bounding");
  EXPECT_NEAR(s.volume(), 4.0 / 3.0 * M_PI, 1e-14);
}
