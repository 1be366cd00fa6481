#include "geometry/zuShapeStateCacheKey.h"

namespace {

/// Whether a copy is equal until the setter gives one of its ids another value.
template <class Key>
bool differsByItsId(Key const& key, void (Key::*setId)(unsigned int), unsigned int id) {
  Key copy(key);
  bool const copyIsEqual = copy == key;
  (copy.*setId)(id + 1);
  return copyIsEqual && copy != key;
}

}  // namespace

bool ZuManipulatorStateCacheKey::selfTest() const {
  return differsByItsId(*this, &ZuManipulatorStateCacheKey::setManipID, manipID());
}

ZuManipulatorStateCacheKey const& ZuManipulatorStateCacheKey::nullObject() {
  static ZuManipulatorStateCacheKey const theNull;
  return theNull;
}

bool ZuLinkStateCacheKey::selfTest() const {
  return ZuManipulatorStateCacheKey::selfTest() && differsByItsId(*this, &ZuLinkStateCacheKey::setLinkID, linkID());
}

ZuLinkStateCacheKey const& ZuLinkStateCacheKey::nullObject() {
  static ZuLinkStateCacheKey const theNull;
  return theNull;
}

bool ZuShapeStateCacheKey::selfTest() const {
  return ZuLinkStateCacheKey::selfTest() && differsByItsId(*this, &ZuShapeStateCacheKey::setShapeID, shapeID());
}

ZuShapeStateCacheKey const& ZuShapeStateCacheKey::nullObject() {
  static ZuShapeStateCacheKey const theNull;
  return theNull;
}
