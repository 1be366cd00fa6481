#include "geometry/zuRectangle.h"

#include <algorithm>
#include <cmath>

#include "foundation/zuPrint.h"
#include "geometry/zuGeomTokens.h"
#include "geometry/zuGeomTriangle.h"
#include "geometry/zuLineSegment.h"
#include "geometry/zuNearestPoints.h"

namespace {

/// w's part along the half edge, as the point of the set sees it; zero for an edge that is none.
ZuVector clampedAlong(ZuVector const& w, ZuVector const& halfEdge) {
  double const squared = halfEdge.magSquared();
  return squared > 0.0 ? halfEdge * std::clamp(w.dot(halfEdge) / squared, -1.0, 1.0) : ZuVector();
}

ZuVector withoutPartAlong(ZuVector const& v, ZuVector const& axis) {
  double const squared = axis.magSquared();
  return squared > 0.0 ? v - axis * (v.dot(axis) / squared) : v;
}

ZuGeomTriangle half(ZuRectangle const& rectangle, unsigned int index) {
  return ZuGeomTriangle(rectangle.corner(0), rectangle.corner(index + 1), rectangle.corner(index + 2));
}

void reportIndex(char const* function, unsigned int index) {
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuRectangle::%s-->index %u out of range", function, index);
}

}  // namespace

ZuRectangle::ZuRectangle(ZuVector const& center, ZuVector const& halfEdge0, ZuVector const& halfEdge1)
    : m_Center(center), m_HalfEdge0(halfEdge0), m_HalfEdge1(withoutPartAlong(halfEdge1, halfEdge0)) {}

bool ZuRectangle::operator==(ZuRectangle const& other) const {
  return m_Center == other.m_Center && m_HalfEdge0 == other.m_HalfEdge0 && m_HalfEdge1 == other.m_HalfEdge1;
}

ZuVector const& ZuRectangle::halfEdge(unsigned int index) const {
  if (index > 1) reportIndex("halfEdge", index);
  return index == 0 ? m_HalfEdge0 : m_HalfEdge1;
}

void ZuRectangle::setHalfEdges(ZuVector const& halfEdge0, ZuVector const& halfEdge1) {
  *this = ZuRectangle(m_Center, halfEdge0, halfEdge1);
}

ZuVector ZuRectangle::corner(unsigned int index) const {
  if (index > 3) reportIndex("corner", index);
  ZuVector const& h0 = m_HalfEdge0;
  ZuVector const& h1 = m_HalfEdge1;
  ZuVector const side = index == 1 || index == 2 ? center() - h0 : center() + h0;
  return index == 2 || index == 3 ? side - h1 : side + h1;
}

ZuLineSegment ZuRectangle::side(unsigned int index) const {
  if (index > 3) reportIndex("side", index);
  return index > 3 ? ZuLineSegment(corner(0), corner(1)) : ZuLineSegment(corner(index), corner((index + 1) % 4));
}

ZuVector ZuRectangle::normal() const { return m_HalfEdge0.value().cross(m_HalfEdge1).unitVector(); }

double ZuRectangle::area() const { return 4.0 * m_HalfEdge0.value().cross(m_HalfEdge1).mag(); }

void ZuRectangle::transformBy(ZuCoordinateSystemTransformation const& t_12) {
  m_Center = t_12 * m_Center;
  m_HalfEdge0 = t_12.orientation() * m_HalfEdge0;
  m_HalfEdge1 = t_12.orientation() * m_HalfEdge1;
}

ZuVector ZuRectangle::closestPoint(ZuVector const& point) const {
  ZuVector const w = point - m_Center;
  return center() + clampedAlong(w, m_HalfEdge0) + clampedAlong(w, m_HalfEdge1);
}

double ZuRectangle::distanceTo(ZuVector const& point) const { return closestPoint(point).distanceTo(point); }

double ZuRectangle::distanceTo(ZuLineSegment const& segment) const {
  ZuVector unused0;
  ZuVector unused1;
  return distanceTo(segment, unused0, unused1);
}

/// Through the plane within the sides; a segment in the plane is left to the sides.
bool ZuRectangle::crosses(ZuLineSegment const& segment, ZuVector& crossing) const {
  ZuVector const n = normal();
  double const h0 = n.dot(segment.endpoint0() - m_Center);
  double const h1 = n.dot(segment.endpoint1() - m_Center);
  if (h0 == h1 || (h0 > 0.0 && h1 > 0.0) || (h0 < 0.0 && h1 < 0.0)) return false;
  ZuVector const point = zuPointAt(segment.plain(), h0 / (h0 - h1));
  ZuVector const w = point - m_Center;
  for (ZuVector const& h : {m_HalfEdge0.value(), m_HalfEdge1.value()}) {
    if (!(std::abs(w.dot(h)) <= h.magSquared())) return false;
  }
  crossing = point;
  return true;
}

/// Two convex flat figures that don't cross are closest at an end of the segment or at a side of the rectangle.
double ZuRectangle::distanceTo(ZuLineSegment const& segment, ZuVector& onRectangle, ZuVector& onSegment) const {
  ZuVector crossing;
  if (crosses(segment, crossing)) {
    onRectangle = onSegment = crossing;
    return 0.0;
  }
  ZuNearestPair best{closestPoint(segment.endpoint0()), segment.endpoint0()};
  auto const consider = [&best](ZuNearestPair const& pair) {
    if (pair.distanceSquared() < best.distanceSquared()) best = pair;
  };
  consider({closestPoint(segment.endpoint1()), segment.endpoint1()});
  for (unsigned int i = 0; i < 4; ++i) consider(zuNearestPair(side(i).plain(), segment.plain()));
  onRectangle = best.first;
  onSegment = best.second;
  return std::sqrt(best.distanceSquared());
}

double ZuRectangle::distanceTo(ZuGeomTriangle const& triangle) const {
  return std::min(half(*this, 0).distanceTo(triangle), half(*this, 1).distanceTo(triangle));
}

double ZuRectangle::distanceTo(ZuRectangle const& other) const {
  return std::min(distanceTo(half(other, 0)), distanceTo(half(other, 1)));
}

void ZuRectangle::registerComponents() {
  registerComponent(ZuGeom::ZuCenterToken, &m_Center);
  registerComponent(ZuGeom::ZuHalfEdge0Token, &m_HalfEdge0);
  registerComponent(ZuGeom::ZuHalfEdge1Token, &m_HalfEdge1);
}

bool ZuRectangle::read(ZuXmlReader& reader) {
  if (!ZuXmlCompoundType::read(reader)) return false;
  ZuVector const& h0 = m_HalfEdge0;
  ZuVector const& h1 = m_HalfEdge1;
  if (std::abs(h0.unitVector().dot(h1.unitVector())) > m_thePerpendicularTolerance) setHalfEdges(h0, h1);
  return true;
}

ZuToken const& ZuRectangle::classToken() { return ZuGeom::ZuRectangleToken; }

ZuRectangle ZuRectangle::testObject() {
  return ZuRectangle(ZuVector::testObject(), ZuVector(0.5, 1.0, 0.0), ZuVector(-2.0, 1.0, 0.75));
}

ZuRectangle operator*(ZuCoordinateSystemTransformation const& t_12, ZuRectangle const& rectangle) {
  ZuRectangle moved(rectangle);
  moved.transformBy(t_12);
  return moved;
}
