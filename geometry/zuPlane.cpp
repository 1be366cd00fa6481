#include "geometry/zuPlane.h"

#include "geometry/zuGeomTokens.h"
#include "geometry/zuLineSegment.h"

namespace {

int signOf(double x) { return x > 0.0 ? 1 : x < 0.0 ? -1 : 0; }

}  // namespace

double ZuPlane::heightOf(ZuVector const& p) const {
  return (p - m_BasePoint).dot(m_Normal) / m_Normal.value().magSquared();
}

double ZuPlane::distanceTo(ZuLineSegment const& segment) const {
  if (std::abs(m_Normal.value().dot(segment.delta())) < m_theParallelTolerance) {
    double const num = m_Normal.value().dot(segment.endpoint0() - m_BasePoint);
    return num == 0.0 ? 0.0 : ZuPlane::distanceTo(segment.endpoint0());
  }
  double const d0 = ZuPlane::distanceTo(segment.endpoint0());
  double const d1 = ZuPlane::distanceTo(segment.endpoint1());
  if (signOf(d0) != signOf(d1)) return 0.0;
  return d1 > d0 ? d0 : d1;
}

double ZuPlane::distanceTo(ZuVector const& p) const {
  double const height = heightOf(p);
  return signOf(height) * (height * m_Normal.value()).mag();
}

void ZuPlane::calculateProjectionPoint(ZuVector const& point, ZuVector& projection) const {
  projection = point - heightOf(point) * m_Normal.value();
}

void ZuPlane::registerComponents() {
  registerComponent(ZuGeom::ZuPlaneBasePointToken, &m_BasePoint);
  registerComponent(ZuGeom::ZuPlaneNormalVectorToken, &m_Normal);
}

ZuToken const& ZuPlane::classToken() { return ZuGeom::ZuPlaneToken; }

ZuPlane operator*(ZuOrientation const& q_12, ZuPlane const& plane) {
  return ZuCoordinateSystemTransformation(ZuVector(), q_12) * plane;
}

ZuPlane operator*(ZuCoordinateSystemTransformation const& t_12, ZuPlane const& plane) {
  ZuPlane transformed(plane);
  transformed.m_BasePoint = t_12 * plane.m_BasePoint;
  transformed.m_Normal = t_12.orientation() * plane.m_Normal;
  return transformed;
}
