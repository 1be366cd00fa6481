#include "geometry/zuLine.h"

#include "geometry/zuGeomTokens.h"
#include "geometry/zuSegmentDistance.h"

void ZuLine::transformBy(ZuCoordinateSystemTransformation const& t_12) {
  m_Point = t_12 * m_Point;
  m_UnitVector = t_12.orientation() * m_UnitVector;
}

double ZuLine::distanceSquaredFromLineTo(ZuVector const& p) const {
  double t;
  return distanceSquaredFromLineTo(p, t);
}

double ZuLine::distanceSquaredFromLineTo(ZuVector const& p, double& t) const {
  ZuVector const& direction = m_UnitVector;
  ZuVector const w = p - m_Point;
  t = direction.dot(w);
  return (w - t * direction).magSquared();
}

double ZuLine::distanceSquared(ZuLine const& other, double& s, double& t) const {
  ZuVector const& u = m_UnitVector;
  ZuVector const& v = other.m_UnitVector;
  ZuVector const w = m_Point.value() - other.m_Point;
  if (zuClosestParameters(u, v, 1.0, w, s, t)) return (t * v - w - s * u).magSquared();
  s = 0.0;
  return other.distanceSquaredFromLineTo(m_Point, t);
}

ZuVector ZuLine::pointOnLineClosestTo(ZuVector p) const {
  double t;
  distanceSquaredFromLineTo(p, t);
  return m_Point.value() + t * m_UnitVector.value();
}

void ZuLine::registerComponents() {
  registerComponent(ZuGeom::ZuPointToken, &m_Point);
  registerComponent(ZuGeom::ZuUnitVectorToken, &m_UnitVector);
}

ZuToken const& ZuLine::classToken() { return ZuGeom::ZuLineToken; }

ZuLine operator*(ZuCoordinateSystemTransformation const& t_12, ZuLine const& line) {
  ZuLine transformed(line);
  transformed.transformBy(t_12);
  return transformed;
}
