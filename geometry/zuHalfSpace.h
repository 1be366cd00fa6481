// zuHalfSpace.h - everything behind a plane. Group: solids.
#pragma once

#include "geometry/zuConvexSolid.h"
#include "geometry/zuPlane.h"

/// The closed set of all points that are not in front of a plane: the normal of the plane points outward, in the
/// shape's own frame. The default is what is behind the default plane. A normal without a length counts as (1, 0, 0).
///
/// **Pairs** are those of ZuConvexSolid, all in closed form and whichever shape comes first: the distance is the signed
/// height of the other solid's lowest point, its support point against the normal. Of a mesh that is not convex, too.
/// Two half-spaces that face each other have a distance, negative by the shortest way apart; any other two overlap
/// without bound: they touch, and their distance is not answered (a line is printed, 0).
///
/// **Unbounded.** The operations that need a finite figure take a slab: the box of m_theReach to all sides of the base
/// point in the plane, and twice as deep. It is the physical extent, and what bounding boxes and capsules hold. Support
/// points are those of the slab: the base point along the normal, to rounding, and a corner or the middle of an edge or
/// a face otherwise.
///
/// A copy costs what that of a ZuShape does. For threads see ZuShape.
class ZU_API ZuHalfSpace : public ZuXmlClass<ZuHalfSpace, ZuConvexSolid> {
 public:
  /// m: beyond the reach of robots; places there still have digits for a tenth of a nanometre.
  static constexpr double m_theReach = 1000.0;
  /// Largest deviation of unit normals, rad, that count as parallel: some roundings of turns that were composed.
  static constexpr double m_theParallel = 1e-12;

  ZuHalfSpace() = default;
  explicit ZuHalfSpace(ZuPlane const& plane) : m_Plane(plane) {}

  bool operator==(ZuHalfSpace const& other) const;

  virtual ZuPlane const& plane() const { return m_Plane; }
  virtual void setPlane(ZuPlane const& plane);
  /// The outward unit normal.
  virtual ZuVector normal() const;
  /// Infinite.
  virtual ZuReal volume() const;

  // Overrides; see ZuShape and ZuConvexSolid
  using ZuConvexSolid::checkIntersect;
  using ZuConvexSolid::distanceTo;

  /// Moves the plane along its normal to where it touches the solid, with all of it behind. A half-space must have the
  /// same normal; types without a solid, and half-spaces that have another, print a line.
  void fitFromShape(ZuShape const& other) override;
  ZuVector computeSupportPoint(ZuVector const& direction) const override;
  /// About the origin; a negative factor turns the normal round.
  void scaleBy(double factor) override;
  void transformBy(ZuCoordinateSystemTransformation const& xform) override;
  double distanceTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                    ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state) const override;
  /// The height of the lower end, negative inside: the depth of the segment.
  double distanceTo(ZuLineSegment const& segment) const override;
  bool checkIntersect(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                      ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state,
                      KeyPairs* pairs) const override;
  bool intersectLineSegment(ZuLineSegment const& segment, ZuShapePointEvent& event) const override;
  /// Moves the plane along its normal to the farthest of the points. No points, or a coordinate that is not finite: a
  /// line is printed and nothing changes.
  void fitToPoints(ZuXmlVectorVector const& points) override;
  using ZuConvexSolid::physicalExtent;
  /// The slab; see the class.
  ZuBasePhysicalExtent& physicalExtent() const override;
  ZuShapeValues type() const override { return HALF_SPACE; }
  double distanceAndWitnessPointsTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                    ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state,
                                    ZuVector& witness1, ZuVector& witness2) const override;

  // Not virtual

  /// A pair of which one shape at least is a half-space, with the contract of ZuGJK::distance() for shape 1 at the
  /// identity and shape 2 at xform.
  /// @return false, and nothing is written, for two half-spaces that overlap without bound
  static bool pairDistance(ZuShape const& shape1, ZuShape const& shape2, ZuCoordinateSystemTransformation const& xform,
                           bool computePenetration, ZuVector& witness1, ZuVector& witness2, double& distance,
                           ZuVector& separation);

  // Persistence; see ZuXmlCompoundType
  void registerComponents() override;

  static ZuToken const& classToken();
  static ZuHalfSpace testObject();

 protected:
  bool inClosedForm(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                    Contact& contact) const override;
  char const* className() const override { return "ZuHalfSpace"; }
  double nearestSurfacePoint(ZuVector const& point, ZuVector& onSurface, ZuVector& normal) const override;
  double nearestPoints(ZuPlainSegment const& segment, ZuVector& onSolid, ZuVector& onSegment) const override;

 private:
  ZuVector const& base() const { return m_Plane.basePoint(); }
  double height(ZuVector const& point) const { return normal().dot(point - base()); }
  bool overlapsWithoutBound(ZuShape const& other, ZuCoordinateSystemTransformation const& xform) const;

  ZuPlane m_Plane;
};
