// Documents of meshes: the real ones there and back, and hostile ones.
#include <gtest/gtest.h>

#include "tests/meshSamples.h"
#include "tests/printSink.h"

namespace {

std::string const thePoints =
    "<points>\n<vector>0 0 0</vector>\n<vector>1 0 0</vector>\n<vector>0 1 0</vector></points>";

std::string groupOf(std::string const& inside) {
  return "<facetGroups>\n<facetGroup>\n<surfaceKey>a</surfaceKey>\n" + inside + "</facetGroup></facetGroups>";
}

}  // namespace

TEST(MeshPersistence, RealMeshesReadBackEqualAndReady) {
  for (std::string const& name : meshFiles()) {
    SCOPED_TRACE(name);
    ZuPolyPhysicalExtent mesh = realMesh(name);
    if (mesh.points().empty()) GTEST_SKIP() << "no shared meshes";
    ZuTriPhysicalExtent triangles, readTriangles;
    ZuPolyPhysicalExtent read;
    triangles.fitFromShape(mesh);
    mesh.setIsConvex(true);
    std::string document;
    ASSERT_TRUE(mesh.writeToBuffer(document, "mesh"));
    ASSERT_TRUE(read.readFromBuffer(document));
    EXPECT_TRUE(read == mesh);
    EXPECT_EQ(read.vertexNeighborFacetsVector().size(), mesh.points().size());
    ASSERT_TRUE(triangles.writeToBuffer(document, "mesh"));
    ASSERT_TRUE(readTriangles.readFromBuffer(document));
    EXPECT_TRUE(readTriangles == triangles);
    EXPECT_TRUE(readTriangles.vertexNeighborFacetsVector().empty());
  }
}

TEST(MeshPersistence, BadDocumentsAreRefusedWithTheLineOfTheFault) {
  struct Case {
    std::string document;
    std::string message;
  };
  for (Case const& c : std::vector<Case>{
           {thePoints + groupOf("<facet>0 1 3</facet>"), "line 7: <facet> has index 3 of 3"},
           {groupOf("<facet>0 1 3</facet>") + thePoints, "line 1: facet 0 of group 0 has point 3 of 3"},
           {thePoints + groupOf("<facet>0 1 4294967295</facet>"), "line 7: <facet> has index 4294967295 of 3"},
           {thePoints + groupOf("<facet>0 1 -2</facet>"), "line 7: <facet> is not a list of indices"},
           {thePoints + groupOf("<facet>0 1 2.5</facet>"), "line 7: <facet> is not a list of indices"},
           {thePoints + groupOf("<facet>0 1 99999999999</facet>"), "line 7: <facet> is not a list of indices"},
           {thePoints + groupOf("<facet>0 1</facet>"), "line 7: a facet of 2 corners"},
           {thePoints + groupOf("<facet/>"), "line 7: a facet of 0 corners"},
           {thePoints + groupOf("<facetNormals>0</facetNormals>"), "line 7: normals without a facet before them"},
           {thePoints + "<normals></normals>" + groupOf("<facet>0 1 2</facet><facetNormals>0</facetNormals>"),
            "line 7: <facetNormals> has index 0 of 0"},
           {thePoints + groupOf("<facet>0 1 2</facet><facetNormals>0</facetNormals>"),
            "line 1: facet 0 of group 0 has normal 0 of 0"},
           {thePoints + groupOf("<surfaceKey>b</surfaceKey>"), "line 7: <surfaceKey> is not expected"},
           {"<facetGroups><group/></facetGroups>", "line 1: an element other than <facetGroup>"},
           {thePoints + "<tipPointIndex>3</tipPointIndex>", "line 1: the index of the tip or the end is 3 of 3 points"},
           {"<endPointIndex>0</endPointIndex>", "line 1: the index of the tip or the end is 0 of 0 points"}}) {
    ZuPolyPhysicalExtent mesh = ZuPolyPhysicalExtent::testObject();
    PrintSink sink;
    EXPECT_FALSE(mesh.readFromBuffer("<mesh>" + c.document + "</mesh>")) << c.document;
    ASSERT_EQ(sink.messages().size(), 1U) << c.document;
    EXPECT_NE(sink.messages()[0].find(c.message), std::string::npos) << sink.messages()[0];
    EXPECT_TRUE(mesh == ZuPolyPhysicalExtent::testObject());
  }
}

TEST(MeshPersistence, ATriangleMeshRefusesLongerLoopsAndTakesAnyWhiteSpace) {
  ZuTriPhysicalExtent mesh;
  PrintSink sink;
  EXPECT_FALSE(mesh.readFromBuffer("<mesh>" + thePoints + groupOf("<facet>0 1 2 0</facet>") + "</mesh>"));
  EXPECT_NE(sink.take()[0].find("line 7: a facet of 4 corners and not of 3"), std::string::npos);
  EXPECT_TRUE(mesh.readFromBuffer("<mesh>" + thePoints + groupOf("<facet> 0\n\t1  2\r\n</facet>") + "</mesh>"));
  EXPECT_EQ(loopsOfFacets(mesh), (Loops{{0, 1, 2}}));
  EXPECT_EQ(mesh.getGroupSurfaceKey(0), "a");
}
