#include "geometry/zuRevolve.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "geometry/zuNearestPoints.h"
#include "geometry/zuPolyPhysicalExtent.h"
#include "geometry/zuPolygonWithKey.h"

namespace {

constexpr double thePi = 3.141592653589793;

/// A ring of vertices, or a pole.
struct Ring {
  unsigned int first;
  bool isPole;
  unsigned int at(unsigned int slice, unsigned int slices) const { return isPole ? first : first + slice % slices; }
};

class Revolution {
 public:
  Revolution(unsigned int slices, std::string const& key) : m_Slices(slices), m_Key(key) {}

  Ring addRing(ZuVector const& center, ZuVector const& e1, ZuVector const& e2, double radius) {
    Ring const ring{static_cast<unsigned int>(points.size()), radius == 0.0};
    for (unsigned int i = 0; i < (ring.isPole ? 1 : m_Slices); ++i) {
      double const angle = 2.0 * thePi * i / m_Slices;
      points.pushBack(center + e1 * (radius * std::cos(angle)) + e2 * (radius * std::sin(angle)));
    }
    return ring;
  }
  void join(Ring const& low, Ring const& high) {
    for (unsigned int i = 0; i < m_Slices; ++i) {
      std::vector<unsigned int> corners{low.at(i, m_Slices)};
      if (!low.isPole) corners.push_back(low.at(i + 1, m_Slices));
      corners.push_back(high.at(i + 1, m_Slices));
      if (!high.isPole) corners.push_back(high.at(i, m_Slices));
      addFacet(corners);
    }
  }
  void closeEnd(Ring const& ring, bool upward) {
    if (ring.isPole) return;
    std::vector<unsigned int> corners;
    for (unsigned int i = 0; i < m_Slices; ++i) corners.push_back(ring.first + i);
    if (!upward) std::reverse(corners.begin(), corners.end());
    addFacet(corners);
  }

  ZuXmlVectorVector points;
  ZuXmlVectorType<ZuPolygonWithKey> polygons;

 private:
  void addFacet(std::vector<unsigned int> const& corners) {
    polygons.pushBack(ZuPolygonWithKey(corners.data(), static_cast<unsigned int>(corners.size()), m_Key));
  }

  unsigned int m_Slices;
  std::string m_Key;
};

}  // namespace

unsigned int zuQuarterSteps(unsigned int detailLevel) {
  return 1U << std::min(detailLevel, ZuShape::m_theMaximumSubdivision);
}

unsigned int zuSlices(unsigned int detailLevel) { return 4U * zuQuarterSteps(detailLevel); }

void zuRevolve(ZuPolyPhysicalExtent& extent, ZuVector const& origin, ZuVector const& axis,
               std::vector<ZuOutlinePoint> const& outline, unsigned int slices) {
  ZuVector const e1 = zuPerpendicular(axis);
  ZuVector const e2 = axis.cross(e1);
  Revolution mesh(slices, extent.surfaceProperty());
  Ring last{0, true};
  for (ZuOutlinePoint const& corner : outline) {
    Ring const ring = mesh.addRing(origin + axis * corner.height, e1, e2, corner.radius);
    if (&corner != &outline.front()) mesh.join(last, ring);
    if (&corner == &outline.front()) mesh.closeEnd(ring, false);
    if (&corner == &outline.back()) mesh.closeEnd(ring, true);
    last = ring;
  }
  extent.setPoints(mesh.points);
  extent.setFacets(mesh.polygons);
  extent.setIsConvex(true);
}
