#include "geometry/zuTriangle.h"

#include <utility>

#include "foundation/zuPrint.h"
#include "geometry/zuGeomTokens.h"

void ZuTriangle::setPoint(unsigned int index, ZuVector const& point) {
  if (index < 3) {
    m_Points[index] = point;
  } else {
    invalidIndex(index);
  }
}

void ZuTriangle::setPoints(ZuVector const& point0, ZuVector const& point1, ZuVector const& point2) {
  ZuVector const points[3] = {point0, point1, point2};  // the arguments may be this triangle's own corners
  for (unsigned int k = 0; k < 3; ++k) m_Points[k] = points[k];
}

void ZuTriangle::reverse() { std::swap(m_Points[1], m_Points[2]); }

void ZuTriangle::transformBy(ZuCoordinateSystemTransformation const& t_12) {
  for (ZuXmlVector& point : m_Points) point = t_12 * point.value();
}

bool ZuTriangle::operator==(ZuTriangle const& other) const {
  return m_Points[0] == other.m_Points[0] && m_Points[1] == other.m_Points[1] && m_Points[2] == other.m_Points[2];
}

void ZuTriangle::registerComponents() {
  registerComponent(ZuGeom::ZuPoint0Token, &m_Points[0]);
  registerComponent(ZuGeom::ZuPoint1Token, &m_Points[1]);
  registerComponent(ZuGeom::ZuPoint2Token, &m_Points[2]);
}

ZuToken const& ZuTriangle::classToken() { return ZuGeom::ZuTriangleToken; }

ZuTriangle ZuTriangle::testObject() {
  return {ZuVector::testObject(), ZuVector(0.5, 0.25, -1.0), ZuVector(-3.0, 1e-9, 2.0)};
}

ZuVector const& ZuTriangle::invalidIndex(unsigned int index) {
  static ZuVector const theZeroVector;
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuTriangle::point-->invalid index (%u)", index);
  return theZeroVector;
}
