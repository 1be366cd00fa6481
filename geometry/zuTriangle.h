// zuTriangle.h - facet of a triangle mesh: its three corners. Group: figures.
#pragma once

#include "foundation/zuCoordinateSystemTransformation.h"
#include "foundation/zuXmlCompoundType.h"
#include "foundation/zuXmlVector.h"

/// Three corners (m) in the frame of the mesh or the list that the facet belongs to, in an order that gives the facet a
/// side: seen from there the corners run counter-clockwise. Corners may coincide; the default has all three at the
/// origin. Equality is exact and knows the order. What can be computed from a triangle is with ZuGeomTriangle.
///
/// Copying costs nine doubles, without allocation; as thread-safe as a double.
class ZU_API ZuTriangle : public ZuXmlClass<ZuTriangle, ZuXmlCompoundType> {
 public:
  ZuTriangle() = default;
  ZuTriangle(ZuVector const& point0, ZuVector const& point1, ZuVector const& point2)
      : m_Points{point0, point1, point2} {}

  /// Corner 0, 1 or 2. Any other index prints a message and gives the zero vector; what is set there is ignored.
  ZuVector const& point(unsigned int index) const { return index < 3 ? m_Points[index].value() : invalidIndex(index); }
  void setPoint(unsigned int index, ZuVector const& point);
  void setPoints(ZuVector const& point0, ZuVector const& point1, ZuVector const& point2);

  /// Turns the facet over: exchanges corners 1 and 2.
  void reverse();
  /// Takes the corners from frame 2 into frame 1.
  void transformBy(ZuCoordinateSystemTransformation const& t_12);

  bool operator==(ZuTriangle const& other) const;

  // See ZuXmlCompoundType
  void registerComponents() override;

  static ZuToken const& classToken();
  static ZuTriangle testObject();

 private:
  static ZuVector const& invalidIndex(unsigned int index);

  ZuXmlVector m_Points[3];
};
