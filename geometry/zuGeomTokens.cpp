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

ZuToken const ZuSphereToken("sphere");
ZuToken const ZuCenterToken("center");
ZuToken const ZuRadiusToken("radius");

ZuToken const ZuGeneralMotionToken("generalMotion");
ZuToken const ZuGeneralForceToken("generalForce");

ZuToken const ZuLineToken("line");
ZuToken const ZuPointToken("point");
ZuToken const ZuUnitVectorToken("unitVector");
ZuToken const ZuLineSegmentToken("lineSegment");
ZuToken const ZuEndpoint0Token("endpoint0");
ZuToken const ZuEndpoint1Token("endpoint1");
ZuToken const ZuPlaneToken("plane");
ZuToken const ZuPlaneBasePointToken("planeBasePoint");
ZuToken const ZuPlaneNormalVectorToken("planeNormalVector");

}  // namespace ZuGeom
