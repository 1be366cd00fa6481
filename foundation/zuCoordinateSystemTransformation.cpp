#include "foundation/zuCoordinateSystemTransformation.h"

#include <cmath>

#include "foundation/zuPrint.h"

constexpr ZuCoordinateSystemTransformation ZuCoordinateSystemTransformation::m_theIdentity;

bool ZuCoordinateSystemTransformation::setBy16(double const* m) {
  ZuOrientation orientation;
  bool isGood = m != nullptr && m[12] == 0.0 && m[13] == 0.0 && m[14] == 0.0 && m[15] == 1.0 && std::isfinite(m[3]) &&
                std::isfinite(m[7]) && std::isfinite(m[11]);
  if (!isGood) {
    Zu::Print::instance().write(Zu::PRINT_WARNING,
                                "ZuCoordinateSystemTransformation::setBy16-->not a rigid transformation (%s)",
                                m == nullptr ? "no matrix" : "last row not 0 0 0 1, or translation not finite");
    return false;
  }
  isGood = orientation.setFromDcmColumns(ZuVector(m[0], m[4], m[8]), ZuVector(m[1], m[5], m[9]),
                                         ZuVector(m[2], m[6], m[10]));
  if (isGood) *this = ZuCoordinateSystemTransformation(ZuVector(m[3], m[7], m[11]), orientation);
  return isGood;
}
