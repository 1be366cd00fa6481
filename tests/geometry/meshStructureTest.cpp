// Neighbours, lines and normals of meshes, clean and dirty.
#include <set>

#include "geometry/zuPlane.h"
#include "geometry/zuPolygon.h"
#include "tests/meshSamples.h"

namespace {

template <class T>
std::vector<T> items(ZuListView<T> list) {
  return {list.begin(), list.end()};
}

using Indices = std::vector<unsigned int>;
using Facets = std::vector<ZuFacetIndex>;

/// A mesh whose neighbour lists are what a test says.
class Misled : public ZuTriPhysicalExtent {
 public:
  bool hidesNeighbors = false;
  IndexLists neighbors;
  IndexLists const& vertexNeighborVerticesVector() const override {
    return hidesNeighbors ? neighbors : ZuTriPhysicalExtent::vertexNeighborVerticesVector();
  }
};

std::string const theClass = "ZuBasePhysicalExtent::";

}  // namespace

TEST(MeshStructure, NeighboursAreListedInTheOrderInWhichFacetsMeetTheEdges) {
  ZuPolyPhysicalExtent mesh = cube();
  mesh.initNeighborInformation();
  EXPECT_EQ(items(mesh.vertexNeighborVerticesVector()[0]), (Indices{2, 1, 4}));
  EXPECT_EQ(items(mesh.vertexNeighborVerticesVector()[7]), (Indices{5, 6, 3}));
  EXPECT_EQ(items(mesh.vertexNeighborFacetsVector()[0]), (Facets{{0, 0}, {0, 2}, {0, 4}}));
  EXPECT_TRUE(mesh.vertexNeighborVerticesVector()[8].empty());
  ASSERT_EQ(mesh.lineAndNeighborsVector().size(), 12U);
  ZuLineAndNeighbors const& first = mesh.lineAndNeighborsVector()[0];
  EXPECT_TRUE(first.vertexIndex0() == 0 && first.vertexIndex1() == 2 && first.lineLength() == 2.0);
  EXPECT_EQ(items(first.facetIndexVector()), (Facets{{0, 0}, {0, 4}}));
  EXPECT_EQ(items(mesh.vertexNeighborLinesVector()[0]), (Indices{0, 1, 2}));
  EXPECT_EQ(items(mesh.facetNeighborLinesVector()[0][0]), (Indices{0, 5, 3, 1}));
}

TEST(MeshStructure, AnEdgeThatAFacetHasTwiceIsOnePairAndAnEdgeOfNoLengthIsNone) {
  auto mesh = meshOf<ZuPolyPhysicalExtent>(cubePoints(), {{0, 1, 2, 1}, {3, 3, 4}});
  mesh.findLineAndNeighbors();
  EXPECT_EQ(items(mesh.vertexNeighborVerticesVector()[1]), (Indices{0, 2}));
  EXPECT_EQ(items(mesh.vertexNeighborVerticesVector()[0]), (Indices{1}));
  EXPECT_EQ(mesh.lineAndNeighborsVector().size(), 3U);
  PrintSink sink;
  mesh.findFacetNeighborLinesVector();
  EXPECT_EQ(sink.take(),
            Messages{theClass + "findFacetNeighborLinesVector line number wrong. numLines (3) numPoints (9)\n"});
  EXPECT_EQ(items(mesh.facetNeighborLinesVector()[0][0]), (Indices{0, 1}));
}

TEST(MeshStructure, ListsThatDoNotFitThePointsAreToldAndLeaveTheStructureUnfinished) {
  auto mesh = meshOf<Misled>({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}});
  mesh.findLineAndNeighbors();
  mesh.hidesNeighbors = true;
  PrintSink sink;
  mesh.findVertexNeighborLines();
  EXPECT_EQ(sink.take(), Messages{theClass + "findVertexNeighborLines m_VertexNeighborVerticesVector size mismatch"});
  EXPECT_TRUE(mesh.vertexNeighborLinesVector().empty());
  mesh.resetNeighborFlags();
  mesh.findLineAndNeighbors();
  EXPECT_EQ(sink.take(), Messages{theClass + "findLineAndNeighbors m_VertexNeighborVerticesVector size mismatch"});
  for (unsigned int const neighbor : {1U, 7U, 0U}) {
    mesh.neighbors.beginList();
    if (neighbor != 0) mesh.neighbors.pushBack(neighbor);
  }
  mesh.findLineAndNeighbors();
  EXPECT_EQ(sink.take(), Messages{"ZuBasePhysicalExtent::findLineAndNeighbors vertex id exceed size."});
  EXPECT_EQ(mesh.lineAndNeighborsVector().size(), 2U);
  auto beyond = meshOf<ZuTriPhysicalExtent>({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}, {0, 1, 99}});
  beyond.findLineAndNeighbors();
  EXPECT_EQ(sink.take(), Messages(2, "ZuBasePhysicalExtent::findLineAndNeighbors vertex id exceed size."));
}

TEST(MeshStructure, PlacesThatAreNotThereAreNeutral) {
  auto bad = meshOf<ZuTriPhysicalExtent>(cubePoints(), {{0, 1, 99}, {0, theZuNoIndex, 2}, {0, 1, 2}});
  bad.init();
  EXPECT_EQ(items(bad.vertexNeighborVerticesVector()[0]), (Indices{1, 2}));
  EXPECT_EQ(bad.getPolygon(0, 0).numberOfPoints(), 2U);
  EXPECT_EQ(bad.distanceTo(ZuVector(-1, -1, -3)), 2.0);
  ZuPolyPhysicalExtent const mesh = cube();
  PrintSink sink;
  EXPECT_EQ(mesh.point(9), ZuVector());
  EXPECT_EQ(sink.take(), Messages{"ZuBasePhysicalExtent::point-->invalid index"});
  for (unsigned int none :
       {mesh.getFacetPointIndex(0, 6, 0), mesh.getFacetPointIndex(0, 0, 4), mesh.getFacetNormalIndex(1, 0, 0)})
    EXPECT_EQ(none, theZuNoIndex);
  EXPECT_EQ(mesh.numberOfPointsInFacet(7, 7) + mesh.getPolygon(1, 0).numberOfPoints(), 0U);
  EXPECT_EQ(mesh.getGroupSurfaceKey(1) + mesh.getGroupSurfaceKey(0), "defaultSkin");
}

TEST(MeshStructure, RealMeshesHaveTheNeighboursThatSetsSay) {
  std::vector<std::string> files = meshFiles();
  files.push_back("data/objects/lego.obj");
  std::size_t branchings = 0;
  for (std::string const& name : files) {
    SCOPED_TRACE(name);
    ZuPolyPhysicalExtent mesh = realMesh(name, &name == &files.back());
    if (mesh.points().empty()) GTEST_SKIP() << "no shared meshes";
    Loops const loops = loopsOf(mesh);
    std::vector<std::set<unsigned int>> facetsOf(mesh.points().size());
    std::set<std::pair<unsigned int, unsigned int>> edges;
    for (unsigned int facet = 0; facet < loops.size(); ++facet) {
      for (std::size_t k = 0; k < loops[facet].size(); ++k) {
        unsigned int const a = loops[facet][k], b = loops[facet][(k + 1) % loops[facet].size()];
        edges.insert({std::min(a, b), std::max(a, b)});
        facetsOf[a].insert(facet);
      }
    }
    PrintSink sink;
    mesh.init();
    std::size_t branching = 0;
    ASSERT_EQ(mesh.lineAndNeighborsVector().size(), edges.size());
    for (ZuLineAndNeighbors const& line : mesh.lineAndNeighborsVector()) {
      EXPECT_EQ(edges.count({line.vertexIndex0(), line.vertexIndex1()}), 1U);
      Indices shared;
      std::set<unsigned int> const &a = facetsOf[line.vertexIndex0()], &b = facetsOf[line.vertexIndex1()];
      std::set_intersection(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(shared));
      if (shared.size() > 2) ++branching;
      shared.resize(std::min<std::size_t>(shared.size(), 2));
      ASSERT_EQ(line.facetIndexVector().size(), shared.size());
      for (std::size_t i = 0; i < shared.size(); ++i) EXPECT_EQ(line.facetIndexVector()[i].second, shared[i]);
    }
    for (std::size_t i = 0; i < facetsOf.size(); ++i)
      ASSERT_EQ(mesh.vertexNeighborLinesVector()[i].size(), mesh.vertexNeighborVerticesVector()[i].size());
    for (std::size_t facet = 0; facet < loops.size(); ++facet)
      ASSERT_EQ(mesh.facetNeighborLinesVector()[0][facet].size(), loops[facet].size());
    EXPECT_EQ(sink.take(),
              Messages(branching, theClass + "findLineAndNeighbors more than 2 facets neighbors beside a line."));
    branchings += branching;
  }
  EXPECT_EQ(branchings, 25U);
}

TEST(MeshStructure, NormalsFaceOutwardAreWeightedByAngleAndMoveWithThePoints) {
  ZuPolyPhysicalExtent squares = cube();
  ZuTriPhysicalExtent triangles = triangleCube();
  // Unweighted, a corner of the cube of triangles would lean to the squares of which it has both triangles.
  for (ZuBasePhysicalExtent* const mesh : std::vector<ZuBasePhysicalExtent*>{&squares, &triangles}) {
    mesh->init();
    for (unsigned int i = 0; i < 8; ++i)
      EXPECT_TRUE(mesh->normalsOfPoints()[i].approxEq(mesh->point(i).unitVector(), 1e-15));
    EXPECT_EQ(mesh->normalsOfPoints()[8], ZuVector());
  }
  EXPECT_EQ(squares.normalsOfFacets()[0][5], ZuVector(1, 0, 0));
  EXPECT_TRUE(squares.normalsOfLines()[0].approxEq(ZuVector(-1, 0, -1).unitVector(), 1e-15));
  EXPECT_EQ(squares.lineAndNeighborsVector()[0].normalVector(), squares.normalsOfLines()[0]);
  EXPECT_EQ(squares.getFacetPlane(0, 5), ZuPlane(squares.point(1), ZuVector(1, 0, 0)));
  // Neighbours stay when points move, and go when a facet is added.
  squares.scaleBy(0.5);
  squares.transformBy(ZuCoordinateSystemTransformation(ZuVector(), ZuOrientation(0.5, 0.5, 0.5, 0.5)));
  EXPECT_EQ(squares.lineAndNeighborsVector()[0].lineLength(), 1.0);
  EXPECT_TRUE(squares.normalsOfFacets()[0][5].approxEq(ZuVector(0, 1, 0), 1e-15));
  EXPECT_TRUE(squares.normalsOfPoints()[3].approxEq(squares.point(3).unitVector(), 1e-15));
  EXPECT_TRUE(squares.lineAndNeighborsVector()[0].normalVector().approxEq(ZuVector(-1, -1, 0).unitVector(), 1e-15));
  EXPECT_TRUE(squares.vertexNeighborLinesVector().size() == 9 && squares.normalsOfLines().size() == 12);
  squares.addFacet(0, {0, 1, 8});
  EXPECT_TRUE(squares.vertexNeighborFacetsVector().empty());
}
