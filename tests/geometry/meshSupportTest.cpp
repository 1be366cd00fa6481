// Support points of meshes: the climb, its ties and messages, and the scan.
#include <gtest/gtest.h>

#include "geometry/zuLineSegment.h"
#include "tests/allocationCounter.h"
#include "tests/meshSamples.h"
#include "tests/printSink.h"
#include "tests/randomValues.h"
#include "tests/valuePrinters.h"

namespace {

double highest(ZuXmlVectorVector const& points, ZuVector const& direction) {
  double best = points[0].dot(direction);
  for (ZuVector const& p : points) best = std::max(best, p.dot(direction));
  return best;
}

/// A triangle mesh that counts the steps of its climbs.
class Counting : public ZuTriPhysicalExtent {
 public:
  mutable unsigned int steps = 0;
  bool bestNeighbor(ZuVector const& direction, double& dot, unsigned int& index) const override {
    ++steps;
    return ZuTriPhysicalExtent::bestNeighbor(direction, dot, index);
  }
};

ZuXmlVectorVector ballPoints(unsigned int count) {
  RandomValues random(count);
  ZuXmlVectorVector points;
  for (unsigned int i = 0; i < count; ++i) points.pushBack(random.direction());
  return points;
}

std::string const theNoInfo = "ZuBasePhysicalExtent::supportPoint this physical ext has no neighbor info.";
std::string const theEmpty = "ZuBasePhysicalExtent::supportPoint m_VertexNeighborFacetsVector empty.";
std::string const theOutOfBound =
    "ZuPolyPhysicalExtent::bestNeighbor index to m_VertexNeighborFacetsVector out of bound";

}  // namespace

TEST(MeshSupport, ZeroDirectionGivesTheFirstUsedPointOfAConvexMeshAndPointZeroOtherwise) {
  Loops loops = cubeLoops();
  std::vector<ZuVector> points = cubePoints();
  points.insert(points.begin(), 2, ZuVector(5, 5, 5));
  for (auto& loop : loops) {
    for (unsigned int& corner : loop) corner += 2;
  }
  auto mesh = meshOf<ZuPolyPhysicalExtent>(points, loops);
  mesh.setSupportPointID(7);
  EXPECT_EQ(mesh.supportPoint(ZuVector()), points[0]);
  mesh.setIsConvex(true);
  mesh.initNeighborInformation();
  EXPECT_EQ(mesh.supportPoint(ZuVector()), points[2]);
  EXPECT_EQ(mesh.supportPointID(), 2U);
  EXPECT_EQ(mesh.computeSupportPoint(ZuVector()), points[2]);
  EXPECT_EQ(mesh.supportPoint(ZuVector(1, 1, 1)), points[9]);
}

TEST(MeshSupport, WithoutNeighboursAConvexMeshSaysSoAndStaysAtPointZero) {
  ZuPolyPhysicalExtent polygons = cube();
  ZuTriPhysicalExtent triangles = triangleCube();
  for (ZuBasePhysicalExtent* const mesh :
       {static_cast<ZuBasePhysicalExtent*>(&polygons), static_cast<ZuBasePhysicalExtent*>(&triangles)}) {
    mesh->setIsConvex(true);
    PrintSink sink;
    EXPECT_EQ(mesh->supportPoint(ZuVector()), mesh->point(0));
    EXPECT_EQ(sink.take(), std::vector<std::string>{theNoInfo});
    EXPECT_EQ(mesh->supportPoint(ZuVector(1, 1, 1)), mesh->point(0));
    std::vector<std::string> expected = {theEmpty};
    if (mesh == &polygons) expected.push_back(theOutOfBound);
    EXPECT_EQ(sink.take(), expected);
    // The engine's support points do without: they build the lists.
    EXPECT_EQ(mesh->computeSupportPoint(ZuVector(1, 1, 1)), mesh->point(7));
    EXPECT_TRUE(sink.take().empty());
  }
  PrintSink sink;
  ZuTriPhysicalExtent empty;
  empty.setIsConvex(true);
  EXPECT_EQ(empty.computeSupportPoint(ZuVector()), ZuVector());
  EXPECT_TRUE(sink.take().empty());
  EXPECT_EQ(empty.supportPoint(ZuVector(1, 0, 0)), ZuVector());
  EXPECT_EQ(sink.take(), std::vector<std::string>{theEmpty});
  EXPECT_EQ(empty.supportPoint(ZuVector()), ZuVector());
  EXPECT_EQ(sink.take(), std::vector<std::string>{theNoInfo});
}

TEST(MeshSupport, ScanOfANonConvexMeshKeepsTheLowestOfEquals) {
  ZuPolyPhysicalExtent mesh = cube();
  mesh.setSupportPointID(6);
  EXPECT_EQ(mesh.supportPoint(ZuVector(0, 0, 1)), mesh.point(4));
  EXPECT_EQ(mesh.supportPointID(), 4U);
  EXPECT_EQ(mesh.computeSupportPoint(ZuVector(-1, 0, 0)), mesh.point(0));
}

// From corner 0 of the cube the top is two steps away; of the two neighbours with equal products the last one that a
// facet names is taken, and among the four corners of the top the climb goes on until all neighbours are visited.
TEST(MeshSupport, ClimbTakesTheLastOfEqualNeighboursAndMovesOnAlongTies) {
  ZuTriPhysicalExtent mesh = meshOf<ZuTriPhysicalExtent>(
      {{0, 0, -1}, {1, 0, 0}, {0, 1, 0}, {-1, 0, 0}, {0, -1, 0}, {0, 0, 1}},
      {{0, 2, 1}, {0, 3, 2}, {0, 4, 3}, {0, 1, 4}, {5, 1, 2}, {5, 2, 3}, {5, 3, 4}, {5, 4, 1}});
  mesh.setIsConvex(true);
  mesh.initNeighborInformation();
  double dot = 0.0;
  unsigned int index = 0;
  EXPECT_TRUE(mesh.bestNeighbor(ZuVector(0, 0, 1), dot, index));
  EXPECT_EQ(index, 4U);  // 2, 1, 3, 4: in the order of the facets, loop by loop
  EXPECT_EQ(dot, 0.0);
  EXPECT_TRUE(mesh.bestNeighbor(ZuVector(0, 0, 1), dot, index));  // nobody is left, point 0 itself having been visited
  EXPECT_EQ(index, 0U);
  EXPECT_EQ(dot, -1e16);
  // All of the equator is equally far along x + y = 0 planes; the tie is taken.
  mesh.setSupportPointID(1);
  EXPECT_EQ(mesh.supportPoint(ZuVector(1, 1, 0)), mesh.point(2));
  mesh.setSupportPointID(2);
  EXPECT_EQ(mesh.supportPoint(ZuVector(1, 1, 0)), mesh.point(1));
}

TEST(MeshSupport, CornersThatAreNotThereAreToldAndPassedOver) {
  ZuTriPhysicalExtent triangles = triangleCube();
  ZuPolyPhysicalExtent polygons = cube();
  PrintSink sink;
  double dot = 0.0;
  unsigned int index = 0;
  triangles.addFacet(0, {0, 1, 77});
  triangles.findVertexNeighborFacetsVector();
  EXPECT_TRUE(triangles.bestNeighbor(ZuVector(1, 0, 0), dot, index));
  EXPECT_EQ(sink.take(), std::vector<std::string>{"Error"});
  polygons.addFacet(0, {0, 1, 77});
  polygons.findVertexNeighborFacetsVector();
  EXPECT_TRUE(polygons.bestNeighbor(ZuVector(1, 0, 0), dot, index));
  EXPECT_EQ(sink.take(), std::vector<std::string>{"Error\n"});
  polygons.setSupportPointID(9);
  EXPECT_FALSE(polygons.bestNeighbor(ZuVector(1, 0, 0), dot, index));
  EXPECT_EQ(sink.take(), std::vector<std::string>{theOutOfBound});
}

TEST(MeshSupport, ANearbyDirectionStartsFromTheLastAnswer) {
  Counting mesh;
  ASSERT_TRUE(mesh.convexHull(ballPoints(2000)));
  mesh.supportPoint(ZuVector(0.1, 0.2, 1.0));
  unsigned int const cold = mesh.steps;
  mesh.steps = 0;
  mesh.supportPoint(ZuVector(0.1, 0.201, 1.0));
  EXPECT_LE(mesh.steps, 3U);
  EXPECT_GT(cold, 5U);
}

TEST(MeshSupport, HullsOfRealMeshesAnswerTheFarthestVertex) {
  RandomValues random(5);
  SCOPED_TRACE(random.trace());
  for (std::string const& name : meshFiles()) {
    SCOPED_TRACE(name);
    ZuPolyPhysicalExtent const mesh = realMesh(name);
    if (mesh.points().empty()) GTEST_SKIP() << "no shared meshes";
    ZuTriPhysicalExtent hull;
    ASSERT_TRUE(hull.convexHull(mesh.points()));
    double const rounding = 1e-10 * ObjMesh::read(sharedFile(name)).size();  // the hull's disturbance is 4e-11
    for (int i = 0; i < 300; ++i) {
      ZuVector const direction = i % 3 == 0 ? random.direction() * random.scale(1e-30, 1e6) : random.direction();
      double const expected = highest(mesh.points(), direction);
      double const tolerance = rounding * direction.mag();
      EXPECT_NEAR(hull.supportPoint(direction).dot(direction), expected, tolerance);
      if (i % 2 == 0) hull.setSupportPointID(random.index(2 * hull.numberOfPoints()));
      EXPECT_NEAR(hull.computeSupportPoint(direction).dot(direction), expected, tolerance);
      EXPECT_EQ(mesh.supportPoint(direction).dot(direction), expected);
    }
  }
}

TEST(MeshSupport, FacetsWithVerticesOfTheirOwnAreScannedForTheEngine) {
  ZuTriPhysicalExtent hull;
  ASSERT_TRUE(hull.convexHull(ballPoints(100)));
  std::vector<ZuVector> points;
  Loops loops;
  for (auto const& loop : loopsOfFacets(hull)) {
    loops.push_back({});
    for (unsigned int const corner : loop) {
      loops.back().push_back(static_cast<unsigned int>(points.size()));
      points.push_back(hull.point(corner));
    }
  }
  auto soup = meshOf<ZuTriPhysicalExtent>(points, loops);
  soup.setIsConvex(true);
  RandomValues random(3);
  for (int i = 0; i < 100; ++i) {
    ZuVector const direction = random.direction();
    EXPECT_EQ(soup.computeSupportPoint(direction).dot(direction), highest(hull.points(), direction));
  }
}

TEST(MeshSupport, ConvexSupportPointsDoNotAllocate) {
  ZuTriPhysicalExtent mesh;
  ASSERT_TRUE(mesh.convexHull(ballPoints(500)));
  mesh.computeSupportPoint(ZuVector(1, 0, 0));
  RandomValues random(9);
  AllocationCounter const counter;
  for (int i = 0; i < 100; ++i) {
    mesh.computeSupportPoint(random.direction());
    mesh.supportPoint(random.direction());
  }
  EXPECT_EQ(counter.count(), 0U);
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
