#include "geometry/zuGeneralForce.h"

#include "geometry/zuGeomTokens.h"

ZuGeneralForce const ZuGeneralForce::m_theZeroGeneralForce{};

ZuToken const& ZuGeneralForce::classToken() { return ZuGeom::ZuGeneralForceToken; }
