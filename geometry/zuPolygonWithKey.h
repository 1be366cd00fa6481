// zuPolygonWithKey.h - polygon by indices into a list of points, with the key of its surface. Group: figures.
#pragma once

#include <string>

#include "foundation/zuTypes.h"
#include "foundation/zuXmlBasicType.h"
#include "foundation/zuXmlCompoundType.h"
#include "foundation/zuXmlVectorType.h"

/// The corners of a polygon, as places in a list of points that somebody else keeps, and the key under which the shape
/// that it belongs to lists the properties of its surface. The order of the corners is that of ZuPolygon. The default
/// has no corners and the empty key.
///
/// Copying costs up to two allocations, one for the indices and one for a long key.
class ZU_API ZuPolygonWithKey : public ZuXmlClass<ZuPolygonWithKey, ZuXmlCompoundType> {
 public:
  using Indices = ZuXmlVectorType<ZuXmlBasicType<unsigned int>>;

  ZuPolygonWithKey() = default;
  ZuPolygonWithKey(unsigned int const* indices, unsigned int numberOfPoints, std::string const& key);

  unsigned int numberOfPoints() const { return static_cast<unsigned int>(m_PointIndices.size()); }
  /// Place of the corner in the list of points. A corner that does not exist prints a message and gives `theZuNoIndex`.
  unsigned int pointIndex(unsigned int corner) const;
  Indices const& pointIndices() const { return m_PointIndices; }
  void setPointIndices(Indices const& indices) { m_PointIndices = indices; }
  void addPointIndex(unsigned int index) { m_PointIndices.pushBack(index); }

  std::string const& key() const { return m_Key.value(); }
  void setKey(std::string const& key) { m_Key = key; }

  bool operator==(ZuPolygonWithKey const& other) const {
    return m_PointIndices == other.m_PointIndices && m_Key == other.m_Key;
  }

  // See ZuXmlCompoundType
  void registerComponents() override;

  static ZuToken const& classToken();
  static ZuPolygonWithKey testObject();

 private:
  Indices m_PointIndices;
  ZuXmlBasicType<std::string> m_Key;
};
