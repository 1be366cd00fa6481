#include "geometry/zuLoopPhysicalExtent.h"

#include "foundation/zuPrint.h"
#include "foundation/zuXmlReader.h"
#include "geometry/zuGeomTokens.h"
#include "geometry/zuLoopTrianglesPrivate.h"
#include "geometry/zuPolygonWithKey.h"

namespace {

/// What bestNeighbor() gives when no neighbour is left.
constexpr double theLowestDot = -1e16;

/// Largest error of the squared length of a unit vector that went through a document of some digits.
constexpr double theUnitTolerance = 1e-6;

bool isUnit(ZuVector const& v) { return std::abs(v.magSquared() - 1.0) <= theUnitTolerance; }

ZuListView<unsigned int> viewOf(std::vector<unsigned int> const& items) { return {items.data(), items.size()}; }

}  // namespace

void ZuLoopPhysicalExtent::fillSample(std::vector<std::vector<unsigned int>> const& loops) {
  setIsConvex(true);
  setPoints(ZuXmlVectorVector({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0.25, 0.25, 1}, {1, 1, 0}}));
  setNormals(ZuXmlVectorVector({{0, 0, -1}}));
  ZuXmlVectorType<ZuPlanarVector> raster;
  raster.pushBack(ZuPlanarVector(0.5, 0.25));
  setRasterMapPoints(raster);
  setTipPointIndex(3);
  setEndPointIndex(0);
  addGroup("Bottom");
  addGroup("Sides");
  addFacet(0, loops[0], {0, 0, 0});
  for (std::size_t i = 1; i < loops.size(); ++i) addFacet(1, loops[i]);
}

bool ZuLoopPhysicalExtent::operator==(ZuLoopPhysicalExtent const& other) const {
  return ZuBasePhysicalExtent::operator==(other) && m_Facets == other.m_Facets;
}

unsigned int ZuLoopPhysicalExtent::addGroup(std::string const& surfaceKey) {
  unsigned int const group = m_Facets.addGroup(surfaceKey);
  facetsChanged();
  return group;
}

void ZuLoopPhysicalExtent::setGroupSurfaceKey(unsigned int group, std::string const& surfaceKey) {
  m_Facets.setSurfaceKey(group, surfaceKey);
}

bool ZuLoopPhysicalExtent::addFacet(unsigned int group, std::vector<unsigned int> const& loop,
                                    std::vector<unsigned int> const& normals) {
  if (!m_Facets.addFacet(group, viewOf(loop), viewOf(normals))) {
    Zu::Print::instance().write(Zu::PRINT_WARNING,
                                "ZuLoopPhysicalExtent::addFacet-->no facet of %zu corners in group %u of %u",
                                loop.size(), group, numberOfGroups());
    return false;
  }
  facetsChanged();
  return true;
}

void ZuLoopPhysicalExtent::clearFacets() {
  m_Facets.clear();
  facetsChanged();
}

void ZuLoopPhysicalExtent::findVertexNeighborFacetsVector() {
  std::size_t const n = points().size();
  ZuCompressedListsBuilder<ZuFacetIndex> lists(n);
  forEachFacet([&lists, n](ZuFacetIndex const&, ZuListView<unsigned int> loop) {
    for (unsigned int const corner : loop) {
      if (corner < n) lists.announce(corner);
    }
  });
  lists.endAnnouncing();
  forEachFacet([&lists, n](ZuFacetIndex const& facet, ZuListView<unsigned int> loop) {
    for (unsigned int const corner : loop) {
      if (corner >= n) continue;
      ZuListView<ZuFacetIndex> const present = lists.list(corner);
      if (present.empty() || present[present.size() - 1] != facet) lists.add(corner, facet);
    }
  });
  setVertexNeighborFacets(lists.lists());
}

unsigned int ZuLoopPhysicalExtent::numberOfPointsInFacet(unsigned int group, unsigned int facet) const {
  return static_cast<unsigned int>(m_Facets.loop(group, facet).size());
}

unsigned int ZuLoopPhysicalExtent::numberOfNormalsInFacet(unsigned int group, unsigned int facet) const {
  return static_cast<unsigned int>(m_Facets.normals(group, facet).size());
}

unsigned int ZuLoopPhysicalExtent::getFacetPointIndex(unsigned int group, unsigned int facet, unsigned int k) const {
  ZuListView<unsigned int> const loop = m_Facets.loop(group, facet);
  return k < loop.size() ? loop[k] : theZuNoIndex;
}

unsigned int ZuLoopPhysicalExtent::getFacetNormalIndex(unsigned int group, unsigned int facet, unsigned int k) const {
  ZuListView<unsigned int> const normals = m_Facets.normals(group, facet);
  return k < normals.size() ? normals[k] : theZuNoIndex;
}

std::string const& ZuLoopPhysicalExtent::getGroupSurfaceKey(unsigned int group) const {
  std::string const* const key = m_Facets.surfaceKey(group);
  return key != nullptr && !key->empty() ? *key : m_TheNullMaterialType;
}

void ZuLoopPhysicalExtent::findBestNeighbor(ZuVector const& direction, double& dot, unsigned int& index,
                                            char const* onBadIndex) const {
  dot = theLowestDot;
  index = 0;
  std::size_t const n = points().size();
  if (supportPointID() >= vertexNeighborFacetsVector().size()) return;
  for (ZuFacetIndex const& facet : vertexNeighborFacetsVector()[supportPointID()]) {
    for (unsigned int const vertex : m_Facets.loopNoCheck(facet.first, facet.second)) {
      if (vertex >= n) {
        Zu::Print::instance().write(Zu::PRINT_WARNING, "%s", onBadIndex);
        continue;
      }
      if (!visitVertex(vertex)) continue;
      double const candidate = points()[vertex].dot(direction);
      if (!(candidate >= dot)) continue;
      dot = candidate;
      index = vertex;
    }
  }
}

bool ZuLoopPhysicalExtent::validateNormals() {
  ZuXmlVectorVector repaired = normals();
  bool allRight = true;
  for (ZuVector& normal : repaired) {
    allRight = allRight && isUnit(normal);
    normal.normalize();
  }
  for (unsigned int group = 0; group < numberOfGroups(); ++group) {
    for (unsigned int facet = 0; facet < numberOfFacetsInGroup(group); ++facet) {
      unsigned int own = theZuNoIndex;
      for (unsigned int k = 0; k < numberOfNormalsInFacet(group, facet); ++k) {
        unsigned int const normal = getFacetNormalIndexNoCheck(group, facet, k);
        if (normal < repaired.size() && isUnit(repaired[normal])) continue;
        if (own == theZuNoIndex) {
          own = static_cast<unsigned int>(repaired.size());
          repaired.pushBack(doubleAreaVector(m_Facets.loopNoCheck(group, facet)).unitVector());
        }
        m_Facets.setNormalNoCheck(group, facet, k, own);
        allRight = false;
      }
    }
  }
  setNormals(repaired);
  return allRight;
}

/// Adds the loop, or its triangles when this is a mesh of triangles.
void ZuLoopPhysicalExtent::addLoop(unsigned int group, std::vector<unsigned int> const& loop,
                                   std::vector<unsigned int> const& normals) {
  if (m_Facets.addFacet(group, viewOf(loop), viewOf(normals))) return;
  std::vector<unsigned int> triangles;
  zuCutLoop(points(), viewOf(loop), triangles);
  for (std::size_t i = 0; i + 2 < triangles.size(); i += 3) m_Facets.addFacet(group, {&triangles[i], 3});
}

void ZuLoopPhysicalExtent::setFacets(ZuXmlVectorType<ZuPolygonWithKey> const& facets) {
  m_Facets.clear();
  std::vector<unsigned int> loop;
  std::size_t leftOut = 0;
  for (ZuPolygonWithKey const& facet : facets) {
    loop.resize(facet.numberOfPoints());
    for (unsigned int k = 0; k < loop.size(); ++k) loop[k] = facet.pointIndex(k);
    if (loop.size() < 3) {
      ++leftOut;
    } else {
      addLoop(m_Facets.groupOf(facet.key()), loop, {});
    }
  }
  if (leftOut != 0) {
    Zu::Print::instance().write(
        Zu::PRINT_WARNING, "ZuLoopPhysicalExtent::setFacets-->%zu polygons of fewer than 3 corners left out", leftOut);
  }
  facetsChanged();
}

void ZuLoopPhysicalExtent::copyFacets(ZuBasePhysicalExtent const& other) {
  m_Facets.clear();
  std::vector<unsigned int> loop;
  for (unsigned int group = 0; group < other.numberOfGroups(); ++group) {
    unsigned int const own = m_Facets.addGroup(other.getGroupSurfaceKey(group));
    for (unsigned int facet = 0; facet < other.numberOfFacetsInGroup(group); ++facet) {
      loop.resize(other.numberOfPointsInFacet(group, facet));
      for (unsigned int k = 0; k < loop.size(); ++k) loop[k] = other.getFacetPointIndexNoCheck(group, facet, k);
      addLoop(own, loop, {});
    }
  }
}

void ZuLoopPhysicalExtent::appendFacets(ZuBasePhysicalExtent const& other, unsigned int pointOffset,
                                        unsigned int normalOffset) {
  std::vector<unsigned int> numbers(other.numberOfGroups()), loop, normals;
  for (unsigned int group = 0; group < numbers.size(); ++group) numbers[group] = other.numberOfFacetsInGroup(group);
  for (unsigned int group = 0; group < numbers.size(); ++group) {
    unsigned int const own = m_Facets.groupOf(std::string(other.getGroupSurfaceKey(group)));
    for (unsigned int facet = 0; facet < numbers[group]; ++facet) {
      loop.resize(other.numberOfPointsInFacet(group, facet));
      normals.resize(other.numberOfNormalsInFacet(group, facet));
      for (unsigned int k = 0; k < loop.size(); ++k) {
        loop[k] = pointOffset + other.getFacetPointIndexNoCheck(group, facet, k);
      }
      for (unsigned int k = 0; k < normals.size(); ++k) {
        normals[k] = normalOffset + other.getFacetNormalIndexNoCheck(group, facet, k);
      }
      addLoop(own, loop, normals);
    }
  }
}

void ZuLoopPhysicalExtent::reverseFacets() { m_Facets.reverse(); }

void ZuLoopPhysicalExtent::registerComponents() {
  ZuBasePhysicalExtent::registerComponents();
  registerComponent(ZuGeom::ZuFacetGroupsToken, &m_Facets);
}

bool ZuLoopPhysicalExtent::readValueFromToken(ZuToken const& token, ZuXmlReader& reader) {
  // Where the lists come first, as they are written, a bad index is told with its own line.
  ZuFacetGroups::Limits limits;
  if (points().specified()) limits.points = points().size();
  if (normals().specified()) limits.normals = normals().size();
  m_Facets.setReadingLimits(limits);
  return ZuBasePhysicalExtent::readValueFromToken(token, reader);
}

bool ZuLoopPhysicalExtent::readElements(ZuXmlReader& reader) {
  if (!ZuBasePhysicalExtent::readElements(reader)) return false;
  std::string message;
  if (!m_Facets.isWithin({points().size(), normals().size()}, message)) return reader.refuse("%s", message.c_str());
  if (isConvex()) initNeighborInformation();
  return true;
}
