#include "geometry/zuCone.h"

#include "geometry/zuCapsule.h"
#include "geometry/zuCylinder.h"
#include "geometry/zuPolyPhysicalExtent.h"
#include "tests/solidChecks.h"

// What cones share with other solids is tested with ZuConvexSolid, and their distances with ZuFrustum.

namespace {

ZuCone cone(ZuVector const& base, ZuVector const& apex, double radius) {
  return ZuCone(ZuLineSegment(base, apex), radius);
}

}  // namespace

TEST(Cone, SupportPointsAreTheApexOrOnTheRim) {
  TracedValues random(421);
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

TEST(Cone, FitsEnclosePointsAndGrowthKeepsWhatWasInside) {
  checkFitsToRealMeshes<ZuCone>(2.72);  // 2.710 when this was written
  checkFitsAndGrowth<ZuCone>(1e-10, 1e-12);
  ZuCone c = cone({0, 0, 0}, {0, 0, 2}, 1), fit;
  EXPECT_FALSE(c.expandToInclude(ZuXmlVectorVector({{0.5, 0, 1}, {0, 0, 2}})));
  fit.fitToPoints(ZuXmlVectorVector({{1, 2, 3}, {1, 2, 3}}));
  EXPECT_EQ(fit, cone({1, 2, 3}, {1, 2, 3}, 0));
}

TEST(Cone, FitsAroundSolidsAreTheLeastOnTheirAxis) {
  ZuCylinder const cylinder(ZuLineSegment({0, 0, 0}, {0, 0, 2}), 1);
  ZuCapsule const capsule(ZuLineSegment({0, 0, 0}, {0, 0, 2}), 1);
  for (ZuShape const* shape : {static_cast<ZuShape const*>(&cylinder), static_cast<ZuShape const*>(&capsule)}) {
    ZuCone fit, least = cone({0, 0, 0}, {0, 0, 0.2}, 0.1);
    fit.fitFromShape(*shape);
    ZuPolyPhysicalExtent fine(static_cast<ZuPolyPhysicalExtent const&>(shape->physicalExtent()));
    EXPECT_TRUE(least.expandToInclude(fine.points()));
    EXPECT_TRUE(least.volume() < 1.0001 * fit.volume() && least.volume() > 0.97 * fit.volume()) << shape->type();
  }
  ZuCone fit;
  fit.fitFromShape(ZuSphere(ZuVector(1, 2, 3), 0.5, 3));
  EXPECT_NEAR(fit.volume(), 2.0 * ZuSphere(ZuVector(), 0.5, 3).volume(), 1e-14);
}
