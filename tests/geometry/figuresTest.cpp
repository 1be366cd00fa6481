// Triangles as sets, polygons, planar vectors.

#include <cstdio>
#include <fstream>
#include <limits>
#include <sstream>

#include "geometry/zuGeomTriangle.h"
#include "geometry/zuPlanarVector.h"
#include "geometry/zuPolygon.h"
#include "geometry/zuPolygonWithKey.h"
#include "tests/minimumNorm.h"
#include "tests/testValues.h"

namespace {

std::vector<ZuVector> corners(ZuTriangle const& t) { return {t.point(0), t.point(1), t.point(2)}; }

/// Plump triangles, needles down to 1e-14 of their length, segments and points, in about equal parts.
ZuGeomTriangle anyTriangle(RandomValues& random, double halfSide) {
  ZuVector const a = random.vector(halfSide), b = random.vector(halfSide), c = random.vector(halfSide);
  unsigned int const kind = random.index(8);
  if (kind < 2) return {a, b, a + (b - a) * random.real(-0.5, 1.5) + c * random.scale(1e-14, 1e-2)};
  ZuVector const thirds[] = {c, c, a, b, a, a + c * 1e-9};
  return {a, kind < 6 ? b : a, thirds[kind - 2]};
}

/// On a small grid, where touching, flat and degenerate pairs are common and all arithmetic of a reference is exact.
ZuGeomTriangle gridTriangle(RandomValues& random) {
  auto const corner = [&random] {
    unsigned int const x = random.index(4), y = random.index(4);
    return ZuVector(x, y, random.index(3));
  };
  ZuVector const a = corner(), b = corner();
  return {a, b, corner()};
}

}  // namespace

TEST(GeomTriangle, NearestPointIsInTheTriangleAndNothingOfItIsNearer) {
  TracedValues random(101);
  for (int i = 0; i < 20000; ++i) {
    ZuGeomTriangle const t = anyTriangle(random, random.scale(1e-3, 1e3));
    ZuVector const p = random.vector(random.scale(1e-3, 1e3));
    ZuVector const nearest = t.closestPoint(p);
    double size = p.mag();
    for (ZuVector const& corner : corners(t)) size = std::max(size, corner.mag());
    ASSERT_NEAR(t.distanceTo(p), MinimumNorm::distance(corners(t), {p}), 4e-15 * size) << i;
    ASSERT_NEAR(MinimumNorm::distance(corners(t), {nearest}), 0.0, 4e-15 * size) << i;
  }
}

TEST(GeomTriangle, DistanceFromSegmentsAndTrianglesIsThatOfTheDifference) {
  TracedValues random(102);
  int apart = 0;
  for (int i = 0; i < 1500; ++i) {
    ZuGeomTriangle const s = anyTriangle(random, 1.0);
    ZuGeomTriangle t = anyTriangle(random, random.scale(1e-1, 1.0));
    t.transformBy(ZuCoordinateSystemTransformation(random.vector(0.2)));
    double const expected = MinimumNorm::distance(corners(s), corners(t));
    apart += expected > 1e-12 ? 1 : 0;
    ASSERT_NEAR(s.distanceTo(t), expected, 1e-14) << i;
    ASSERT_EQ(t.distanceTo(s) == 0.0, s.distanceTo(t) == 0.0) << i;
    ZuLineSegment const edge(t.point(0), t.point(1));
    ASSERT_NEAR(s.distanceTo(edge), MinimumNorm::distance(corners(s), {t.point(0), t.point(1)}), 1e-14) << i;
  }
  EXPECT_LT(apart, 1470);
}

TEST(GeomTriangle, ContactIsDecidedExactlyAlsoForFlatAndDegenerateTriangles) {
  TracedValues random(103);
  int touching = 0;
  // A shear of determinant 1 with large entries keeps contact but leaves estimates in doubles without a correct bit.
  auto const sheared = [](ZuGeomTriangle const& t) {
    ZuGeomTriangle result;
    for (unsigned int k = 0; k < 3; ++k) {
      double const x = t.point(k).x(), y = t.point(k).y() + 70001 * x, z = t.point(k).z() + 90001 * y;
      result.setPoint(k, ZuVector(x + 50001 * z, y, z));
    }
    return result;
  };
  for (int i = 0; i < 1500; ++i) {
    ZuGeomTriangle const s = gridTriangle(random), t = gridTriangle(random);
    // Grid figures that are apart are apart by more than 1e-3.
    bool const expected = MinimumNorm::distance(corners(s), corners(t)) < 1e-6;
    touching += expected ? 1 : 0;
    ASSERT_TRUE(s.checkIntersect(t) == expected && t.checkIntersect(s) == expected) << i;
    ASSERT_EQ(sheared(s).checkIntersect(sheared(t)), expected) << i;
    ASSERT_EQ(s.distanceTo(t) == 0.0, expected) << i;
    std::vector<ZuVector> const ends = {t.point(0), t.point(1)};
    ASSERT_EQ(s.checkIntersect(ZuLineSegment(ends[0], ends[1])), MinimumNorm::distance(corners(s), ends) < 1e-6) << i;
  }
  EXPECT_TRUE(touching > 400 && touching < 1100) << touching;
}

TEST(GeomTriangle, OneUlpIsAGap) {
  double const third = 1.0 / 3.0;
  ZuGeomTriangle const floor(ZuVector(-1, -1, third), ZuVector(2, -1, third), ZuVector(-1, 2, third));
  ZuGeomTriangle const standing(ZuVector(0.1, 0.1, third), ZuVector(0.3, 0, 1), ZuVector(0, 0.3, 1));
  EXPECT_TRUE(floor.checkIntersect(standing));
  ZuGeomTriangle raised(standing);
  raised.setPoint(0, ZuVector(0.1, 0.1, std::nextafter(third, 1.0)));
  EXPECT_FALSE(floor.checkIntersect(raised));
}

TEST(GeomTriangle, NormalAreaAndSideFollowTheOrderOfTheCorners) {
  ZuGeomTriangle t(ZuVector(1, 0, 5), ZuVector(4, 0, 5), ZuVector(1, 4, 5));
  EXPECT_TRUE(t.normal() == ZuVector(0, 0, 1) && t.area() == 6.0);
  t.reverse();
  EXPECT_EQ(t.normal(), ZuVector(0, 0, -1));
  ZuCoordinateSystemTransformation const turn = ZuCoordinateSystemTransformation::testObject();
  EXPECT_TRUE((turn * t).normal().approxEq(turn.orientation() * t.normal(), 1e-15));
  EXPECT_EQ(ZuGeomTriangle(ZuVector(0, 0, 0), ZuVector(1, 1, 1), ZuVector(3, 3, 3)).normal(), ZuVector());
}

TEST(GeomTriangle, NumbersThatAreNoneMeetNothing) {
  double const nan = std::numeric_limits<double>::quiet_NaN();
  ZuGeomTriangle const good(ZuVector(0, 0, 0), ZuVector(1, 0, 0), ZuVector(0, 1, 0));
  for (unsigned int k = 0; k < 3; ++k) {
    ZuGeomTriangle bad(good);
    bad.setPoint(k, ZuVector(0.0, nan, 0.0));
    EXPECT_FALSE(good.checkIntersect(bad) || bad.checkIntersect(good)) << k;
  }
}

TEST(Polygon, AreaOfALoopWithANotchFarFromTheOrigin) {
  ZuPolygon polygon;
  ZuVector const far(1e6, -2e6, 3e6);
  for (ZuVector const& p : {ZuVector(0, 0, 0), ZuVector(4, 0, 0), ZuVector(4, 4, 0), ZuVector(2, 1, 0)})
    polygon.addPoint(p + far);
  EXPECT_TRUE(polygon.area() == 6.0 && polygon.normal() == ZuVector(0, 0, 1)) << polygon.area();
}

TEST(Polygon, DumpWritesAClosedLineAndReportsAFileThatCannotBeWritten) {
  ZuPolygon const polygon(ZuVector(0, 0.1, 1e-20), ZuVector(1, 0, 0), ZuVector(0, 1, -2));
  std::string const name = testing::TempDir() + "zuPolygonDump.txt";
  ASSERT_TRUE(polygon.dump(name));
  std::stringstream text;
  text << std::ifstream(name).rdbuf();
  std::remove(name.c_str());
  EXPECT_EQ(text.str(), "0 0.1 1e-20\n1 0 0\n0 1 -2\n0 0.1 1e-20\n");
  PrintSink sink;
  EXPECT_FALSE(polygon.dump(testing::TempDir() + "no/such/folder/polygon.txt"));
  EXPECT_EQ(sink.messages().size(), 1U);
}

TEST(Figures, AnIndexThatDoesNotExistPrintsOneLineAndReadsNothing) {
  PrintSink sink;
  ZuTriangle triangle = ZuTriangle::testObject();
  ZuPolygon polygon = ZuPolygon::testObject();
  EXPECT_EQ(triangle.point(3), ZuVector());
  triangle.setPoint(3, ZuVector(9, 9, 9));
  EXPECT_EQ(polygon.point(polygon.numberOfPoints()), ZuVector());
  polygon.setPoint(4294967295U, ZuVector(9, 9, 9));
  EXPECT_EQ(ZuPolygonWithKey::testObject().pointIndex(4), theZuNoIndex);
  EXPECT_EQ(sink.messages(),
            (Messages{"ZuTriangle::point-->invalid index (3)", "ZuTriangle::point-->invalid index (3)",
                      "ZuPolygon::point-->invalid index (3)", "ZuPolygon::point-->invalid index (4294967295)",
                      "ZuPolygonWithKey::pointIndex-->invalid index (4 of 4)"}));
  EXPECT_TRUE(triangle == ZuTriangle::testObject() && polygon == ZuPolygon::testObject());
}

TEST(PlanarVector, CrossIsPositiveCounterClockwiseAndLengthsDoNotOverflow) {
  ZuPlanarVector const a(2, 1), b(-1, 3);
  EXPECT_TRUE(a.cross(b) == 7.0 && a.dot(b) == 1.0);
  EXPECT_TRUE((b - a * 2.0).approxEq(ZuPlanarVector(-5, 1), 0.0));
  EXPECT_DOUBLE_EQ(ZuPlanarVector(3e200, 0).distanceTo(ZuPlanarVector(0, -4e200)), 5e200);
}
