// zuGeneralForce.h - force and moment. Group: spatial algebra.
#pragma once

#include "geometry/zuSpatialVector.h"

/// A force (N, the linear part) and a moment (N m, the angular part) about a reference point, both in one frame. The
/// default is none. See ZuSpatialVector for what it has in common with ZuGeneralMotion.
class ZU_API ZuGeneralForce : public ZuSpatialVector<ZuGeneralForce> {
 public:
  /// No force.
  static ZuGeneralForce const m_theZeroGeneralForce;

  ZuGeneralForce() = default;
  ZuGeneralForce(ZuVector const& linear, ZuVector const& angular) : ZuSpatialVector(linear, angular) {}

  static ZuGeneralForce const& nullObject() { return m_theZeroGeneralForce; }
  static ZuToken const& classToken();

  void setToZero() { *this = m_theZeroGeneralForce; }
  /// angular becomes angular + r x linear: r goes from the new reference point to the old one.
  void moveReferencePoint(ZuVector const& r) { m_Angular.setValue(angular() + r.cross(linear())); }
};
