#include "geometry/zuCone.h"

#include <gtest/gtest.h>

#include <vector>

#include "geometry/zuCapsule.h"
#include "geometry/zuCylinder.h"
#include "geometry/zuPolyPhysicalExtent.h"
#include "geometry/zuShapePointEvent.h"
#include "geometry/zuSphere.h"
#include "geometry/zuTetrahedron.h"
#include "tests/printSink.h"
#include "tests/solidChecks.h"

// What cones share with other solids is tested with ZuConvexSolid, and their distances with ZuFrustum.

namespace {

ZuCone cone(ZuVector const& base, ZuVector const& apex, double radius) {
  return ZuCone(ZuLineSegment(base, apex), radius);
}

double mostOutside(ZuShape const& solid, ZuXmlVectorVector const& points) {
  double most = 0.0;
  for (ZuVector const& p : points) most = std::max(most, solid.distanceTo(p));
  return most;
}

/// Points of the surface of a solid that has support points, all around.
ZuXmlVectorVector surfaceOf(ZuShape const& solid, RandomValues& random) {
  ZuXmlVectorVector points;
  for (int i = 0; i < 200; ++i) points.pushBack(solid.computeSupportPoint(random.direction()));
  return points;
}

}  // namespace

TEST(Cone, SupportPointsAreTheApexOrOnTheRim) {
  RandomValues random(421);
  SCOPED_TRACE(random.trace());
  for (int i = 0; i < 5000; ++i) {
    ZuVector const base = random.vector(), delta = random.vector(), unit = delta.unitVector();
    ZuCone const c = cone(base, base + delta, random.real(0.0, 1.0));
    ZuVector const d = (i % 2 == 0 ? random.direction() : random.vector(random.scale(1e-18, 1.0)) - unit) *
                       random.scale(1e-290, 1e290);
    ZuVector const n = d.unitVector();
    double const reach = std::max(n.dot(delta), c.radius() * n.cross(unit).mag());
    ASSERT_NEAR((c.supportPoint(d) - base).dot(n), reach, 1e-14);
    ASSERT_LE(c.distanceTo(c.supportPoint(d)), 1e-14);
  }
  ZuCone const c = cone({0, 0, 0}, {0, 0, 3}, 4);
  EXPECT_EQ(c.supportPoint({4, 0, 3}), ZuVector(4, 0, 0));
  EXPECT_EQ(c.supportPoint({3, 0, 4}), ZuVector(0, 0, 3));  // as far as the rim
  EXPECT_TRUE(c.supportPoint({0, 0, -5}) == ZuVector() && c.supportPoint({}) == ZuVector());
  EXPECT_EQ(cone({1, 2, 3}, {1, 2, 3}, 2).supportPoint({0, 3, 3}), ZuVector(1, 4, 3));
  PrintSink sink;
  EXPECT_EQ(c.supportPoint({std::nan(""), 0, 0}), ZuVector());
  EXPECT_EQ(sink.messages().size(), 1U);
}

TEST(Cone, FitsEncloseTheRealMeshesTightly) {
  checkFitsToRealMeshes<ZuCone>(2.72);  // 2.710 when this was written
}

TEST(Cone, FitsAroundSolidsEncloseThemAndAreTheLeastOnTheirAxis) {
  RandomValues random(422);
  SCOPED_TRACE(random.trace());
  for (int i = 0; i < 40; ++i) {
    ZuVector const from = random.vector(), to = i % 4 == 0 ? from : from + random.vector();
    double const r = random.real(0.1, 1.0);
    ZuCapsule const capsule(ZuLineSegment(from, to), r);
    ZuCylinder const cylinder(ZuLineSegment(from, to), r);
    ZuTetrahedron const tetrahedron(from, random.vector(), random.vector(), random.vector());
    ZuCone const other = cone(from, to, r);
    for (ZuShape const* shape : std::vector<ZuShape const*>{&capsule, &cylinder, &tetrahedron, &other}) {
      ZuXmlVectorVector const surface = surfaceOf(*shape, random);
      ZuCone fit;
      fit.fitFromShape(*shape);
      EXPECT_LE(mostOutside(fit, surface), 1e-13) << shape->type();
      ZuCapsule bound;
      bound.fitFromShape(*shape);
      EXPECT_LE(mostOutside(bound, surface), 1e-13) << shape->type();
      if (from == to || (shape != &capsule && shape != &cylinder)) continue;
      ZuCone least = cone(from, from + 0.1 * (to - from), 0.1 * r);
      EXPECT_TRUE(least.expandToInclude(surface));
      EXPECT_TRUE(least.volume() < 1.001 * fit.volume() && least.volume() > 0.8 * fit.volume()) << shape->type();
    }
    EXPECT_LE(mostOutside(other.capsuleBoundingVolume(), surfaceOf(other, random)), 1e-13);
  }
  ZuCone fit;
  fit.fitFromShape(ZuSphere(ZuVector(1, 2, 3), 0.5, 3));
  EXPECT_NEAR(fit.volume(), 2.0 * ZuSphere(ZuVector(), 0.5, 3).volume(), 1e-14);
  EXPECT_TRUE(fit == cone(fit.lineSegment().endpoint0(), fit.lineSegment().endpoint1(), fit.radius()));
}

TEST(Cone, GrowthKeepsWhatWasInsideAndDegenerateSetsAreTaken) {
  RandomValues random(423);
  SCOPED_TRACE(random.trace());
  for (int i = 0; i < 60; ++i) {
    ZuVector const origin = random.vector(), u = random.vector(), v = random.vector(), base = random.vector();
    ZuXmlVectorVector points;
    for (int k = 0; k < 20; ++k)
      points.pushBack(origin + u * random.real() + (i % 3 > 0 ? v * random.real() : ZuVector()) +
                      (i % 3 > 1 ? random.vector() : ZuVector()));
    ZuCone grown = cone(base, base + random.vector(), random.real(0.1, 1.0)), fit;
    ZuXmlVectorVector const before = surfaceOf(grown, random);
    EXPECT_TRUE(grown.expandToInclude(points));
    EXPECT_LE(std::max(mostOutside(grown, points), mostOutside(grown, before)), 1e-12);
    fit.fitToPoints(points);
    EXPECT_LE(mostOutside(fit, points), 1e-10);
    EXPECT_TRUE(i % 3 > 1 || fit.volume() < 1e-4) << fit.volume();
  }
  ZuCone c = cone({0, 0, 0}, {0, 0, 2}, 1), fit;
  EXPECT_FALSE(c.expandToInclude(ZuXmlVectorVector({{0.5, 0, 1}, {0, 0, 2}})));
  fit.fitToPoints(ZuXmlVectorVector({{1, 2, 3}, {1, 2, 3}}));
  EXPECT_EQ(fit, cone({1, 2, 3}, {1, 2, 3}, 0));
  for (ZuXmlVectorVector const& bad : {ZuXmlVectorVector(), ZuXmlVectorVector({{0, 0, HUGE_VAL}})}) {
    PrintSink sink;
    c.fitToPoints(bad);
    EXPECT_FALSE(c.expandToInclude(bad));
    EXPECT_EQ(sink.messages().size(), bad.empty() ? 1U : 2U);
  }
  EXPECT_EQ(c, cone({0, 0, 0}, {0, 0, 2}, 1));
}

TEST(Cone, TessellationsCloseFaceOutwardAndConverge) {
  for (ZuVector const& delta : {ZuVector(1, -2, 0.5), ZuVector()}) {
    ZuCone c = cone({1, 2, 3}, ZuVector(1, 2, 3) + delta, 0.7);
    c.setDetailLevel(4);
    EXPECT_TRUE(c.physicalExtent().isConvex() && facetsCloseAndAreConvex(c.physicalExtent()));
    EXPECT_LE(mostOutside(c, c.physicalExtent().points()), 1e-14);
    EXPECT_NEAR(extentVolume(c.physicalExtent()), c.volume(), 0.005 * c.volume());
  }
  double const nan = std::nan("");
  PrintSink sink;
  for (ZuCone const& c : {cone({}, {}, 0), cone({}, {0, 0, 1}, 0), cone({}, {0, 0, 1}, -2), cone({}, {nan, 0, 1}, 1),
                          cone({}, {0, 0, 1}, nan)}) {
    ZuShapePointEvent event;
    EXPECT_FALSE(c.distanceTo(ZuVector(3, 4, 0)) < 4.0);
    EXPECT_FALSE(c.intersectLineSegment(ZuLineSegment({9, 0, 0}, {9, 1, 1}), event));
    c.physicalExtent().init();
    ZuCapsule(c.capsuleBoundingVolume()).fitFromShape(c);
  }
}
