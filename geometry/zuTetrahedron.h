// zuTetrahedron.h - solid between four vertices. Group: solids.
#pragma once

#include "foundation/zuXmlVector.h"
#include "geometry/zuConvexSolid.h"

class ZuGeomTriangle;
class ZuRectangle;
struct ZuSegmentPart;

/// The closed set of all convex combinations of four vertices, in m, in the shape's own frame; their order has no
/// meaning. Vertices may coincide, or lie in one plane or on one line: what is left, a flat figure, a segment or a
/// point (by default the origin), is legal everywhere and has no inside.
///
/// Whether a point is inside is decided without rounding (ZuExactSigns), and so is the contact with segments and
/// triangles; distances are those of the faces, see ZuGeomTriangle. For the pairs with other shapes see ZuConvexSolid.
///
/// A copy costs what that of a ZuShape does. For threads see ZuShape.
class ZU_API ZuTetrahedron : public ZuXmlClass<ZuTetrahedron, ZuConvexSolid> {
 public:
  ZuTetrahedron() = default;
  ZuTetrahedron(ZuVector const& v0, ZuVector const& v1, ZuVector const& v2, ZuVector const& v3)
      : m_Vertices{v0, v1, v2, v3} {}

  bool operator==(ZuTetrahedron const& other) const;

  virtual ZuVector const& v0() const { return m_Vertices[0]; }
  virtual ZuVector const& v1() const { return m_Vertices[1]; }
  virtual ZuVector const& v2() const { return m_Vertices[2]; }
  virtual ZuVector const& v3() const { return m_Vertices[3]; }
  virtual void setV0(ZuVector const& vertex) { setVertex(0, vertex); }
  virtual void setV1(ZuVector const& vertex) { setVertex(1, vertex); }
  virtual void setV2(ZuVector const& vertex) { setVertex(2, vertex); }
  virtual void setV3(ZuVector const& vertex) { setVertex(3, vertex); }
  virtual void setVertices(ZuVector const& v0, ZuVector const& v1, ZuVector const& v2, ZuVector const& v3);
  /// Face 0 to 3 is opposite to the vertex of that index; its corners run counter-clockwise as seen from outside. Any
  /// other index prints a message and gives face 0.
  virtual ZuGeomTriangle face(unsigned int index) const;

  /// 0 when the two touch or overlap.
  virtual double distanceTo(ZuRectangle const& rectangle) const;
  virtual double distanceTo(ZuGeomTriangle const& triangle) const;
  /// m^3.
  virtual ZuReal volume() const;

  // Overrides; see ZuShape and ZuConvexSolid
  using ZuConvexSolid::checkIntersect;
  using ZuConvexSolid::distanceTo;

  /// A mesh, box or tetrahedron goes through fitToPoints(). Of any other solid but a half-space, the tessellation gives
  /// the directions of the faces, and the support points along them their places: the result encloses the solid itself.
  /// Anything else prints a line.
  void fitFromShape(ZuShape const& other) override;
  /// A vertex: the first of equals, vertex 0 for the zero direction and for one that is not a number.
  ZuVector computeSupportPoint(ZuVector const& direction) const override;
  void scaleBy(double factor) override;
  void transformBy(ZuCoordinateSystemTransformation const& xform) override;
  /// Without rounding: a gap of one ulp is a gap, also where the distance is rounded to 0.
  bool checkIntersect(ZuLineSegment const& segment) const override;
  bool checkIntersect(ZuVector const& point) const override;
  bool intersectLineSegment(ZuLineSegment const& segment, ZuShapePointEvent& event) const override;
  /// Encloses the points, to 1e-12 of their extent, in a tetrahedron of small volume by a search over the directions of
  /// its faces; a local minimum, not certainly the smallest: 2.61 times the volume of the convex hull in the mean
  /// of twelve scanned and modelled objects. Points of one plane or line give a flat tetrahedron. No points, or a
  /// coordinate that is not finite: a line is printed and nothing changes. Cost: linear in the points, and about 100 ms
  /// for the search.
  void fitToPoints(ZuXmlVectorVector const& points) override;
  using ZuConvexSolid::physicalExtent;
  /// The four faces, turned outward.
  ZuBasePhysicalExtent& physicalExtent() const override;
  ZuShapeValues type() const override { return TETRAHEDRON; }

  // Persistence; see ZuXmlCompoundType
  void registerComponents() override;

  static ZuToken const& classToken();
  static ZuTetrahedron testObject();

 protected:
  char const* className() const override { return "ZuTetrahedron"; }
  double nearestSurfacePoint(ZuVector const& point, ZuVector& onSurface, ZuVector& normal) const override;
  double nearestPoints(ZuPlainSegment const& segment, ZuVector& onSolid, ZuVector& onSegment) const override;

 private:
  ZuVector const& vertex(unsigned int index) const { return m_Vertices[index]; }
  void setVertex(unsigned int index, ZuVector const& vertex);
  int orientation() const;
  bool contains(ZuVector const& point, int leastSide = 0) const;
  bool meets(ZuPlainSegment const& segment) const;
  ZuVector outwardNormal(unsigned int face) const;
  ZuVector normalOfFlat() const;
  void pushFacesTo(ZuShape const& other);
  ZuSegmentPart partInside(ZuPlainSegment const& line) const;
  ZuSegmentPart partOnEdges(ZuPlainSegment const& line, double margin) const;

  ZuXmlVector m_Vertices[4];
};
