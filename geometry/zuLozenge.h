// zuLozenge.h - solid of all points near a rectangle. Group: solids.
#pragma once

#include "foundation/zuXmlBasicType.h"
#include "geometry/zuConvexSolid.h"
#include "geometry/zuRectangle.h"

/// The closed set of all points within `radius` of a rectangle, its core: a plate with round edges and corners.
///
/// Lengths in m, everything in the shape's own frame. A core without area makes a capsule or a ball, radius 0 a bare
/// rectangle, both a segment or a point (the default). A negative radius is not refused: signed distances count on,
/// contacts make no sense then.
///
/// **Pairs.** The transformation is applied in every one of them; touching counts as contact.
///
/// | other shape                          | distance, witness points, penetration | contact           |
/// |--------------------------------------|---------------------------------------|-------------------|
/// | 3, 4, 8 sphere, capsule, lozenge     | closed form                           | closed form       |
/// | 7 box                                | closed form                           | closed form       |
/// | any other                            | see ZuConvexSolid                     | see ZuConvexSolid |
///
/// Distances in closed form are those of the cores minus the radii, also where cores cross: they are then negative by
/// the shortest way out. For a core of half edges that are not quite perpendicular, as ZuRectangle lets them be read,
/// the second one counts as turned to be so.
///
/// A copy costs what that of a ZuShape does. For threads see ZuShape.
class ZU_API ZuLozenge : public ZuXmlClass<ZuLozenge, ZuConvexSolid> {
 public:
  ZuLozenge() = default;
  ZuLozenge(ZuRectangle const& rectangle, ZuReal radius) : m_Rectangle(rectangle), m_Radius(radius) {}

  bool operator==(ZuLozenge const& other) const;

  /// The core.
  virtual ZuRectangle const& rectangle() const;
  virtual void setRectangle(ZuRectangle const& rectangle);
  virtual ZuReal radius() const;
  virtual void setRadius(ZuReal radius);
  /// m^3.
  virtual ZuReal volume() const;

  // Overrides; see ZuShape

  using ZuConvexSolid::checkIntersect;
  using ZuConvexSolid::distanceTo;
  using ZuConvexSolid::physicalExtent;

  /// Exact for spheres, capsules and lozenges; a mesh, a tetrahedron or a box goes through fitToPoints(). Anything else
  /// prints a line.
  void fitFromShape(ZuShape const& other) override;
  /// Exact: the farthest corner of the core, and from there the radius along the direction. A direction that is zero or
  /// not finite gives a corner.
  ZuVector computeSupportPoint(ZuVector const& direction) const override;
  /// A negative factor mirrors at the origin; the radius stays positive.
  void scaleBy(ZuReal factor) override;
  void transformBy(ZuCoordinateSystemTransformation const& xform) override;
  /// To the core, minus the radius: negative for a segment that comes into the lozenge.
  double distanceTo(ZuLineSegment const& segment) const override;
  /// Hits exactly when checkIntersect(segment) does. The normals of a lozenge of radius 0 are zero vectors.
  bool intersectLineSegment(ZuLineSegment const& segment, ZuShapePointEvent& event) const override;
  /// Encloses the points, to 1e-12 of their extent, in a lozenge of small volume, a local minimum from the principal
  /// axes on: 2.17 times that of the convex hull in the mean of twelve scanned and modelled objects. No points, or a
  /// coordinate that is not finite: a line is printed and nothing changes. Cost: linear in the points, and some 40 ms
  /// for the search.
  void fitToPoints(ZuXmlVectorVector const& points) override;
  /// Arcs of 2^level steps to a right angle (level: detailLevel(), at most m_theMaximumSubdivision). Closed, convex,
  /// outward, inside the lozenge; converges to it with the level.
  ZuBasePhysicalExtent& physicalExtent() const override;
  ZuShapeValues type() const override { return LOZENGE; }
  /// Around the solid, unless another was set.
  ZuCapsule const& capsuleBoundingVolume() const override;

  // Persistence; see ZuXmlCompoundType
  void registerComponents() override;

  static ZuToken const& classToken();
  static ZuLozenge testObject();

 protected:
  bool inClosedForm(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                    Contact& contact) const override;
  char const* className() const override { return "ZuLozenge"; }
  double nearestSurfacePoint(ZuVector const& point, ZuVector& onSurface, ZuVector& normal) const override;
  double nearestPoints(ZuPlainSegment const& segment, ZuVector& onSolid, ZuVector& onSegment) const override;

 private:
  ZuRectangle m_Rectangle;
  ZuXmlBasicType<double> m_Radius;
};
