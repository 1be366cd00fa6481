// zuPlane.h - plane through a point, with a side to each hand. Group: figures.
#pragma once

#include <initializer_list>

#include "foundation/zuCoordinateSystemTransformation.h"
#include "foundation/zuXmlCompoundType.h"
#include "foundation/zuXmlVector.h"

class ZuCircle;
class ZuGeomTriangle;
class ZuLineSegment;
class ZuRectangle;

/// The points p with (p - basePoint).normal = 0; by default the plane through the origin with the normal (1, 0, 0).
///
/// Distances are signed, positive on the side that the normal points to, in the unit of the coordinates. The normal is
/// normalised whenever it is set, but not when it is read or turned; distances hold for a normal of any length but 0. A
/// normal without a length (zero, infinite, nan) becomes the zero vector: there is no plane then, and the distances of
/// points are nan. Nan is not screened.
/// 104 bytes; copying allocates nothing. Const operations are safe from several threads.
class ZU_API ZuPlane : public ZuXmlClass<ZuPlane, ZuXmlCompoundType> {
 public:
  ZuPlane() = default;
  ZuPlane(ZuVector const& basePoint, ZuVector const& normal) : m_BasePoint(basePoint), m_Normal(normal.unitVector()) {}

  virtual ZuVector const& basePoint() const { return m_BasePoint; }
  virtual void setBasePoint(ZuVector const& basePoint) { m_BasePoint = basePoint; }
  virtual ZuVector const& normal() const { return m_Normal; }
  virtual void setNormalVector(ZuVector const& normal) { m_Normal = normal.unitVector(); }

  /// 0 when the segment touches or crosses the plane, be it with an endpoint alone. Otherwise the lesser of the signed
  /// distances of the endpoints: on the positive side that of the nearer endpoint, on the negative side that of the
  /// farther one. This asymmetry is deliberate. A segment parallel to the plane (|normal.delta| < 1e-300) has the
  /// distance of its endpoint 0.
  virtual double distanceTo(ZuLineSegment const& segment) const;
  virtual double distanceTo(ZuVector const& p) const;
  /// By the rule for segments: 0 when the figure touches or crosses the plane, otherwise the least of the signed
  /// distances of its corners.
  virtual double distanceTo(ZuRectangle const& rectangle) const;
  virtual double distanceTo(ZuGeomTriangle const& triangle) const;
  /// By the same rule for all points of the disc. The points are a closest pair, also on the negative side, where the
  /// distance is that of the farthest point of the rim; where the two touch or cross, they are one point of both.
  virtual double distanceTo(ZuCircle const& circle, ZuVector& pointOnPlane, ZuVector& pointOnCircle) const;
  /// Whether the triangle touches or crosses the plane: whether its distance is 0.
  virtual bool checkIntersect(ZuGeomTriangle const& triangle) const;
  /// Writes the orthogonal projection of the point onto the plane; the output may be the point.
  virtual void calculateProjectionPoint(ZuVector const& point, ZuVector& projection) const;

  bool operator==(ZuPlane const& other) const { return m_BasePoint == other.m_BasePoint && m_Normal == other.m_Normal; }

  // See ZuXmlCompoundType
  void registerComponents() override;

  static ZuToken const& classToken();
  static ZuPlane testObject() { return ZuPlane(ZuVector::testObject(), ZuVector(1.0, 2.0, -2.0)); }

  friend ZU_API ZuPlane operator*(ZuOrientation const& q_12, ZuPlane const& plane);
  friend ZU_API ZuPlane operator*(ZuCoordinateSystemTransformation const& t_12, ZuPlane const& plane);

 private:
  /// Below, normal.delta counts as 0 and the segment as parallel: only what underflows, since there is no unit of
  /// length that a larger bound could be measured in. A larger one would take short segments that cross the plane as
  /// parallel.
  static constexpr double m_theParallelTolerance = 1e-300;

  double leastOf(std::initializer_list<ZuVector> corners) const;
  /// The signed distance of p in units of the normal's length.
  double heightOf(ZuVector const& p) const;

  ZuXmlVector m_BasePoint;
  ZuXmlVector m_Normal{ZuVector(1.0, 0.0, 0.0)};
};

/// The plane in frame 1, for one in frame 2: the base point and the normal are turned.
ZU_API ZuPlane operator*(ZuOrientation const& q_12, ZuPlane const& plane);
/// The plane in frame 1, for one in frame 2: the base point is moved, the normal turned.
ZU_API ZuPlane operator*(ZuCoordinateSystemTransformation const& t_12, ZuPlane const& plane);
