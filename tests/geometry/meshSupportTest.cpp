// Support points of meshes: the climb, its ties and messages, the scan, and the table of the engine.
#include "tests/allocationCounter.h"
#include "tests/meshSamples.h"

namespace {

double highest(ZuXmlVectorVector const& points, ZuVector const& direction) {
  double best = points[0].dot(direction);
  for (ZuVector const& p : points) best = std::max(best, p.dot(direction));
  return best;
}

std::string const theNoInfo = "ZuBasePhysicalExtent::supportPoint this physical ext has no neighbor info.";
std::string const theEmpty = "ZuBasePhysicalExtent::supportPoint m_VertexNeighborFacetsVector empty.";
std::string const theOutOfBound =
    "ZuPolyPhysicalExtent::bestNeighbor index to m_VertexNeighborFacetsVector out of bound";

}  // namespace

TEST(MeshSupport, ZeroDirectionGivesTheFirstUsedPointOfAConvexMeshAndPointZeroOtherwise) {
  Loops loops = cubeLoops();
  std::vector<ZuVector> points = cubePoints();
  points.insert(points.begin(), 2, ZuVector(0.5, 0.5, 0.5));
  for (auto& loop : loops)
    for (unsigned int& corner : loop) corner += 2;
  auto mesh = meshOf<ZuPolyPhysicalExtent>(points, loops);
  mesh.setSupportPointID(8);
  EXPECT_EQ(mesh.supportPoint(ZuVector()), points[0]);
  EXPECT_TRUE(mesh.supportPoint(ZuVector(0, 0, 1)) == points[6] && mesh.supportPointID() == 6) << "lowest of equals";
  EXPECT_EQ(mesh.computeSupportPoint(ZuVector(-1, 0, 0)), points[2]);
  mesh.setIsConvex(true);
  mesh.initNeighborInformation();
  EXPECT_TRUE(mesh.supportPoint(ZuVector()) == points[2] && mesh.supportPointID() == 2);
  EXPECT_EQ(mesh.computeSupportPoint(ZuVector()), points[2]);
  EXPECT_EQ(mesh.supportPoint(ZuVector(1, 1, 1)), points[9]);
}

TEST(MeshSupport, WithoutNeighboursAConvexMeshSaysSoAndStaysAtPointZero) {
  ZuPolyPhysicalExtent polygons = cube();
  ZuTriPhysicalExtent triangles = triangleCube(), empty;
  PrintSink sink;
  for (ZuBasePhysicalExtent* const mesh : std::vector<ZuBasePhysicalExtent*>{&polygons, &triangles, &empty}) {
    ZuVector const first = mesh == &empty ? ZuVector() : mesh->point(0);
    mesh->setIsConvex(true);
    EXPECT_EQ(mesh->supportPoint(ZuVector()), first);
    EXPECT_EQ(sink.take(), Messages{theNoInfo});
    EXPECT_EQ(mesh->supportPoint(ZuVector(1, 1, 1)), first);
    EXPECT_EQ(sink.take(), mesh == &polygons ? (Messages{theEmpty, theOutOfBound}) : Messages{theEmpty});
    // The engine's support points do without: they build the lists.
    EXPECT_EQ(mesh->computeSupportPoint(ZuVector(1, 1, 1)), mesh == &empty ? first : mesh->point(7));
    EXPECT_TRUE(sink.take().empty());
  }
}

// From the lowest corner of an octahedron all four neighbours are equally high.
TEST(MeshSupport, ClimbTakesTheLastOfEqualNeighboursAndMovesOnAlongTies) {
  ZuTriPhysicalExtent mesh = meshOf<ZuTriPhysicalExtent>(
      {{0, 0, -1}, {1, 0, 0}, {0, 1, 0}, {-1, 0, 0}, {0, -1, 0}, {0, 0, 1}},
      {{0, 2, 1}, {0, 3, 2}, {0, 4, 3}, {0, 1, 4}, {5, 1, 2}, {5, 2, 3}, {5, 3, 4}, {5, 4, 1}});
  mesh.setIsConvex(true);
  mesh.initNeighborInformation();
  double dot = 0.0;
  unsigned int index = 0;
  EXPECT_TRUE(mesh.bestNeighbor(ZuVector(0, 0, 1), dot, index));
  EXPECT_TRUE(index == 4 && dot == 0.0) << "2, 1, 3, 4: in the order of the facets, loop by loop";
  EXPECT_TRUE(mesh.bestNeighbor(ZuVector(0, 0, 1), dot, index));
  EXPECT_TRUE(index == 0 && dot == -1e16) << "nobody is left, point 0 itself having been visited";
  // Points 1 and 2 are equally far; from either, where the last answer was, the climb takes the other.
  for (unsigned int const start : {1U, 2U}) {
    mesh.setSupportPointID(start);
    EXPECT_EQ(mesh.supportPoint(ZuVector(1, 1, 0)), mesh.point(3 - start));
  }
}

TEST(MeshSupport, CornersThatAreNotThereAreToldAndPassedOver) {
  ZuTriPhysicalExtent triangles = triangleCube();
  ZuPolyPhysicalExtent polygons = cube();
  PrintSink sink;
  double dot = 0.0;
  unsigned int index = 0;
  auto const check = [&](auto& mesh, std::string const& message) {
    mesh.addFacet(0, {0, 1, 77});
    mesh.findVertexNeighborFacetsVector();
    EXPECT_TRUE(mesh.bestNeighbor(ZuVector(1, 0, 0), dot, index));
    EXPECT_EQ(sink.take(), Messages{message});
  };
  check(triangles, "Error");
  check(polygons, "Error\n");
  polygons.setSupportPointID(9);
  EXPECT_FALSE(polygons.bestNeighbor(ZuVector(1, 0, 0), dot, index));
  EXPECT_EQ(sink.take(), Messages{theOutOfBound});
}

TEST(MeshSupport, HullsOfRealMeshesAnswerTheFarthestVertex) {
  TracedValues random(5);
  for (std::string const& name : meshFiles()) {
    SCOPED_TRACE(name);
    ZuPolyPhysicalExtent const mesh = realMesh(name);
    if (mesh.points().empty()) GTEST_SKIP() << "no shared meshes";
    ZuTriPhysicalExtent hull;
    ASSERT_TRUE(hull.convexHull(mesh.points()));
    double const rounding = 1e-10 * ObjMesh::read(sharedFile(name)).size();  // the hull's disturbance is 4e-11
    for (int i = 0; i < 300; ++i) {
      ZuVector const direction = i % 3 == 0 ? random.direction() * random.scale(1e-30, 1e6) : random.direction();
      double const expected = highest(mesh.points(), direction), tolerance = rounding * direction.mag();
      EXPECT_NEAR(hull.supportPoint(direction).dot(direction), expected, tolerance);
      if (i % 2 == 0) hull.setSupportPointID(random.index(2 * hull.numberOfPoints()));
      EXPECT_NEAR(hull.computeSupportPoint(direction).dot(direction), expected, tolerance);
      EXPECT_EQ(mesh.supportPoint(direction).dot(direction), expected);
    }
  }
}

TEST(MeshSupport, TheEngineSeesNoSeamsNorFacetsWithVerticesOfTheirOwnAndNothingAllocates) {
  TracedValues random(3);
  ZuXmlVectorVector ball;
  for (int i = 0; i < 100; ++i) ball.pushBack(random.direction());
  ZuTriPhysicalExtent hull;
  ASSERT_TRUE(hull.convexHull(ball));
  std::vector<ZuVector> points;
  Loops loops;
  for (auto const& loop : loopsOf(hull)) {
    auto const first = static_cast<unsigned int>(points.size());
    loops.push_back({first, first + 1, first + 2});
    for (unsigned int const corner : loop) points.push_back(hull.point(corner));
  }
  auto soup = meshOf<ZuTriPhysicalExtent>(points, loops);
  // Vertices of the facets on one side only: a seam around the ball.
  Loops halves = loopsOf(hull);
  ZuXmlVectorVector twice = hull.points();
  for (ZuVector const& p : hull.points()) twice.pushBack(p);
  for (auto& loop : halves) {
    if (hull.point(loop[0]).x() > 0.0) std::for_each(loop.begin(), loop.end(), [](unsigned int& i) { i += 100; });
  }
  auto seam = meshOf<ZuTriPhysicalExtent>({twice.begin(), twice.end()}, halves);
  soup.setIsConvex(true);
  seam.setIsConvex(true);
  for (auto const* mesh : {&hull, &soup, &seam})
    mesh->computeSupportPoint(ZuVector(1, 0, 0));  // builds what is built once
  AllocationCounter const counter;
  for (int i = 0; i < 100; ++i) {
    ZuVector const direction = random.direction();
    hull.supportPoint(direction);
    hull.computeSupportPoint(direction);
    for (ZuBasePhysicalExtent const* const mesh : {&soup, &seam}) {
      EXPECT_EQ(mesh->computeSupportPoint(direction).dot(direction), highest(hull.points(), direction));
    }
  }
  EXPECT_EQ(counter.count(), 0U);
}

TEST(MeshSupport, TheEngineFindsTheHighestPointOfAnySetInAnyDirection) {
  TracedValues random(7);
  ZuVector const x = random.direction(), y = x.cross(random.direction()).unitVector(), z = x.cross(y);
  std::vector<ZuXmlVectorVector> sets;
  auto const add = [&sets](int count, auto const& pointOf) {
    sets.emplace_back();
    for (int i = 0; i < count; ++i) sets.back().pushBack(pointOf(i));
  };
  for (int const count : {1, 3, 12, 13, 64, 1000}) add(count, [&](int) { return random.direction(); });
  add(1000, [&](int) { return random.vector(); });
  add(200, [&](int) { return random.direction() * 1e-3 + ZuVector(1e6, -1e6, 1e6); });
  add(200, [&](int) { return random.direction() * 1e306; });
  add(300, [&](int i) { return x * (i % 10) + y * (i / 10 % 10) + z * (i / 100); });                 // flat sides
  add(300, [&](int i) { return x * std::sin(i / 2) + y * std::cos(i / 2) + z * (i % 2); });          // a prism
  add(900, [&](int i) { return ZuVector(i % 3 * 1e-16, i / 3 % 30 * 1e-16, i == 0 ? 1.0 : 0.0); });  // near copies
  for (ZuXmlVectorVector points : sets) {
    ZuTriPhysicalExtent mesh;
    mesh.setPoints(points);
    mesh.setIsConvex(true);
    double largest = 0.0;
    for (ZuVector const& p : points) largest = std::max(largest, 1.5 * p.mag());
    for (int i = 0; i < 6000; ++i) {
      if (i == 1000) mesh.setPoint(0, points[0] = points[0] * 1.5);  // answers by a scan, then by a new table
      ZuVector d = random.direction();
      if (i % 2 == 0) d = ZuVector(std::round(2.0 * d.x()), std::round(2.0 * d.y()), std::round(2.0 * d.z()));
      if (i % 3 == 0) d = d + random.vector(1e-16);
      double const rounding = 1e-15 * largest * d.mag();
      ASSERT_GE(mesh.computeSupportPoint(d).dot(d), highest(points, d) - rounding) << points.size();
    }
  }
}

TEST(MeshSupport, NumbersOutOfAllBoundsEndTheClimb) {
  ZuTriPhysicalExtent mesh = triangleCube();
  mesh.setIsConvex(true);
  mesh.init();
  double const inf = std::numeric_limits<double>::infinity();
  for (ZuVector const& direction : {ZuVector(-1e300, -1e300, 1e300), ZuVector(std::nan(""), 1, 0), ZuVector(inf, 0, 0),
                                    ZuVector(-1e17, -2e17, -3e17)}) {
    mesh.supportPoint(direction);
    mesh.computeSupportPoint(direction);
    EXPECT_LT(mesh.supportPointID(), 8U);
  }
  EXPECT_EQ(mesh.computeSupportPoint(ZuVector(1e-200, -1e-200, 1e-200)), mesh.point(5));
}
