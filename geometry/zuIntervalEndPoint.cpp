#include "geometry/zuIntervalEndPoint.h"

ZuIntervalEndPoint const& ZuIntervalEndPoint::nullObject() {
  static ZuIntervalEndPoint const theNull;
  return theNull;
}
