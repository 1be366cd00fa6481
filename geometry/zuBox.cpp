#include "geometry/zuBox.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "foundation/zuPrint.h"
#include "geometry/zuAxisAlignedBoundingBox.h"
#include "geometry/zuBoxPairPrivate.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuEllipsoid.h"
#include "geometry/zuGeomTokens.h"
#include "geometry/zuGeomTriangle.h"
#include "geometry/zuLozenge.h"
#include "geometry/zuNearestPoints.h"
#include "geometry/zuPointFit.h"
#include "geometry/zuPolyPhysicalExtent.h"
#include "geometry/zuPolygonWithKey.h"
#include "geometry/zuRectangle.h"
#include "geometry/zuShapePointEvent.h"
#include "geometry/zuSphere.h"
#include "geometry/zuTetrahedron.h"

namespace {

ZuVector absolute(ZuVector const& v) { return {std::abs(v.x()), std::abs(v.y()), std::abs(v.z())}; }

bool isFinite(ZuVector const& v) { return std::isfinite(v.x()) && std::isfinite(v.y()) && std::isfinite(v.z()); }

/// Without a branch: which way it goes is as good as random.
double clampedTo(double extent, double x) { return std::max(-extent, std::min(x, extent)); }

/// Least boxes: three variables turn the axes.
struct BoxRule {
  static constexpr std::size_t theVariables = 3;
  using Solid = ZuPlainBox;
  /// Times the longest extent: what is added to each, so that of flat boxes the one with the smallest face is best.
  static constexpr double theThickness = 1e-6;

  static ZuPlainBox around(ZuFitFrame const& frame, std::array<double, theVariables> const& x, ZuVector const* points,
                           std::size_t count) {
    ZuPlainBox box{frame.center, {}, {}};
    frame.turnedAxes(x[0], x[1], x[2], box.axes);
    for (unsigned int i = 0; i < 3; ++i) {
      double low = HUGE_VAL;
      double high = -HUGE_VAL;
      for (std::size_t k = 0; k < count; ++k) {
        double const t = (points[k] - frame.center).dot(box.axes[i]);
        low = std::min(low, t);
        high = std::max(high, t);
      }
      box.center += box.axes[i] * (0.5 * (low + high));
      box.extents[i] = 0.5 * (high - low);
    }
    return box;
  }
  static double measure(ZuPlainBox const& b) {
    double const least = theThickness * std::max({b.extents.x(), b.extents.y(), b.extents.z()});
    return (b.extents + ZuVector(least, least, least)).prod();
  }
  static double outside(ZuPlainBox const& b, ZuVector const& p) {
    double most = -HUGE_VAL;
    for (unsigned int i = 0; i < 3; ++i) most = std::max(most, std::abs((p - b.center).dot(b.axes[i])) - b.extents[i]);
    return most;
  }
};

/// Where a line is within the box, and through which faces it comes and goes.
struct Passage {
  double entry = 0.0;
  double exit = 1.0;
  ZuVector entryNormal;  ///< in the coordinates of the box; zero where the segment crosses no face
  ZuVector exitNormal;

  Passage(ZuVector const& from, ZuVector const& direction, ZuVector const& extents) {
    for (unsigned int i = 0; i < 3; ++i) {
      if (direction[i] == 0.0) continue;
      double const sign = direction[i] < 0.0 ? -1.0 : 1.0;
      double const in = (-sign * extents[i] - from[i]) / direction[i];
      double const out = (sign * extents[i] - from[i]) / direction[i];
      if (in > entry) entry = in, entryNormal = unit(i, -sign);
      if (out < exit) exit = out, exitNormal = unit(i, sign);
    }
  }
  static ZuVector unit(unsigned int i, double sign) {
    ZuVector v;
    v[i] = sign < 0.0 ? -1.0 : 1.0;
    return v;
  }
};

/// The normal of the face that is nearest to a point in the box; where both sides are as near, the one towards `side`.
ZuVector nearestNormal(ZuVector const& local, ZuVector const& extents, ZuVector const& side) {
  ZuVector const depths = extents - absolute(local);
  unsigned int const i = depths.x() <= depths.y()   ? (depths.x() <= depths.z() ? 0 : 2)
                         : depths.y() <= depths.z() ? 1
                                                    : 2;
  return Passage::unit(i, std::abs(local[i]) > 0.0 && extents[i] > 0.0 ? local[i] : side[i]);
}

/// Distance of the box to a flat convex figure of `sides` sides, 0 when they touch. The nearest points of the two
/// include one of a side, or one of the two corners that are farthest along the normal; the diagonal between those
/// meets the figure if the plane cuts the box wholly within it.
template <class Figure, class Side>
double flatDistance(ZuBox const& box, Figure const& figure, unsigned int sides, Side const& side) {
  ZuVector const normal = figure.normal();
  double least = figure.distanceTo(ZuLineSegment(box.computeSupportPoint(-normal), box.computeSupportPoint(normal)));
  for (unsigned int i = 0; i < sides && least > 0.0; ++i) least = std::min(least, box.distanceTo(side(i)));
  return least;
}

}  // namespace

ZuXmlVectorVector ZuBox::identityAxes() {
  return ZuXmlVectorVector({ZuVector::xVector(1.0), ZuVector::yVector(1.0), ZuVector::zVector(1.0)});
}

ZuBox::ZuBox(ZuCoordinateSystemTransformation const& primaryFrame, ZuVector const& extents)
    : m_Extents(extents), m_PrimaryFrame(primaryFrame) {
  ZuBox::primaryFrameToAxes();
}

bool ZuBox::operator==(ZuBox const& other) const {
  return ZuShape::operator==(other) && m_Extents == other.m_Extents && m_Axes == other.m_Axes &&
         m_PrimaryFrame == other.m_PrimaryFrame;
}

ZuPlainBox ZuBox::plain() const { return {center(), {m_Axes[0], m_Axes[1], m_Axes[2]}, m_Extents}; }

ZuVector ZuBox::toLocal(ZuVector const& point) const {
  ZuVector const d = point - m_PrimaryFrame.value().translation();
  return {d.dot(m_Axes[0]), d.dot(m_Axes[1]), d.dot(m_Axes[2])};
}

ZuVector ZuBox::fromLocal(ZuVector const& local) const {
  return m_PrimaryFrame.value().translation() + m_Axes[0] * local.x() + m_Axes[1] * local.y() + m_Axes[2] * local.z();
}

/// Bit i of the number of a corner is its sign along axis i.
ZuBox::Corners ZuBox::corners() const {
  Corners result;
  ZuVector const& e = m_Extents;
  for (unsigned int k = 0; k < result.size(); ++k) {
    result[k] =
        fromLocal({(k & 1U) != 0 ? e.x() : -e.x(), (k & 2U) != 0 ? e.y() : -e.y(), (k & 4U) != 0 ? e.z() : -e.z()});
  }
  return result;
}

/// Face k of six.
ZuRectangle ZuBox::faceRectangle(unsigned int k) const {
  unsigned int const i = k / 2, i1 = (i + 1) % 3, i2 = (i + 2) % 3;
  ZuVector const& e = m_Extents;
  ZuVector const out = m_Axes[i] * (k % 2 == 0 ? e[i] : -e[i]);
  return ZuRectangle(center() + out, m_Axes[i1] * e[i1], m_Axes[i2] * e[i2]);
}

template <class Solid>
double ZuBox::leastFaceDistance(Solid const& solid, ZuCoordinateSystemTransformation const& xform) const {
  ZuCoordinateSystemTransformation const inverse = xform.inverse();
  double least = HUGE_VAL;
  for (unsigned int k = 0; k < 6; ++k) least = std::min(least, solid.distanceTo(inverse * faceRectangle(k)));
  return least;
}

bool ZuBox::touches(ZuEllipsoid const& ellipsoid, ZuCoordinateSystemTransformation const& xform) const {
  if (checkIntersect(xform * ellipsoid.center())) return true;
  ZuCoordinateSystemTransformation const inverse = xform.inverse();
  for (unsigned int k = 0; k < 6; ++k) {
    if (ellipsoid.checkIntersect(inverse * faceRectangle(k))) return true;
  }
  return false;
}

bool ZuBox::touches(ZuTetrahedron const& tetrahedron, ZuCoordinateSystemTransformation const& xform) const {
  for (ZuVector const& v : {tetrahedron.v0(), tetrahedron.v1(), tetrahedron.v2(), tetrahedron.v3()}) {
    if (checkIntersect(xform * v)) return true;
  }
  for (ZuVector const& corner : corners()) {
    if (tetrahedron.checkIntersect(xform.inverseTimes(corner))) return true;
  }
  return leastFaceDistance(tetrahedron, xform) <= 0.0;
}

void ZuBox::fitFromShape(ZuShape const& other) {
  auto const* const extent = isMesh(other.type()) ? dynamic_cast<ZuBasePhysicalExtent const*>(&other) : nullptr;
  if (extent != nullptr) return fitToPoints(extent->points());
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuBox::fitFromShape-->shape conversion not supported");
}

ZuVector ZuBox::computeSupportPoint(ZuVector const& direction) const {
  ZuVector const& e = m_Extents;
  return fromLocal({std::copysign(e.x(), direction.dot(m_Axes[0])), std::copysign(e.y(), direction.dot(m_Axes[1])),
                    std::copysign(e.z(), direction.dot(m_Axes[2]))});
}

ZuVector ZuBox::supportPoint(ZuVector const& direction) const { return computeSupportPoint(direction); }

void ZuBox::scaleBy(ZuReal factor) {
  scaleChainBy(factor);
  setCenter(center() * factor);
  setExtents(m_Extents.value() * std::abs(factor));
}

void ZuBox::transformBy(ZuCoordinateSystemTransformation const& xform) {
  ZuShape::transformBy(xform);
  setPrimaryFrame(xform * m_PrimaryFrame.value());
}

double ZuBox::distanceTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                         ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state) const {
  switch (other.type()) {
    case PHYSICAL_EXTENT:
    case POLY_PHYSICAL_EXTENT:
    case TRI_PHYSICAL_EXTENT:
      return ZuShape::distanceTo(other, xform, descriptor, state);
    case SPHERE: {
      ZuSphere const& sphere = as<ZuSphere>(other);
      return distanceTo(xform * sphere.center()) - sphere.radius();
    }
    case CAPSULE: {
      ZuCapsule const& capsule = as<ZuCapsule>(other);
      return distanceTo(xform * capsule.lineSegment()) - capsule.radius();
    }
    case BOX: {
      ZuBox const& box = as<ZuBox>(other);
      return checkIntersect(box, xform) ? 0.0 : distanceTo(box, xform);
    }
    case ELLIPSOID:
      if (checkIntersect(other, xform, descriptor, state, nullptr)) return 0.0;
      return leastFaceDistance(as<ZuEllipsoid>(other), xform);
    case TETRAHEDRON:
      if (checkIntersect(other, xform, descriptor, state, nullptr)) return 0.0;
      return leastFaceDistance(as<ZuTetrahedron>(other), xform);
    case LOZENGE: {
      ZuLozenge const& lozenge = as<ZuLozenge>(other);
      if (checkIntersect(other, xform, descriptor, state, nullptr)) return 0.0;
      return distanceTo(xform * lozenge.rectangle()) - lozenge.radius();
    }
    default:
      printNotSupported("ZuBox::distanceTo-->Check", other);
      return 0.0;
  }
}

double ZuBox::distanceTo(ZuLineSegment const& segment) const {
  double t;
  ZuVector closest;
  return std::sqrt(distanceSquaredTo(segment, t, closest));
}

double ZuBox::distanceTo(ZuVector const& point) const {
  ZuVector closest;
  return std::sqrt(distanceSquaredTo(point, closest));
}

bool ZuBox::checkIntersect(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                           ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state,
                           KeyPairs* pairs) const {
  switch (other.type()) {
    case PHYSICAL_EXTENT:
    case POLY_PHYSICAL_EXTENT:
    case TRI_PHYSICAL_EXTENT:
      return report(distanceTo(other, xform, descriptor, state) <= 0.0, descriptor, pairs);
    case SPHERE: {
      ZuSphere const& sphere = as<ZuSphere>(other);
      return report(distanceTo(sphere.center()) - sphere.radius() <= 0.0, descriptor, pairs);
    }
    case CAPSULE: {
      ZuCapsule const& capsule = as<ZuCapsule>(other);
      return report(distanceTo(capsule.lineSegment()) - capsule.radius() <= 0.0, descriptor, pairs);
    }
    case ELLIPSOID:
      return report(touches(as<ZuEllipsoid>(other), xform), descriptor, pairs);
    case TETRAHEDRON:
      return report(touches(as<ZuTetrahedron>(other), xform), descriptor, pairs);
    case LOZENGE: {
      ZuLozenge const& lozenge = as<ZuLozenge>(other);
      return report(checkIntersect(xform * lozenge.rectangle(), lozenge.radius()), descriptor, pairs);
    }
    default:
      printNotSupported("ZuBox::checkIntersect-->Distance", other);
      return false;
  }
}

bool ZuBox::checkIntersect(ZuLineSegment const& segment) const {
  double t;
  ZuVector closest;
  return distanceSquaredTo(segment, t, closest) <= 0.0;
}

bool ZuBox::intersectLineSegment(ZuLineSegment const& segment, ZuShapePointEvent& event) const {
  event = ZuShapePointEvent();
  event.shapeID = proximityDatabaseIndex();
  double nearest;
  ZuVector closest;
  event.hit = distanceSquaredTo(segment, nearest, closest) <= 0.0;
  if (!event.hit) return false;
  ZuVector const from = toLocal(segment.endpoint0());
  ZuVector const to = toLocal(segment.endpoint1());
  Passage passage(from, to - from, m_Extents);
  // It touches by rounding alone, or is a point.
  if (!(passage.entry <= passage.exit) || from == to) passage.entry = passage.exit = nearest;
  auto const isInside = [this](ZuVector const& p) {
    ZuVector const rest = m_Extents.value() - absolute(p);
    return rest.x() > 0.0 && rest.y() > 0.0 && rest.z() > 0.0;
  };
  event.startsInside = isInside(from);
  event.endsInside = isInside(to);
  auto const surfacePoint = [&](double t, bool inside, ZuVector const& crossed, ZuVector const& side) {
    ZuVector const point = zuPointAt(segment.plain(), t);
    ZuVector const normal = crossed == ZuVector() ? nearestNormal(toLocal(point), m_Extents, side) : crossed;
    return ZuShapeSurfacePoint{t, point, inside ? ZuVector() : fromLocal(normal) - center()};
  };
  event.entry =
      surfacePoint(event.startsInside ? 0.0 : passage.entry, event.startsInside, passage.entryNormal, from - to);
  event.exit = surfacePoint(event.endsInside ? 1.0 : passage.exit, event.endsInside, passage.exitNormal, to - from);
  return true;
}

bool ZuBox::checkIntersect(ZuVector const& point) const {
  ZuVector closest;
  return distanceSquaredTo(point, closest) <= 0.0;
}

void ZuBox::fitToPoints(ZuXmlVectorVector const& points) {
  if (!zuCanBeFitted(points.data(), points.size())) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuBox::fitToPoints-->no points, or not finite (%zu points)",
                                points.size());
    return;
  }
  ZuPlainBox fit = ZuPlainBox::aroundPoint(points[0]);
  if (ZuPointSpread(points.data(), points.size()).size > 0.0) {
    fit = ZuPointFit<BoxRule>::around(points.data(), points.size());
  }
  // Beside this box: the points may be those of its own approximation, which goes when it changes.
  ZuBox box;
  box.setCenter(fit.center);
  box.setAxes(ZuXmlVectorVector({fit.axes[0], fit.axes[1], fit.axes[2]}));
  // The axes have become those of a quaternion, so that the extents have to be measured again.
  ZuVector most;
  for (ZuVector const& p : points) {
    ZuVector const local = absolute(box.toLocal(p));
    for (unsigned int i = 0; i < 3; ++i) most[i] = std::max(most[i], local[i]);
  }
  setPrimaryFrame(box.primaryFrame());
  setExtents(most);
}

void ZuBox::physicalExtent(std::vector<ZuBasePhysicalExtent*>& extents) const { extents.push_back(&physicalExtent()); }

ZuBasePhysicalExtent& ZuBox::physicalExtent() const {
  if (keptExtent() == nullptr) {
    auto extent = std::make_unique<ZuPolyPhysicalExtent>();
    dressExtent(*extent);
    Corners const all = corners();
    ZuXmlVectorType<ZuPolygonWithKey> facets;
    for (unsigned int i = 0; i < 3; ++i) {
      unsigned int const own = 1U << i, next = 1U << (i + 1) % 3, last = 1U << (i + 2) % 3;
      unsigned int const high[4] = {own, own + next, own + next + last, own + last};
      unsigned int const low[4] = {0, last, next + last, next};
      facets.pushBack(ZuPolygonWithKey(high, 4, extent->surfaceProperty()));
      facets.pushBack(ZuPolygonWithKey(low, 4, extent->surfaceProperty()));
    }
    extent->setPoints(ZuXmlVectorVector(std::vector<ZuVector>(all.begin(), all.end())));
    extent->setFacets(facets);
    extent->setIsConvex(true);
    keepExtent(std::move(extent));
  }
  return *keptExtent();
}

bool ZuBox::computePenetrationDistanceAndSupportPoints(ZuShape const& other,
                                                       ZuCoordinateSystemTransformation const& xform,
                                                       ZuVector& witness1, ZuVector& witness2, double& distance,
                                                       ZuVector& direction) const {
  ZuPlainBox core{};
  double radius = 0.0;
  if (other.type() == SPHERE) {
    core = ZuPlainBox::aroundPoint(as<ZuSphere>(other).center());
    radius = as<ZuSphere>(other).radius();
  } else if (other.type() == CAPSULE) {
    core = ZuPlainBox::aroundSegment(as<ZuCapsule>(other).lineSegment().plain());
    radius = as<ZuCapsule>(other).radius();
  } else if (other.type() == BOX) {
    core = as<ZuBox>(other).plain();
  } else if (other.type() == LOZENGE) {
    core = ZuPlainBox::aroundRectangle(as<ZuLozenge>(other).rectangle());
    radius = as<ZuLozenge>(other).radius();
  } else {
    return ZuShape::computePenetrationDistanceAndSupportPoints(other, xform, witness1, witness2, distance, direction);
  }
  ZuSeparation const found = ZuBoxPair(plain(), core.transformedBy(xform)).separation().grownBy(0.0, radius);
  witness1 = found.point1;
  witness2 = xform.inverseTimes(found.point2);
  distance = found.distance;
  direction = found.direction;
  return distance <= 0.0;
}

ZuBox& ZuBox::operator=(ZuAxisAlignedBoundingBox const& box) {
  ZuVector const diagonal = box.maxCorner() - box.minCorner();
  if (!isFinite(diagonal) || diagonal != absolute(diagonal)) {
    ZuVector const& low = box.minCorner();
    ZuVector const& high = box.maxCorner();
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuBox::operator=-->no box (%g %g %g to %g %g %g)", low.x(), low.y(),
                                low.z(), high.x(), high.y(), high.z());
    return *this;
  }
  setPrimaryFrame(ZuCoordinateSystemTransformation(box.midPoint()));
  setExtents(diagonal * 0.5);
  return *this;
}

void ZuBox::setExtents(ZuVector const& extents) {
  m_Extents = extents;
  geometryChanged();
}

ZuCoordinateSystemTransformation const& ZuBox::primaryFrame() const { return m_PrimaryFrame; }

void ZuBox::setPrimaryFrame(ZuCoordinateSystemTransformation const& frame) {
  m_PrimaryFrame = frame;
  primaryFrameToAxes();
  geometryChanged();
}

ZuVector const& ZuBox::center() const { return m_PrimaryFrame.value().translation(); }

void ZuBox::setCenter(ZuVector const& center) {
  m_PrimaryFrame = ZuCoordinateSystemTransformation(center, m_PrimaryFrame.value().orientation());
  geometryChanged();
}

void ZuBox::setAxes(ZuXmlVectorVector const& axes) {
  if (axes.size() < 3) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuBox::setAxes-->%zu axes instead of 3", axes.size());
    return;
  }
  m_Axes = axes;
  axesToPrimaryFrame();
  primaryFrameToAxes();  // to the last bit what a reader of the frame would get
  geometryChanged();
}

double ZuBox::distanceTo(ZuGeomTriangle const& triangle) const {
  return flatDistance(*this, triangle, 3, [&triangle](unsigned int i) {
    return ZuLineSegment(triangle.point(i), triangle.point((i + 1) % 3));
  });
}

double ZuBox::distanceTo(ZuRectangle const& rectangle) const {
  return ZuBoxPair(plain(), ZuPlainBox::aroundRectangle(rectangle)).distance();
}

double ZuBox::distanceTo(ZuBox const& other, ZuCoordinateSystemTransformation const& xform) const {
  return ZuBoxPair(plain(), other.plain().transformedBy(xform)).distance();
}

double ZuBox::distanceSquaredTo(ZuVector const& point, ZuVector& closest) const {
  ZuVector const local = toLocal(point);
  ZuVector const& e = m_Extents;
  ZuVector const nearest(clampedTo(e.x(), local.x()), clampedTo(e.y(), local.y()), clampedTo(e.z(), local.z()));
  closest = fromLocal(nearest);
  return nearest.distanceSquaredTo(local);
}

double ZuBox::distanceSquaredTo(ZuLineSegment const& segment, ZuReal& t, ZuVector& closest) const {
  double const squared = distanceSquaredToLine(segment, t, closest);
  if (t < 0.0) {
    t = 0.0;
    return distanceSquaredTo(segment.endpoint0(), closest);
  }
  if (t > 1.0) {
    t = 1.0;
    return distanceSquaredTo(segment.endpoint1(), closest);
  }
  return squared;
}

double ZuBox::distanceSquaredToLine(ZuLineSegment segment, ZuReal& t, ZuVector& closest) const {
  ZuVector point = toLocal(segment.endpoint0());
  ZuVector const& delta = segment.delta();
  ZuVector direction(delta.dot(m_Axes[0]), delta.dot(m_Axes[1]), delta.dot(m_Axes[2]));
  if (segment.lengthSquared() == 0.0) direction = ZuVector();
  ZuVector signs(1.0, 1.0, 1.0);
  unsigned int nonZero[3] = {0, 0, 0};
  unsigned int count = 0;
  for (unsigned int i = 0; i < 3; ++i) {
    if (direction[i] < 0.0) signs[i] = -1.0;
    point[i] *= signs[i];
    direction[i] *= signs[i];
    if (direction[i] != 0.0) nonZero[count++] = i;
  }
  double squared;
  unsigned int const i0 = nonZero[0];
  if (count == 3) {
    caseNoZeros(point, direction, t, squared);
  } else if (count == 2) {
    case0(i0, nonZero[1], 3 - i0 - nonZero[1], point, direction, t, squared);
  } else if (count == 1) {
    case00(i0, (i0 + 1) % 3, (i0 + 2) % 3, point, direction, t, squared);
  } else {
    case000(point, t, squared);
  }
  closest = fromLocal({signs.x() * point.x(), signs.y() * point.y(), signs.z() * point.z()});
  return squared;
}

ZuXmlVectorVector const& ZuBox::axes() const { return m_Axes; }

bool ZuBox::checkIntersect(ZuBox const& other, ZuCoordinateSystemTransformation const& xform) const {
  return ZuBoxPair(plain(), other.plain().transformedBy(xform)).touches();
}

ZuReal ZuBox::volume() const { return 8.0 * m_Extents.value().prod(); }

ZuVector const& ZuBox::axis(unsigned int index) const {
  static ZuVector const theNoAxis;
  if (index < 3) return m_Axes[index];
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuBox::axis-->index %u out of range", index);
  return theNoAxis;
}

ZuReal ZuBox::extent(unsigned int index) const { return m_Extents.value()[index]; }

/// Moves the point to parameter t of the line and from there into the box, by the square root of `squared`.
void ZuBox::closeCase(ZuVector& point, ZuVector const& direction, ZuReal t, ZuReal& squared) const {
  squared = 0.0;
  for (unsigned int i = 0; i < 3; ++i) {
    double const e = m_Extents.value()[i];
    double const q = point[i] + t * direction[i];
    double const nearest = clampedTo(e, q);
    squared += (q - nearest) * (q - nearest);
    point[i] = nearest;
  }
}

void ZuBox::face(unsigned int i0, unsigned int i1, unsigned int i2, ZuVector& point, ZuVector const& direction,
                 ZuReal& t, ZuReal& squared) const {
  unsigned int const order[3] = {i0, i1, i2};
  double enter[3], leave[3];
  for (unsigned int k = 0; k < 3; ++k) {
    double const p = point[order[k]], d = direction[order[k]], e = m_Extents.value()[order[k]];
    enter[k] = d == 0.0 ? -HUGE_VAL : (-e - p) / d;
    leave[k] = d == 0.0 ? HUGE_VAL : (e - p) / d;
  }
  t = leave[0];
  if (enter[1] <= t && enter[2] <= t) {  // it runs through, or passes beside the face alone: the rest is exactly 0
    point[i0] = m_Extents.value()[i0];
    point[i1] = clampedTo(m_Extents.value()[i1], point[i1] + t * direction[i1]);
    if (direction[i2] != 0.0) point[i2] = clampedTo(m_Extents.value()[i2], point[i2] + t * direction[i2]);
    closeCase(point, ZuVector(), t, squared);
    return;
  }
  for (;;) {
    double offset = 0.0;  // half the slope of the squared distance is offset + growth * t, up to the next place
    double growth = 0.0;
    double next = HUGE_VAL;
    for (unsigned int k = 0; k < 3; ++k) {
      double const p = point[order[k]], d = direction[order[k]], e = m_Extents.value()[order[k]];
      bool const isBefore = t < enter[k];
      bool const isBehind = t >= leave[k];
      if (!isBehind) next = std::min(next, isBefore ? enter[k] : leave[k]);
      if (!isBefore && !isBehind) continue;
      offset += d * (p + (isBefore ? e : -e));
      growth += d * d;
    }
    double const root = -offset / growth;
    if (!(root > t)) break;
    t = std::min(root, next);
    if (root <= next) break;
  }
  closeCase(point, direction, t, squared);
}

void ZuBox::caseNoZeros(ZuVector& point, ZuVector const& direction, ZuReal& t, ZuReal& squared) const {
  ZuVector const rest = m_Extents.value() - point;
  double const leave[3] = {rest.x() / direction.x(), rest.y() / direction.y(), rest.z() / direction.z()};
  unsigned int const first = static_cast<unsigned int>(std::min_element(leave, leave + 3) - leave);
  face(first, (first + 1) % 3, (first + 2) % 3, point, direction, t, squared);
}

void ZuBox::case0(unsigned int i0, unsigned int i1, unsigned int i2, ZuVector& point, ZuVector const& direction,
                  ZuReal& t, ZuReal& squared) const {
  ZuVector const rest = m_Extents.value() - point;
  bool const isFirst = rest[i0] / direction[i0] <= rest[i1] / direction[i1];
  face(isFirst ? i0 : i1, isFirst ? i1 : i0, i2, point, direction, t, squared);
}

void ZuBox::case00(unsigned int i0, unsigned int, unsigned int, ZuVector& point, ZuVector const& direction, ZuReal& t,
                   ZuReal& squared) const {
  t = (m_Extents.value()[i0] - point[i0]) / direction[i0];
  point[i0] = m_Extents.value()[i0];
  closeCase(point, ZuVector(), t, squared);
}

void ZuBox::case000(ZuVector& point, ZuReal& t, ZuReal& squared) const {
  t = 0.0;
  closeCase(point, ZuVector(), t, squared);
}

void ZuBox::primaryFrameToAxes() {
  m_Axes.resize(3);
  m_PrimaryFrame.value().orientation().getDcmColumns(m_Axes[0], m_Axes[1], m_Axes[2]);
}

void ZuBox::axesToPrimaryFrame() {
  if (m_Axes.size() <= 2) return;
  ZuOrientation orientation = m_PrimaryFrame.value().orientation();
  orientation.setFromDcmColumns(m_Axes[0], m_Axes[1], m_Axes[2]);
  m_PrimaryFrame = ZuCoordinateSystemTransformation(center(), orientation);
}

bool ZuBox::checkIntersect(ZuRectangle const& rectangle, ZuReal margin) const {
  return distanceTo(rectangle) <= margin;
}

void ZuBox::registerComponents() {
  ZuShape::registerComponents();
  registerComponent(ZuGeom::ZuBoxExtentsToken, &m_Extents);
  registerComponent(ZuGeom::ZuPrimaryFrameToken, &m_PrimaryFrame);
}

bool ZuBox::read(ZuXmlReader& reader) {
  bool const isRead = ZuShape::read(reader);
  primaryFrameToAxes();
  geometryChanged();
  return isRead;
}

ZuToken const& ZuBox::classToken() { return ZuGeom::ZuBoxToken; }

ZuBox ZuBox::testObject() {
  ZuBox sample(ZuCoordinateSystemTransformation::testObject(), ZuVector(0.5, 1.0, 2.0));
  sample.fillForTest();
  return sample;
}
