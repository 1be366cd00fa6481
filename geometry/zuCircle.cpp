#include "geometry/zuCircle.h"

#include <algorithm>
#include <cmath>

#include "foundation/zuPrint.h"
#include "geometry/zuGeomTokens.h"
#include "geometry/zuLineSegment.h"
#include "geometry/zuNearestPoints.h"

namespace {

constexpr double thePi = 3.141592653589793;
/// How far the length of a normal that is read may be from 1: more is a mistake, less is somebody's rounding.
constexpr double theUnitTolerance = 1e-9;

}  // namespace

ZuCircle::ZuCircle(ZuVector const& center, ZuVector const& normal, double radius) : m_Center(center), m_Radius(radius) {
  setNormal(normal);
}

bool ZuCircle::operator==(ZuCircle const& other) const {
  return m_Center == other.m_Center && m_Normal == other.m_Normal && m_Radius == other.m_Radius;
}

void ZuCircle::setNormal(ZuVector const& normal) {
  ZuVector const unit = normal.unitVector();
  if (unit == ZuVector()) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuCircle::setNormal-->no direction (%g %g %g)", normal.x(),
                                normal.y(), normal.z());
    return;
  }
  m_Normal = unit;
}

double ZuCircle::area() const { return thePi * m_Radius * m_Radius; }

void ZuCircle::transformBy(ZuCoordinateSystemTransformation const& t_12) {
  m_Center = t_12 * m_Center;
  m_Normal = t_12.orientation() * m_Normal;
}

ZuVector ZuCircle::closestPoint(ZuVector const& point) const {
  ZuVector const w = zuAcross(point - m_Center, m_Normal);
  double const radius = std::max(m_Radius.value(), 0.0);
  return center() + (w.magSquared() <= radius * radius ? w : w.unitVector() * radius);
}

ZuVector ZuCircle::closestPointOnRim(ZuVector const& point) const {
  ZuVector direction = zuAcross(point - m_Center, m_Normal).unitVector();
  if (direction == ZuVector()) direction = zuPerpendicular(m_Normal);
  return center() + direction * std::max(m_Radius.value(), 0.0);
}

double ZuCircle::distanceTo(ZuVector const& point) const { return closestPoint(point).distanceTo(point); }

double ZuCircle::distanceTo(ZuLineSegment const& segment) const {
  double t;
  ZuVector closest;
  return distanceTo(segment, t, closest);
}

/// Through the plane within the rim; a segment in the plane is left to the search.
bool ZuCircle::crosses(ZuLineSegment const& segment, double& t) const {
  double const h0 = m_Normal.value().dot(segment.endpoint0() - m_Center);
  double const h1 = m_Normal.value().dot(segment.endpoint1() - m_Center);
  if (h0 == h1 || (h0 > 0.0 && h1 > 0.0) || (h0 < 0.0 && h1 < 0.0)) return false;
  double const crossing = h0 / (h0 - h1);
  ZuVector const point = zuPointAt(segment.plain(), crossing);
  if (!(point.distanceSquaredTo(m_Center) <= m_Radius * m_Radius)) return false;
  t = crossing;
  return true;
}

double ZuCircle::distanceTo(ZuLineSegment const& segment, double& t, ZuVector& closest) const {
  ZuPlainSegment const plain = segment.plain();
  if (crosses(segment, t)) {
    closest = zuPointAt(plain, t);
    return 0.0;
  }
  t = zuNearestParameterTo(plain, [this](ZuVector const& p) { return closestPoint(p); });
  ZuVector const point = zuPointAt(plain, t);
  closest = closestPoint(point);
  return closest.distanceTo(point);
}

void ZuCircle::registerComponents() {
  registerComponent(ZuGeom::ZuCenterToken, &m_Center);
  registerComponent(ZuGeom::ZuNormalToken, &m_Normal);
  registerComponent(ZuGeom::ZuRadiusToken, &m_Radius);
}

bool ZuCircle::read(ZuXmlReader& reader) {
  if (!ZuXmlCompoundType::read(reader)) return false;
  ZuVector const unit = m_Normal.value().unitVector();
  if (unit == ZuVector()) {
    m_Normal = ZuVector::zVector(1.0);
  } else if (!(std::abs(m_Normal.value().mag() - 1.0) <= theUnitTolerance)) {
    m_Normal = unit;
  }
  return true;
}

ZuToken const& ZuCircle::classToken() { return ZuGeom::ZuCircleToken; }

ZuCircle operator*(ZuCoordinateSystemTransformation const& t_12, ZuCircle const& circle) {
  ZuCircle moved(circle);
  moved.transformBy(t_12);
  return moved;
}
