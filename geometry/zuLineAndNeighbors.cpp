#include "geometry/zuLineAndNeighbors.h"

#include <algorithm>
#include <memory>

#include "geometry/zuGeomTokens.h"

bool ZuLineAndNeighbors::addFacetIndex(ZuFacetIndex const& facet) {
  if (m_NumberOfFacets == m_theMaximumFacets) return false;
  m_Facets[m_NumberOfFacets++] = facet;
  return true;
}

bool ZuLineAndNeighbors::operator==(ZuLineAndNeighbors const& other) const {
  ZuListView<ZuFacetIndex> const ours = facetIndexVector(), theirs = other.facetIndexVector();
  return m_VertexIndex0 == other.m_VertexIndex0 && m_VertexIndex1 == other.m_VertexIndex1 &&
         m_LineLength == other.m_LineLength && m_NormalVector == other.m_NormalVector &&
         std::equal(ours.begin(), ours.end(), theirs.begin(), theirs.end());
}

bool ZuLineAndNeighbors::selfTest() const {
  std::unique_ptr<ZuXmlObject> const copy(clone());
  return equality(copy.get()) && !(testObject() == ZuLineAndNeighbors());
}

ZuToken const& ZuLineAndNeighbors::classToken() { return ZuGeom::ZuLineAndNeighborsToken; }
