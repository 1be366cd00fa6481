// zuGeneralMotion.h - linear and angular velocity. Group: spatial algebra.
#pragma once

#include <iosfwd>

#include "geometry/zuSpatialVector.h"

/// The motion of a body: the linear velocity (m/s) of its point at a reference point, and its angular velocity (rad/s),
/// both in one frame. The default is rest. See ZuSpatialVector for what it has in common with ZuGeneralForce.
class ZU_API ZuGeneralMotion : public ZuSpatialVector<ZuGeneralMotion> {
 public:
  /// At rest.
  static ZuGeneralMotion const m_theZeroGeneralMotion;

  ZuGeneralMotion() = default;
  ZuGeneralMotion(ZuVector const& linear, ZuVector const& angular) : ZuSpatialVector(linear, angular) {}

  static ZuGeneralMotion const& nullObject() { return m_theZeroGeneralMotion; }
  static ZuToken const& classToken();

  /// linear becomes linear - angular x r: r goes from the new reference point to the old one.
  void moveReferencePoint(ZuVector const& r) { m_Linear.setValue(linear() - angular().cross(r)); }

  /// The binary form: the six scalars as doubles in the machine's byte order, 48 bytes without a header. Both always
  /// return true; after a stream that ended early the missing scalars are zero.
  bool writeBin(std::ostream& stream) const;
  bool readBin(std::istream& stream);
};

inline ZuGeneralMotion operator*(double s, ZuGeneralMotion const& x) { return x * s; }
