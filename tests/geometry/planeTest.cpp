#include <gtest/gtest.h>

#include "geometry/zuLineSegment.h"
#include "geometry/zuPlane.h"
#include "tests/randomValues.h"
#include "tests/valuePrinters.h"

namespace {

double constexpr theEps = 0x1p-52;

}  // namespace

TEST(Plane, SegmentsAreSeenFromTheLesserSignedEnd) {
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
    EXPECT_EQ(plane.distanceTo(ZuLineSegment({c.x0, 7, 0}, {c.x1, 2, 3})), c.distance) << c.what;
  }
}

TEST(Plane, OnlyWhatUnderflowsCountsAsParallel) {
  ZuPlane const plane;
  EXPECT_EQ(plane.distanceTo(ZuLineSegment({-1e-299, 0, 0}, {1e-299, 0, 0})), 0.0);
  EXPECT_EQ(plane.distanceTo(ZuLineSegment({-1e-301, 0, 0}, {1e-301, 0, 0})), -1e-301);
}

TEST(Plane, DistanceAndProjectionAgreeForNormalsOfAnyLength) {
  RandomValues random(411);
  SCOPED_TRACE(random.trace());
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
  EXPECT_GT(above, 60);
  EXPECT_LT(above, 140);
}

TEST(Plane, TransformedCopiesKeepTheDistancesOfMovedPoints) {
  RandomValues random(412);
  SCOPED_TRACE(random.trace());
  for (int i = 0; i < 100; ++i) {
    ZuCoordinateSystemTransformation const xform = random.transformation();
    ZuPlane const plane(random.vector(), random.vector());
    ZuVector const p = random.vector();
    EXPECT_NEAR((xform * plane).distanceTo(xform * p), plane.distanceTo(p), 32.0 * theEps);
    EXPECT_NEAR((xform.orientation() * plane).distanceTo(xform.orientation() * p), plane.distanceTo(p), 32.0 * theEps);
    EXPECT_EQ(ZuCoordinateSystemTransformation() * plane, plane);
  }
}
