// zuSphere.h - solid ball. Group: solids.
#pragma once

#include "foundation/zuXmlVector.h"
#include "geometry/zuShape.h"

/// The closed ball { p : |p - center| <= radius } of the shape's frame. A radius of 0 is a point.
///
/// Which pairs are answered (`xform` places the other shape in this sphere's frame in all of them):
///
/// | other shape        | distanceTo | distanceAndWitnessPointsTo | checkIntersect  | penetration | fitFromShape |
/// |--------------------|------------|----------------------------|-----------------|-------------|--------------|
/// | 0 extent           | generic    | generic                    | not supported   | generic     | vertices     |
/// | 1, 2 meshes        | generic    | generic                    | exact, *strict* | generic     | vertices     |
/// | 3 sphere           | exact      | exact                      | exact, closed   | exact       | union        |
/// | 4 capsule          | -          | -                          | -               | generic     | see below    |
/// | any other          | -          | -                          | -               | generic     | -            |
///
/// "-" prints one line and answers 0 or false. Touching counts as contact between two spheres, and not between a sphere
/// and a mesh: a mesh whose distance from the centre is exactly the radius does not intersect. Two concentric spheres
/// have no witness points: the arguments are left as they were, and the direction is the zero vector.
class ZU_API ZuSphere : public ZuXmlClass<ZuSphere, ZuShape> {
 public:
  ZuSphere() = default;
  /// @param detailLevel fineness of the polyhedral approximation, 3 for the usual one
  ZuSphere(ZuVector const& center, double radius, int detailLevel);

  bool operator==(ZuSphere const& other) const;

  virtual ZuVector const& center() const;
  virtual void setCenter(ZuVector const& center);
  virtual double radius() const;
  virtual void setRadius(double radius);

  /// Whether the other ball lies in this one; without any tolerance.
  virtual bool contains(ZuSphere const& other) const;
  /// Whether the point lies in the ball or at most m_thePointTolerance outside it.
  virtual bool contains(ZuVector const& point) const;
  /// Becomes the smallest ball that holds both.
  virtual void expandSelfToInclude(ZuSphere const& other);
  /// m^3.
  virtual double volume() const;

  /// Exact distance, nearest points and the vector between the centres (made a unit vector when the points are
  /// computed).
  /// @param skipWitness leaves the points alone
  /// @return false, and nothing changes or is printed, when the other shape is no sphere
  bool computeDistanceAndWitnessPoints(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                       bool skipWitness, ZuVector& witness1, ZuVector& witness2, double& distance,
                                       ZuVector& direction) const;
  /// Where a segment enters and leaves a ball; see ZuShapePointEvent. Returns whether they meet; touching counts.
  static bool intersectSphereWithLineSegment(ZuVector const& center, double radius, ZuLineSegment const& segment,
                                             ZuShapePointEvent& event);

  // See ZuShape

  /// Meshes: fitToPoints() of their vertices. A sphere: expandSelfToInclude(), from what this sphere is. A capsule: the
  /// centre is that of its segment and the radius the larger of half the segment's length and the capsule's radius,
  /// which does **not** enclose the capsule's ends; do not rely on it as a bound.
  void fitFromShape(ZuShape const& other) override;
  /// Exact. In the zero direction: the point farthest from the frame's origin, (0, 0, radius) for a sphere about it.
  ZuVector computeSupportPoint(ZuVector const& direction) const override;
  ZuVector supportPoint(ZuVector const& direction) const override;
  void scaleBy(double factor) override;
  void transformBy(ZuCoordinateSystemTransformation const& xform) override;
  double distanceTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                    ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state) const override;
  double distanceTo(ZuLineSegment const& segment) const override;
  double distanceTo(ZuVector const& point) const override;
  bool checkIntersect(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                      ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state,
                      KeyPairs* pairs) const override;
  bool checkIntersect(ZuLineSegment const& segment) const override;
  bool intersectLineSegment(ZuLineSegment const& segment, ZuShapePointEvent& event) const override;
  bool checkIntersect(ZuVector const& point) const override;
  /// Starts as a point at the first of the points and grows point by point: the result encloses all, depends on their
  /// order, and is not the smallest. Without points a line is printed and nothing changes.
  void fitToPoints(ZuXmlVectorVector const& points) override;
  void physicalExtent(std::vector<ZuBasePhysicalExtent*>& extents) const override;
  ZuBasePhysicalExtent& physicalExtent() const override;
  bool isConvex() const override { return true; }
  ZuShapeValues type() const override { return SPHERE; }
  /// Of the solid, not of its approximation, which lies inside.
  void axisAlignedBoundingBoxInPrimary(ZuAxisAlignedBoundingBox& box) const override;
  bool computePenetrationDistanceAndSupportPoints(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                                  ZuVector& witness1, ZuVector& witness2, double& distance,
                                                  ZuVector& direction) const override;
  double distanceAndWitnessPointsTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                    ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state,
                                    ZuVector& witness1, ZuVector& witness2) const override;
  /// The sphere itself, unless another was set.
  ZuCapsule const& capsuleBoundingVolume() const override;

  void registerComponents() override;
  static ZuToken const& classToken();
  static ZuSphere testObject();

  /// How far outside the ball a point may lie and still count as contained, m: the rounding of a distance of some
  /// metres.
  static constexpr double m_thePointTolerance = 1e-12;

 private:
  ZuXmlVector m_Center;
  ZuXmlBasicType<double> m_Radius;
};
