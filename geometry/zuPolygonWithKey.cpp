#include "geometry/zuPolygonWithKey.h"

#include "foundation/zuPrint.h"
#include "geometry/zuGeomTokens.h"

ZuPolygonWithKey::ZuPolygonWithKey(unsigned int const* indices, unsigned int numberOfPoints, std::string const& key)
    : m_Key(key) {
  m_PointIndices.reserve(numberOfPoints);
  for (unsigned int k = 0; k < numberOfPoints; ++k) addPointIndex(indices[k]);
}

unsigned int ZuPolygonWithKey::pointIndex(unsigned int corner) const {
  if (corner < m_PointIndices.size()) return m_PointIndices[corner];
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuPolygonWithKey::pointIndex-->invalid index (%u of %u)", corner,
                              numberOfPoints());
  return theZuNoIndex;
}

void ZuPolygonWithKey::registerComponents() {
  registerComponent(ZuGeom::ZuPointIndicesToken, &m_PointIndices);
  registerComponent(ZuGeom::ZuSurfaceKeyToken, &m_Key);
}

ZuToken const& ZuPolygonWithKey::classToken() { return ZuGeom::ZuPolygonWithKeyToken; }

ZuPolygonWithKey ZuPolygonWithKey::testObject() {
  unsigned int const indices[4] = {0, 7, 5, 4294967294U};
  return {indices, 4, "Top"};
}
