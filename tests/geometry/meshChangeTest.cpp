// What changes meshes: fits, merges, scales, deformations.
#include "geometry/zuCapsule.h"
#include "geometry/zuPolygon.h"
#include "geometry/zuPolygonWithKey.h"
#include "geometry/zuSphere.h"
#include "tests/meshSamples.h"

TEST(MeshChange, FittedToPointsItIsTheirHull) {
  ZuXmlVectorVector points(cubePoints());
  for (int copies = 0; copies < 3; ++copies) points.pushBack(points[3]);
  ZuTriPhysicalExtent triangles;
  ZuPolyPhysicalExtent polygons;
  for (ZuBasePhysicalExtent* const mesh : std::vector<ZuBasePhysicalExtent*>{&triangles, &polygons}) {
    mesh->setSurfaceProperty("Hull");
    mesh->fitToPoints(points);
    EXPECT_TRUE(mesh->isConvex() && mesh->points().size() == 8 && facetsCloseAndAreConvex(*mesh));
    EXPECT_NEAR(extentVolume(*mesh), 8.0, 1e-14);
    EXPECT_EQ(mesh->getGroupSurfaceKey(0), "Hull");
    EXPECT_EQ(mesh->supportPoint(ZuVector(1, -1, 1)), ZuVector(1, -1, 1));
  }
}

TEST(MeshChange, PointsWithoutVolumeHaveNoHullAndChangeNothing) {
  std::vector<ZuVector> const cases[] = {{},
                                         {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}},
                                         {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}, {0.5, 0.5, 0}},
                                         {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, std::nan("")}}};
  for (std::vector<ZuVector> const& points : cases) {
    ZuTriPhysicalExtent mesh = triangleCube();
    PrintSink sink;
    EXPECT_FALSE(mesh.convexHull(ZuXmlVectorVector(points)));
    EXPECT_EQ(sink.take(), Messages{"ZuBasePhysicalExtent::convexHull-->the points span no volume (" +
                                    std::to_string(points.size()) + " points)"});
    EXPECT_TRUE(mesh == triangleCube());
  }
}

TEST(MeshChange, AFitToAnotherShapeIsItsMesh) {
  ZuSphere ball(ZuVector(1, 2, 3), 0.5, 3);
  ZuTriPhysicalExtent mesh;
  for (ZuShape const* const shape : std::vector<ZuShape const*>{&ball, &mesh}) {
    mesh.fitFromShape(*shape);
    EXPECT_TRUE(mesh.isConvex() && mesh.totalNumberOfFacets() == ball.physicalExtent().totalNumberOfFacets());
    EXPECT_NEAR(mesh.distanceTo(ZuVector(1, 2, 3)), -0.5, 0.01);
  }
}

TEST(MeshChange, MergedMeshesAnswerLikeBoth) {
  ZuPolyPhysicalExtent both = cube(), other = cube();
  other.transformBy(ZuCoordinateSystemTransformation(ZuVector(5, 0, 0)));
  other.setGroupSurfaceKey(0, "Other");
  other.setNormals(ZuXmlVectorVector({{0, 0, 1}}));
  other.addFacet(0, {8, 0, 1}, {0, 0, 0});
  both.setIsConvex(true);
  both.setNormals(ZuXmlVectorVector({{1, 0, 0}, {0, 1, 0}}));
  both.mergeWith(other);
  EXPECT_FALSE(both.isConvex());
  EXPECT_TRUE(both.getFacetPointIndex(1, 6, 0) == 17 && both.getFacetNormalIndex(1, 6, 2) == 2);
  EXPECT_TRUE(both.distanceTo(ZuVector(2, 0, 0)) == 1.0 && both.distanceTo(ZuVector(5, 0, 0.75)) == -0.25);
  both.mergeWith(both);
  EXPECT_TRUE(both.points().size() == 36 && both.totalNumberOfFacets() == 26 && both.numberOfGroups() == 2);
  ZuTriPhysicalExtent triangles = triangleCube();
  triangles.mergeWith(cube());
  EXPECT_EQ(triangles.totalNumberOfFacets(), 24U);
}

TEST(MeshChange, MovesAndReflectionsMoveEveryAnswerAndKeepFacetsFacingOutward) {
  ZuPolyPhysicalExtent mesh = cube();
  mesh.setNormals(ZuXmlVectorVector({ZuVector(1, 2, 3)}));
  mesh.init();
  mesh.addExplicitBoundingVolume(ZuSphere(ZuVector(), 2.0, 3));
  mesh.scaleBy(-2.0, 0.5, 1.0);
  EXPECT_TRUE(mesh.normals()[0].approxEq(ZuVector(-0.5, 4, 3).unitVector(), 1e-15));
  EXPECT_GE(static_cast<ZuSphere*>(mesh.lowerFidelityRepresentation())->radius(), std::sqrt(5.25));
  EXPECT_NEAR(extentVolume(mesh), 8.0, 1e-15);
  ZuPolyPhysicalExtent fresh = mesh;
  fresh.resetNeighborFlags();
  fresh.init();
  EXPECT_TRUE(mesh.facetNeighborLinesVector() == fresh.facetNeighborLinesVector() &&
              mesh.vertexNeighborVerticesVector() == fresh.vertexNeighborVerticesVector());
  mesh.scaleBy(-1.0);
  EXPECT_NEAR(extentVolume(mesh), 8.0, 1e-15);
  TracedValues random(31);
  ZuPolyPhysicalExtent moved = mesh;
  ZuCoordinateSystemTransformation const xform = random.transformation(3.0);
  moved.transformBy(xform);
  for (int i = 0; i < 100; ++i) {
    ZuVector const p = random.vector(3.0), past(std::abs(p.x()) - 2.0, std::abs(p.y()) - 0.5, std::abs(p.z()) - 1.0);
    ZuVector const outside(std::max(past.x(), 0.0), std::max(past.y(), 0.0), std::max(past.z(), 0.0));
    double const expected = outside.mag() + std::min(std::max({past.x(), past.y(), past.z()}), 0.0);
    EXPECT_NEAR(mesh.distanceTo(p), expected, 1e-14);
    EXPECT_NEAR(moved.distanceTo(xform * p), expected, 1e-14);
  }
}

TEST(MeshChange, RoundingUsedPointsAndBounds) {
  ZuPolyPhysicalExtent mesh = cube();
  ZuXmlVectorVector used;
  mesh.usedPoints(used);
  EXPECT_EQ(used.size(), 8U);
  mesh.setPoint(0, ZuVector(-1.26, -0.24, 1e300));
  mesh.setPoint(99, ZuVector(7, 7, 7));
  mesh.truncateValues(0.0);
  EXPECT_EQ(mesh.point(0).x(), -1.26);
  mesh.truncateValues(0.5);
  EXPECT_EQ(mesh.point(0), ZuVector(-1.5, 0.0, 1e300));
  mesh.setPoint(0, ZuVector(-1.5, 0, 0));
  for (ZuVector const& p : mesh.points()) EXPECT_LE(mesh.capsuleBoundingVolume().distanceTo(p), 1e-11);
  ZuVector const far(9, 9, 9);
  mesh.expandCapsule(ZuXmlVectorVector({far}));
  EXPECT_LE(mesh.capsuleBoundingVolume().distanceTo(far), 1e-11);
  mesh.recalculateCapsule();
  EXPECT_GT(mesh.capsuleBoundingVolume().distanceTo(far), 0.0);
}

TEST(MeshChange, FacetsReplacedByPolygonsAreGroupedByKey) {
  unsigned int const square[] = {0, 1, 2, 3}, triangle[] = {1, 4, 2};
  ZuXmlVectorType<ZuPolygonWithKey> facets;
  facets.pushBack(ZuPolygonWithKey(square, 4, "b"));
  facets.pushBack(ZuPolygonWithKey(triangle, 3, "a"));
  facets.pushBack(ZuPolygonWithKey(square, 2, "a"));
  facets.pushBack(ZuPolygonWithKey(triangle, 3, "b"));
  std::vector<ZuVector> const points = {{0, 0, 0}, {1, 0, 0}, {0.3, 0.3, 0}, {0, 1, 0}, {1, 1, 0}};
  auto polygons = meshOf<ZuPolyPhysicalExtent>(points, {});
  auto triangles = meshOf<ZuTriPhysicalExtent>(points, {});
  PrintSink sink;
  polygons.setFacets(facets);
  triangles.setFacets(facets);
  EXPECT_EQ(sink.take(), Messages(2, "ZuLoopPhysicalExtent::setFacets-->1 polygons of fewer than 3 corners left out"));
  EXPECT_EQ(loopsOf(polygons), (Loops{{0, 1, 2, 3}, {1, 4, 2}, {1, 4, 2}}));
  EXPECT_EQ(polygons.getGroupSurfaceKey(0), "b");
  EXPECT_EQ(triangles.totalNumberOfFacets(), 4U);
  // The dent at corner 2 stays open.
  for (unsigned int facet : {0U, 1U}) EXPECT_FALSE(triangles.checkFacetIntersect(0, facet, ZuVector(0.4, 0.4, 0)));
  EXPECT_FALSE(triangles.addFacet(0, {0, 1, 2, 3}) || polygons.addFacet(2, {0, 1, 2}));
  EXPECT_EQ(sink.take().size(), 2U);
}

TEST(MeshChange, ADentFallsOffWithDistanceAndStaysOnItsSideOfAThinWall) {
  // Two parallel squares of 11 x 11 points, 0.01 apart, joined nowhere.
  std::vector<ZuVector> points;
  Loops loops;
  for (unsigned int side = 0; side < 2; ++side) {
    for (unsigned int i = 0; i < 121; ++i) points.emplace_back(i % 11 * 0.1, i / 11 * 0.1, side * 0.01);
    for (unsigned int i = 0, a = side * 121; i < 109; ++i, ++a)
      if (i % 11 != 10) loops.push_back({a, a + 1, a + 12, a + 11});
  }
  auto mesh = meshOf<ZuPolyPhysicalExtent>(points, loops);
  PrintSink sink;
  EXPECT_EQ(mesh.deformInRadius(ZuVector(0.5, 0.5, 0), ZuVector(0, 0, 1), 0.15), 0U);
  EXPECT_EQ(sink.take().size(), 1U);
  mesh.setCanDeform(true);
  ZuPolyPhysicalExtent through = mesh, harmonic = mesh;
  EXPECT_EQ(through.deformInRadius(ZuVector(0.5, 0.5, 0), ZuVector(0, 0, 1), 0.15), 18U);
  EXPECT_EQ(mesh.deformInRadiusNeighbor(60, ZuVector(0, 0, 1), 0.15), 9U);
  EXPECT_EQ(mesh.point(60), ZuVector(0.5, 0.5, 1.0));
  double const weight = 1.0 - 1.0 / 2.25;
  EXPECT_NEAR(mesh.point(61).z(), weight * weight, 1e-14);
  EXPECT_TRUE(mesh.point(63).z() == 0.0 && mesh.point(121 + 60).z() == 0.01);
  EXPECT_EQ(mesh.modifiedFacetIndices().size(), 16U);
  EXPECT_TRUE(mesh.isModified() && !mesh.modIsCleanedUp());
  mesh.setModIsCleanedUp(true);
  EXPECT_FALSE(mesh.isModified());
  EXPECT_EQ(mesh.deformInRadiusNeighbor(60, ZuVector(0, 0, 1), std::nan("")), 0U);
  EXPECT_EQ(mesh.deformInRadiusNeighbor(9999, ZuVector(0, 0, 1), 1.0), 0U);
  // A harmonic dent has the same ends, and is steeper at its center.
  EXPECT_EQ(harmonic.deformUsingMFSNeighbor(60, ZuVector(0, 0, 1), 0.25), 21U);
  EXPECT_NEAR(harmonic.point(60).z(), 1.0, 1e-12);
  EXPECT_TRUE(harmonic.point(61).z() < 0.6 && harmonic.point(61).z() > harmonic.point(62).z());
  EXPECT_TRUE(harmonic.point(62).z() > 0.0 && harmonic.point(62).z() < 0.2 && harmonic.point(63).z() == 0.0);
  EXPECT_EQ(harmonic.point(121 + 60).z(), 0.01);
  EXPECT_EQ(harmonic.deformUsingMFS(ZuVector(0.5, 0.5, 0.01), ZuVector(0, 0, 1), 0.02), 1U);  // the dent is away
  EXPECT_NEAR(harmonic.point(121 + 60).z(), 1.01, 1e-12);
}

TEST(MeshChange, NormalsThatAreMissingOrNotUnitAreRepaired) {
  ZuPolyPhysicalExtent mesh = cube();
  mesh.addFacet(0, {0, 1, 8}, {0, 1, 7});
  mesh.setNormals(ZuXmlVectorVector({{0, 0, 2}, {0, 0, 0}}));
  EXPECT_FALSE(mesh.validateNormals());
  EXPECT_EQ(mesh.normals()[0], ZuVector(0, 0, 1));
  for (unsigned int k : {0U, 1U, 2U}) EXPECT_EQ(mesh.getFacetNormalIndex(0, 6, k), k == 0 ? 0U : 2U);
  EXPECT_EQ(mesh.normals()[2], mesh.getPolygon(0, 6).normal());
  EXPECT_EQ(mesh.normals().size(), 3U);
}
