#include "geometry/zuSphere.h"

#include <cmath>

#include "geometry/zuCapsule.h"
#include "geometry/zuLineSegment.h"
#include "geometry/zuPlane.h"
#include "geometry/zuPolyPhysicalExtent.h"
#include "geometry/zuShapePointEvent.h"
#include "geometry/zuTriPhysicalExtent.h"
#include "tests/allocationCounter.h"
#include "tests/proximityFixture.h"
#include "tests/randomValues.h"
#include "tests/valuePrinters.h"

namespace {

ZuCoordinateSystemTransformation shift(double x, double y = 0.0, double z = 0.0) {
  return ZuCoordinateSystemTransformation(ZuVector(x, y, z));
}

ZuSphere ball(double x, double y, double z, double radius) { return ZuSphere(ZuVector(x, y, z), radius, 3); }

ZuXmlVectorVector listOf(std::vector<ZuVector> const& points) { return ZuXmlVectorVector(points); }

class Sphere : public ProximityTest {};

}  // namespace

TEST_F(Sphere, TouchingCountsAsContactButHasZeroDistance) {
  ZuSphere const a = ball(0, 0, 0, 1);
  ZuSphere const b = ball(0.5, 0, 0, 0.5);
  EXPECT_EQ(distance(a, b, shift(1)), 0.0);
  EXPECT_TRUE(touch(a, b, shift(1)));
  EXPECT_FALSE(touch(a, b, shift(std::nextafter(1.0, 2.0) + 1e-15)));
  {
    ZuShape::KeyPairs pairs;
    a.checkIntersect(b, shift(1), m_Descriptor, m_State, &pairs);
    a.checkIntersect(b, shift(9), m_Descriptor, m_State, &pairs);
    ASSERT_EQ(pairs.size(), 1U);
    EXPECT_EQ(pairs[0].first, m_Descriptor.key1());
  }
}

TEST_F(Sphere, WitnessPointsLieOnBothSpheresAndAreApartByTheDistance) {
  RandomValues random(11);
  for (int i = 0; i < 1000; ++i) {
    ZuSphere const a(random.vector(2.0), random.real(0.0, 1.0), 3);
    ZuSphere const b(random.vector(2.0), random.real(0.0, 1.0), 3);
    ZuCoordinateSystemTransformation const x = random.transformation(2.0);
    ZuVector w1;
    ZuVector w2;
    double const d = witness(a, b, x, w1, w2);
    EXPECT_NEAR(a.distanceTo(w1), 0.0, 1e-14);
    EXPECT_NEAR(b.distanceTo(w2), 0.0, 1e-14);
    EXPECT_NEAR((x * w2 - w1).mag(), std::abs(d), 1e-14);
    ZuVector u1;
    ZuVector u2;
    EXPECT_NEAR(witness(b, a, x.inverse(), u2, u1), d, 1e-14);
    EXPECT_TRUE(u1.approxEq(w1, 1e-13) && u2.approxEq(w2, 1e-13));
    EXPECT_EQ(touch(a, b, x), d <= 0.0);
  }
}

TEST_F(Sphere, ConcentricSpheresLeaveTheWitnessPointsAlone) {
  ZuVector w1(7, 8, 9);
  ZuVector w2(1, 2, 3);
  ZuVector direction(1, 1, 1);
  double d = 5.0;
  ZuSphere const a = ball(1, 2, 3, 2);
  EXPECT_TRUE(a.computePenetrationDistanceAndSupportPoints(ball(1, 2, 3, 0.5), shift(0), w1, w2, d, direction));
  EXPECT_EQ(d, -2.5);
  EXPECT_EQ(w1, ZuVector(7, 8, 9));
  EXPECT_EQ(w2, ZuVector(1, 2, 3));
  EXPECT_EQ(direction, ZuVector());
}

TEST_F(Sphere, PairsThatItDoesNotAnswerPrintBothTypesAndAreNeutral) {
  ZuSphere a = ball(0, 0, 0, 1);
  ZuCapsule const capsule;
  ZuPolyPhysicalExtent const poly;
  ZuVector w(1, 2, 3);
  ZuVector out;
  double d = 0.0;
  PrintSink sink;
  EXPECT_EQ(distance(a, capsule, shift(0)), 0.0);
  EXPECT_EQ(witness(a, capsule, shift(0), w, w), 0.0);
  EXPECT_FALSE(touch(a, capsule, shift(0)));
  EXPECT_FALSE(a.computeDistanceAndWitnessPoints(capsule, shift(0), false, w, w, d, out));
  std::vector<std::string> const expected = {
      "ZuSphere::distanceTo-->Distance from shapeID (3) to shapeID (4) not supported",
      "ZuSphere::distanceAndWitnessPointsTo-->Distance from shapeID (3) to shapeID (4) not supported",
      "ZuSphere::checkIntersect-->Check from shapeID (3) to shapeID (4) not supported"};
  EXPECT_EQ(sink.take(), expected);
  EXPECT_EQ(w, ZuVector(1, 2, 3));
}

TEST_F(Sphere, AMeshThatJustTouchesDoesNotIntersect) {
  ZuPolyPhysicalExtent const mesh = [] {
    ZuPolyPhysicalExtent cube;
    cube.fitToPoints(
        listOf({{1, -1, -1}, {1, 1, -1}, {1, -1, 1}, {1, 1, 1}, {3, -1, -1}, {3, 1, -1}, {3, -1, 1}, {3, 1, 1}}));
    return cube;
  }();
  EXPECT_FALSE(touch(ball(0, 0, 0, 1), mesh, shift(0)));
  EXPECT_TRUE(touch(ball(0, 0, 0, 1.0000001), mesh, shift(0)));
  EXPECT_TRUE(touch(ball(2, 0, 0, 0.01), mesh, shift(0))) << "a small ball inside";
  EXPECT_TRUE(touch(ball(0, 0, 0, 1), mesh, shift(-0.001)));
}

TEST_F(Sphere, PointsAndSegmentsAreMeasuredFromTheSurface) {
  ZuSphere const s = ball(1, 0, 0, 2);
  struct Case {
    ZuVector point;
    double distance;
    bool touches;
    bool contained;
  };
  for (Case const& c : {Case{{1, 0, 0}, -2.0, true, true}, Case{{3, 0, 0}, 0.0, true, true},
                        Case{{3 + 5e-13, 0, 0}, 5e-13, false, true}, Case{{1, 3, 4}, 3.0, false, false}}) {
    EXPECT_NEAR(s.distanceTo(c.point), c.distance, 1e-15) << testing::PrintToString(c.point);
    EXPECT_EQ(s.checkIntersect(c.point), c.touches) << testing::PrintToString(c.point);
    EXPECT_EQ(s.contains(c.point), c.contained) << testing::PrintToString(c.point);
    ZuLineSegment const needle(c.point, c.point);
    EXPECT_NEAR(s.distanceTo(needle), c.distance, 1e-15);
    EXPECT_EQ(s.checkIntersect(needle), c.touches);
  }
  EXPECT_TRUE(s.contains(ball(2, 0, 0, 1)));
  EXPECT_FALSE(s.contains(ball(2, 0, 0, 1 + 1e-13))) << "no tolerance between spheres";
}

TEST_F(Sphere, SegmentsEnterAndLeaveWhereTheEquationSays) {
  RandomValues random(12);
  int hits = 0;
  for (int i = 0; i < 2000; ++i) {
    ZuSphere const s(random.vector(1.0), random.real(0.2, 1.0), 3);
    ZuLineSegment const segment(random.vector(2.0), random.vector(2.0));
    ZuShapePointEvent event;
    ASSERT_EQ(s.intersectLineSegment(segment, event), s.checkIntersect(segment));
    ASSERT_EQ(event.hit, s.checkIntersect(segment));
    if (!event.hit) continue;
    ++hits;
    EXPECT_EQ(event.startsInside, s.distanceTo(segment.endpoint0()) < 0.0);
    EXPECT_EQ(event.endsInside, s.distanceTo(segment.endpoint1()) < 0.0);
    EXPECT_LE(event.entry.t, event.exit.t);
    if (!event.startsInside) {
      EXPECT_NEAR(s.distanceTo(event.entry.point), 0.0, 1e-14);
      EXPECT_LE(event.entry.normal.dot(segment.delta()), 1e-12) << "the surface faces the segment";
    }
    if (!event.endsInside) {
      EXPECT_NEAR(s.distanceTo(event.exit.point), 0.0, 1e-14);
    }
  }
  EXPECT_GT(hits, 200);
  EXPECT_LT(hits, 1600);
}

TEST_F(Sphere, SegmentHitsKeepTheirDigitsFarFromASmallSphere) {
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

TEST_F(Sphere, GrowingEnclosesBothAndTouchesBoth) {
  RandomValues random(13);
  for (int i = 0; i < 500; ++i) {
    ZuSphere const a(random.vector(1.0), random.real(0.0, 1.0), 3);
    ZuSphere const b(random.vector(1.0), random.real(0.0, 1.0), 3);
    ZuSphere both(a);
    both.expandSelfToInclude(b);
    for (ZuSphere const* part : {&a, &b}) {
      EXPECT_NEAR(std::max(both.center().distanceTo(part->center()) + part->radius(), both.radius()), both.radius(),
                  1e-14);
    }
    double const wide =
        std::max({2 * a.radius(), 2 * b.radius(), a.center().distanceTo(b.center()) + a.radius() + b.radius()});
    EXPECT_NEAR(2 * both.radius(), wide, 1e-14) << "no smaller ball holds both";
  }
}

TEST_F(Sphere, FitsToPointsCapsulesAndMeshes) {
  ZuSphere s = ball(9, 9, 9, 9);
  s.fitToPoints(listOf({{1, 2, 3}}));
  EXPECT_EQ(s.center(), ZuVector(1, 2, 3));
  EXPECT_EQ(s.radius(), 0.0);
  s.fitToPoints(listOf({{0, 0, 0}, {2, 0, 0}, {1, 0.5, 0}}));
  EXPECT_EQ(s.center(), ZuVector(1, 0, 0));
  EXPECT_EQ(s.radius(), 1.0);

  ZuCapsule capsule;
  capsule.setLineSegment(ZuLineSegment(ZuVector(-2, 1, 0), ZuVector(2, 1, 0)));
  capsule.setRadius(1.0);
  s.fitFromShape(capsule);
  EXPECT_EQ(s.center(), ZuVector(0, 1, 0));
  EXPECT_EQ(s.radius(), 2.0) << "half the segment, not the capsule's reach";

  ZuTriPhysicalExtent mesh;
  mesh.fitToPoints(listOf({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}));
  s.fitFromShape(mesh);
  for (ZuVector const& point : mesh.points()) EXPECT_LE(s.distanceTo(point), 1e-14);

  ZuSphere const before = s;
  PrintSink sink;
  s.fitToPoints(ZuXmlVectorVector());
  ASSERT_EQ(sink.take().size(), 1U);
  EXPECT_EQ(s, before);
}

TEST_F(Sphere, MovingAndScalingTakeTheChainAlong) {
  ZuSphere s = ball(1, 0, 0, 1);
  s.addBoundingVolume(ZuShape::SPHERE);
  s.transformBy(shift(0, 2, 0));
  s.scaleBy(3.0);
  auto const& bound = dynamic_cast<ZuSphere const&>(*s.lowerFidelityRepresentation());
  for (ZuSphere const* each : {static_cast<ZuSphere const*>(&s), &bound}) {
    EXPECT_EQ(each->center(), ZuVector(3, 6, 0));
    EXPECT_EQ(each->radius(), 3.0);
  }
  EXPECT_NEAR(s.volume(), 36.0 * 3.14159265358979, 1e-12);
}

TEST_F(Sphere, ItsTessellationIsAClosedMeshOnTheSurface) {
  ZuSphere s = ball(1, 2, 3, 0.5);
  s.setDetailLevel(2);
  s.setSurfaceProperty("Skin");
  ZuBasePhysicalExtent& extent = s.physicalExtent();
  EXPECT_EQ(&extent, &s.physicalExtent()) << "kept";
  EXPECT_EQ(extent.points().size(), 162U);
  EXPECT_EQ(extent.totalNumberOfFacets(), 320U);
  EXPECT_TRUE(extent.isConvex());
  EXPECT_EQ(extent.getGroupSurfaceKey(0), "Skin");
  for (ZuVector const& point : extent.points()) EXPECT_NEAR(s.distanceTo(point), 0.0, 1e-15);
  for (unsigned int facet = 0; facet < extent.numberOfFacetsInGroup(0); ++facet) {
    ZuPlane const plane = extent.getFacetPlane(0, facet);
    EXPECT_LT(plane.distanceTo(s.center()), -0.45) << "faces outward";
  }
  s.setRadius(2.0);
  EXPECT_NEAR(s.physicalExtent().points()[0].distanceTo(s.center()), 2.0, 1e-14) << "follows a change";
  s.setDetailLevel(4000000000U);
  s.setBVHLevel(1);
  s.setRadius(1.0);
  EXPECT_EQ(s.physicalExtent().totalNumberOfFacets(), 327680U) << "bounded";
  EXPECT_EQ(s.physicalExtent().getGroupSurfaceKey(0), "Bounding");
}

TEST_F(Sphere, CostsLittleUntilItIsUsed) {
  EXPECT_LE(sizeof(ZuSphere), 512U);
  ZuSphere const first;
  AllocationCounter const counter;
  {
    ZuSphere const a;
    ZuSphere const b(ZuVector(), 1.0, 3);
    ZuSphere c(b);
    c = a;
    EXPECT_EQ(distance(a, b, shift(3)), 2.0);
  }
  EXPECT_EQ(counter.count(), 0U);
}
