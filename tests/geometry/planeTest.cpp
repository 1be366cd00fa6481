#include "geometry/zuCircle.h"
#include "geometry/zuGeomTriangle.h"
#include "geometry/zuLineSegment.h"
#include "geometry/zuPlane.h"
#include "geometry/zuRectangle.h"
#include "tests/testValues.h"

static double constexpr theEps = 0x1p-52;

TEST(Plane, SegmentsAndFlatFiguresAreSeenFromTheLesserSignedEnd) {
  ZuPlane const plane({1, 0, 0}, {2, 0, 0});
  struct Case {
    char const* what;
    double x0, x1, distance;
  } const cases[] = {{"above: the nearer end", 5, 3, 2},
                     {"below: the farther end", -1, -4, -5},
                     {"below, turned round", -4, -1, -5},
                     {"crossing", -1, 3, 0},
                     {"one end on it, from above", 1, 2, 0},
                     {"one end on it, from below", 0, 1, 0},
                     {"in the plane", 1, 1, 0},
                     {"parallel above", 3, 3, 2},
                     {"parallel below", -1, -1, -2}};
  for (Case const& c : cases) {
    ZuVector const end0(c.x0, 7, 0), end1(c.x1, 2, 3), between(0.5 * (c.x0 + c.x1), 0, 5);
    EXPECT_EQ(plane.distanceTo(ZuLineSegment(end0, end1)), c.distance) << c.what;
    for (ZuGeomTriangle const& t :
         {ZuGeomTriangle(end0, end1, between), {end1, between, end0}, {between, end0, end1}}) {
      EXPECT_EQ(plane.distanceTo(t), c.distance) << c.what;
      EXPECT_EQ(plane.checkIntersect(t), c.distance == 0.0) << c.what;
    }
    ZuRectangle const rectangle(between, {0.5 * (c.x1 - c.x0), 0, 0}, {0, 3, 0});
    EXPECT_EQ(plane.distanceTo(rectangle), c.distance) << c.what;
  }
  // Only what underflows counts as parallel.
  EXPECT_EQ(ZuPlane().distanceTo(ZuLineSegment({-1e-299, 0, 0}, {1e-299, 0, 0})), 0.0);
  EXPECT_EQ(ZuPlane().distanceTo(ZuLineSegment({-1e-301, 0, 0}, {1e-301, 0, 0})), -1e-301);
}

TEST(Plane, DistanceAndProjectionAgreeForNormalsOfAnyLength) {
  TracedValues random(411);
  int above = 0;
  for (int i = 0; i < 200; ++i) {
    ZuVector const base = random.vector(), normal = random.direction(), p = random.vector(3.0);
    double const length = random.scale(1e-3, 1e3);
    ZuPlane plane;
    ZuXmlVector const written(normal * length);
    ASSERT_TRUE(plane.componentMap().find("planeNormalVector")->object->assignFrom(written));
    plane.setBasePoint(base);
    double const expected = (p - base).dot(normal);
    EXPECT_NEAR(plane.distanceTo(p), expected, 32.0 * theEps);
    ZuVector projection;
    plane.calculateProjectionPoint(p, projection);
    EXPECT_TRUE(projection.approxEq(p - normal * expected, 32.0 * theEps));
    plane.setNormalVector(-length * normal);
    EXPECT_TRUE(plane.normal().approxEq(-normal, 2.0 * theEps));
    above += expected > 0.0;
  }
  EXPECT_TRUE(above > 60 && above < 140) << above;
}

TEST(Plane, TransformedCopiesKeepTheDistancesOfMovedPoints) {
  TracedValues random(412);
  for (int i = 0; i < 100; ++i) {
    ZuCoordinateSystemTransformation const xform = random.transformation();
    ZuPlane const plane(random.vector(), random.vector());
    ZuVector const p = random.vector();
    EXPECT_NEAR((xform * plane).distanceTo(xform * p), plane.distanceTo(p), 32.0 * theEps);
    EXPECT_NEAR((xform.orientation() * plane).distanceTo(xform.orientation() * p), plane.distanceTo(p), 32.0 * theEps);
    EXPECT_EQ(ZuCoordinateSystemTransformation() * plane, plane);
  }
}

TEST(Plane, DiscsAreSeenByTheRuleOfSegmentsWithAClosestPairOfPoints) {
  TracedValues random(64);
  int sides[3] = {0, 0, 0};
  for (int i = 0; i < 1000; ++i) {
    ZuPlane const plane(random.vector(), random.direction());
    ZuVector const normal = i % 8 == 0 ? plane.normal() : random.direction();
    ZuCircle const c(random.vector(), normal, random.real(0.0, 1.0));
    ZuVector onPlane, onCircle;
    double const d = plane.distanceTo(c, onPlane, onCircle);
    double const middle = plane.distanceTo(c.center()), reach = c.radius() * plane.normal().cross(c.normal()).mag();
    EXPECT_NEAR(d, std::abs(middle) > reach ? middle - reach : 0.0, 1e-14);
    EXPECT_NEAR(std::abs(plane.distanceTo(onPlane)) + c.distanceTo(onCircle), 0.0, 1e-14);
    EXPECT_NEAR(onPlane.distanceTo(onCircle), std::max(std::abs(middle) - reach, 0.0), 1e-14);
    ++sides[d > 0.0 ? 0 : d < 0.0 ? 1 : 2];
  }
  for (int const count : sides) EXPECT_GT(count, 200);
}
