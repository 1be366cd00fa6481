// Triangles, rectangles, discs and planes as sets; polygons; planar vectors.
#include <cstdio>

#include "geometry/zuCircle.h"
#include "geometry/zuGeomTriangle.h"
#include "geometry/zuPlanarVector.h"
#include "geometry/zuPlane.h"
#include "geometry/zuPolygon.h"
#include "geometry/zuPolygonWithKey.h"
#include "geometry/zuRectangle.h"
#include "tests/convexOracle.h"
#include "tests/temporaryFolder.h"
#include "tests/testValues.h"

namespace {

double constexpr theEps = 0x1p-52;

std::vector<ZuVector> corners(ZuVector const& p) { return {p}; }
std::vector<ZuVector> corners(ZuLineSegment const& s) { return {s.endpoint0(), s.endpoint1()}; }
std::vector<ZuVector> corners(ZuTriangle const& t) { return {t.point(0), t.point(1), t.point(2)}; }
std::vector<ZuVector> corners(ZuRectangle const& r) { return {r.corner(0), r.corner(1), r.corner(2), r.corner(3)}; }

template <class A, class B>
double hullDistance(A const& a, B const& b) {
  return oracle::distanceByTrial(corners(a), corners(b));
}

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
  ZuGeomTriangle result;
  for (unsigned int k = 0; k < 3; ++k) {
    unsigned int const x = random.index(4), y = random.index(4);
    result.setPoint(k, ZuVector(x, y, random.index(3)));
  }
  return result;
}

/// One in four has lost one of its sides or both.
ZuRectangle randomRectangle(RandomValues& random) {
  unsigned int const flat = random.index(8);
  ZuVector const center = random.vector(), edge0 = random.vector(), edge1 = random.vector();
  return ZuRectangle(center, flat == 0 ? ZuVector() : edge0, flat <= 1 ? ZuVector() : edge1);
}

ZuLineSegment randomSegment(RandomValues& random) {
  ZuVector const end0 = random.vector(1.5), end1 = random.vector(1.5);
  return ZuLineSegment(end0, random.index(8) == 0 ? end0 : end1);
}

ZuCircle randomCircle(RandomValues& random) {
  ZuVector const center = random.vector(), normal = random.direction();
  return ZuCircle(center, normal, random.real(0.0, 1.0));
}

}  // namespace

TEST(GeomTriangle, NearestPointIsInTheTriangleAndNothingOfItIsNearer) {
  TracedValues random(101);
  for (int i = 0; i < 20000; ++i) {
    ZuGeomTriangle const t = anyTriangle(random, random.scale(1e-3, 1e3));
    ZuVector const p = random.vector(random.scale(1e-3, 1e3));
    double size = p.mag();
    for (ZuVector const& corner : corners(t)) size = std::max(size, corner.mag());
    ASSERT_NEAR(t.distanceTo(p), hullDistance(t, p), 4e-15 * size) << i;
    ASSERT_NEAR(hullDistance(t, t.closestPoint(p)), 0.0, 4e-15 * size) << i;
  }
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
    ZuLineSegment const edge(t.point(0), t.point(1));
    // Grid figures that are apart are apart by more than 1e-3.
    bool const expected = hullDistance(s, t) < 1e-6;
    ASSERT_TRUE(s.checkIntersect(t) == expected && t.checkIntersect(s) == expected) << i;
    ASSERT_EQ(sheared(s).checkIntersect(sheared(t)), expected) << i;
    ASSERT_EQ(s.distanceTo(t) == 0.0, expected) << i;
    ASSERT_EQ(s.checkIntersect(edge), hullDistance(s, edge) < 1e-6) << i;
    touching += expected;
  }
  EXPECT_TRUE(touching > 400 && touching < 1100) << touching;
}

TEST(GeomTriangle, OneUlpIsAGapAndNumbersThatAreNoneMeetNothing) {
  double const third = 1.0 / 3.0;
  ZuGeomTriangle const floor(ZuVector(-1, -1, third), ZuVector(2, -1, third), ZuVector(-1, 2, third));
  ZuGeomTriangle const standing(ZuVector(0.1, 0.1, third), ZuVector(0.3, 0, 1), ZuVector(0, 0.3, 1));
  EXPECT_TRUE(floor.checkIntersect(standing));
  ZuGeomTriangle raised(standing);
  raised.setPoint(0, ZuVector(0.1, 0.1, std::nextafter(third, 1.0)));
  EXPECT_FALSE(floor.checkIntersect(raised));
  for (unsigned int k = 0; k < 3; ++k) {
    ZuGeomTriangle bad(standing);
    bad.setPoint(k, ZuVector(0.0, std::nan(""), 0.0));
    EXPECT_FALSE(floor.checkIntersect(bad) || bad.checkIntersect(floor)) << k;
  }
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

TEST(Figures, DistancesAreThoseOfTheHullsOfTheirCorners) {
  TracedValues random(102);
  int apart = 0, crossing = 0;
  for (int i = 0; i < 1500; ++i) {
    ZuGeomTriangle const a = anyTriangle(random, 1.0), b = anyTriangle(random, random.scale(1e-1, 1.0));
    ZuGeomTriangle const t = ZuCoordinateSystemTransformation(random.vector(0.2)) * b;
    ZuLineSegment const edge(t.point(0), t.point(1)), s = randomSegment(random);
    ASSERT_NEAR(a.distanceTo(t), hullDistance(a, t), 1e-14) << i;
    ASSERT_NEAR(a.distanceTo(edge), hullDistance(a, edge), 1e-14) << i;
    ASSERT_EQ(t.distanceTo(a) == 0.0, a.distanceTo(t) == 0.0) << i;
    apart += a.distanceTo(t) > 1e-12;
    if (i % 3 != 0) continue;
    ZuRectangle const r = randomRectangle(random), other = randomRectangle(random);
    ZuVector const p = random.vector(2.0);
    EXPECT_NEAR(r.distanceTo(p), hullDistance(r, p), 1e-14);
    EXPECT_NEAR(r.distanceTo(t), hullDistance(r, t), 1e-14);
    EXPECT_NEAR(r.distanceTo(other), hullDistance(r, other), 1e-14);
    ZuVector onRectangle, onSegment;
    double const d = r.distanceTo(s, onRectangle, onSegment);
    EXPECT_TRUE(std::abs(d - hullDistance(r, s)) <= 1e-14 && d == r.distanceTo(s));
    EXPECT_NEAR(onRectangle.distanceTo(onSegment), d, 1e-15);
    EXPECT_NEAR(std::max(r.distanceTo(onRectangle), s.distanceTo(onSegment)), 0.0, 2e-15);
    crossing += d == 0.0;
  }
  EXPECT_TRUE(apart < 1480 && crossing > 25 && crossing < 475) << apart << ' ' << crossing;
}

TEST(Rectangle, CornersRunCounterClockwiseAboutTheNormal) {
  ZuRectangle const r({1, 2, 3}, {2, 0, 0}, {5, 1, 0});
  EXPECT_TRUE(r.halfEdge(1) == ZuVector(0, 1, 0) && r.normal() == ZuVector(0, 0, 1) && r.area() == 8.0);
  ZuVector const expected[] = {{3, 3, 3}, {-1, 3, 3}, {-1, 1, 3}, {3, 1, 3}};
  for (unsigned int i = 0; i < 4; ++i)
    EXPECT_TRUE(r.corner(i) == expected[i] && r.side(i) == ZuLineSegment(expected[i], expected[(i + 1) % 4])) << i;
  ZuCoordinateSystemTransformation const x = ZuCoordinateSystemTransformation::testObject();
  EXPECT_TRUE((x * r).corner(1).approxEq(x * expected[1], 1e-14));
  PrintSink sink;
  EXPECT_TRUE(r.corner(4) == expected[0] && r.halfEdge(2) == r.halfEdge(1) && r.side(7) == r.side(0));
  EXPECT_EQ(sink.take(),
            (Messages{"ZuRectangle::corner-->index 4 out of range", "ZuRectangle::halfEdge-->index 2 out of range",
                      "ZuRectangle::side-->index 7 out of range"}));
}

TEST(Rectangle, ObliqueHalfEdgesOfADocumentAreMadePerpendicular) {
  ZuRectangle r;
  ASSERT_TRUE(r.readFromBuffer("<r><halfEdge0>2 0 0</halfEdge0><halfEdge1>1 3 0</halfEdge1></r>"));
  EXPECT_EQ(r.halfEdge(1), ZuVector(0, 3, 0));
  ASSERT_TRUE(r.readFromBuffer("<r><halfEdge0>2 0 0</halfEdge0><halfEdge1>1e-7 3 0</halfEdge1></r>"));
  EXPECT_EQ(r.halfEdge(1), ZuVector(1e-7, 3, 0));
}

TEST(Circle, DistancesToPointsAreThoseOfTheDiscAndTheRim) {
  TracedValues random(62);
  for (int i = 0; i < 1000; ++i) {
    ZuCircle const c = randomCircle(random);
    ZuVector const across = c.normal().cross(random.vector()).unitVector();
    double const rho = random.real(0.0, 2.0), height = random.real();
    ZuVector const p = c.center() + across * rho + c.normal() * height;
    EXPECT_NEAR(c.distanceTo(p), std::hypot(height, std::max(rho - c.radius(), 0.0)), 1e-14);
    EXPECT_TRUE(c.closestPointOnRim(p).approxEq(c.center() + across * c.radius(), 1e-12));
  }
  ZuCircle const c({1, 2, 3}, {0, 0, 5}, 2);
  EXPECT_EQ(c.closestPoint({1, 2, 9}), ZuVector(1, 2, 3));
  EXPECT_EQ(c.closestPointOnRim({1, 2, 9}).distanceTo({1, 2, 3}), 2.0);
}

TEST(Circle, DistanceToASegmentIsLeastAtItsParameter) {
  TracedValues random(63);
  int crossing = 0, inner = 0;
  for (int i = 0; i < 2000; ++i) {
    ZuCircle const c = randomCircle(random);
    ZuLineSegment const s = randomSegment(random);
    double t;
    ZuVector closest;
    double const d = c.distanceTo(s, t, closest);
    ASSERT_TRUE(t >= 0.0 && t <= 1.0);
    EXPECT_NEAR(closest.distanceTo(s.endpoint0() + t * s.delta()), d, 2e-15);
    EXPECT_NEAR(c.distanceTo(closest), 0.0, 2e-15);
    crossing += d == 0.0;
    inner += d > 0.0 && t > 0.0 && t < 1.0;
    // Convex along the segment: no better than either neighbour, so no better than any.
    for (double const step : {-1e-3, 1e-3, -1e-6, 1e-6})
      EXPECT_GE(c.distanceTo(s.endpoint0() + std::clamp(t + step, 0.0, 1.0) * s.delta()), d - 1e-15);
  }
  EXPECT_TRUE(crossing > 50 && inner > 400) << crossing << ' ' << inner;
}

TEST(Circle, ANormalWithoutDirectionIsRefused) {
  PrintSink sink;
  ZuCircle const c({1, 2, 3}, {0, 0, 0}, 2);
  EXPECT_EQ(sink.take(), Messages{"ZuCircle::setNormal-->no direction (0 0 0)"});
  EXPECT_EQ(c.normal(), ZuVector(0, 0, 1));
  ZuCircle read;
  ASSERT_TRUE(read.readFromBuffer("<c><normal>0 3 4</normal></c>"));
  EXPECT_TRUE(read.normal().approxEq({0, 0.6, 0.8}, 1e-15));
  ASSERT_TRUE(read.readFromBuffer("<c><normal>0 0 0</normal></c>"));
  EXPECT_EQ(read.normal(), ZuVector(0, 0, 1));
}

TEST(Plane, SegmentsAndFlatFiguresAreSeenFromTheLesserSignedEnd) {
  ZuPlane const plane({1, 0, 0}, {2, 0, 0});
  std::tuple<char const*, double, double, double> const cases[] = {{"above: the nearer end", 5, 3, 2},
                                                                   {"below: the farther end", -1, -4, -5},
                                                                   {"below, turned round", -4, -1, -5},
                                                                   {"crossing", -1, 3, 0},
                                                                   {"one end on it, from above", 1, 2, 0},
                                                                   {"one end on it, from below", 0, 1, 0},
                                                                   {"in the plane", 1, 1, 0},
                                                                   {"parallel above", 3, 3, 2},
                                                                   {"parallel below", -1, -1, -2}};
  for (auto const& [what, x0, x1, distance] : cases) {
    ZuVector const end0(x0, 7, 0), end1(x1, 2, 3), between(0.5 * (x0 + x1), 0, 5);
    EXPECT_EQ(plane.distanceTo(ZuLineSegment(end0, end1)), distance) << what;
    for (ZuGeomTriangle const& t : {ZuGeomTriangle(end0, end1, between), {end1, between, end0}, {between, end0, end1}})
      EXPECT_TRUE(plane.distanceTo(t) == distance && plane.checkIntersect(t) == (distance == 0.0)) << what;
    ZuRectangle const rectangle(between, {0.5 * (x1 - x0), 0, 0}, {0, 3, 0});
    EXPECT_EQ(plane.distanceTo(rectangle), distance) << what;
  }
  // Only what underflows counts as parallel.
  EXPECT_EQ(ZuPlane().distanceTo(ZuLineSegment({-1e-299, 0, 0}, {1e-299, 0, 0})), 0.0);
  EXPECT_EQ(ZuPlane().distanceTo(ZuLineSegment({-1e-301, 0, 0}, {1e-301, 0, 0})), -1e-301);
}

TEST(Plane, DistanceProjectionAndMovedCopiesAgreeForNormalsOfAnyLength) {
  TracedValues random(411);
  int above = 0;
  for (int i = 0; i < 200; ++i) {
    ZuVector const base = random.vector(), normal = random.direction(), p = random.vector(3.0);
    double const length = random.scale(1e-3, 1e3), expected = (p - base).dot(normal);
    ZuPlane plane;
    ZuXmlVector const written(normal * length);
    ASSERT_TRUE(plane.componentMap().find("planeNormalVector")->object->assignFrom(written));
    plane.setBasePoint(base);
    EXPECT_NEAR(plane.distanceTo(p), expected, 32.0 * theEps);
    ZuVector projection;
    plane.calculateProjectionPoint(p, projection);
    EXPECT_TRUE(projection.approxEq(p - normal * expected, 32.0 * theEps));
    plane.setNormalVector(-length * normal);
    EXPECT_TRUE(plane.normal().approxEq(-normal, 2.0 * theEps));
    ZuCoordinateSystemTransformation const xform = random.transformation();
    EXPECT_NEAR((xform * plane).distanceTo(xform * p), -expected, 32.0 * theEps);
    EXPECT_NEAR((xform.orientation() * plane).distanceTo(xform.orientation() * p), -expected, 32.0 * theEps);
    EXPECT_EQ(ZuCoordinateSystemTransformation() * plane, plane);
    above += expected > 0.0;
  }
  EXPECT_TRUE(above > 60 && above < 140) << above;
}

TEST(Plane, DiscsAreSeenByTheRuleOfSegmentsWithAClosestPairOfPoints) {
  TracedValues random(64);
  int sides[3] = {0, 0, 0};
  for (int i = 0; i < 1000; ++i) {
    ZuPlane const plane(random.vector(), random.direction());
    ZuCircle c = randomCircle(random);
    if (i % 8 == 0) c.setNormal(plane.normal());
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

TEST(Polygon, AreaOfALoopWithANotchFarFromTheOrigin) {
  ZuPolygon polygon;
  for (ZuVector const& p : {ZuVector(0, 0, 0), ZuVector(4, 0, 0), ZuVector(4, 4, 0), ZuVector(2, 1, 0)})
    polygon.addPoint(p + ZuVector(1e6, -2e6, 3e6));
  EXPECT_TRUE(polygon.area() == 6.0 && polygon.normal() == ZuVector(0, 0, 1)) << polygon.area();
}

TEST(Polygon, DumpWritesAClosedLineAndReportsAFileThatCannotBeWritten) {
  ZuPolygon const polygon(ZuVector(0, 0.1, 1e-20), ZuVector(1, 0, 0), ZuVector(0, 1, -2));
  TemporaryFolder const folder;
  ASSERT_TRUE(polygon.dump(folder.file("polygon")));
  EXPECT_EQ(contents(folder.file("polygon")), "0 0.1 1e-20\n1 0 0\n0 1 -2\n0 0.1 1e-20\n");
  PrintSink sink;
  EXPECT_FALSE(polygon.dump(folder.file("no/such/folder")));
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
  EXPECT_TRUE(a.cross(b) == 7.0 && a.dot(b) == 1.0 && (b - a * 2.0).approxEq(ZuPlanarVector(-5, 1), 0.0));
  EXPECT_DOUBLE_EQ(ZuPlanarVector(3e200, 0).distanceTo(ZuPlanarVector(0, -4e200)), 5e200);
}
