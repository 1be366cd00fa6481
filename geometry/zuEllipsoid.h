// zuEllipsoid.h - solid ellipsoid. Group: solids.
#pragma once

#include "foundation/zuXmlCoordinateSystemTransformation.h"
#include "foundation/zuXmlVector.h"
#include "geometry/zuConvexSolid.h"

class ZuRectangle;

/// The closed set of the points primaryFrame * (r0 x, r1 y, r2 z) with x^2 + y^2 + z^2 <= 1: centre and axes are those
/// of the primary frame, which is given in the shape's own frame, and r0, r1, r2 are the semi-axes in m. The default is
/// the point at the origin.
///
/// A semi-axis that is negative counts as positive. Semi-axes of 0 leave a flat disc, a segment or a point; support
/// points and tessellations are those of that figure, and the other operations take it to be m_theThinnest of the
/// longest semi-axis thick, which is about what its coordinates are rounded by.
///
/// **Distances.** The nearest point of the surface is the root of a secular equation, by an iteration that rises to it
/// monotonically and stops when it no longer moves (see the source): the distance of a point is that of the exact solid
/// to a few ulps of the largest coordinate, at any ratio of the semi-axes. Segments and rectangles are closest at a
/// point that halving intervals close in on until no double is left between: their distances carry an error of 1e-13 of
/// the largest coordinate. Contact with them is decided by closed forms. For the pairs with other shapes see
/// ZuConvexSolid.
///
/// A copy costs what that of a ZuShape does. For threads see ZuShape.
class ZU_API ZuEllipsoid : public ZuXmlClass<ZuEllipsoid, ZuConvexSolid> {
 public:
  /// Of the longest semi-axis: what a shorter one is at least taken for. Larger, and thin discs would be thicker than
  /// rounding; smaller, and the squares of the ratios would leave no digits for the longer axes.
  static constexpr double m_theThinnest = 1e-15;

  ZuEllipsoid() = default;
  ZuEllipsoid(ZuCoordinateSystemTransformation const& primaryFrame, ZuVector const& radii)
      : m_PrimaryFrame(primaryFrame), m_Radii(radii) {}

  bool operator==(ZuEllipsoid const& other) const;

  virtual ZuVector const& center() const { return primaryFrame().translation(); }
  virtual void setCenter(ZuVector const& center);
  virtual ZuCoordinateSystemTransformation const& primaryFrame() const { return m_PrimaryFrame; }
  virtual void setPrimaryFrame(ZuCoordinateSystemTransformation const& primaryFrame);
  /// The semi-axes.
  virtual ZuVector const& radii() const { return m_Radii; }
  virtual void setRadii(ZuVector const& radii);

  /// 0 when the two touch or overlap.
  virtual double distanceTo(ZuRectangle const& rectangle) const;
  virtual bool checkIntersect(ZuRectangle const& rectangle) const;
  /// m^3.
  virtual ZuReal volume() const;

  // Overrides; see ZuShape and ZuConvexSolid
  using ZuConvexSolid::checkIntersect;
  using ZuConvexSolid::distanceTo;

  /// A mesh, box or tetrahedron goes through fitToPoints(), a sphere or an ellipsoid is taken over. Anything else
  /// prints a line.
  void fitFromShape(ZuShape const& other) override;
  /// Exact. The zero direction gives the end of the first axis; a direction that is not finite prints a line and gives
  /// the centre.
  ZuVector computeSupportPoint(ZuVector const& direction) const override;
  void scaleBy(double factor) override;
  void transformBy(ZuCoordinateSystemTransformation const& xform) override;
  bool checkIntersect(ZuLineSegment const& segment) const override;
  bool checkIntersect(ZuVector const& point) const override;
  bool intersectLineSegment(ZuLineSegment const& segment, ZuShapePointEvent& event) const override;
  /// The ellipsoid of least volume around the points, see ZuEnclosingEllipsoid. No points, or a coordinate that is not
  /// finite: a line is printed and nothing changes.
  void fitToPoints(ZuXmlVectorVector const& points) override;
  using ZuConvexSolid::physicalExtent;
  /// The subdivided icosahedron of ZuShape::icosahedron(), stretched: closed, convex, outward, inside the ellipsoid;
  /// converges to it with the detail level.
  ZuBasePhysicalExtent& physicalExtent() const override;
  ZuShapeValues type() const override { return ELLIPSOID; }
  /// Along the longest axis, with the middle semi-axis as radius: encloses the ellipsoid itself.
  ZuCapsule const& capsuleBoundingVolume() const override;

  // Persistence; see ZuXmlCompoundType
  void registerComponents() override;

  static ZuToken const& classToken();
  static ZuEllipsoid testObject();

 protected:
  char const* className() const override { return "ZuEllipsoid"; }
  double nearestSurfacePoint(ZuVector const& point, ZuVector& onSurface, ZuVector& normal) const override;
  double nearestPoints(ZuPlainSegment const& segment, ZuVector& onSolid, ZuVector& onSegment) const override;

 private:
  ZuVector semiAxes() const;
  ZuVector toBall(ZuVector const& point) const;
  ZuPlainSegment toBall(ZuPlainSegment const& segment) const;
  ZuVector normalAt(ZuVector const& onBall) const;

  ZuXmlCoordinateSystemTransformation m_PrimaryFrame;
  ZuXmlVector m_Radii;
};
