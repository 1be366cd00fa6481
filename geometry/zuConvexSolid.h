// zuConvexSolid.h - base of the convex solids that answer every convex pair. Group: solids.
#pragma once

#include <vector>

#include "geometry/zuSegmentDistance.h"
#include "geometry/zuShape.h"

/// What the convex solids without prescribed pairs have in common: one table of pairs, which rests on the nearest point
/// of the surface for a point, and on the nearest points of the solid and a segment.
///
/// **Pairs.** The transformation is applied in every one of them; touching counts as contact.
///
/// | other shape                  | distance, witness points, penetration          | contact            |
/// |------------------------------|------------------------------------------------|--------------------|
/// | 3 sphere                     | closed form, inside too                        | closed form        |
/// | 4 capsule                    | closed form; a core that enters: ZuRobustGJK   | the same           |
/// | 9 half-space                 | closed form, by the support point              | the same           |
/// | 0, 1, 2 mesh; 5 to 8, 11, 12 | engine                                         | engine             |
/// | 10, 13, 14, any other        | not answered: a line is printed; distance 0    | not answered: false |
///
/// "Engine" is the generic way of ZuShape, which answers for the convex hull of a mesh; its accuracy is that of ZuGJK.
class ZU_API ZuConvexSolid : public ZuShape {
 public:
  // Overrides; see ZuShape

  ZuVector computeSupportPoint(ZuVector const& direction) const override = 0;
  /// The same as computeSupportPoint().
  ZuVector supportPoint(ZuVector const& direction) const override;
  double distanceTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                    ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state) const override;
  /// 0 for a segment that touches the solid or enters it, unless a class says otherwise.
  double distanceTo(ZuLineSegment const& segment) const override;
  /// Negative inside: minus the depth below the surface.
  double distanceTo(ZuVector const& point) const override;
  bool checkIntersect(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                      ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state,
                      KeyPairs* pairs) const override;
  bool checkIntersect(ZuLineSegment const& segment) const override;
  bool checkIntersect(ZuVector const& point) const override;
  void physicalExtent(std::vector<ZuBasePhysicalExtent*>& extents) const override;
  ZuBasePhysicalExtent& physicalExtent() const override = 0;
  bool isConvex() const override { return true; }
  /// Of the capsule that bounds the solid, not its approximation, which may lie inside.
  void axisAlignedBoundingBoxInPrimary(ZuAxisAlignedBoundingBox& box) const override;
  /// In closed form it returns whether the two touch or overlap, and `direction` is the unit vector from this solid
  /// towards the other shape, in this solid's frame.
  bool computePenetrationDistanceAndSupportPoints(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                                  ZuVector& witness1, ZuVector& witness2, double& distance,
                                                  ZuVector& direction) const override;
  double distanceAndWitnessPointsTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                    ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state,
                                    ZuVector& witness1, ZuVector& witness2) const override;

 protected:
  /// Where the surfaces of two solids come closest, or leave each other by the shortest way.
  struct Contact {
    ZuVector onThis;
    ZuVector normal;
    double distance;
    ZuVector onOther() const { return onThis + normal * distance; }
  };
  /// Fills the contact when the pair is one of closed form; a class with more such pairs asks its base for the rest.
  virtual bool inClosedForm(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                            Contact& contact) const;
  /// For messages.
  virtual char const* className() const = 0;
  /// The point of the surface nearest to the point, and the outward unit normal there along which the two are apart:
  /// point = onSurface + distance * normal.
  /// @return the signed distance, negative inside
  virtual double nearestSurfacePoint(ZuVector const& point, ZuVector& onSurface, ZuVector& normal) const = 0;
  /// A closest pair of points of the solid and of the segment.
  /// @return their distance; when it is not above 0 the points need not be set
  virtual double nearestPoints(ZuPlainSegment const& segment, ZuVector& onSolid, ZuVector& onSegment) const = 0;
  /// fitFromShape() of a shape that the class can't be fitted to: prints a line.
  void refuseToFit(ZuShape const& other) const;
  /// Fits around the vertices of a solid that is the hull of those of its physical extent: mesh, tetrahedron, box.
  /// @return false, and nothing happens, for other shapes
  bool fitToVerticesOf(ZuShape const& other);
  void printUnanswered(char const* operation, ZuShape const& other) const;

 private:
  bool whereCoreEnters(ZuCapsule const& capsule, ZuCoordinateSystemTransformation const& xform, Contact& contact) const;
};
