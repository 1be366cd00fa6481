#include "geometry/zuTemplateInstGeom.h"

template class ZuXmlVectorType<ZuAxisAlignedBoundingBox>;
template class ZuXmlVectorType<ZuBrick>;
template class ZuXmlVectorType<ZuCapsule>;
template class ZuXmlVectorType<ZuPlanarVector>;
template class ZuXmlVectorType<ZuPolygon>;
template class ZuXmlVectorType<ZuPolygonWithKey>;
template class ZuXmlVectorType<ZuTriangle>;
template class ZuXmlMapType<ZuXmlBasicType<std::string>, ZuDataMap>;
