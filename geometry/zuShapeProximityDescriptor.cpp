#include "geometry/zuShapeProximityDescriptor.h"

bool ZuShapeProximityDescriptor::selfTest() const {
  return ZuShapeProximityDescriptor(*this) == *this && !(testObject() == ZuShapeProximityDescriptor()) &&
         m_Key1.selfTest() && m_Key2.selfTest();
}

ZuToken const& ZuShapeProximityDescriptor::classToken() {
  static ZuToken const theToken("shapeProximityDescriptor");
  return theToken;
}

ZuShapeProximityDescriptor ZuShapeProximityDescriptor::testObject() {
  return ZuShapeProximityDescriptor(ZuShapeStateCacheKey::testObject(), ZuShapeStateCacheKey(4, 5, 6));
}
