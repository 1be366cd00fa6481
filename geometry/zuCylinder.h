// zuCylinder.h - solid circular cylinder with flat ends. Group: solids.
#pragma once

#include <vector>

#include "foundation/zuXmlBasicType.h"
#include "geometry/zuCircle.h"
#include "geometry/zuFrustum.h"
#include "geometry/zuLineSegment.h"
#include "geometry/zuShape.h"

class ZuEllipsoid;
class ZuLozenge;

/// The closed set of all points within `radius` of the axis segment's line whose projection on it falls on the segment:
/// a tube with two flat caps, cap 0 about endpoint 0 and cap 1 about endpoint 1.
///
/// Lengths in m, everything in the shape's own frame. An axis of length 0 has no direction: the cylinder is then the
/// disc about it across (0, 0, 1). Radius 0 makes a segment, and with length 0 a point, the default. A negative radius,
/// or nan, is kept and counts as 0.
///
/// **Pairs.** Which operations take the other shape's geometry as it stands, without the transformation, and which
/// pairs are not answered (a line is printed; the distance is then 0, a contact false):
///
/// | other shape             | distance                | contact: the capsule about the axis | others |
/// |-------------------------|-------------------------|-------------------------------------|--------|
/// | 0, 1, 2 mesh            | engine                  | closed form, **as it stands**       | engine |
/// | 3 sphere                | exact, **as it stands** | closed form, **as it stands**       | engine |
/// | 4 capsule               | exact, **as it stands** | not answered                        | engine |
/// | 5 to 9, ... half-space  | engine                  | not answered                        | engine (1) |
/// | 11 cylinder             | not answered            | closed form, **as it stands**       | engine |
/// | 10, 12 to 14, any other | not answered            | not answered                        | engine |
///
/// (1) The depth of a lozenge is that of its core, by the engine, and its radius.
///
/// "Others" are witness points and penetration, which apply the transformation and leave to the engine to say what it
/// makes of a shape without support points. That distances to spheres and capsules, and all contacts, ignore the
/// transformation is deliberate. So is that contact between shapes rounds the ends: two cylinders can touch by a cap's
/// rim where the solids do not. Contact with points and segments is that of the solid.
///
/// Distances of points and segments are those to the solid, 0 inside and when touching, accurate to a few ulps of the
/// largest coordinate difference.
///
/// A copy costs what that of a ZuShape does. For threads see ZuShape.
class ZU_API ZuCylinder : public ZuXmlClass<ZuCylinder, ZuShape> {
 public:
  ZuCylinder() = default;
  ZuCylinder(ZuLineSegment const& axis, ZuReal radius) : m_LineSegment(axis), m_Radius(radius) {}

  bool operator==(ZuCylinder const& other) const;

  // Overrides; see ZuShape

  /// Mesh, box, tetrahedron: fitToPoints() of the vertices. Cylinder: the same. Cone: its axis and radius. Sphere and
  /// capsule: along the core, or (0, 0, 1) when it has length 0, the caps on the round ends. Lozenge: the least along
  /// longer edge and normal. Ellipsoid: the least along an axis. All enclose. Anything else prints a line.
  void fitFromShape(ZuShape const& other) override;
  /// The same as supportPoint().
  ZuVector computeSupportPoint(ZuVector const& direction) const override;
  /// Exact: the point of the rim, of the cap that is farther in the direction (cap 0 when both are as far), farthest in
  /// it; the centre of that cap when the direction is along the axis to rounding. The zero direction gives endpoint 0.
  /// A direction that is not finite prints a line and gives endpoint 0 too.
  ZuVector supportPoint(ZuVector const& direction) const override;
  /// A negative factor mirrors at the origin; the radius stays positive.
  void scaleBy(ZuReal factor) override;
  void transformBy(ZuCoordinateSystemTransformation const& xform) override;
  double distanceTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                    ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state) const override;
  double distanceTo(ZuLineSegment const& segment) const override;
  double distanceTo(ZuVector const& point) const override;
  /// Of the capsule about the same segment; touching counts. The geometry of the other shape is taken as it stands:
  /// `xform` is not applied.
  bool checkIntersect(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                      ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state,
                      KeyPairs* pairs) const override;
  /// Touching counts.
  bool checkIntersect(ZuLineSegment const& segment) const override;
  /// Hits exactly when checkIntersect(segment) does.
  bool intersectLineSegment(ZuLineSegment const& segment, ZuShapePointEvent& event) const override;
  /// Points of the caps and of the lateral surface count as inside.
  bool checkIntersect(ZuVector const& point) const override;
  /// Encloses the points, to 1e-10 of their extent, in a cylinder of small volume: the direction of the axis is
  /// searched from the principal axes of the extreme points on, and about each direction stands the least circle around
  /// the points. The volume is a local minimum, not certainly the smallest: 2.16 times that of the convex hull in
  /// the mean of twelve scanned and modelled objects. Points in a plane give a flat cylinder, a millionth of their
  /// extent high; one point gives a point. No points, or a coordinate that is not finite: a line is printed and nothing
  /// changes. Cost: linear in the points, and about 20 ms for the search.
  void fitToPoints(ZuXmlVectorVector const& points) override;
  void physicalExtent(std::vector<ZuBasePhysicalExtent*>& extents) const override;
  /// A prism of 4 * 2^level sides (level: detailLevel(), at most m_theMaximumSubdivision) with its vertices on the
  /// rims. Closed, convex, outward, inside the cylinder; converges to it with the level.
  ZuBasePhysicalExtent& physicalExtent() const override;
  bool isConvex() const override { return true; }
  ZuShapeValues type() const override { return CYLINDER; }
  /// Of the solid, not of its approximation, which lies inside.
  void axisAlignedBoundingBoxInPrimary(ZuAxisAlignedBoundingBox& box) const override;
  /// By the engine; see the other form for lozenges.
  bool computePenetrationDistanceAndSupportPoints(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                                  ZuVector& witness1, ZuVector& witness2, double& distance,
                                                  ZuVector& direction) const override;
  /// The least capsule about the same axis that encloses the solid, unless another was set.
  ZuCapsule const& capsuleBoundingVolume() const override;

  // Own virtual operations

  /// The axis.
  virtual ZuLineSegment const& lineSegment() const;
  virtual void setLineSegment(ZuLineSegment const& segment);
  virtual ZuReal radius() const;
  virtual void setRadius(ZuReal radius);
  /// @param s parameter, in [0, 1], of the closest point's projection on the axis
  /// @param t parameter, in [0, 1], of the point of the segment that is nearest; of a common point when they meet
  /// @param closest the point of the solid nearest to that one
  virtual ZuReal distanceTo(ZuLineSegment const& segment, ZuReal& s, ZuReal& t, ZuVector& closest) const;
  /// @param t parameter, in [0, 1], of the closest point's projection on the axis; 0 for an axis of length 0
  /// @param closest the point of the solid nearest to the point: the point itself inside
  virtual ZuReal distanceTo(ZuVector const& point, ZuReal& t, ZuVector& closest) const;
  /// The first and the last point of the lateral surface, rims included, on the segment: equal when there is one only.
  /// Returns whether there is any. The event tells of the surface, not of the solid: nothing is inside it.
  virtual bool intersectLineSegmentWithTube(ZuLineSegment const& segment, ZuShapePointEvent& event) const;
  /// The same for the two caps, rims included.
  virtual bool intersectLineSegmentWithCaps(ZuLineSegment const& segment, ZuShapePointEvent& event) const;
  /// m^3.
  virtual ZuReal volume() const;
  /// Grows along its axis, and in radius, by what is missing for the points to be inside; no cylinder about the same
  /// axis that keeps what was inside is smaller. Coordinates that are not finite print a line and change nothing.
  /// @return whether it had to grow
  virtual bool expandToInclude(ZuXmlVectorVector const& points);
  /// Cap 0 or 1, its normal pointing out of the cylinder. Any other index prints a line and gives the default circle.
  virtual ZuCircle circularCap(unsigned int index) const;
  /// To the disc of cap 0 or 1.
  /// @param closest the point of the disc nearest to the point. For an index that is neither, which prints a line and
  ///        gives 0, outputs are left as they are.
  virtual ZuReal distanceToCircularCap(ZuVector const& point, unsigned int cap, ZuVector& closest) const;
  /// @param t parameter, in [0, 1], of the point of the segment that is nearest to the disc
  /// @param closest the point of the disc nearest to that one
  virtual ZuReal distanceToCircularCap(ZuLineSegment const& segment, unsigned int cap, ZuReal& t,
                                       ZuVector& closest) const;
  /// The engine for the lozenge's core, which has corners; its radius is taken off afterwards. That is exact, apart and
  /// overlapping: what is within the radius of the difference set of cylinder and core is the difference set of
  /// cylinder and lozenge. Where cylinder and core touch, the engine for the whole lozenge.
  /// @param direction as by the other form, witness1 - xform * witness2
  virtual bool computePenetrationDistanceAndSupportPoints(ZuLozenge const& lozenge,
                                                          ZuCoordinateSystemTransformation const& xform,
                                                          ZuVector& witness1, ZuVector& witness2, double& distance,
                                                          ZuVector& direction) const;
  /// The straight line on the lateral surface, from cap 0 to cap 1, that is farthest in the direction.
  /// @return false when the direction has no part across the axis: `out` is then one of the lines, all as far
  virtual bool computeLineSegmentOnLateralSurface(ZuVector const& direction, ZuLineSegment& out) const;

  // Persistence; see ZuXmlCompoundType
  void registerComponents() override;

  static ZuToken const& classToken();
  static ZuCylinder testObject();

 private:
  ZuFrustum solid() const;
  bool hasCap(char const* function, unsigned int index) const;
  void becomeLeastAround(ZuEllipsoid const& ellipsoid);
  void becomeLeastAround(ZuLozenge const& lozenge);
  bool growAround(ZuXmlVectorVector const& points);
  void takeRoundEnds(ZuLineSegment const& core, double radius);
  ZuVector supportOfExtremes(ZuVector const& direction) const;

  ZuLineSegment m_LineSegment;
  ZuXmlBasicType<double> m_Radius;
};
