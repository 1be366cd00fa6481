// Documents of meshes: the real ones there and back, and hostile ones.

#include "tests/meshSamples.h"

namespace {

std::string const thePoints =
    "<points>\n<vector>0 0 0</vector>\n<vector>1 0 0</vector>\n<vector>0 1 0</vector></points>";

std::string groupOf(std::string const& inside) {
  return "<facetGroups>\n<facetGroup>\n<surfaceKey>a</surfaceKey>\n" + inside + "</facetGroup></facetGroups>";
}

}  // namespace

TEST(MeshPersistence, RealMeshesReadBackEqualAndOnlyConvexOnesReady) {
  for (std::string const& name : meshFiles()) {
    SCOPED_TRACE(name);
    ZuPolyPhysicalExtent mesh = realMesh(name), read;
    if (mesh.points().empty()) GTEST_SKIP() << "no shared meshes";
    ZuTriPhysicalExtent triangles, readTriangles;
    triangles.fitFromShape(mesh);
    mesh.setIsConvex(true);
    std::string document;
    ASSERT_TRUE(mesh.writeToBuffer(document, "mesh") && read.readFromBuffer(document));
    EXPECT_TRUE(read == mesh && read.vertexNeighborFacetsVector().size() == mesh.points().size());
    ASSERT_TRUE(triangles.writeToBuffer(document, "mesh") && readTriangles.readFromBuffer(document));
    EXPECT_TRUE(readTriangles == triangles && readTriangles.vertexNeighborFacetsVector().empty());
  }
}

TEST(MeshPersistence, BadDocumentsAreRefusedWithTheLineOfTheFault) {
  for (auto const& [inside, message] : std::vector<std::pair<std::string, std::string>>{
           {thePoints + groupOf("<facet>0 1 3</facet>"), "line 7: <facet> has index 3 of 3"},
           {groupOf("<facet>0 1 3</facet>") + thePoints, "line 1: facet 0 of group 0 has point 3 of 3"},
           {thePoints + groupOf("<facet>0 1 4294967295</facet>"), "line 7: <facet> has index 4294967295 of 3"},
           {thePoints + groupOf("<facet>0 1 -2</facet>"), "line 7: <facet> is not a list of indices"},
           {thePoints + groupOf("<facet>0 1 99999999999</facet>"), "line 7: <facet> is not a list of indices"},
           {thePoints + groupOf("<facet>0 1</facet>"), "line 7: a facet of 2 corners"},
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
    EXPECT_FALSE(mesh.readFromBuffer("<mesh>" + inside + "</mesh>")) << inside;
    ASSERT_EQ(sink.messages().size(), 1U) << inside;
    EXPECT_NE(sink.messages()[0].find(message), std::string::npos) << sink.messages()[0];
    EXPECT_TRUE(mesh == ZuPolyPhysicalExtent::testObject());
  }
}

TEST(MeshPersistence, ATriangleMeshRefusesLongerLoopsAndTakesAnyWhiteSpace) {
  ZuTriPhysicalExtent mesh;
  PrintSink sink;
  EXPECT_FALSE(mesh.readFromBuffer("<mesh>" + thePoints + groupOf("<facet>0 1 2 0</facet>") + "</mesh>"));
  EXPECT_NE(sink.take()[0].find("line 7: a facet of 4 corners and not of 3"), std::string::npos);
  EXPECT_TRUE(mesh.readFromBuffer("<mesh>" + thePoints + groupOf("<facet> 0\n\t1  2\r\n</facet>") + "</mesh>"));
  EXPECT_EQ(loopsOf(mesh), (Loops{{0, 1, 2}}));
  EXPECT_EQ(mesh.getGroupSurfaceKey(0), "a");
}
