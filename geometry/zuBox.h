// zuBox.h - rectangular solid in any orientation. Group: solids.
#pragma once

#include <array>

#include "foundation/zuXmlCoordinateSystemTransformation.h"
#include "foundation/zuXmlVector.h"
#include "geometry/zuShape.h"

class ZuEllipsoid;
class ZuGeomTriangle;
class ZuRectangle;
class ZuTetrahedron;
struct ZuPlainBox;

/// The closed set of all points center + sum of u_i * axis(i) with |u_i| <= extent(i): `extents` are half lengths, m,
/// along three perpendicular axes, everything in the shape's own frame.
///
/// Extents of zero leave a rectangle, a segment or a point (the default: the origin). Negative ones are not refused;
/// distances make no sense then. The orientation is kept as a quaternion, and the axes are always its matrix columns.
///
/// **Pairs.** Which operations take the other shape's geometry as it stands, without the transformation, and which
/// pairs are not answered (a line is printed; the distance is then 0, a contact false):
///
/// | other shape     | distance                        | contact                 | penetration |
/// |-----------------|---------------------------------|-------------------------|-------------|
/// | 0, 1, 2 mesh    | engine                          | engine                  | engine      |
/// | 3 sphere        | exact; centre inside: - radius  | exact, **as it stands** | exact       |
/// | 4 capsule       | exact; core inside: - radius    | exact, **as it stands** | exact       |
/// | 5 ellipsoid     | exact, 0 when they overlap      | exact                   | engine      |
/// | 6 tetrahedron   | exact, 0 when they overlap      | exact                   | engine      |
/// | 7 box           | exact, 0 when they overlap      | not answered            | exact       |
/// | 8 lozenge       | exact, 0 when they overlap      | exact                   | exact       |
/// | 9 to 14         | not answered                    | not answered            | engine      |
///
/// Witness points are the engine's for every shape.
///
/// That contacts with spheres and capsules ignore the transformation, and that contacts with boxes are not answered
/// through the shape interface while distances are, is deliberate; checkIntersect(ZuBox const&, ...) answers them.
/// Distances to round shapes whose core comes into the box are minus the radius; the depth, which is more, is what
/// computePenetrationDistanceAndSupportPoints() tells.
///
/// A copy costs what that of a ZuShape does. For threads see ZuShape.
class ZU_API ZuBox : public ZuXmlClass<ZuBox, ZuShape> {
 public:
  ZuBox() = default;
  ZuBox(ZuCoordinateSystemTransformation const& primaryFrame, ZuVector const& extents);
  ZuBox(ZuBox const& other) = default;
  ZuBox& operator=(ZuBox const& other) = default;

  /// Compares extents, axes and frame.
  bool operator==(ZuBox const& other) const;

  // Overrides; see ZuShape

  /// A mesh goes through fitToPoints(). Anything else prints a line.
  void fitFromShape(ZuShape const& other) override;
  /// Exact: a corner. Of corners that are as far the one in the directions of the axes.
  ZuVector computeSupportPoint(ZuVector const& direction) const override;
  ZuVector supportPoint(ZuVector const& direction) const override;
  /// A negative factor mirrors at the origin; the extents stay positive.
  void scaleBy(ZuReal factor) override;
  void transformBy(ZuCoordinateSystemTransformation const& xform) override;
  double distanceTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                    ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state) const override;
  /// 0 for a segment that comes into the box.
  double distanceTo(ZuLineSegment const& segment) const override;
  /// 0 inside.
  double distanceTo(ZuVector const& point) const override;
  /// Touching counts. Spheres and capsules are taken as they stand: `xform` is not applied.
  bool checkIntersect(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                      ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state,
                      KeyPairs* pairs) const override;
  bool checkIntersect(ZuLineSegment const& segment) const override;
  /// Hits exactly when checkIntersect(segment) does. On an edge or a corner, the normal is that of the face that the
  /// segment crosses last on its way in, or first on its way out.
  bool intersectLineSegment(ZuLineSegment const& segment, ZuShapePointEvent& event) const override;
  bool checkIntersect(ZuVector const& point) const override;
  /// Encloses the points, to 1e-12 of their extent, in a box of small volume: it starts from the principal axes of the
  /// extreme points, and turns them. The volume is a local minimum, not certainly the smallest: 1.84 times that of the
  /// convex hull in the mean of twelve scanned and modelled objects. Points in a plane give a box of hardly any height.
  /// No points, or a coordinate that is not finite: a line is printed and nothing changes. Cost: linear in the points,
  /// and some 20 ms for the search.
  void fitToPoints(ZuXmlVectorVector const& points) override;
  void physicalExtent(std::vector<ZuBasePhysicalExtent*>& extents) const override;
  /// Exact at every detail level: eight vertices, six facets.
  ZuBasePhysicalExtent& physicalExtent() const override;
  bool isConvex() const override { return true; }
  ZuShapeValues type() const override { return BOX; }
  /// Sphere, capsule, box, lozenge: in closed form, returning whether the two touch or overlap. The distance is signed,
  /// also where distanceTo() is not; the direction is the unit vector from this box towards the other shape, along
  /// which the other one leaves by the shortest way when they overlap.
  bool computePenetrationDistanceAndSupportPoints(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                                  ZuVector& witness1, ZuVector& witness2, double& distance,
                                                  ZuVector& direction) const override;

  // Own virtual operations

  /// Becomes the box along the axes of its frame. A bound that is not finite, or a minimum above its maximum, prints a
  /// line, and nothing changes.
  virtual ZuBox& operator=(ZuAxisAlignedBoundingBox const& box);
  /// Half extents, m.
  virtual void setExtents(ZuVector const& extents);
  /// The frame of the box in the shape's frame: its translation is the centre.
  virtual ZuCoordinateSystemTransformation const& primaryFrame() const;
  virtual void setPrimaryFrame(ZuCoordinateSystemTransformation const& frame);
  virtual ZuVector const& center() const;
  virtual void setCenter(ZuVector const& center);
  /// The first three vectors become the axes; they must be unit vectors, perpendicular and right-handed within 1e-4,
  /// and are kept as what the quaternion makes of them. Otherwise a line is printed, and the axes stay.
  virtual void setAxes(ZuXmlVectorVector const& axes);
  /// 0 when they touch. Exact for flat figures without area too.
  virtual double distanceTo(ZuGeomTriangle const& triangle) const;
  virtual double distanceTo(ZuRectangle const& rectangle) const;
  /// 0 when they touch or overlap.
  virtual double distanceTo(ZuBox const& other, ZuCoordinateSystemTransformation const& xform) const;
  /// @param closest the point of the box nearest to the point
  virtual double distanceSquaredTo(ZuVector const& point, ZuVector& closest) const;
  /// @param t parameter of a nearest point of the segment, in [0, 1]
  /// @param closest a nearest point of the box
  virtual double distanceSquaredTo(ZuLineSegment const& segment, ZuReal& t, ZuVector& closest) const;
  /// To the segment's carrier line. A line that runs through the box has the point where it leaves it. A segment
  /// without length is a point, t = 0.
  virtual double distanceSquaredToLine(ZuLineSegment segment, ZuReal& t, ZuVector& closest) const;
  /// The three axes, always unit vectors.
  virtual ZuXmlVectorVector const& axes() const;
  /// By the fifteen separating axes; touching counts.
  virtual bool checkIntersect(ZuBox const& other, ZuCoordinateSystemTransformation const& xform) const;
  /// m^3.
  virtual ZuReal volume() const;
  /// Axis 0, 1 or 2. Any other index prints a message and gives the zero vector.
  virtual ZuVector const& axis(unsigned int index) const;
  /// Half extent 0, 1 or 2. Any other index prints a message and gives 0.
  virtual ZuReal extent(unsigned int index) const;

  // Steps of distanceSquaredToLine(). All in the coordinates of the box, mirrored so that the direction has no negative
  // component: `point` goes in as a point of the line and comes out as the nearest point of the box.

  /// For a line that leaves slab i0 before the others: follows the squared distance, which is convex and of one formula
  /// between any two places where the line enters or leaves a slab, from there to where it stops falling.
  virtual void face(unsigned int i0, unsigned int i1, unsigned int i2, ZuVector& point, ZuVector const& direction,
                    ZuReal& t, ZuReal& squared) const;
  /// No component of the direction is zero.
  virtual void caseNoZeros(ZuVector& point, ZuVector const& direction, ZuReal& t, ZuReal& squared) const;
  /// Component i2 is zero.
  virtual void case0(unsigned int i0, unsigned int i1, unsigned int i2, ZuVector& point, ZuVector const& direction,
                     ZuReal& t, ZuReal& squared) const;
  /// Components i1 and i2 are zero.
  virtual void case00(unsigned int i0, unsigned int i1, unsigned int i2, ZuVector& point, ZuVector const& direction,
                      ZuReal& t, ZuReal& squared) const;
  /// All components are zero.
  virtual void case000(ZuVector& point, ZuReal& t, ZuReal& squared) const;

  /// The axes from the frame.
  virtual void primaryFrameToAxes();
  /// The frame's orientation from the axes; nothing, unless there are three.
  virtual void axesToPrimaryFrame();

  // Not virtual

  /// Half extents, m.
  ZuVector const& extents() const { return m_Extents; }
  /// Whether the rectangle comes within the margin, m, of the box.
  bool checkIntersect(ZuRectangle const& rectangle, ZuReal margin) const;

  /// For algorithms of the library.
  ZuPlainBox plain() const;

  // Persistence; see ZuXmlCompoundType
  void registerComponents() override;
  bool read(ZuXmlReader& reader) override;

  static ZuToken const& classToken();
  static ZuBox testObject();

 private:
  using Corners = std::array<ZuVector, 8>;

  ZuVector toLocal(ZuVector const& point) const;
  ZuVector fromLocal(ZuVector const& local) const;
  void closeCase(ZuVector& point, ZuVector const& direction, ZuReal t, ZuReal& squared) const;
  Corners corners() const;
  ZuRectangle faceRectangle(unsigned int k) const;
  template <class Solid>
  double leastFaceDistance(Solid const& solid, ZuCoordinateSystemTransformation const& xform) const;
  bool touches(ZuEllipsoid const& ellipsoid, ZuCoordinateSystemTransformation const& xform) const;
  bool touches(ZuTetrahedron const& tetrahedron, ZuCoordinateSystemTransformation const& xform) const;

  ZuXmlVector m_Extents;
  ZuXmlCoordinateSystemTransformation m_PrimaryFrame;
  ZuXmlVectorVector m_Axes = identityAxes();

  static ZuXmlVectorVector identityAxes();
};
