// zuGeomTriangle.h - triangle as a set of points in space. Group: figures.
#pragma once

#include "geometry/zuLineSegment.h"
#include "geometry/zuTriangle.h"

/// The closed set of all convex combinations of three corners (m), all in one frame: the flat triangle with its edges,
/// or, where corners coincide or lie on one line, the segment or the point that is left of it. All of these are legal
/// everywhere, and a needle loses no accuracy.
///
/// Guarantees, for finite coordinates of which no product of three leaves the range of doubles (1e-75 to 1e100 is
/// safe):
/// 1. Distances are those of the exact sets to a few ulps of the largest difference of coordinates.
/// 2. Contact is decided without rounding: touching counts, and a gap of one ulp is a gap.
/// 3. With contact the distance is exactly 0.
/// A coordinate that is not finite meets nothing and gives an arbitrary distance.
///
/// Copying costs nine doubles, without allocation; as thread-safe as a double.
class ZU_API ZuGeomTriangle : public ZuXmlClass<ZuGeomTriangle, ZuTriangle> {
 public:
  using ZuXmlClass::ZuXmlClass;
  explicit ZuGeomTriangle(ZuTriangle const& corners);

  /// Unit vector towards the side from which the corners run counter-clockwise; the zero vector of a triangle without
  /// area.
  ZuVector normal() const;
  /// Area (m^2).
  double area() const;

  /// The point of the triangle nearest to the point.
  ZuVector closestPoint(ZuVector const& point) const;
  /// Distance (m).
  double distanceTo(ZuVector const& point) const;
  double distanceTo(ZuLineSegment const& segment) const;
  double distanceTo(ZuGeomTriangle const& other) const;

  /// True when the sets have a point in common.
  bool checkIntersect(ZuLineSegment const& segment) const;
  bool checkIntersect(ZuGeomTriangle const& other) const;

  static ZuToken const& classToken();
  static ZuGeomTriangle testObject();
};

/// The triangle in frame 1, for one in frame 2.
ZU_API ZuGeomTriangle operator*(ZuCoordinateSystemTransformation const& t_12, ZuGeomTriangle const& triangle);
