#include "geometry/zuGeomTokens.h"

namespace ZuGeom {

ZuToken const ZuSurfacesToken("surfaces");
ZuToken const ZuDetailLevelToken("detailLevel");
ZuToken const ZuShapeSurfaceProperyToken("shapeSurfaceProperty");
ZuToken const ZuShapeIdentifierToken("shapeIdentifier");
ZuToken const ZuDeformableToken("deformable");
ZuToken const ZuCanDeformToken("canDeform");
ZuToken const ZuUseAABBToken("useAABB");
ZuToken const ZuBypassDynamicsToken("bypassDynamics");
ZuToken const ZuShapesToken("shapes");

ZuToken const ZuSphereToken("sphere");
ZuToken const ZuCenterToken("center");
ZuToken const ZuRadiusToken("radius");
ZuToken const ZuCapsuleToken("capsule");
ZuToken const ZuBoxToken("box");
ZuToken const ZuBoxExtentsToken("boxExtents");
ZuToken const ZuPrimaryFrameToken("primaryFrame");
ZuToken const ZuCylinderToken("cylinder");
ZuToken const ZuConeToken("cone");
ZuToken const ZuEllipsoidToken("ellipsoid");
ZuToken const ZuRadiiToken("radii");
ZuToken const ZuLozengeToken("lozenge");
ZuToken const ZuTetrahedronToken("tetrahedron");
ZuToken const ZuV0Token("v0");
ZuToken const ZuV1Token("v1");
ZuToken const ZuV2Token("v2");
ZuToken const ZuV3Token("v3");
ZuToken const ZuHalfSpaceToken("halfSpace");

ZuToken const ZuGeneralMotionToken("generalMotion");
ZuToken const ZuGeneralForceToken("generalForce");
ZuToken const ZuSpatialMatrixToken("spatialMatrix");

ZuToken const ZuLineToken("line");
ZuToken const ZuPointToken("point");
ZuToken const ZuUnitVectorToken("unitVector");
ZuToken const ZuLineSegmentToken("lineSegment");
ZuToken const ZuEndpoint0Token("endpoint0");
ZuToken const ZuEndpoint1Token("endpoint1");
ZuToken const ZuPlaneToken("plane");
ZuToken const ZuPlaneBasePointToken("planeBasePoint");
ZuToken const ZuPlaneNormalVectorToken("planeNormalVector");
ZuToken const ZuPlanarVectorToken("planarVector");
ZuToken const ZuTriangleToken("triangle");
ZuToken const ZuGeomTriangleToken("geomTriangle");
ZuToken const ZuPoint0Token("point0");
ZuToken const ZuPoint1Token("point1");
ZuToken const ZuPoint2Token("point2");
ZuToken const ZuPolygonToken("polygon");
ZuToken const ZuPolygonWithKeyToken("polygonWithKey");
ZuToken const ZuPointsToken("points");
ZuToken const ZuPointIndicesToken("pointIndices");
ZuToken const ZuSurfaceKeyToken("surfaceKey");
ZuToken const ZuRectangleToken("rectangle");
ZuToken const ZuHalfEdge0Token("halfEdge0");
ZuToken const ZuHalfEdge1Token("halfEdge1");
ZuToken const ZuCircleToken("circle");
ZuToken const ZuNormalToken("normal");

ZuToken const ZuAxisAlignedBoundingBoxToken("axisAlignedBoundingBox");
ZuToken const ZuAbbMinExtentToken("abbMinExtent");
ZuToken const ZuAbbMaxExtentToken("abbMaxExtent");

ZuToken const ZuIsConvexToken("isConvex");
ZuToken const ZuNormalsToken("normals");
ZuToken const ZuRasterMapPointsToken("rasterMapPoints");
ZuToken const ZuTipPointIndexToken("tipPointIndex");
ZuToken const ZuEndPointIndexToken("endPointIndex");
ZuToken const ZuLineAndNeighborsToken("lineAndNeighbors");
ZuToken const ZuFacetGroupsToken("facetGroups");
ZuToken const ZuFacetGroupToken("facetGroup");
ZuToken const ZuFacetToken("facet");
ZuToken const ZuFacetNormalsToken("facetNormals");
ZuToken const ZuTriPhysicalExtentToken("triPhysicalExtent");
ZuToken const ZuPolyPhysicalExtentToken("polyPhysicalExtent");
ZuToken const ZuGeometryOverwriteDescriptorToken("geometryOverwriteDescriptor");
ZuToken const ZuScaleToken("scale");
ZuToken const ZuFrameToken("frame");
ZuToken const ZuReverseToken("reverse");

ZuToken const ZuIntervalIntersectionProcessorToken("intervalIntersectionProcessor");
ZuToken const ZuBoxTreeToken("boxTree");
ZuToken const ZuBbTreeHeuristicToken("bbTreeHeuristic");
ZuToken const ZuBrickToken("brick");
ZuToken const ZuIndicesToken("indices");
ZuToken const ZuDataToken("data");

}  // namespace ZuGeom
