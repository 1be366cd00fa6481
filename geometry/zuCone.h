// zuCone.h - solid circular cone with a flat base. Group: solids.
#pragma once

#include "foundation/zuXmlBasicType.h"
#include "geometry/zuConvexSolid.h"
#include "geometry/zuFrustum.h"
#include "geometry/zuLineSegment.h"

/// The closed hull of an apex and of a disc about the axis, the base: right circular, in m, in the shape's own frame.
/// The axis segment goes from the centre of the base, endpoint 0, to the apex, endpoint 1.
///
/// An axis of length 0 has no direction: the cone is then the disc about it across (0, 0, 1). Radius 0 makes a segment,
/// and with length 0 a point, the default; these have no inside. A negative radius, or nan, is kept and counts as 0.
///
/// Distances of points and segments are those of the solid, accurate to a few ulps of the largest coordinate
/// difference; see ZuFrustum. For the pairs with other shapes see ZuConvexSolid: the transformation is applied in all
/// of them.
///
/// A copy costs what that of a ZuShape does. For threads see ZuShape.
class ZU_API ZuCone : public ZuXmlClass<ZuCone, ZuConvexSolid> {
 public:
  ZuCone() = default;
  ZuCone(ZuLineSegment const& axis, ZuReal radius) : m_LineSegment(axis), m_Radius(radius) {}

  bool operator==(ZuCone const& other) const;

  /// The axis, from the centre of the base to the apex.
  virtual ZuLineSegment const& lineSegment() const;
  virtual void setLineSegment(ZuLineSegment const& segment);
  /// Of the base.
  virtual ZuReal radius() const;
  virtual void setRadius(ZuReal radius);
  /// m^3.
  virtual ZuReal volume() const;
  /// Becomes the cone of least volume, with its axis on the same line and in the same direction, that holds the points
  /// and what it was. Coordinates that are not finite print a line and change nothing.
  /// @return whether it had to grow
  virtual bool expandToInclude(ZuXmlVectorVector const& points);

  // Overrides; see ZuShape and ZuConvexSolid
  using ZuConvexSolid::checkIntersect;
  using ZuConvexSolid::distanceTo;

  /// Mesh, box, tetrahedron: fitToPoints() of the vertices. A cone: the same. Sphere, capsule, cylinder: the least cone
  /// about the same axis, upright on endpoint 0 of it, or along (0, 0, 1) when it has length 0. A lozenge: that
  /// of the capsule around it. An ellipsoid: the least along one of its axes. All of them enclose. Anything else prints
  /// a line.
  void fitFromShape(ZuShape const& other) override;
  /// Exact: the apex (also when the rim is as far), or the point of the rim farthest in the direction; the centre of
  /// the base when the direction is against the axis to rounding. The zero direction gives the centre of the base. A
  /// direction that is not finite prints a line and gives that too.
  ZuVector computeSupportPoint(ZuVector const& direction) const override;
  /// A negative factor mirrors at the origin; the radius stays positive.
  void scaleBy(double factor) override;
  void transformBy(ZuCoordinateSystemTransformation const& xform) override;
  /// Touching counts.
  bool checkIntersect(ZuLineSegment const& segment) const override;
  /// Hits exactly when checkIntersect(segment) does.
  bool intersectLineSegment(ZuLineSegment const& segment, ZuShapePointEvent& event) const override;
  /// Encloses the points, to 1e-10 of their extent, in a cone of small volume: the axis starts from the principal axes
  /// of the extreme points, and then axis and height are searched together, either end up. The volume is a local
  /// minimum, not certainly the smallest: 2.71 times that of the convex hull in the mean of twelve scanned and
  /// modelled objects. Points in a plane give a flat cone, one point gives a point. No points, or a coordinate that is
  /// not finite: a line is printed and nothing changes. Cost: linear in the points, and about 40 ms for the search.
  void fitToPoints(ZuXmlVectorVector const& points) override;
  using ZuConvexSolid::physicalExtent;
  /// A pyramid of 4 * 2^level sides (level: detailLevel(), at most m_theMaximumSubdivision) with its corners on the
  /// rim. Closed, convex, outward, inside the cone; converges to it with the level.
  ZuBasePhysicalExtent& physicalExtent() const override;
  ZuShapeValues type() const override { return CONE; }
  /// The least capsule about the same axis that encloses the solid, unless another was set.
  ZuCapsule const& capsuleBoundingVolume() const override;

  // Persistence; see ZuXmlCompoundType
  void registerComponents() override;

  static ZuToken const& classToken();
  static ZuCone testObject();

 protected:
  char const* className() const override { return "ZuCone"; }
  double nearestSurfacePoint(ZuVector const& point, ZuVector& onSurface, ZuVector& normal) const override;
  double nearestPoints(ZuPlainSegment const& segment, ZuVector& onSolid, ZuVector& onSegment) const override;

 private:
  ZuFrustum solid() const;
  void become(ZuFrustum const& cone);
  void becomeAround(ZuFrustum const& cone, ZuXmlVectorVector const& points);
  ZuVector supportOfExtremes(ZuVector const& direction) const;

  ZuLineSegment m_LineSegment;
  ZuXmlBasicType<double> m_Radius;
};
