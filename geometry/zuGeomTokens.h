// zuGeomTokens.h - element names of the geometry classes. Group: tokens.
#pragma once

#include "foundation/zuToken.h"

/// Element names, built once at load time. The misspelling of ZuShapeSurfaceProperyToken is part of the interface.
namespace ZuGeom {

// Shapes
extern ZU_API ZuToken const ZuSurfacesToken;
extern ZU_API ZuToken const ZuDetailLevelToken;
extern ZU_API ZuToken const ZuShapeSurfaceProperyToken;
extern ZU_API ZuToken const ZuShapeIdentifierToken;
extern ZU_API ZuToken const ZuDeformableToken;
extern ZU_API ZuToken const ZuCanDeformToken;
extern ZU_API ZuToken const ZuUseAABBToken;
extern ZU_API ZuToken const ZuBypassDynamicsToken;
extern ZU_API ZuToken const ZuShapesToken;

// Solids
extern ZU_API ZuToken const ZuSphereToken;
extern ZU_API ZuToken const ZuCenterToken;
extern ZU_API ZuToken const ZuRadiusToken;
extern ZU_API ZuToken const ZuCapsuleToken;
extern ZU_API ZuToken const ZuBoxToken;
extern ZU_API ZuToken const ZuBoxExtentsToken;
extern ZU_API ZuToken const ZuPrimaryFrameToken;
extern ZU_API ZuToken const ZuCylinderToken;
extern ZU_API ZuToken const ZuConeToken;
extern ZU_API ZuToken const ZuEllipsoidToken;
extern ZU_API ZuToken const ZuRadiiToken;
extern ZU_API ZuToken const ZuLozengeToken;
extern ZU_API ZuToken const ZuTetrahedronToken;
extern ZU_API ZuToken const ZuV0Token;
extern ZU_API ZuToken const ZuV1Token;
extern ZU_API ZuToken const ZuV2Token;
extern ZU_API ZuToken const ZuV3Token;
extern ZU_API ZuToken const ZuHalfSpaceToken;

// Spatial algebra
extern ZU_API ZuToken const ZuGeneralMotionToken;
extern ZU_API ZuToken const ZuGeneralForceToken;
extern ZU_API ZuToken const ZuSpatialMatrixToken;

// Figures
extern ZU_API ZuToken const ZuLineToken;
extern ZU_API ZuToken const ZuPointToken;
extern ZU_API ZuToken const ZuUnitVectorToken;
extern ZU_API ZuToken const ZuLineSegmentToken;
extern ZU_API ZuToken const ZuEndpoint0Token;
extern ZU_API ZuToken const ZuEndpoint1Token;
extern ZU_API ZuToken const ZuPlaneToken;
extern ZU_API ZuToken const ZuPlaneBasePointToken;
extern ZU_API ZuToken const ZuPlaneNormalVectorToken;
extern ZU_API ZuToken const ZuPlanarVectorToken;
extern ZU_API ZuToken const ZuTriangleToken;
extern ZU_API ZuToken const ZuGeomTriangleToken;
extern ZU_API ZuToken const ZuPoint0Token;
extern ZU_API ZuToken const ZuPoint1Token;
extern ZU_API ZuToken const ZuPoint2Token;
extern ZU_API ZuToken const ZuPolygonToken;
extern ZU_API ZuToken const ZuPolygonWithKeyToken;
extern ZU_API ZuToken const ZuPointsToken;
extern ZU_API ZuToken const ZuPointIndicesToken;
extern ZU_API ZuToken const ZuSurfaceKeyToken;
extern ZU_API ZuToken const ZuRectangleToken;
extern ZU_API ZuToken const ZuHalfEdge0Token;
extern ZU_API ZuToken const ZuHalfEdge1Token;
extern ZU_API ZuToken const ZuCircleToken;
extern ZU_API ZuToken const ZuNormalToken;

// Boxes
extern ZU_API ZuToken const ZuAxisAlignedBoundingBoxToken;
extern ZU_API ZuToken const ZuAbbMinExtentToken;
extern ZU_API ZuToken const ZuAbbMaxExtentToken;

// Meshes
extern ZU_API ZuToken const ZuIsConvexToken;
extern ZU_API ZuToken const ZuNormalsToken;
extern ZU_API ZuToken const ZuRasterMapPointsToken;
extern ZU_API ZuToken const ZuTipPointIndexToken;
extern ZU_API ZuToken const ZuEndPointIndexToken;
extern ZU_API ZuToken const ZuLineAndNeighborsToken;
extern ZU_API ZuToken const ZuFacetGroupsToken;
extern ZU_API ZuToken const ZuFacetGroupToken;
extern ZU_API ZuToken const ZuFacetToken;
extern ZU_API ZuToken const ZuFacetNormalsToken;
extern ZU_API ZuToken const ZuTriPhysicalExtentToken;
extern ZU_API ZuToken const ZuPolyPhysicalExtentToken;
extern ZU_API ZuToken const ZuGeometryOverwriteDescriptorToken;
extern ZU_API ZuToken const ZuScaleToken;
extern ZU_API ZuToken const ZuFrameToken;
extern ZU_API ZuToken const ZuReverseToken;

// Broad phase
extern ZU_API ZuToken const ZuIntervalIntersectionProcessorToken;
extern ZU_API ZuToken const ZuBoxTreeToken;
extern ZU_API ZuToken const ZuBbTreeHeuristicToken;
extern ZU_API ZuToken const ZuBrickToken;
extern ZU_API ZuToken const ZuIndicesToken;
extern ZU_API ZuToken const ZuDataToken;

}  // namespace ZuGeom
