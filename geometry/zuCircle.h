// zuCircle.h - flat disc and its rim. Group: figures.
#pragma once

#include "foundation/zuCoordinateSystemTransformation.h"
#include "foundation/zuXmlBasicType.h"
#include "foundation/zuXmlCompoundType.h"
#include "foundation/zuXmlVector.h"

class ZuLineSegment;

/// The closed disc of the points within `radius` of the centre in the plane through it; its rim where an operation says
/// so. Lengths in m, in the frame of whatever it belongs to. By default the origin, radius 0, with the normal (0, 0,
/// 1).
///
/// The normal is a unit vector: it is normalised when it is set and, when its length is not 1 within 1e-9, when it is
/// read. One without a direction (zero, infinite, nan) prints a message where it is set, and the old one stays; read,
/// it becomes the default. A negative radius is not refused and counts as 0.
///
/// Distances are never negative, are 0 when the figures touch or cross, and have an error of a few ulps of the largest
/// difference of coordinates.
///
/// Copying costs seven doubles, without allocation; as thread-safe as a double.
class ZU_API ZuCircle : public ZuXmlClass<ZuCircle, ZuXmlCompoundType> {
 public:
  ZuCircle() = default;
  ZuCircle(ZuVector const& center, ZuVector const& normal, double radius);

  bool operator==(ZuCircle const& other) const;

  ZuVector const& center() const { return m_Center; }
  void setCenter(ZuVector const& center) { m_Center = center; }
  ZuVector const& normal() const { return m_Normal; }
  void setNormal(ZuVector const& normal);
  double radius() const { return m_Radius; }
  void setRadius(double radius) { m_Radius = radius; }
  /// Of the disc, m^2.
  double area() const;
  /// Moves the circle from frame 2 into frame 1.
  void transformBy(ZuCoordinateSystemTransformation const& t_12);

  /// The point of the disc nearest to the point.
  ZuVector closestPoint(ZuVector const& point) const;
  /// The point of the rim nearest to the point; some point of the rim for a point of the axis.
  ZuVector closestPointOnRim(ZuVector const& point) const;
  /// To the disc.
  double distanceTo(ZuVector const& point) const;
  double distanceTo(ZuLineSegment const& segment) const;
  /// @param t parameter, in [0, 1], of the point of the segment that is nearest to the disc
  /// @param closest the point of the disc nearest to that one
  double distanceTo(ZuLineSegment const& segment, double& t, ZuVector& closest) const;

  // See ZuXmlCompoundType
  void registerComponents() override;
  bool read(ZuXmlReader& reader) override;

  static ZuToken const& classToken();
  static ZuCircle testObject() { return ZuCircle(ZuVector::testObject(), ZuVector(1.0, -2.0, 2.0), 0.75); }

 private:
  bool crosses(ZuLineSegment const& segment, double& t) const;

  ZuXmlVector m_Center;
  ZuXmlVector m_Normal{ZuVector::zVector(1.0)};
  ZuXmlBasicType<double> m_Radius;
};

/// The circle in frame 1, for one in frame 2.
ZU_API ZuCircle operator*(ZuCoordinateSystemTransformation const& t_12, ZuCircle const& circle);
