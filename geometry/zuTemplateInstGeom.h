// zuTemplateInstGeom.h - the XML containers of geometry types, instantiated once in the library. Group: shapes.
#pragma once

#include "foundation/zuXmlVectorType.h"
#include "geometry/zuAxisAlignedBoundingBox.h"
#include "geometry/zuBrick.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuPlanarVector.h"
#include "geometry/zuPolygon.h"
#include "geometry/zuPolygonWithKey.h"
#include "geometry/zuTriangle.h"

// Include this where such a container is used for more than a reference to it: it spares each source the instantiation.
extern template class ZuXmlVectorType<ZuAxisAlignedBoundingBox>;
extern template class ZuXmlVectorType<ZuBrick>;
extern template class ZuXmlVectorType<ZuCapsule>;
extern template class ZuXmlVectorType<ZuPlanarVector>;
extern template class ZuXmlVectorType<ZuPolygon>;
extern template class ZuXmlVectorType<ZuPolygonWithKey>;
extern template class ZuXmlVectorType<ZuTriangle>;
extern template class ZuXmlMapType<ZuXmlBasicType<std::string>, ZuDataMap>;
