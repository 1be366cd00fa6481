// zuPlanarVector.h - two doubles: a point or a direction of a plane. Group: figures.
#pragma once

#include <cmath>

#include "foundation/zuXmlObject.h"

/// A 2-vector (x, y) that persists as XML: a raster or texture coordinate, or a point in the coordinates of some plane;
/// the unit is that of the numbers put in. Written as the text "x y". The default is the zero vector.
///
/// Copying costs what copying two doubles does, without allocation. Products and squares are plain arithmetic and
/// overflow like it; lengths are right for every finite vector.
class ZU_API ZuPlanarVector : public ZuXmlClass<ZuPlanarVector, ZuXmlObject> {
 public:
  ZuPlanarVector() = default;
  ZuPlanarVector(double const& x, double const& y) : m_X(x), m_Y(y) {}

  double x() const { return m_X; }
  double y() const { return m_Y; }
  void setX(double const& x) { m_X = x; }
  void setY(double const& y) { m_Y = y; }

  /// Exact: -0.0 equals 0.0, and a nan equals nothing.
  bool operator==(ZuPlanarVector const& v) const { return m_X == v.m_X && m_Y == v.m_Y; }
  /// True when both components differ by at most the tolerance; a nan differs from everything.
  bool approxEq(ZuPlanarVector const& v, double tolerance) const {
    return std::abs(m_X - v.m_X) <= tolerance && std::abs(m_Y - v.m_Y) <= tolerance;
  }

  ZuPlanarVector operator-() const { return {-m_X, -m_Y}; }
  ZuPlanarVector operator+(ZuPlanarVector const& v) const { return {m_X + v.m_X, m_Y + v.m_Y}; }
  ZuPlanarVector operator-(ZuPlanarVector const& v) const { return {m_X - v.m_X, m_Y - v.m_Y}; }
  ZuPlanarVector operator*(double const& s) const { return {m_X * s, m_Y * s}; }

  double dot(ZuPlanarVector const& v) const { return m_X * v.m_X + m_Y * v.m_Y; }
  /// Twice the signed area of the triangle (origin, this, v): above 0 when v lies counter-clockwise of this.
  double cross(ZuPlanarVector const& v) const { return m_X * v.m_Y - m_Y * v.m_X; }
  double magSquared() const { return dot(*this); }
  double mag() const { return std::hypot(m_X, m_Y); }
  double distanceTo(ZuPlanarVector const& v) const { return (v - *this).mag(); }

  // See ZuXmlObject
  bool read(ZuXmlReader& reader) override;
  bool write(ZuXmlWriter& writer) const override;
  bool writeSchema(ZuXmlSchema& schema) const override;
  bool isBasicType() const override { return true; }

  static ZuToken const& classToken();
  static ZuPlanarVector testObject() { return {-0.75, 1e-17}; }

 private:
  double m_X = 0.0;
  double m_Y = 0.0;
};
