// zuLineAndNeighbors.h - edge of a mesh and the facets beside it. Group: meshes.
#pragma once

#include <utility>

#include "foundation/zuTypes.h"
#include "foundation/zuVector.h"
#include "foundation/zuXmlCompoundType.h"
#include "geometry/zuCompressedLists.h"

/// A facet of a mesh: (group, facet in the group).
using ZuFacetIndex = std::pair<unsigned int, unsigned int>;

/// One edge of a mesh: the two vertices that it joins, by their places in the list of points, its length (m), its unit
/// normal and at most two facets beside it. The default joins nothing: both vertices are theZuNoIndex.
///
/// Nothing of it persists, so that documents of it are empty: a mesh finds its lines anew. Equality compares every
/// field. Copying costs 72 bytes beyond the base, without allocation.
class ZU_API ZuLineAndNeighbors : public ZuXmlClass<ZuLineAndNeighbors, ZuXmlCompoundType> {
 public:
  static constexpr unsigned int m_theMaximumFacets = 2;

  ZuLineAndNeighbors() = default;
  /// The smaller vertex becomes vertex 0.
  ZuLineAndNeighbors(unsigned int vertexA, unsigned int vertexB, double lineLength)
      : m_VertexIndex0(vertexA < vertexB ? vertexA : vertexB),
        m_VertexIndex1(vertexA < vertexB ? vertexB : vertexA),
        m_LineLength(lineLength) {}

  unsigned int vertexIndex0() const { return m_VertexIndex0; }
  unsigned int vertexIndex1() const { return m_VertexIndex1; }
  double lineLength() const { return m_LineLength; }
  void setLineLength(double length) { m_LineLength = length; }
  /// The zero vector until it is found, and where the facets beside the line have no normal or cancel.
  ZuVector const& normalVector() const { return m_NormalVector; }
  void setNormalVector(ZuVector const& normal) { m_NormalVector = normal; }
  ZuListView<ZuFacetIndex> facetIndexVector() const { return {m_Facets, m_NumberOfFacets}; }
  /// False, and nothing changes, when there are two facets already.
  bool addFacetIndex(ZuFacetIndex const& facet);

  bool operator==(ZuLineAndNeighbors const& other) const;

  // See ZuXmlObject
  bool selfTest() const override;
  static ZuToken const& classToken();
  static ZuLineAndNeighbors testObject() { return ZuLineAndNeighbors(2, 1, 0.5); }

 private:
  unsigned int m_VertexIndex0 = theZuNoIndex;
  unsigned int m_VertexIndex1 = theZuNoIndex;
  double m_LineLength = 0.0;
  ZuVector m_NormalVector;
  ZuFacetIndex m_Facets[m_theMaximumFacets];
  unsigned int m_NumberOfFacets = 0;
};
