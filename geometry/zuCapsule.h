// zuCapsule.h - solid of all points near a line segment. Group: solids.
#pragma once

#include <vector>

#include "foundation/zuXmlBasicType.h"
#include "geometry/zuLineSegment.h"
#include "geometry/zuShape.h"

/// The closed set of all points within `radius` of a line segment, its core: a tube with two round ends.
///
/// Lengths in m, everything in the shape's own frame. A core of length 0 makes a ball, radius 0 a bare segment, both 0
/// (the default) a point. A negative radius is not refused: signed distances count on, contacts make no sense then.
///
/// **Pairs.** Which operations take the other shape's geometry as it stands, without the transformation, and which
/// pairs are not answered (a line is printed; the distance is then 0, a contact false):
///
/// | other shape            | distance              | witness points and penetration | contact                      |
/// |------------------------|-----------------------|--------------------------------|------------------------------|
/// | 0, 1, 2 mesh           | engine                | engine                         | closed form, **as it stands** |
/// | 3 sphere               | closed form           | closed form                    | closed form, **as it stands** |
/// | 4 capsule              | closed form, bounded  | closed form, bounded           | closed form, **as it stands** |
/// | 5 to 14, any other     | not answered          | not answered; penetration: engine | not answered              |
///
/// That contacts ignore the transformation while distances apply it is deliberate. So is the bound: the depth of two
/// capsules is never more than the larger of their radii, though cores that meet are separated only by a move of the
/// sum of the radii.
///
/// A copy costs what that of a ZuShape does. For threads see ZuShape.
class ZU_API ZuCapsule : public ZuXmlClass<ZuCapsule, ZuShape> {
 public:
  ZuCapsule() = default;
  ZuCapsule(ZuLineSegment const& segment, ZuReal radius) : m_LineSegment(segment), m_Radius(radius) {}

  bool operator==(ZuCapsule const& other) const;

  // Overrides; see ZuShape

  /// Exact for spheres and capsules. Mesh, box, tetrahedron: fitToPoints() of the vertices. Cylinder, cone: the least
  /// capsule with its core on the same axis. Lozenge: the least along its longer edge. Ellipsoid: the least along its
  /// longest axis.
  /// All of them enclose. Anything else prints a line.
  void fitFromShape(ZuShape const& other) override;
  /// The same as supportPoint().
  ZuVector computeSupportPoint(ZuVector const& direction) const override;
  /// Exact: the end of the core that is farther in the direction (endpoint 0 when both are as far), and from there the
  /// radius along the direction. The zero direction gives endpoint 0 itself. A direction that is not finite prints a
  /// line and gives endpoint 0 too.
  ZuVector supportPoint(ZuVector const& direction) const override;
  /// A negative factor mirrors at the origin; the radius stays positive.
  void scaleBy(ZuReal factor) override;
  void transformBy(ZuCoordinateSystemTransformation const& xform) override;
  double distanceTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                    ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state) const override;
  /// To the core of this capsule, minus the radius: negative for a segment that comes into the capsule.
  double distanceTo(ZuLineSegment const& segment) const override;
  /// Negative inside: minus the depth below the surface.
  double distanceTo(ZuVector const& point) const override;
  /// Touching counts. The geometry of the other shape is taken as it stands: `xform` is not applied.
  bool checkIntersect(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                      ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state,
                      KeyPairs* pairs) const override;
  bool checkIntersect(ZuLineSegment const& segment) const override;
  /// Hits exactly when checkIntersect(segment) does. The normals of a capsule of radius 0 are zero vectors.
  bool intersectLineSegment(ZuLineSegment const& segment, ZuShapePointEvent& event) const override;
  bool checkIntersect(ZuVector const& point) const override;
  /// Encloses the points, to 1e-12 of their extent, in a capsule of small volume: the axis starts from the principal
  /// axes of the extreme points, and then axis and radius are searched together. The volume is a local minimum, not
  /// certainly the smallest: 3.34 times that of the convex hull in the mean of twelve scanned and modelled objects,
  /// where a search of ten times the cost reaches 3.33. One point gives a capsule of radius 0, points on a line the
  /// segment between the outermost. No points, or a coordinate that is not finite: a line is printed and nothing
  /// changes. Cost: linear in the points, and about 20 ms for the search.
  void fitToPoints(ZuXmlVectorVector const& points) override;
  void physicalExtent(std::vector<ZuBasePhysicalExtent*>& extents) const override;
  /// Rings of 4 * 2^level vertices on the surface, 2^level for each end (level: detailLevel(), at most
  /// m_theMaximumSubdivision). Closed, convex, outward, inside the capsule; converges to it with the level.
  ZuBasePhysicalExtent& physicalExtent() const override;
  bool isConvex() const override { return true; }
  ZuShapeValues type() const override { return CAPSULE; }
  /// Sphere, capsule: in closed form, returning whether the two touch or overlap; see
  /// computeDistanceAndWitnessPoints().
  bool computePenetrationDistanceAndSupportPoints(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                                  ZuVector& witness1, ZuVector& witness2, double& distance,
                                                  ZuVector& direction) const override;
  double distanceAndWitnessPointsTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                    ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state,
                                    ZuVector& witness1, ZuVector& witness2) const override;

  // Own virtual operations

  /// The core.
  virtual ZuLineSegment const& lineSegment() const;
  virtual void setLineSegment(ZuLineSegment const& segment);
  virtual ZuReal radius() const;
  virtual void setRadius(ZuReal radius);
  /// m^3.
  virtual ZuReal volume() const;
  /// Grows so that the points are inside and nothing is lost, by a longer core along the same axis and a larger radius,
  /// or by a larger radius alone: whichever has less volume. A core of length 0 only gets a larger radius.
  /// @return whether it had to grow
  virtual bool expandToInclude(ZuXmlVectorVector const& points);
  /// Makes the radius larger by what is missing for the other capsule, of the same frame, to be inside.
  /// @return whether anything was missing
  virtual bool expandToInclude(ZuCapsule const& other);

  // Not virtual

  /// Distance and nearest surface points to a sphere or capsule, along the line through the nearest points of the
  /// cores. Where the cores meet, that line is perpendicular to both.
  /// @param skipWitness leaves the witness points as they are
  /// @param witness1,witness2 each in its own shape's frame; as far apart as |distance|. Where the bound on the depth
  ///        of two capsules applies, both have moved into the solids by the same amount.
  /// @param direction unit vector from this capsule towards the other shape, in this capsule's frame
  /// @return false, and nothing is written, when the other shape is none of the two
  bool computeDistanceAndWitnessPoints(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                       bool skipWitness, ZuVector& witness1, ZuVector& witness2, ZuReal& distance,
                                       ZuVector& direction) const;

  // Persistence; see ZuXmlCompoundType
  void registerComponents() override;

  static ZuToken const& classToken();
  static ZuCapsule testObject();

 private:
  void become(ZuCapsule const& other);
  static double boundedDistance(double coreDistance, double radius1, double radius2);

  ZuLineSegment m_LineSegment;
  ZuXmlBasicType<double> m_Radius;
};
