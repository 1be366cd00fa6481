#include "geometry/zuTetrahedron.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "foundation/zuPrint.h"
#include "geometry/zuExactSignsPrivate.h"
#include "geometry/zuGeomTokens.h"
#include "geometry/zuGeomTriangle.h"
#include "geometry/zuNearestPoints.h"
#include "geometry/zuPointFit.h"
#include "geometry/zuPolyPhysicalExtent.h"
#include "geometry/zuPolygonWithKey.h"
#include "geometry/zuRectangle.h"
#include "geometry/zuShapePointEvent.h"
#include "geometry/zuTriangleKernelsPrivate.h"

/// The part of a segment that is in a convex set, by parameters; empty when first > last. The normals are zero where
/// nothing was clipped.
struct ZuSegmentPart {
  double first = 0.0;
  double last = 1.0;
  ZuVector firstNormal;
  ZuVector lastNormal;

  static ZuSegmentPart between(double first, double last) { return {first, last, ZuVector(), ZuVector()}; }
  static ZuSegmentPart none() { return between(0.0, -1.0); }
  bool isEmpty() const { return !(first <= last); }
  /// Keeps what is not in front of a plane, above which the ends are by a and b.
  void clip(double a, double b, ZuVector const& normal) {
    if (a <= 0.0 && b <= 0.0) return;
    if (a > 0.0 && b > 0.0) {
      last = -1.0;
    } else if (a > 0.0 && a / (a - b) >= first) {
      first = a / (a - b);
      firstNormal = normal;
    } else if (b > 0.0 && a / (a - b) <= last) {
      last = a / (a - b);
      lastNormal = normal;
    }
  }
  void unite(ZuSegmentPart const& other) {
    if (other.isEmpty()) return;
    *this = isEmpty() ? other : between(std::min(first, other.first), std::max(last, other.last));
  }
};

namespace {

using Part = ZuSegmentPart;

/// The corners of the faces and, last, the vertex opposite: even permutations of the vertices, so that all faces turn
/// the same way.
constexpr unsigned int theFaces[4][4] = {{3, 2, 1, 0}, {2, 3, 0, 1}, {1, 0, 3, 2}, {0, 1, 2, 3}};
constexpr unsigned int theEdges[6][2] = {{0, 1}, {0, 2}, {0, 3}, {1, 2}, {1, 3}, {2, 3}};

/// Times the size of the coordinates: from a surface that is closer, the direction to a point is spoilt by rounding.
constexpr double theSurface = 1e-9;
/// Times the size of the coordinates: how far a segment may be from a flat figure and lie in its plane; some roundings.
constexpr double theFlat = 16.0 * 0x1p-52;
/// The point of three planes normal . p = height.
ZuVector meetingPoint(ZuVector const (&normals)[3], double const (&heights)[3]) {
  ZuVector const n12 = normals[1].cross(normals[2]);
  ZuVector const sum =
      n12 * heights[0] + normals[2].cross(normals[0]) * heights[1] + normals[0].cross(normals[1]) * heights[2];
  return sum / normals[0].dot(n12);
}

/// Four planes with outward unit normals, and the solid between them.
struct FourPlanes {
  ZuVector normals[4];
  double heights[4];

  /// The vertex on all planes but one.
  ZuVector vertexWithout(unsigned int plane) const {
    unsigned int const* const k = theFaces[plane];
    return meetingPoint({normals[k[0]], normals[k[1]], normals[k[2]]}, {heights[k[0]], heights[k[1]], heights[k[2]]});
  }
  /// The planes enclose something when a sum of the normals vanishes whose weights, the determinants of the others,
  /// have one sign. The least weight over the largest; not above 0 when they don't.
  double soundness() const {
    double least = HUGE_VAL, most = -HUGE_VAL;
    for (auto const& k : theFaces) {
      double const weight = normals[k[0]].dot(normals[k[1]].cross(normals[k[2]]));
      least = std::min(least, weight);
      most = std::max(most, weight);
    }
    return most > 0.0 ? least / most : most / least;
  }
  void moveTo(ZuVector const* points, std::size_t count) {
    for (unsigned int k = 0; k < 4; ++k) {
      heights[k] = -HUGE_VAL;
      for (std::size_t i = 0; i < count; ++i) heights[k] = std::max(heights[k], normals[k].dot(points[i]));
    }
  }
  double volume() const {
    ZuVector const v0 = vertexWithout(0);
    return std::abs((vertexWithout(1) - v0).dot((vertexWithout(2) - v0).cross(vertexWithout(3) - v0))) / 6.0;
  }
};

/// Least tetrahedra: two variables tilt the normal of each face from that of a regular tetrahedron.
struct TetrahedronRule {
  static constexpr std::size_t theVariables = 8;
  using Solid = FourPlanes;
  /// Faces that are closer to parallel than that enclose needles.
  static constexpr double theLeastSoundness = 1e-2;
  /// Larger than every volume.
  static constexpr double theRefusal = 1e100;

  static FourPlanes around(ZuFitFrame const& frame, std::array<double, theVariables> const& x, ZuVector const* points,
                           std::size_t count) {
    FourPlanes result;
    constexpr double signs[4][3] = {{1, 1, 1}, {1, -1, -1}, {-1, 1, -1}, {-1, -1, 1}};
    for (unsigned int k = 0; k < 4; ++k) {
      ZuVector const n =
          (frame.axes[0] * signs[k][0] + frame.axes[1] * signs[k][1] + frame.axes[2] * signs[k][2]).unitVector();
      ZuVector const e1 = zuPerpendicular(n);
      result.normals[k] = (n + e1 * x[2 * k] + n.cross(e1) * x[2 * k + 1]).unitVector();
    }
    result.moveTo(points, count);
    return result;
  }
  static double measure(FourPlanes const& planes) {
    return planes.soundness() > theLeastSoundness ? planes.volume() : theRefusal;
  }
  static double outside(FourPlanes const& planes, ZuVector const& p) {
    double most = -HUGE_VAL;
    for (unsigned int k = 0; k < 4; ++k) most = std::max(most, planes.normals[k].dot(p) - planes.heights[k]);
    return most;
  }
};

/// Where a segment is in a triangle: in its plane when both ends are, give or take the margin, otherwise one point.
Part partInTriangle(ZuPlainSegment const& segment, ZuVector const (&corners)[3], ZuVector const& normal,
                    double margin) {
  Part part;
  double const h0 = normal.dot(segment.endpoint0 - corners[0]), h1 = normal.dot(segment.endpoint1 - corners[0]);
  if (!(std::abs(h0) <= margin && std::abs(h1) <= margin)) {
    part.first = part.last = zuClampToUnit(h0 / (h0 - h1));
  }
  ZuVector const from = zuPointAt(segment, part.first), to = zuPointAt(segment, part.last);
  bool const isPoint = part.first == part.last;
  for (unsigned int k = 0; k < 3; ++k) {
    ZuVector const outward = (corners[(k + 1) % 3] - corners[k]).cross(normal).unitVector();
    double const a = outward.dot(from - corners[k]), b = outward.dot(to - corners[k]);
    if (!isPoint) part.clip(a, b, outward);
    if (isPoint && a > margin) return Part::none();
  }
  return part;
}

/// Of a segment that meets a line figure: the parameters of its ends when the two are parallel, otherwise one point.
Part partOnEdge(ZuPlainSegment const& segment, ZuPlainSegment const& edge) {
  double s;
  double t;
  if (!zuClosestParameters(segment.delta, edge.delta, edge.lengthSquared, segment.endpoint0 - edge.endpoint0, s, t)) {
    double const a = zuNearestParameter(edge.endpoint0, segment), b = zuNearestParameter(edge.endpoint1, segment);
    return Part::between(std::min(a, b), std::max(a, b));
  }
  zuNearestParameters(segment, edge, s, t);
  return Part::between(s, s);
}

}  // namespace

bool ZuTetrahedron::operator==(ZuTetrahedron const& other) const {
  return ZuShape::operator==(other) && std::equal(m_Vertices, m_Vertices + 4, other.m_Vertices);
}

void ZuTetrahedron::setVertex(unsigned int index, ZuVector const& vertex) {
  m_Vertices[index] = vertex;
  geometryChanged();
}

void ZuTetrahedron::setVertices(ZuVector const& v0, ZuVector const& v1, ZuVector const& v2, ZuVector const& v3) {
  ZuVector const vertices[4] = {v0, v1, v2, v3};  // the arguments may be those of this tetrahedron
  for (unsigned int i = 0; i < 4; ++i) setVertex(i, vertices[i]);
}

/// +1 when the faces of the table turn outward, -1 when they turn inward, 0 when the tetrahedron is flat.
int ZuTetrahedron::orientation() const {
  return ZuExactSigns::side(m_Vertices[0], m_Vertices[1], m_Vertices[2], m_Vertices[3]);
}

ZuGeomTriangle ZuTetrahedron::face(unsigned int index) const {
  if (index > 3) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuTetrahedron::face-->index %u out of range", index);
    index = 0;
  }
  unsigned int const* const k = theFaces[index];
  ZuGeomTriangle result(vertex(k[0]), vertex(k[1]), vertex(k[2]));
  if (orientation() < 0) result.reverse();
  return result;
}

/// Never that of a flat tetrahedron. With leastSide 1: in the interior.
bool ZuTetrahedron::contains(ZuVector const& point, int leastSide) const {
  int const turn = orientation();
  return turn != 0 && std::all_of(theFaces, theFaces + 4, [&](unsigned int const(&k)[4]) {
           return turn * ZuExactSigns::side(vertex(k[0]), vertex(k[1]), vertex(k[2]), point) >= leastSide;
         });
}

bool ZuTetrahedron::meets(ZuPlainSegment const& segment) const {
  return contains(segment.endpoint0) || std::any_of(theFaces, theFaces + 4, [&](unsigned int const(&k)[4]) {
           return ZuTriangleKernels::intersects(ZuTriangleKernels::Triangle{vertex(k[0]), vertex(k[1]), vertex(k[2])},
                                                ZuTriangleKernels::Segment{segment.endpoint0, segment.endpoint1});
         });
}

double ZuTetrahedron::distanceTo(ZuRectangle const& rectangle) const {
  if (contains(rectangle.center())) return 0.0;
  double least = HUGE_VAL;
  for (unsigned int k = 0; k < 4; ++k) least = std::min(least, rectangle.distanceTo(face(k)));
  return least;
}

double ZuTetrahedron::distanceTo(ZuGeomTriangle const& triangle) const {
  if (contains(triangle.point(0))) return 0.0;
  double least = HUGE_VAL;
  for (unsigned int k = 0; k < 4; ++k) least = std::min(least, triangle.distanceTo(face(k)));
  return least;
}

ZuReal ZuTetrahedron::volume() const { return std::abs((v1() - v0()).dot((v2() - v0()).cross(v3() - v0()))) / 6.0; }

/// Zero for a face without area.
ZuVector ZuTetrahedron::outwardNormal(unsigned int face) const {
  unsigned int const* const k = theFaces[face];
  ZuVector const& a = vertex(k[0]);
  ZuVector const normal = (vertex(k[1]) - a).cross(vertex(k[2]) - a).unitVector();
  return orientation() < 0 ? -normal : normal;
}

/// A unit vector perpendicular to all edges, of a tetrahedron without volume: that of its largest face, or one
/// perpendicular to its longest edge.
ZuVector ZuTetrahedron::normalOfFlat() const {
  ZuVector area, edge;
  for (auto const& k : theFaces) {
    ZuVector const& a = vertex(k[0]);
    ZuVector const candidate = (vertex(k[1]) - a).cross(vertex(k[2]) - a);
    if (candidate.magSquared() > area.magSquared()) area = candidate;
  }
  if (area != ZuVector()) return area.unitVector();
  for (auto const& e : theEdges) {
    ZuVector const candidate = vertex(e[1]) - vertex(e[0]);
    if (candidate.magSquared() > edge.magSquared()) edge = candidate;
  }
  return zuPerpendicular(edge.unitVector());
}

double ZuTetrahedron::nearestSurfacePoint(ZuVector const& point, ZuVector& onSurface, ZuVector& normal) const {
  double least = HUGE_VAL;
  unsigned int nearest = 0;
  for (unsigned int i = 0; i < 4; ++i) {
    unsigned int const* const k = theFaces[i];
    ZuVector const candidate = ZuTriangleKernels::closestPoint({vertex(k[0]), vertex(k[1]), vertex(k[2])}, point);
    double const squared = candidate.distanceSquaredTo(point);
    if (!(squared < least)) continue;
    least = squared;
    nearest = i;
    onSurface = candidate;
  }
  double const distance = std::sqrt(least);
  bool const isInside = contains(point);
  if (!isInside && distance > theSurface * (point.mag() + onSurface.mag())) {
    normal = (point - onSurface) / distance;
    return distance;
  }
  normal = orientation() != 0 ? outwardNormal(nearest) : normalOfFlat();
  if (orientation() == 0 && normal.dot(point - onSurface) < 0.0) normal = -normal;
  return isInside ? -distance : distance;
}

/// Two solids that do not meet are closest at an end of the segment or at an edge of the tetrahedron.
double ZuTetrahedron::nearestPoints(ZuPlainSegment const& segment, ZuVector& onSolid, ZuVector& onSegment) const {
  if (meets(segment)) return 0.0;
  double least = HUGE_VAL;
  auto const consider = [&](ZuNearestPair const& pair) {
    double const squared = pair.distanceSquared();
    if (!(squared < least)) return;
    least = squared;
    onSolid = pair.first;
    onSegment = pair.second;
  };
  for (auto const& e : theEdges) {
    consider(zuNearestPair(ZuPlainSegment::between(vertex(e[0]), vertex(e[1])), segment));
  }
  for (auto const& k : theFaces) {
    ZuTriangleKernels::Triangle const face{vertex(k[0]), vertex(k[1]), vertex(k[2])};
    for (ZuVector const& end : {segment.endpoint0, segment.endpoint1}) {
      consider({ZuTriangleKernels::closestPoint(face, end), end});
    }
  }
  return std::sqrt(least);
}

void ZuTetrahedron::fitFromShape(ZuShape const& other) {
  if (fitToVerticesOf(other)) return;
  switch (other.type()) {
    case SPHERE:
    case CAPSULE:
    case ELLIPSOID:
    case LOZENGE:
    case CYLINDER:
    case CONE:
      fitToPoints(other.physicalExtent().points());
      return pushFacesTo(other);
    default:
      refuseToFit(other);
  }
}

/// Moves the faces along their normals until they touch the solid.
void ZuTetrahedron::pushFacesTo(ZuShape const& other) {
  if (orientation() == 0) return;  // a tessellation without volume is the solid itself
  FourPlanes planes;
  ZuVector const center = (v0() + v1() + v2() + v3()) * 0.25;
  for (unsigned int k = 0; k < 4; ++k) {
    planes.normals[k] = outwardNormal(k);
    planes.heights[k] = planes.normals[k].dot(other.computeSupportPoint(planes.normals[k]) - center);
  }
  if (!(planes.soundness() > 0.0)) return;
  setVertices(center + planes.vertexWithout(0), center + planes.vertexWithout(1), center + planes.vertexWithout(2),
              center + planes.vertexWithout(3));
}

ZuVector ZuTetrahedron::computeSupportPoint(ZuVector const& direction) const {
  unsigned int best = 0;
  double most = direction.dot(m_Vertices[0]);
  for (unsigned int i = 1; i < 4; ++i) {
    double const dot = direction.dot(m_Vertices[i]);
    if (dot > most) most = dot, best = i;
  }
  return m_Vertices[best];
}

void ZuTetrahedron::scaleBy(double factor) {
  scaleChainBy(factor);
  setVertices(v0() * factor, v1() * factor, v2() * factor, v3() * factor);
}

void ZuTetrahedron::transformBy(ZuCoordinateSystemTransformation const& xform) {
  ZuShape::transformBy(xform);
  setVertices(xform * v0(), xform * v1(), xform * v2(), xform * v3());
}

/// Where a segment that meets the tetrahedron is in it.
ZuSegmentPart ZuTetrahedron::partInside(ZuPlainSegment const& line) const {
  double const margin = theFlat * (line.endpoint0.mag() + line.endpoint1.mag() + v0().mag());
  Part part = orientation() == 0 ? Part::none() : Part();
  for (unsigned int i = 0; i < 4 && !part.isEmpty(); ++i) {
    ZuVector const normal = outwardNormal(i), corner = vertex(theFaces[i][0]);
    part.clip(normal.dot(line.endpoint0 - corner), normal.dot(line.endpoint1 - corner), normal);
  }
  if (!part.isEmpty()) return part;
  if (orientation() != 0) part = partOnEdges(line, margin);
  if (!part.isEmpty()) return part;
  // Flat, also within rounding: what is in it is in one of its faces.
  for (unsigned int i = 0; i < 4; ++i) {
    unsigned int const* const k = theFaces[i];
    ZuVector const corners[3] = {vertex(k[0]), vertex(k[1]), vertex(k[2])};
    ZuVector const normal = outwardNormal(i);
    if (normal != ZuVector()) part.unite(partInTriangle(line, corners, normal, margin));
  }
  return part.isEmpty() ? partOnEdges(line, HUGE_VAL) : part;
}

/// On edges within the margin; when it is infinite, on those that are nearest.
ZuSegmentPart ZuTetrahedron::partOnEdges(ZuPlainSegment const& line, double margin) const {
  ZuPlainSegment edges[6];
  double distances[6];
  for (unsigned int i = 0; i < 6; ++i) {
    edges[i] = ZuPlainSegment::between(vertex(theEdges[i][0]), vertex(theEdges[i][1]));
    distances[i] = std::sqrt(zuNearestPair(line, edges[i]).distanceSquared());
  }
  if (std::isinf(margin)) margin = *std::min_element(distances, distances + 6);
  Part part = Part::none();
  for (unsigned int i = 0; i < 6; ++i) {
    if (distances[i] <= margin) part.unite(partOnEdge(line, edges[i]));
  }
  return part;
}

bool ZuTetrahedron::checkIntersect(ZuLineSegment const& segment) const { return meets(segment.plain()); }

bool ZuTetrahedron::checkIntersect(ZuVector const& point) const { return meets(ZuPlainSegment::between(point, point)); }

bool ZuTetrahedron::intersectLineSegment(ZuLineSegment const& segment, ZuShapePointEvent& event) const {
  ZuPlainSegment const line = segment.plain();
  event = ZuShapePointEvent();
  event.shapeID = proximityDatabaseIndex();
  event.hit = meets(line);
  if (!event.hit) return false;
  event.startsInside = contains(line.endpoint0, 1);
  event.endsInside = contains(line.endpoint1, 1);
  Part const inside = partInside(line);
  auto const fill = [&](ZuShapeSurfacePoint& place, double t, ZuVector const& clipNormal, double forward) {
    ZuVector unused;
    place.t = t;
    place.point = zuPointAt(line, t);
    place.normal = clipNormal;
    if (clipNormal == ZuVector()) nearestSurfacePoint(place.point, unused, place.normal);
    if (orientation() == 0 && place.normal.dot(line.delta) * forward < 0.0) place.normal = -place.normal;
  };
  if (event.startsInside) event.entry = {0.0, line.endpoint0, ZuVector()};
  if (!event.startsInside) fill(event.entry, inside.first, inside.firstNormal, -1.0);
  if (event.endsInside) event.exit = {1.0, line.endpoint1, ZuVector()};
  if (!event.endsInside) fill(event.exit, inside.last, inside.lastNormal, 1.0);
  return true;
}

/// Least tetrahedra are sought where no direction of the set is special.
void ZuTetrahedron::fitToPoints(ZuXmlVectorVector const& points) {
  if (!zuCanBeFitted(points.data(), points.size())) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuTetrahedron::fitToPoints-->no points, or not finite (%zu points)",
                                points.size());
    return;
  }
  ZuPointStretch const stretch(points.data(), points.size());
  if (stretch.dimension() == 0) return setVertices(points[0], points[0], points[0], points[0]);
  std::vector<ZuVector> even;
  even.reserve(points.size());
  for (ZuVector const& p : points) even.push_back(stretch.to(p));
  FourPlanes const planes = ZuPointFit<TetrahedronRule>::around(even.data(), even.size());
  setVertices(stretch.from(planes.vertexWithout(0)), stretch.from(planes.vertexWithout(1)),
              stretch.from(planes.vertexWithout(2)), stretch.from(planes.vertexWithout(3)));
}

ZuBasePhysicalExtent& ZuTetrahedron::physicalExtent() const {
  if (keptExtent() == nullptr) {
    auto extent = std::make_unique<ZuPolyPhysicalExtent>();
    dressExtent(*extent);
    ZuXmlVectorType<ZuPolygonWithKey> facets;
    for (auto const& k : theFaces) {
      unsigned int const corners[3] = {k[0], orientation() < 0 ? k[2] : k[1], orientation() < 0 ? k[1] : k[2]};
      facets.pushBack(ZuPolygonWithKey(corners, 3, extent->surfaceProperty()));
    }
    extent->setPoints(ZuXmlVectorVector({v0(), v1(), v2(), v3()}));
    extent->setFacets(facets);
    extent->setIsConvex(true);
    keepExtent(std::move(extent));
  }
  return *keptExtent();
}

void ZuTetrahedron::registerComponents() {
  ZuShape::registerComponents();
  ZuToken const* const tokens[4] = {&ZuGeom::ZuV0Token, &ZuGeom::ZuV1Token, &ZuGeom::ZuV2Token, &ZuGeom::ZuV3Token};
  for (unsigned int i = 0; i < 4; ++i) registerComponent(*tokens[i], &m_Vertices[i]);
}

ZuToken const& ZuTetrahedron::classToken() { return ZuGeom::ZuTetrahedronToken; }

ZuTetrahedron ZuTetrahedron::testObject() {
  ZuTetrahedron sample(ZuVector::testObject(), {0.5, 1.0, 0.0}, {-1.0, 0.25, 2.0}, {0.125, -3.0, 0.75});
  sample.fillForTest();
  return sample;
}
