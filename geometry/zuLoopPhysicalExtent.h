// zuLoopPhysicalExtent.h - mesh that keeps its facets as loops of indices. Group: meshes.
#pragma once

#include "geometry/zuBasePhysicalExtent.h"
#include "geometry/zuFacetGroups.h"

/// What polygon and triangle meshes have in common: the facets are a ZuFacetGroups, written as the element
/// "facetGroups". A document whose facets use points or normals beyond its lists is refused.
class ZU_API ZuLoopPhysicalExtent : public ZuBasePhysicalExtent {
 public:
  bool operator==(ZuLoopPhysicalExtent const& other) const;

  ZuFacetGroups const& facetGroups() const { return m_Facets; }
  /// Appends a group without facets and returns its number.
  unsigned int addGroup(std::string const& surfaceKey);
  void setGroupSurfaceKey(unsigned int group, std::string const& surfaceKey);
  /// Appends a facet; its points need not be in the list yet. A group that is not there, or a number of corners that
  /// this kind of mesh does not hold, prints a message; then nothing changes and false is returned.
  bool addFacet(unsigned int group, std::vector<unsigned int> const& loop,
                std::vector<unsigned int> const& normals = {});
  /// Removes all groups.
  void clearFacets() override;

  // See ZuBasePhysicalExtent
  void findVertexNeighborFacetsVector() override;
  unsigned int numberOfGroups() const override { return m_Facets.numberOfGroups(); }
  unsigned int numberOfFacetsInGroup(unsigned int group) const override { return m_Facets.numberOfFacets(group); }
  unsigned int numberOfPointsInFacet(unsigned int group, unsigned int facet) const override;
  unsigned int numberOfNormalsInFacet(unsigned int group, unsigned int facet) const override;
  unsigned int getFacetPointIndex(unsigned int group, unsigned int facet, unsigned int k) const override;
  unsigned int getFacetPointIndexNoCheck(unsigned int group, unsigned int facet, unsigned int k) const override {
    return m_Facets.loopNoCheck(group, facet)[k];
  }
  unsigned int getFacetNormalIndex(unsigned int group, unsigned int facet, unsigned int k) const override;
  unsigned int getFacetNormalIndexNoCheck(unsigned int group, unsigned int facet, unsigned int k) const override {
    return m_Facets.normalsNoCheck(group, facet)[k];
  }
  std::string const& getGroupSurfaceKey(unsigned int group) const override;
  bool validateNormals() override;
  void setFacets(ZuXmlVectorType<ZuPolygonWithKey> const& facets) override;

  // See ZuXmlCompoundType
  void registerComponents() override;
  bool readElements(ZuXmlReader& reader) override;
  bool readValueFromToken(ZuToken const& token, ZuXmlReader& reader) override;

 protected:
  /// Facets are to have this many corners; 0 for any number from three on.
  explicit ZuLoopPhysicalExtent(unsigned int corners) : m_Facets(corners) {}

  /// bestNeighbor(), but for a support vertex without a facet list; `onBadIndex` is printed for a corner that is not in
  /// the list of points.
  void findBestNeighbor(ZuVector const& direction, double& dot, unsigned int& index, char const* onBadIndex) const;
  void copyFacets(ZuBasePhysicalExtent const& other) override;
  void appendFacets(ZuBasePhysicalExtent const& other, unsigned int pointOffset, unsigned int normalOffset) override;
  void reverseFacets() override;
  /// For testObject(): a pyramid, the first of the loops its bottom.
  void fillSample(std::vector<std::vector<unsigned int>> const& loops);

 private:
  void addLoop(unsigned int group, std::vector<unsigned int> const& loop, std::vector<unsigned int> const& normals);

  ZuFacetGroups m_Facets;
};
