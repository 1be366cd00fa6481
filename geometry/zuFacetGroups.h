// zuFacetGroups.h - facets of a mesh as loops of indices, in groups that share a surface. Group: meshes.
#pragma once

#include <string>
#include <vector>

#include "foundation/zuTypes.h"
#include "foundation/zuXmlObject.h"
#include "geometry/zuCompressedLists.h"

/// The facets of a mesh: loops of at least three places in its list of points, each with any number of places in its
/// list of normals, in groups of one surface key each. Seen from outside a loop runs counter-clockwise. Nothing here
/// knows the lists, so the places may point past their ends.
///
/// Written as one element "facetGroup" per group, which holds its "surfaceKey", then one element "facet" per facet, its
/// loop "0 1 2", followed, where the facet has normals, by one "facetNormals".
///
/// The facets of a group lie side by side; a copy costs five allocations a group.
class ZU_API ZuFacetGroups : public ZuXmlClass<ZuFacetGroups, ZuXmlObject> {
 public:
  /// How many points and normals there are: a document that goes beyond them is refused where it does.
  struct Limits {
    std::size_t points = theZuNoIndex;
    std::size_t normals = theZuNoIndex;
  };

  ZuFacetGroups() = default;
  /// Facets are to have this many corners each; 0 for any number from three on.
  explicit ZuFacetGroups(unsigned int corners) : m_Corners(corners) {}
  /// Assigning takes over the groups only.
  ZuFacetGroups(ZuFacetGroups const& other) = default;
  ZuFacetGroups& operator=(ZuFacetGroups const& other);

  unsigned int numberOfGroups() const { return static_cast<unsigned int>(m_Groups.size()); }
  /// 0 for a group that is not there.
  unsigned int numberOfFacets(unsigned int group) const;
  /// Empty for a facet that is not there.
  ZuListView<unsigned int> loop(unsigned int group, unsigned int facet) const;
  ZuListView<unsigned int> normals(unsigned int group, unsigned int facet) const;
  /// The same without looking whether the facet is there.
  ZuListView<unsigned int> loopNoCheck(unsigned int group, unsigned int facet) const {
    return m_Groups[group].points[facet];
  }
  ZuListView<unsigned int> normalsNoCheck(unsigned int group, unsigned int facet) const {
    return m_Groups[group].normals[facet];
  }
  /// Null for a group that is not there.
  std::string const* surfaceKey(unsigned int group) const;

  void clear() { m_Groups.clear(); }
  /// Appends a group without facets and returns its number.
  unsigned int addGroup(std::string const& surfaceKey);
  /// The number of the first group of that key; a new one when there is none.
  unsigned int groupOf(std::string const& surfaceKey);
  void setSurfaceKey(unsigned int group, std::string const& surfaceKey);
  /// Appends a facet. False, and nothing changes, when the group is not there or the number of corners is not allowed.
  bool addFacet(unsigned int group, ZuListView<unsigned int> loop, ZuListView<unsigned int> normals = {});
  /// Turns every loop over, and its normals with it.
  void reverse();
  /// Puts another normal in the place of the k-th one of a facet; neither is looked for.
  void setNormalNoCheck(unsigned int group, unsigned int facet, unsigned int k, unsigned int normal) {
    m_Groups[group].normals.set(facet, k, normal);
  }

  /// True when every index is within the limits; otherwise `message` tells about the first one that is not.
  bool isWithin(Limits const& limits, std::string& message) const;
  void setReadingLimits(Limits const& limits) { m_Limits = limits; }

  bool operator==(ZuFacetGroups const& other) const { return m_Groups == other.m_Groups; }

  // See ZuXmlObject
  bool read(ZuXmlReader& reader) override;
  bool write(ZuXmlWriter& writer) const override;
  bool writeSchema(ZuXmlSchema& schema) const override;

  static ZuToken const& classToken();
  static ZuFacetGroups testObject();

 private:
  struct Group {
    std::string key;
    ZuCompressedLists<unsigned int> points;
    ZuCompressedLists<unsigned int> normals;  ///< as long as `points`
    bool operator==(Group const& other) const {
      return key == other.key && points == other.points && normals == other.normals;
    }
  };
  bool hasFacet(unsigned int group, unsigned int facet) const { return facet < numberOfFacets(group); }
  bool readGroup(ZuXmlReader& reader, Group& group) const;
  bool readFacet(ZuXmlReader& reader, Group& group) const;
  bool readNormals(ZuXmlReader& reader, Group& group) const;

  std::vector<Group> m_Groups;
  unsigned int m_Corners = 0;
  Limits m_Limits;
};
