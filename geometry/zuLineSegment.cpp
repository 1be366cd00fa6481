#include "geometry/zuLineSegment.h"

#include "foundation/zuPrint.h"
#include "geometry/zuGeomTokens.h"

ZuVector const& ZuLineSegment::endpoint(unsigned int index) const {
  if (index == 0) return m_Endpoint0;
  if (index != 1) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuLineSegment::endpoint(): index %d out of range.\n",
                                static_cast<int>(index));
  }
  return m_Endpoint1;
}

void ZuLineSegment::setEndpoint0(ZuVector const& endpoint0) {
  m_Endpoint0 = endpoint0;
  update();
}

void ZuLineSegment::setEndpoint1(ZuVector const& endpoint1) {
  m_Endpoint1 = endpoint1;
  update();
}

void ZuLineSegment::setEndpoints(ZuVector const& endpoint0, ZuVector const& endpoint1) {
  ZuVector const second = endpoint1;  // may be this segment's endpoint 0
  m_Endpoint0 = endpoint0;
  m_Endpoint1 = second;
  update();
}

void ZuLineSegment::transformBy(ZuCoordinateSystemTransformation const& t_12) {
  m_Endpoint0 = t_12 * m_Endpoint0;
  m_Endpoint1 = t_12 * m_Endpoint1;
  m_Delta = m_Endpoint1.value() - m_Endpoint0;
}

double ZuLineSegment::distanceTo(ZuVector const& p) const { return std::sqrt(ZuLineSegment::distanceSquaredTo(p)); }

double ZuLineSegment::distanceSquaredTo(ZuVector const& p) const {
  double t;
  return zuDistanceSquared(p, plain(), t);
}

double ZuLineSegment::distanceSquaredTo(ZuVector const& p, double& t) const { return zuDistanceSquared(p, plain(), t); }

double ZuLineSegment::distanceSquaredFromLineTo(ZuVector const& p) const {
  double t;
  return zuCarrierDistanceSquared(p, plain(), t);
}

double ZuLineSegment::distanceSquaredFromLineTo(ZuVector const& p, double& t) const {
  return zuCarrierDistanceSquared(p, plain(), t);
}

double ZuLineSegment::distanceSquaredLineToLine(ZuLineSegment const& other, double& s, double& t) const {
  return zuCarrierDistanceSquared(plain(), other.plain(), s, t);
}

double ZuLineSegment::distanceTo(ZuLineSegment const& other) const {
  double s, t;
  return std::sqrt(zuDistanceSquared(plain(), other.plain(), s, t));
}

double ZuLineSegment::distanceSquaredTo(ZuLineSegment const& other) const {
  double s, t;
  return zuDistanceSquared(plain(), other.plain(), s, t);
}

double ZuLineSegment::distanceSquaredTo(ZuLineSegment const& other, double& s, double& t) const {
  return zuDistanceSquared(plain(), other.plain(), s, t);
}

double ZuLineSegment::nondegenerateDistanceSquaredTo(ZuLineSegment const& other, double& s, double& t) const {
  return zuNondegenerateDistanceSquared(plain(), other.plain(), s, t);
}

void ZuLineSegment::swapEndpoints() {
  ZuVector const endpoint0 = m_Endpoint0;
  m_Endpoint0 = m_Endpoint1.value();
  m_Endpoint1 = endpoint0;
  m_Delta = -m_Delta;
}

void ZuLineSegment::computePointOnLineSegment(double t, ZuVector& point) const {
  if (t <= 0.0) {
    point = m_Endpoint0;
  } else if (t >= 1.0) {
    point = m_Endpoint1;
  } else {
    point = m_Endpoint0.value() + t * m_Delta;
  }
}

double ZuLineSegment::nondegenerateDistanceSquaredTo(ZuLineSegment const& other) const {
  double s, t;
  return zuNondegenerateDistanceSquared(plain(), other.plain(), s, t);
}

void ZuLineSegment::registerComponents() {
  registerComponent(ZuGeom::ZuEndpoint0Token, &m_Endpoint0);
  registerComponent(ZuGeom::ZuEndpoint1Token, &m_Endpoint1);
}

bool ZuLineSegment::read(ZuXmlReader& reader) {
  if (!ZuXmlCompoundType::read(reader)) return false;
  update();
  return true;
}

ZuToken const& ZuLineSegment::classToken() { return ZuGeom::ZuLineSegmentToken; }

void ZuLineSegment::update() {
  m_Delta = m_Endpoint1.value() - m_Endpoint0;
  m_LengthSquared = m_Delta.magSquared();
}

ZuLineSegment operator*(ZuCoordinateSystemTransformation const& t_12, ZuLineSegment const& segment) {
  ZuLineSegment transformed(segment);
  transformed.transformBy(t_12);
  return transformed;
}
