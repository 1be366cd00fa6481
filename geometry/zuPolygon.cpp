#include "geometry/zuPolygon.h"

#include <fstream>

#include "foundation/zuPrint.h"
#include "foundation/zuXmlWriter.h"
#include "geometry/zuGeomTokens.h"

ZuPolygon::ZuPolygon(ZuVector const& point0, ZuVector const& point1, ZuVector const& point2)
    : m_Points({point0, point1, point2}) {}

void ZuPolygon::setPoint(unsigned int index, ZuVector const& point) {
  if (index < m_Points.size()) {
    m_Points[index] = point;
  } else {
    invalidIndex(index);
  }
}

ZuVector ZuPolygon::areaVector() const {
  ZuVector sum;
  for (std::size_t i = 2; i < m_Points.size(); ++i) {
    sum += (m_Points[i - 1] - m_Points[0]).cross(m_Points[i] - m_Points[0]);
  }
  return sum * 0.5;
}

void ZuPolygon::transformBy(ZuCoordinateSystemTransformation const& t_12) {
  for (ZuVector& point : m_Points) point = t_12 * point;
}

bool ZuPolygon::dump(std::string const& fileName) const {
  std::ofstream file(fileName);
  for (std::size_t i = 0; i <= m_Points.size() && !m_Points.empty(); ++i) {
    ZuVector const& p = m_Points[i % m_Points.size()];
    file << zuXmlText(p.x()) << ' ' << zuXmlText(p.y()) << ' ' << zuXmlText(p.z()) << '\n';
  }
  if (file.flush()) return true;
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuPolygon::dump-->cannot write %s", fileName.c_str());
  return false;
}

void ZuPolygon::registerComponents() { registerComponent(ZuGeom::ZuPointsToken, &m_Points); }

ZuToken const& ZuPolygon::classToken() { return ZuGeom::ZuPolygonToken; }

ZuPolygon ZuPolygon::testObject() { return ZuPolygon(ZuXmlVectorVector::testObject()); }

ZuVector const& ZuPolygon::invalidIndex(unsigned int index) {
  static ZuVector const theZeroVector;
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuPolygon::point-->invalid index (%u)", index);
  return theZeroVector;
}
