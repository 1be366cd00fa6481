#include "geometry/zuPlane.h"

#include <algorithm>
#include <cmath>

#include "geometry/zuCircle.h"
#include "geometry/zuGeomTokens.h"
#include "geometry/zuGeomTriangle.h"
#include "geometry/zuLineSegment.h"
#include "geometry/zuRectangle.h"

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

/// Of the convex hull of the corners: 0 when they are not all on one side.
double ZuPlane::leastOf(std::initializer_list<ZuVector> corners) const {
  double least = ZuPlane::distanceTo(*corners.begin());
  int const side = signOf(least);
  for (ZuVector const& corner : corners) {
    double const distance = ZuPlane::distanceTo(corner);
    if (signOf(distance) != side) return 0.0;
    least = std::min(least, distance);
  }
  return least;
}

double ZuPlane::distanceTo(ZuRectangle const& rectangle) const {
  return leastOf({rectangle.corner(0), rectangle.corner(1), rectangle.corner(2), rectangle.corner(3)});
}

double ZuPlane::distanceTo(ZuGeomTriangle const& triangle) const {
  return leastOf({triangle.point(0), triangle.point(1), triangle.point(2)});
}

/// With n and m the normals of plane and circle, the height above the plane rises in the plane of the circle by
/// sin = |m x n| per length, along (m x n) x m: the rim reaches radius * sin above and below the centre.
double ZuPlane::distanceTo(ZuCircle const& circle, ZuVector& pointOnPlane, ZuVector& pointOnCircle) const {
  ZuVector const across = circle.normal().cross(m_Normal.value().unitVector());
  ZuVector const uphill = across.cross(circle.normal()).unitVector();
  double const height = ZuPlane::distanceTo(circle.center());
  double const reach = std::max(circle.radius(), 0.0) * across.mag();
  if (std::abs(height) <= reach) {
    pointOnCircle = height == 0.0 ? circle.center() : circle.center() - uphill * (height / across.mag());
    pointOnPlane = pointOnCircle;
    return 0.0;
  }
  pointOnCircle = circle.center() - uphill * std::copysign(std::max(circle.radius(), 0.0), height);
  ZuPlane::calculateProjectionPoint(pointOnCircle, pointOnPlane);
  return height - reach;
}

bool ZuPlane::checkIntersect(ZuGeomTriangle const& triangle) const { return ZuPlane::distanceTo(triangle) == 0.0; }

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
