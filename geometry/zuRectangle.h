// zuRectangle.h - flat rectangle in space. Group: figures.
#pragma once

#include "foundation/zuCoordinateSystemTransformation.h"
#include "foundation/zuXmlCompoundType.h"
#include "foundation/zuXmlVector.h"

class ZuGeomTriangle;
class ZuLineSegment;

/// The closed set center + u * halfEdge(0) + v * halfEdge(1) with u and v in [-1, 1]; the half edges are perpendicular.
/// Lengths in m, in the frame of whatever it belongs to. A half edge may be zero: what is left is a segment or, with
/// both, a point (the default: the origin).
///
/// Where half edges are set, the second loses what it has along the first; where they are read, only when they are not
/// perpendicular within m_thePerpendicularTolerance, so that what is written reads back to the last bit.
///
/// Distances are never negative and 0 when the figures touch or cross. To points and segments they are those of the
/// exact set to a few ulps of the largest difference of coordinates; to triangles and rectangles the corners, which are
/// rounded, stand for the set, and contact of those is decided exactly (see ZuGeomTriangle).
///
/// Copying costs nine doubles, without allocation; as thread-safe as a double.
class ZU_API ZuRectangle : public ZuXmlClass<ZuRectangle, ZuXmlCompoundType> {
 public:
  /// Cosine of the angle between half edges that are read: what six written digits make of a right angle passes.
  static constexpr double m_thePerpendicularTolerance = 1e-6;

  ZuRectangle() = default;
  ZuRectangle(ZuVector const& center, ZuVector const& halfEdge0, ZuVector const& halfEdge1);

  bool operator==(ZuRectangle const& other) const;

  ZuVector const& center() const { return m_Center; }
  void setCenter(ZuVector const& center) { m_Center = center; }
  /// From the centre to the middle of a side, for 0 and 1. Any other index prints a message and gives the second.
  ZuVector const& halfEdge(unsigned int index) const;
  void setHalfEdges(ZuVector const& halfEdge0, ZuVector const& halfEdge1);
  /// Corner 0 to 3: center + h0 + h1, then counter-clockwise as seen from where the normal points to. Any other index
  /// prints a message and gives corner 0.
  ZuVector corner(unsigned int index) const;
  /// Side 0 to 3: from the corner of that index to the next.
  ZuLineSegment side(unsigned int index) const;
  /// Unit vector along halfEdge(0) x halfEdge(1); the zero vector of a rectangle without area.
  ZuVector normal() const;
  /// m^2.
  double area() const;
  /// Moves the rectangle from frame 2 into frame 1.
  void transformBy(ZuCoordinateSystemTransformation const& t_12);

  /// The point of the rectangle nearest to the point.
  ZuVector closestPoint(ZuVector const& point) const;
  double distanceTo(ZuVector const& point) const;
  double distanceTo(ZuLineSegment const& segment) const;
  /// Like distanceTo(), with a closest pair of points. Where the two cross, both are where they do.
  double distanceTo(ZuLineSegment const& segment, ZuVector& onRectangle, ZuVector& onSegment) const;
  double distanceTo(ZuGeomTriangle const& triangle) const;
  double distanceTo(ZuRectangle const& other) const;

  // See ZuXmlCompoundType
  void registerComponents() override;
  bool read(ZuXmlReader& reader) override;

  static ZuToken const& classToken();
  static ZuRectangle testObject();

 private:
  bool crosses(ZuLineSegment const& segment, ZuVector& crossing) const;

  ZuXmlVector m_Center;
  ZuXmlVector m_HalfEdge0;
  ZuXmlVector m_HalfEdge1;
};

/// The rectangle in frame 1, for one in frame 2.
ZU_API ZuRectangle operator*(ZuCoordinateSystemTransformation const& t_12, ZuRectangle const& rectangle);
