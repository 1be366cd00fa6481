// zuPolygon.h - closed loop of points in space. Group: figures.
#pragma once

#include <string>

#include "foundation/zuCoordinateSystemTransformation.h"
#include "foundation/zuXmlCompoundType.h"
#include "foundation/zuXmlVectorVector.h"

/// The corners (m) of a polygon in order, in the frame of whatever it belongs to; the last one joins the first. Seen
/// from its front they run counter-clockwise. It should be flat and simple, and nothing checks that: of a loop that is
/// not flat, normal and area are those of its projection along the direction in which that is largest. Fewer than three
/// corners, the default's none among them, have neither normal nor area. Equality is exact and knows the first corner.
///
/// Copying costs one allocation; an empty polygon owns no memory.
class ZU_API ZuPolygon : public ZuXmlClass<ZuPolygon, ZuXmlCompoundType> {
 public:
  ZuPolygon() = default;
  explicit ZuPolygon(ZuXmlVectorVector const& points) : m_Points(points) {}
  ZuPolygon(ZuVector const& point0, ZuVector const& point1, ZuVector const& point2);

  unsigned int numberOfPoints() const { return static_cast<unsigned int>(m_Points.size()); }
  /// An index past the last corner prints a message and gives the zero vector; what is set there is ignored.
  ZuVector const& point(unsigned int index) const {
    return index < m_Points.size() ? m_Points[index] : invalidIndex(index);
  }
  void setPoint(unsigned int index, ZuVector const& point);
  void addPoint(ZuVector const& point) { m_Points.pushBack(point); }
  ZuXmlVectorVector const& points() const { return m_Points; }
  void setPoints(ZuXmlVectorVector const& points) { m_Points = points; }

  /// The vector along the normal whose length is the area (m^2): the halved sum of the cross products of successive
  /// corners, seen from the first corner so that a place far from the origin costs no digits.
  ZuVector areaVector() const;
  /// Unit vector towards the front; the zero vector of a polygon without area.
  ZuVector normal() const { return areaVector().unitVector(); }
  /// Area (m^2).
  double area() const { return areaVector().mag(); }
  /// Takes the corners from frame 2 into frame 1.
  void transformBy(ZuCoordinateSystemTransformation const& t_12);

  /// For debugging: writes a text file of one corner "x y z" a line, the first one again at the end, which plotting
  /// programs draw as a closed line. False, after a message, when the file can't be written.
  bool dump(std::string const& fileName) const;

  bool operator==(ZuPolygon const& other) const { return m_Points == other.m_Points; }

  // See ZuXmlCompoundType
  void registerComponents() override;

  static ZuToken const& classToken();
  static ZuPolygon testObject();

 private:
  static ZuVector const& invalidIndex(unsigned int index);

  ZuXmlVectorVector m_Points;
};
