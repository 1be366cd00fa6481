// Distances, contact and crossings of meshes against brute force over all their facets.
#include "geometry/zuAABBCollisionDetection.h"
#include "geometry/zuGeomTriangle.h"
#include "geometry/zuRectangle.h"
#include "geometry/zuShapePointEvent.h"
#include "tests/meshSamples.h"
#include "tests/proximityFixture.h"

namespace {

/// All triangles into which the facets are cut.
std::vector<ZuGeomTriangle> trianglesOf(ZuBasePhysicalExtent const& mesh) {
  ZuTriPhysicalExtent cut;
  cut.fitFromShape(mesh);
  std::vector<ZuGeomTriangle> triangles;
  for (auto const& loop : loopsOf(cut))
    triangles.emplace_back(mesh.point(loop[0]), mesh.point(loop[1]), mesh.point(loop[2]));
  return triangles;
}

template <class Figure>
double nearest(std::vector<ZuGeomTriangle> const& triangles, Figure const& figure) {
  double best = 1e300;
  for (ZuGeomTriangle const& t : triangles) best = std::min(best, t.distanceTo(figure));
  return best;
}

/// How many times the triangles wind about the point: the sum of their solid angles.
double windingNumber(std::vector<ZuGeomTriangle> const& triangles, ZuVector const& p) {
  double halves = 0.0;
  for (ZuGeomTriangle const& t : triangles) {
    ZuVector const a = t.point(0) - p, b = t.point(1) - p, c = t.point(2) - p;
    double const la = a.mag(), lb = b.mag(), lc = c.mag();
    halves += std::atan2(a.dot(b.cross(c)), la * lb * lc + a.dot(b) * lc + b.dot(c) * la + c.dot(a) * lb);
  }
  return halves / (2.0 * std::acos(-1.0));
}

/// Parameter at which the segment crosses the triangle; below 0 when it does not (T. Moeller and B. Trumbore 1997).
double crossing(ZuGeomTriangle const& t, ZuVector const& start, ZuVector const& delta) {
  ZuVector const e1 = t.point(1) - t.point(0), e2 = t.point(2) - t.point(0), h = delta.cross(e2);
  double const determinant = e1.dot(h);
  if (determinant == 0.0) return -1.0;
  ZuVector const s = start - t.point(0), q = s.cross(e1);
  double const u = s.dot(h) / determinant, v = delta.dot(q) / determinant, at = e2.dot(q) / determinant;
  return u >= 0.0 && v >= 0.0 && u + v <= 1.0 && at >= 0.0 && at <= 1.0 ? at : -1.0;
}

class Real : public testing::TestWithParam<std::string> {
 protected:
  void SetUp() override {
    mesh = realMesh(GetParam());
    if (mesh.points().empty()) GTEST_SKIP() << "no shared meshes";
    triangles = trianglesOf(mesh);
    size = ObjMesh::read(sharedFile(GetParam())).size();
  }
  /// Fewer questions where brute force has more facets to look at.
  int questions(int many) const { return triangles.size() < 10000 ? many : many / 5; }
  /// On the surface, near it, and about it.
  ZuVector place() {
    ZuVector const& corner = mesh.point(random.index(mesh.numberOfPoints()));
    return corner + random.vector(size * random.scale(1e-4, 1.0));
  }
  ZuPolyPhysicalExtent mesh;
  std::vector<ZuGeomTriangle> triangles;
  double size = 0.0;
  TracedValues random{17};
};

INSTANTIATE_TEST_SUITE_P(Mesh, Real, testing::ValuesIn(meshFiles()));

}  // namespace

TEST_P(Real, PointsHaveTheDistanceOfTheNearestFacetAndTheSignOfTheWindingNumber) {
  int inside = 0, decided = 0;
  for (int i = 0; i < questions(300); ++i) {
    ZuVector const p = place();
    double const distance = mesh.distanceTo(p), winding = std::abs(windingNumber(triangles, p));
    EXPECT_NEAR(std::abs(distance), nearest(triangles, p), 1e-14 * size);
    double toVertex = 1e300;
    for (ZuVector const& corner : mesh.points()) toVertex = std::min(toVertex, corner.distanceTo(p));
    unsigned int const vertex = mesh.pickNearestVertexIndex(p);
    EXPECT_EQ(mesh.point(vertex).distanceTo(p), toVertex);
    EXPECT_TRUE(mesh.getClosestPointID(p, 0) == vertex && mesh.getClosestPointID(p, 1) == theZuNoIndex);
    if (std::abs(winding - 0.5) < 1e-6) continue;
    ++decided;
    inside += winding > 0.5;
    EXPECT_EQ(std::signbit(distance), winding > 0.5) << winding << ' ' << distance;
    EXPECT_EQ(mesh.checkIntersect(p), winding > 0.5);
  }
  EXPECT_GT(decided, 0.9 * questions(300));
  EXPECT_GT(inside, 0.05 * questions(300));
}

TEST_P(Real, SegmentsAndTrianglesHaveTheDistanceOfTheNearestFacet) {
  auto const check = [this](auto const& figure, ZuGeomTriangle const& asTriangle) {
    double const expected = nearest(triangles, asTriangle), distance = mesh.distanceTo(figure);
    EXPECT_NEAR(std::abs(distance), expected, 1e-14 * size);
    EXPECT_EQ(distance == 0.0, expected == 0.0);
    EXPECT_EQ(mesh.checkIntersect(figure), distance <= 0.0);
    bool inside = false;
    for (unsigned int k = 0; k < 3; ++k) inside = inside || mesh.checkIntersect(asTriangle.point(k));
    EXPECT_EQ(distance < 0.0, inside && expected > 0.0);
  };
  for (int i = 0; i < questions(50); ++i) {
    ZuVector const p = place(), q = p + random.vector(size * random.scale(0.01, 0.5));
    ZuGeomTriangle const triangle(p, q, place());
    check(triangle, triangle);
    check(ZuLineSegment(p, q), ZuGeomTriangle(p, q, q));
  }
}

TEST_P(Real, SegmentsEnterAndLeaveAtTheOutermostCrossings) {
  int hits = 0;
  for (int i = 0; i < questions(200); ++i) {
    ZuVector const p = place(), q = place();
    double first = 2.0, last = -1.0;
    for (ZuGeomTriangle const& t : triangles) {
      double const at = crossing(t, p, q - p);
      if (at >= 0.0) first = std::min(first, at), last = std::max(last, at);
    }
    ZuShapePointEvent event;
    bool const hit = mesh.intersectLineSegment(ZuLineSegment(p, q), event), crosses = last >= 0.0;
    EXPECT_EQ(event.startsInside, mesh.distanceTo(p) < 0.0);
    EXPECT_EQ(event.endsInside, mesh.distanceTo(q) < 0.0);
    ASSERT_EQ(hit, crosses || event.startsInside || event.endsInside);
    EXPECT_EQ(event.hit, hit);
    if (!hit) continue;
    ++hits;
    EXPECT_NEAR(event.entry.t, event.startsInside ? 0.0 : (crosses ? first : 1.0), 1e-9);
    EXPECT_NEAR(event.exit.t, event.endsInside ? 1.0 : (crosses ? last : 0.0), 1e-9);
    EXPECT_TRUE(event.entry.point.approxEq(p + event.entry.t * (q - p), 1e-14 * size));
    EXPECT_NEAR(event.exit.normal.mag(), event.endsInside ? 0.0 : 1.0, 1e-12);
  }
  EXPECT_GT(hits, 0.3 * questions(200));
}

// Coordinates on a small grid: touching, lying in a face, passing along edges and through corners are the rule.
TEST(MeshQuery, OnTheGridOfACubeTouchingIsExact) {
  ZuPolyPhysicalExtent const squares = cube();
  ZuTriPhysicalExtent const triangles = triangleCube();
  for (ZuBasePhysicalExtent const* const mesh : std::vector<ZuBasePhysicalExtent const*>{&squares, &triangles}) {
    for (int i = 0; i < 7 * 7 * 7; ++i) {
      ZuVector const p = ZuVector(i % 7 - 3, i / 7 % 7 - 3, i / 49 - 3) * 0.5;
      ZuVector const past(std::abs(p.x()) - 1.0, std::abs(p.y()) - 1.0, std::abs(p.z()) - 1.0);
      ZuVector const outside(std::max(past.x(), 0.0), std::max(past.y(), 0.0), std::max(past.z(), 0.0));
      double const most = std::max({past.x(), past.y(), past.z()});
      EXPECT_EQ(mesh->distanceTo(p), most > 0.0 ? outside.mag() : most);
      EXPECT_EQ(mesh->checkIntersect(p), most <= 0.0);
      for (int j = 0; j < 7; ++j) {
        ZuVector const q(j % 2 == 0 ? p.x() : -p.x(), p.y(), (j - 3) * 0.5);
        if (p.x() != q.x() && past.x() > 0.0) continue;
        bool const meets =
            past.x() <= 0.0 && past.y() <= 0.0 && std::min(p.z(), q.z()) <= 1.0 && std::max(p.z(), q.z()) >= -1.0;
        ZuShapePointEvent event;
        EXPECT_EQ(mesh->checkIntersect(ZuLineSegment(p, q)), meets) << testing::PrintToString(p);
        EXPECT_EQ(mesh->intersectLineSegment(ZuLineSegment(p, q), event), meets) << testing::PrintToString(q);
      }
    }
  }
}

TEST(MeshQuery, SegmentsAndRectanglesOfACube) {
  ZuPolyPhysicalExtent const mesh = cube();
  ZuShapePointEvent event;
  // Lying in a face it is hit over the whole part that the face holds.
  ASSERT_TRUE(triangleCube().intersectLineSegment(ZuLineSegment(ZuVector(-3, 0.5, 1), ZuVector(1, 0.5, 1)), event));
  EXPECT_TRUE(event.entry.t == 0.5 && event.exit.t == 1.0 && !event.startsInside && !event.endsInside);
  EXPECT_EQ(mesh.distanceTo(ZuRectangle(ZuVector(), ZuVector(0.5, 0, 0), ZuVector(0, 0.75, 0))), -0.25);
  EXPECT_EQ(mesh.distanceTo(ZuRectangle(ZuVector(0, 0, 3), ZuVector(9, 0, 0), ZuVector(0, 9, 0))), 2.0);
  EXPECT_EQ(mesh.distanceTo(ZuRectangle(ZuVector(), ZuVector(1.5, 0, 0), ZuVector(0, 0.5, 0))), 0.0);
}

TEST(MeshQuery, AnOpenBoxIsClosedByItsSolidAnglesAndAnInsideOutOneCountsToo) {
  Loops loops = cubeLoops();
  loops.erase(loops.begin() + 1);  // the top
  auto const open = meshOf<ZuPolyPhysicalExtent>(cubePoints(), loops);
  for (auto& loop : loops) std::reverse(loop.begin(), loop.end());
  auto const reversed = meshOf<ZuPolyPhysicalExtent>(cubePoints(), loops);
  // On the axis the open square at height 1 covers more than half of what is seen from above about z = 0.99...
  for (auto const* const mesh : {&open, &reversed}) {
    for (double const z : {-1.0001, 0.5, 0.9999, 1.0001})
      EXPECT_EQ(mesh->distanceTo(ZuVector(0, 0, z)) < 0.0, std::abs(z) < 1.0) << z;
  }
}

TEST(MeshQuery, ADentInAPolygonIsOutside) {
  // A prism over an L: its loop of six corners starts at the dent.
  std::vector<ZuVector> points = {{1, 1, 0}, {1, 2, 0}, {0, 2, 0}, {0, 0, 0}, {2, 0, 0}, {2, 1, 0}};
  for (std::size_t i = 0; i < 6; ++i) points.push_back(points[i] + ZuVector(0, 0, 1));
  Loops loops = {{5, 4, 3, 2, 1, 0}, {6, 7, 8, 9, 10, 11}};
  for (unsigned int i = 0; i < 6; ++i) loops.push_back({i, (i + 1) % 6, 6 + (i + 1) % 6, 6 + i});
  auto const polygons = meshOf<ZuPolyPhysicalExtent>(points, loops);
  ZuTriPhysicalExtent triangles;
  triangles.fitFromShape(polygons);
  EXPECT_EQ(triangles.totalNumberOfFacets(), 20U);
  for (ZuBasePhysicalExtent const* const mesh : std::vector<ZuBasePhysicalExtent const*>{&polygons, &triangles}) {
    for (double const z : {0.5, 0.0}) EXPECT_EQ(mesh->distanceTo(ZuVector(1.75, 1.5, z)), 0.5);
    EXPECT_EQ(mesh->distanceTo(ZuVector(0.5, 1.5, 0.5)), -0.5);
  }
  for (double const x : {0.3, 1.3}) {
    EXPECT_EQ(polygons.checkFacetIntersect(0, 0, ZuVector(x, 1.7, 0)), x < 1.0);
    EXPECT_EQ(polygons.checkFacetIntersect(0, 1, ZuLineSegment(ZuVector(x, 1.7, 0.9), ZuVector(x, 1.7, 1))), x < 1.0);
  }
}

TEST(MeshQuery, WithoutFacetsThereIsNothingToMeet) {
  ZuTriPhysicalExtent mesh;
  ZuShapePointEvent event;
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(mesh.distanceTo(ZuVector()), 1e300);
    EXPECT_FALSE(mesh.checkIntersect(ZuVector()) || mesh.checkIntersect(ZuLineSegment()));
    EXPECT_FALSE(mesh.intersectLineSegment(ZuLineSegment(), event));
    EXPECT_EQ(mesh.pickNearestVertexIndex(ZuVector()), theZuNoIndex);
    mesh.setPoints(ZuXmlVectorVector({{0, 0, 0}, {std::nan(""), 0, 0}}));
    mesh.addFacet(mesh.addGroup(""), {0, 0, 1});
  }
  EXPECT_EQ(cube().distanceTo(ZuVector(std::nan(""), 0, 0)), 1e300);
}

class MeshPair : public ProximityTest {};

TEST_F(MeshPair, BoxesGiveTheNearestPointsAndFeaturesOfNonConvexMeshes) {
  TracedValues random(23);
  ZuPolyPhysicalExtent sorter = realMesh("data/objects/shape_sorter.obj");
  ZuPolyPhysicalExtent const spot = realMesh("data/objects/spot_polygons.obj");
  if (sorter.points().empty()) GTEST_SKIP() << "no shared meshes";
  sorter.setUseAABB(true);
  auto const triangles1 = trianglesOf(sorter), triangles2 = trianglesOf(spot);
  int touching = 0;
  for (int i = 0; i < 60; ++i) {
    ZuCoordinateSystemTransformation const xform(random.vector(0.35), random.orientation());
    double expected = 1e300;
    for (ZuGeomTriangle const& t : triangles2) expected = std::min(expected, nearest(triangles1, xform * t));
    if (sorter.checkIntersect(xform * spot.point(0)) || spot.checkIntersect(xform.inverse() * sorter.point(0)))
      expected = 0.0;
    ZuVector w1, w2, v1, v2;
    EXPECT_NEAR(witness(sorter, spot, xform, w1, w2), expected, 1e-14);
    EXPECT_NEAR(distance(sorter, spot, xform), expected, 1e-14);
    EXPECT_EQ(touch(sorter, spot, xform), expected == 0.0);
    EXPECT_NEAR(w1.distanceTo(xform * w2), expected, 1e-14);
    double reversed = 0.0;
    ZuAABBCollisionDetection().nearestPoints(spot, sorter, xform.inverse(), nullptr, v2, v1, reversed);
    EXPECT_NEAR(reversed, expected, 1e-14);
    touching += expected == 0.0;
    if (expected == 0.0) {
      EXPECT_NE(m_State.getProximityData(m_Descriptor.key1(), m_Descriptor.key2())->numPenetrationPoints(), 0U);
      continue;
    }
    EXPECT_NEAR(std::abs(sorter.distanceTo(w1)) + std::abs(spot.distanceTo(w2)), 0.0, 1e-14);
    ZuShapeProximityData const* const data = m_State.getProximityData(m_Descriptor.key1(), m_Descriptor.key2());
    ASSERT_NE(data, nullptr);
    unsigned int const corner = sorter.pickNearestVertexIndex(w1);
    EXPECT_EQ(data->closestPoint1() == ZuShapeProximityData::POINT, sorter.point(corner).distanceTo(w1) < 1e-13);
    EXPECT_EQ(sorter.nearPointID(*data), corner);
  }
  EXPECT_TRUE(touching > 10 && touching < 50) << touching;
}

TEST_F(MeshPair, FeaturesOfTheNearestPoints) {
  ZuTriPhysicalExtent small = triangleCube(), large = triangleCube();
  small.scaleBy(0.25);
  large.setUseAABB(true);
  using Data = ZuShapeProximityData;
  double const root = std::sqrt(0.5), eighth = std::acos(-1.0) / 8;
  ZuOrientation const edgeDown(std::cos(eighth), 0, std::sin(eighth), 0),
      tilt(std::cos(eighth), -std::sin(eighth), 0, 0);
  ZuOrientation cornerDown;
  cornerDown.setFromAngleAxis(std::acos(std::sqrt(1.0 / 3.0)), ZuVector(root, -root, 0));
  for (auto const& [place, orientation, feature1, feature2, expected] :
       std::vector<std::tuple<ZuVector, ZuOrientation, Data::ZuClosestType, Data::ZuClosestType, double>>{
           {{0.6, -0.3, 2}, cornerDown, Data::FACET, Data::POINT, 1.0 - 0.25 * std::sqrt(3.0)},
           {{0.1, 1 + root, 1 + root}, tilt * edgeDown, Data::LINE, Data::LINE, 1.0 - 0.25 * std::sqrt(2.0)},
           {{2, 2, 2}, {}, Data::POINT, Data::POINT, 0.75 * std::sqrt(3.0)},
           {{0.1, 0.2, 0.3}, {}, Data::POINT, Data::POINT, 0.0}}) {
    ZuCoordinateSystemTransformation const xform(place, orientation);
    Data data;
    ZuVector w1, w2;
    double distance = 0.0;
    EXPECT_EQ(large.getAABBProcessor().nearestPoints(large, small, xform, &data, w1, w2, distance), expected == 0.0);
    EXPECT_NEAR(distance, expected, 1e-15);
    EXPECT_TRUE(data.closestPoint1() == feature1 && data.closestPoint2() == feature2) << expected;
    EXPECT_NEAR(w1.distanceTo(xform * w2), expected, 1e-15);
  }
}
