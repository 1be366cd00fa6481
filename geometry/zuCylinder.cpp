#include "geometry/zuCylinder.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "foundation/zuPrint.h"
#include "geometry/zuAxisAlignedBoundingBox.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuCone.h"
#include "geometry/zuEllipsoid.h"
#include "geometry/zuGeomTokens.h"
#include "geometry/zuLozenge.h"
#include "geometry/zuPointFit.h"
#include "geometry/zuPolyPhysicalExtent.h"
#include "geometry/zuShapePointEvent.h"
#include "geometry/zuSphere.h"

namespace {

constexpr double thePi = 3.141592653589793;
/// Times the extent of the points: the least height of a fitted cylinder. Of points in a plane, one of height 0 would
/// lose the direction of its axis, and a very low one keeps it only to the rounding of its end points.
constexpr double theLeastHeight = 1e-6;
/// Growing turns the axis by its rounding, which shows in flat cylinders. Further rounds take that in, and some more:
/// what the next rounding may cost.
constexpr int theRoundsOfGrowth = 6;
constexpr double theReserve = 4.0;

/// m. Solids that are closer, or less deep in each other, count as touching for the engine, which tells no direction.
constexpr double theTouching = 1e-8;

/// A circle in a plane, given by 2-D points.
struct FlatPoint {
  double x;
  double y;
};
struct FlatCircle {
  FlatPoint center;
  double radiusSquared;

  double distanceSquared(FlatPoint const& p) const {
    return (p.x - center.x) * (p.x - center.x) + (p.y - center.y) * (p.y - center.y);
  }
};

FlatCircle circleOf(FlatPoint const& a, FlatPoint const& b) {
  FlatCircle circle{{0.5 * (a.x + b.x), 0.5 * (a.y + b.y)}, 0.0};
  circle.radiusSquared = circle.distanceSquared(a);
  return circle;
}

/// Through three points; of infinite radius when they are on a line.
FlatCircle circleOf(FlatPoint const& a, FlatPoint const& b, FlatPoint const& c) {
  double const bx = b.x - a.x, by = b.y - a.y, cx = c.x - a.x, cy = c.y - a.y;
  double const twice = 2.0 * (bx * cy - by * cx);
  if (twice == 0.0) return {a, HUGE_VAL};
  double const bb = bx * bx + by * by, cc = cx * cx + cy * cy;
  FlatCircle circle{{a.x + (cy * bb - by * cc) / twice, a.y + (bx * cc - cx * bb) / twice}, 0.0};
  circle.radiusSquared = circle.distanceSquared(a);
  return circle;
}

/// The points, at most three, that the least circle so far rests on.
class CircleBasis {
 public:
  FlatCircle circle;

  explicit CircleBasis(FlatPoint const& first) : circle{first, 0.0}, m_Points{first}, m_Count(1) {}

  /// Makes the circle the least around the basis and one more point, which is on it: through that point and one or two
  /// of the others. False, and nothing changes, when rounding leaves none that grows.
  bool add(FlatPoint const& p) {
    CircleBasis best(p);
    best.circle.radiusSquared = HUGE_VAL;
    for (unsigned int i = 0; i < m_Count; ++i) {
      best.offer(*this, circleOf(p, m_Points[i]), {p, m_Points[i]});
      for (unsigned int j = 0; j < i; ++j) {
        best.offer(*this, circleOf(p, m_Points[i], m_Points[j]), {p, m_Points[i], m_Points[j]});
      }
    }
    if (!(best.circle.radiusSquared < HUGE_VAL && best.circle.radiusSquared > circle.radiusSquared)) return false;
    *this = best;
    return true;
  }

 private:
  void offer(CircleBasis const& old, FlatCircle const& candidate, std::initializer_list<FlatPoint> points) {
    if (!(candidate.radiusSquared < circle.radiusSquared)) return;
    for (unsigned int i = 0; i < old.m_Count; ++i) {
      if (!(candidate.distanceSquared(old.m_Points[i]) <= candidate.radiusSquared * (1.0 + m_theTolerance))) return;
    }
    circle = candidate;
    m_Count = static_cast<unsigned int>(points.size());
    std::copy(points.begin(), points.end(), m_Points);
  }

  /// Relative, of squares: rounding of a circle through three points that are not nearly on a line.
  static constexpr double m_theTolerance = 1e-10;

  FlatPoint m_Points[3];
  unsigned int m_Count;
};

/// Axis, ends and radius without the shape around them.
struct PlainCylinder {
  ZuVector end0;
  ZuVector unit;
  double length;
  double radius;

  double outside(ZuVector const& p) const {
    ZuVector const w = p - end0;
    double const height = w.dot(unit);
    return std::max({-height, height - length, (w - height * unit).mag() - radius});
  }
};

/// Least cylinders: the two variables tilt the axis. About a direction, the least is the one on the least circle around
/// the points as seen along it, which grows over the farthest point as long as that is outside: the circle is always
/// the least around its basis, its radius only rises, and there are finitely many bases.
struct CylinderRule {
  static constexpr std::size_t theVariables = 2;
  using Solid = PlainCylinder;

  static PlainCylinder around(ZuFitFrame const& frame, std::array<double, theVariables> const& x,
                              ZuVector const* points, std::size_t count) {
    ZuVector const axis = (frame.axes[0] + x[0] * frame.axes[1] + x[1] * frame.axes[2]).unitVector();
    ZuVector const u = zuPerpendicular(axis);
    ZuVector const v = axis.cross(u);
    double low = HUGE_VAL;
    double high = -HUGE_VAL;
    for (ZuVector const* p = points; p != points + count; ++p) {
      double const height = (*p - frame.center).dot(axis);
      low = std::min(low, height);
      high = std::max(high, height);
    }
    double const length = std::max(high - low, theLeastHeight * frame.size);
    FlatCircle const circle = leastCircle(frame.center, u, v, points, count);
    ZuVector const middle = frame.center + u * circle.center.x + v * circle.center.y + axis * (0.5 * (low + high));
    return {middle - axis * (0.5 * length), axis, length, std::sqrt(circle.radiusSquared)};
  }
  static double measure(PlainCylinder const& c) { return c.radius * c.radius * c.length; }
  static double outside(PlainCylinder const& c, ZuVector const& p) { return c.outside(p); }

 private:
  /// Of the points as seen along u x v, from the origin given; encloses them to rounding.
  static FlatCircle leastCircle(ZuVector const& origin, ZuVector const& u, ZuVector const& v, ZuVector const* points,
                                std::size_t count) {
    auto const flat = [&](ZuVector const& p) { return FlatPoint{(p - origin).dot(u), (p - origin).dot(v)}; };
    CircleBasis basis(flat(points[0]));
    for (int round = 0;; ++round) {
      FlatPoint farthest = flat(points[0]);
      double most = -1.0;
      for (ZuVector const* p = points; p != points + count; ++p) {
        FlatPoint const q = flat(*p);
        double const squared = basis.circle.distanceSquared(q);
        if (squared > most) most = squared, farthest = q;
      }
      bool const isOutside = most > basis.circle.radiusSquared;
      if (isOutside && round < m_theRounds && basis.add(farthest)) continue;
      return {basis.circle.center, std::max(basis.circle.radiusSquared, most)};
    }
  }

  /// Some ten suffice for scanned objects; what is outside after the last makes the radius larger.
  static constexpr int m_theRounds = 100;
};

}  // namespace

bool ZuCylinder::operator==(ZuCylinder const& other) const {
  return ZuShape::operator==(other) && m_LineSegment == other.m_LineSegment && m_Radius == other.m_Radius;
}

ZuFrustum ZuCylinder::solid() const { return ZuFrustum::along(m_LineSegment.plain(), m_Radius, m_Radius); }

void ZuCylinder::fitFromShape(ZuShape const& other) {
  if (isMesh(other.type())) return fitToPoints(as<ZuBasePhysicalExtent>(other).points());
  switch (other.type()) {
    case SPHERE: {
      ZuSphere const& sphere = as<ZuSphere>(other);
      return takeRoundEnds(ZuLineSegment(sphere.center(), sphere.center()), sphere.radius());
    }
    case CAPSULE: {
      ZuCapsule const& capsule = as<ZuCapsule>(other);
      return takeRoundEnds(capsule.lineSegment(), capsule.radius());
    }
    case TETRAHEDRON:
    case BOX:
      return fitToPoints(other.physicalExtent().points());
    case ELLIPSOID:
      return becomeLeastAround(as<ZuEllipsoid>(other));
    case LOZENGE:
      return becomeLeastAround(as<ZuLozenge>(other));
    case CYLINDER: {
      ZuCylinder const& cylinder = as<ZuCylinder>(other);
      ZuLineSegment const axis = cylinder.lineSegment();
      setRadius(cylinder.radius());
      return setLineSegment(axis);
    }
    case CONE: {
      ZuCone const& cone = as<ZuCone>(other);
      setRadius(cone.radius());
      return setLineSegment(cone.lineSegment());
    }
    default:
      printNotSupported("ZuCylinder::fitFromShape-->expand", other);
  }
}

/// Along one of its axes, touching it at the poles and with the longest semi-axis across as radius. A
/// flat one gets a little height, for the axis to keep its direction.
void ZuCylinder::becomeLeastAround(ZuEllipsoid const& ellipsoid) {
  ZuVector const& radii = ellipsoid.radii();
  double const r[] = {std::abs(radii.x()), std::abs(radii.y()), std::abs(radii.z())};
  ZuCylinder best;
  double least = HUGE_VAL;
  for (unsigned int i = 0; i < 3; ++i) {
    double const across = std::max(r[(i + 1) % 3], r[(i + 2) % 3]);
    ZuVector axis;
    axis[i] = std::max(r[i], theLeastHeight * across);
    double const measure = across * across * axis[i];
    if (!(measure < least)) continue;
    least = measure;
    axis = ellipsoid.primaryFrame().orientation() * axis;
    best = ZuCylinder(ZuLineSegment(ellipsoid.center() - axis, ellipsoid.center() + axis), across);
  }
  setLineSegment(best.lineSegment());
  setRadius(best.radius());
}

/// On an axis through the lozenge's centre: across it, or along its longer edges. A plate without thickness gets a
/// little, for the axis to keep its direction.
void ZuCylinder::becomeLeastAround(ZuLozenge const& lozenge) {
  ZuRectangle const& core = lozenge.rectangle();
  double const r = std::max(0.0, lozenge.radius());
  ZuVector const& h0 = core.halfEdge(0);
  ZuVector const& h1 = core.halfEdge(1);
  ZuCylinder best;
  double least = HUGE_VAL;
  for (ZuVector const& along : {(h0.magSquared() < h1.magSquared() ? h1 : h0).unitVector(), core.normal()}) {
    ZuVector const axis = along == ZuVector() ? ZuVector::zVector(1.0) : along;
    double half = 0.0;
    double reach = 0.0;
    for (unsigned int i = 0; i < 4; ++i) {
      ZuVector const w = core.corner(i) - core.center();
      half = std::max(half, std::abs(w.dot(axis)));
      reach = std::max(reach, zuAcross(w, axis).mag());
    }
    half = std::max(half + r, theLeastHeight * (reach + r));
    double const measure = (reach + r) * (reach + r) * half;
    if (!(measure < least)) continue;
    least = measure;
    best = ZuCylinder(ZuLineSegment(core.center() - half * axis, core.center() + half * axis), reach + r);
  }
  setLineSegment(best.lineSegment());
  setRadius(best.radius());
}

/// Encloses the points within the radius of the core.
void ZuCylinder::takeRoundEnds(ZuLineSegment const& core, double radius) {
  ZuVector const end = ZuFrustum::along(core.plain(), 0.0, 0.0).axis * std::max(0.0, radius);
  setLineSegment(ZuLineSegment(core.endpoint0() - end, core.endpoint1() + end));
  setRadius(radius);
}

ZuVector ZuCylinder::computeSupportPoint(ZuVector const& direction) const {
  if (!ZuAxialDirection::isSafe(direction)) return supportOfExtremes(direction);
  ZuAxialDirection const seen(direction, m_LineSegment.delta(), m_LineSegment.lengthSquared());
  ZuVector const& end = seen.along > 0.0 ? m_LineSegment.endpoint1() : m_LineSegment.endpoint0();
  return seen.across == 0.0 ? end : end + seen.unit * std::max(0.0, m_Radius.value());
}

ZuVector ZuCylinder::supportOfExtremes(ZuVector const& direction) const {
  ZuVector const unit = direction.unitVector();
  if (unit != ZuVector()) return ZuCylinder::computeSupportPoint(unit);
  if (direction != ZuVector()) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuCylinder support point calculation failed.\n");
  }
  return m_LineSegment.endpoint0();
}

ZuVector ZuCylinder::supportPoint(ZuVector const& direction) const { return computeSupportPoint(direction); }

void ZuCylinder::scaleBy(ZuReal factor) {
  scaleChainBy(factor);
  setLineSegment(ZuLineSegment(m_LineSegment.endpoint0() * factor, m_LineSegment.endpoint1() * factor));
  setRadius(m_Radius * std::abs(factor));
}

void ZuCylinder::transformBy(ZuCoordinateSystemTransformation const& xform) {
  ZuShape::transformBy(xform);
  m_LineSegment.transformBy(xform);
  geometryChanged();
}

double ZuCylinder::distanceTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                              ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state) const {
  switch (other.type()) {
    case PHYSICAL_EXTENT:
    case POLY_PHYSICAL_EXTENT:
    case TRI_PHYSICAL_EXTENT:
    case ELLIPSOID:
    case TETRAHEDRON:
    case BOX:
    case LOZENGE:
    case HALF_SPACE:
      return ZuShape::distanceTo(other, xform, descriptor, state);
    case SPHERE: {
      ZuSphere const& sphere = as<ZuSphere>(other);
      return distanceTo(sphere.center()) - sphere.radius();
    }
    case CAPSULE: {
      ZuCapsule const& capsule = as<ZuCapsule>(other);
      return distanceTo(capsule.lineSegment()) - capsule.radius();
    }
    default:
      printNotSupported("ZuCylinder::distanceTo-->Distance", other);
      return 0.0;
  }
}

double ZuCylinder::distanceTo(ZuLineSegment const& segment) const {
  ZuReal s;
  ZuReal t;
  ZuVector closest;
  return distanceTo(segment, s, t, closest);
}

double ZuCylinder::distanceTo(ZuVector const& point) const {
  ZuReal t;
  ZuVector closest;
  return distanceTo(point, t, closest);
}

bool ZuCylinder::checkIntersect(ZuShape const& other, ZuCoordinateSystemTransformation const&,
                                ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState&,
                                KeyPairs* pairs) const {
  switch (other.type()) {
    case PHYSICAL_EXTENT:
    case POLY_PHYSICAL_EXTENT:
    case TRI_PHYSICAL_EXTENT:
    case SPHERE:
      return report(capsuleMeets(m_LineSegment, m_Radius, other), descriptor, pairs);
    case CYLINDER: {
      ZuCylinder const& cylinder = as<ZuCylinder>(other);
      double const reach = m_Radius + cylinder.m_Radius;
      return report(m_LineSegment.distanceSquaredTo(cylinder.m_LineSegment) <= reach * reach, descriptor, pairs);
    }
    default:
      printNotSupported("ZuCylinder::checkIntersect-->Check", other);
      return false;
  }
}

bool ZuCylinder::checkIntersect(ZuLineSegment const& segment) const {
  double entry;
  double exit;
  return solid().cut(segment.plain(), entry, exit);
}

bool ZuCylinder::intersectLineSegment(ZuLineSegment const& segment, ZuShapePointEvent& event) const {
  bool const hit = solid().intersect(segment.plain(), event);
  event.shapeID = proximityDatabaseIndex();
  return hit;
}

bool ZuCylinder::checkIntersect(ZuVector const& point) const {
  if (!(m_LineSegment.lengthSquared() > 0.0)) return solid().holds(point);
  ZuVector const& delta = m_LineSegment.delta();
  if ((point - m_LineSegment.endpoint0()).dot(delta) < 0.0) return false;
  if ((point - m_LineSegment.endpoint1()).dot(delta) > 0.0) return false;
  double const radius = std::max(0.0, m_Radius.value());
  return m_LineSegment.distanceSquaredFromLineTo(point) <= radius * radius;
}

void ZuCylinder::fitToPoints(ZuXmlVectorVector const& points) {
  if (!zuCanBeFitted(points.data(), points.size())) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuCylinder::fitToPoints-->no points, or not finite (%zu points)",
                                points.size());
    return;
  }
  // Beside this cylinder: the points may be those of its own approximation, which goes when it changes.
  ZuCylinder fit(ZuLineSegment(points[0], points[0]), 0.0);
  if (ZuPointSpread(points.data(), points.size()).size > 0.0) {
    PlainCylinder const plain = ZuPointFit<CylinderRule>::around(points.data(), points.size());
    fit.m_LineSegment.setEndpoints(plain.end0, plain.end0 + plain.unit * plain.length);
    fit.m_Radius = plain.radius;
    fit.growAround(points);
  }
  setLineSegment(fit.m_LineSegment);
  setRadius(fit.m_Radius);
}

/// Returns whether any point was outside.
bool ZuCylinder::growAround(ZuXmlVectorVector const& points) {
  for (int round = 0; round < theRoundsOfGrowth; ++round) {
    ZuFrustum const now = solid();
    double low = 0.0;
    double high = now.length;
    double reach = now.radius0;
    for (ZuVector const& p : points) {
      double const height = (p - now.base).dot(now.axis);
      low = std::min(low, height);
      high = std::max(high, height);
      reach = std::max(reach, zuAcross(p - now.base, now.axis).mag());
    }
    if (low == 0.0 && high == now.length && reach == now.radius0) return round > 0;
    double const factor = round == 0 ? 1.0 : theReserve;
    m_LineSegment.setEndpoints(now.base + (factor * low) * now.axis,
                               m_LineSegment.endpoint1() + (factor * (high - now.length)) * now.axis);
    m_Radius = round == 0 ? reach : now.radius0 + factor * (reach - now.radius0);
  }
  return true;
}

void ZuCylinder::physicalExtent(std::vector<ZuBasePhysicalExtent*>& extents) const {
  extents.push_back(&physicalExtent());
}

ZuBasePhysicalExtent& ZuCylinder::physicalExtent() const {
  if (keptExtent() == nullptr) {
    auto extent = std::make_unique<ZuPolyPhysicalExtent>();
    dressExtent(*extent);
    ZuFrustum const s = solid();
    std::vector<ZuOutlinePoint> outline{{0.0, s.radius0}};
    if (s.length > 0.0) outline.push_back({s.length, s.radius0});
    zuRevolve(*extent, s.base, s.axis, outline, zuSlices(detailLevel()));
    keepExtent(std::move(extent));
  }
  return *keptExtent();
}

void ZuCylinder::axisAlignedBoundingBoxInPrimary(ZuAxisAlignedBoundingBox& box) const {
  box.resize(capsuleBoundingVolume());
}

bool ZuCylinder::computePenetrationDistanceAndSupportPoints(ZuShape const& other,
                                                            ZuCoordinateSystemTransformation const& xform,
                                                            ZuVector& witness1, ZuVector& witness2, double& distance,
                                                            ZuVector& direction) const {
  if (other.type() == LOZENGE) {
    return computePenetrationDistanceAndSupportPoints(as<ZuLozenge>(other), xform, witness1, witness2, distance,
                                                      direction);
  }
  return ZuShape::computePenetrationDistanceAndSupportPoints(other, xform, witness1, witness2, distance, direction);
}

/// With n the unit vector from the cylinder towards the core, witness2 - witness1 is distance * n, in this frame.
bool ZuCylinder::computePenetrationDistanceAndSupportPoints(ZuLozenge const& lozenge,
                                                            ZuCoordinateSystemTransformation const& xform,
                                                            ZuVector& witness1, ZuVector& witness2, double& distance,
                                                            ZuVector& direction) const {
  ZuLozenge const core(lozenge.rectangle(), 0.0);
  ZuVector const start = direction;
  bool const answered =
      ZuShape::computePenetrationDistanceAndSupportPoints(core, xform, witness1, witness2, distance, direction);
  if (!answered || !(std::abs(distance) > theTouching)) {
    direction = start;
    return ZuShape::computePenetrationDistanceAndSupportPoints(lozenge, xform, witness1, witness2, distance, direction);
  }
  ZuVector const n = direction.unitVector() * (distance > 0.0 ? -1.0 : 1.0);
  witness2 = xform.inverseTimes(xform * witness2 - n * lozenge.radius());
  distance -= lozenge.radius();
  direction = n * -distance;
  return true;
}

ZuCapsule const& ZuCylinder::capsuleBoundingVolume() const { return capsuleAround(); }

ZuLineSegment const& ZuCylinder::lineSegment() const { return m_LineSegment; }

void ZuCylinder::setLineSegment(ZuLineSegment const& segment) {
  m_LineSegment = segment;
  geometryChanged();
}

ZuReal ZuCylinder::radius() const { return m_Radius; }

void ZuCylinder::setRadius(ZuReal radius) {
  m_Radius = radius;
  geometryChanged();
}

ZuReal ZuCylinder::distanceTo(ZuLineSegment const& segment, ZuReal& s, ZuReal& t, ZuVector& closest) const {
  ZuReal const distance = solid().distanceTo(segment.plain(), t, closest);
  s = zuNearestParameter(closest, m_LineSegment.plain());
  return distance;
}

ZuReal ZuCylinder::distanceTo(ZuVector const& point, ZuReal& t, ZuVector& closest) const {
  ZuReal const distance = solid().distanceTo(point, closest);
  t = zuNearestParameter(closest, m_LineSegment.plain());
  return distance;
}

bool ZuCylinder::intersectLineSegmentWithTube(ZuLineSegment const& segment, ZuShapePointEvent& event) const {
  event = ZuShapePointEvent();
  event.shapeID = proximityDatabaseIndex();
  double entry;
  double exit;
  ZuFrustum const whole = solid();
  event.hit = whole.cutSide(segment.plain(), entry, exit);
  if (!event.hit) return false;
  event.entry = whole.sidePoint(segment.plain(), entry);
  event.exit = whole.sidePoint(segment.plain(), exit);
  return true;
}

/// A cap is a cylinder of length 0.
bool ZuCylinder::intersectLineSegmentWithCaps(ZuLineSegment const& segment, ZuShapePointEvent& event) const {
  event = ZuShapePointEvent();
  event.shapeID = proximityDatabaseIndex();
  for (unsigned int cap = 0; cap < 2; ++cap) {
    ZuFrustum disc = solid();
    disc.base = m_LineSegment.endpoint(cap);
    disc.length = 0.0;
    double entry;
    double exit;
    if (!disc.cut(segment.plain(), entry, exit)) continue;
    ZuVector const normal = cap == 0 ? -disc.axis : disc.axis;
    if (!event.hit || entry < event.entry.t) event.entry = {entry, zuPointAt(segment.plain(), entry), normal};
    if (!event.hit || exit > event.exit.t) event.exit = {exit, zuPointAt(segment.plain(), exit), normal};
    event.hit = true;
  }
  return event.hit;
}

ZuReal ZuCylinder::volume() const {
  double const radius = std::max(0.0, m_Radius.value());
  return thePi * radius * radius * m_LineSegment.length();
}

bool ZuCylinder::expandToInclude(ZuXmlVectorVector const& points) {
  if (points.empty()) return false;
  if (!zuCanBeFitted(points.data(), points.size())) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuCylinder::expandToInclude-->not finite (%zu points)",
                                points.size());
    return false;
  }
  bool const hasGrown = growAround(points);
  if (hasGrown) geometryChanged();
  return hasGrown;
}

bool ZuCylinder::hasCap(char const* function, unsigned int index) const {
  if (index < 2) return true;
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuCylinder::%s-->invalid index (%u)", function, index);
  return false;
}

ZuCircle ZuCylinder::circularCap(unsigned int index) const {
  if (!hasCap("circularCap", index)) return ZuCircle();
  ZuFrustum const s = solid();
  return ZuCircle(m_LineSegment.endpoint(index), index == 0 ? -s.axis : s.axis, s.radius0);
}

ZuReal ZuCylinder::distanceToCircularCap(ZuVector const& point, unsigned int cap, ZuVector& closest) const {
  if (!hasCap("distanceToCircularCap", cap)) return 0.0;
  closest = circularCap(cap).closestPoint(point);
  return closest.distanceTo(point);
}

ZuReal ZuCylinder::distanceToCircularCap(ZuLineSegment const& segment, unsigned int cap, ZuReal& t,
                                         ZuVector& closest) const {
  return hasCap("distanceToCircularCap", cap) ? circularCap(cap).distanceTo(segment, t, closest) : 0.0;
}

bool ZuCylinder::computeLineSegmentOnLateralSurface(ZuVector const& direction, ZuLineSegment& out) const {
  ZuFrustum const s = solid();
  ZuVector const unit = direction.unitVector();
  ZuVector const across = zuAcross(unit, s.axis);
  bool const isAcross = across.magSquared() > ZuAxialDirection::m_theParallel;
  ZuVector const offset = (isAcross ? across.unitVector() : zuPerpendicular(s.axis)) * s.radius0;
  out = ZuLineSegment(m_LineSegment.endpoint0() + offset, m_LineSegment.endpoint1() + offset);
  return isAcross;
}

void ZuCylinder::registerComponents() {
  ZuShape::registerComponents();
  registerComponent(ZuGeom::ZuLineSegmentToken, &m_LineSegment);
  registerComponent(ZuGeom::ZuRadiusToken, &m_Radius);
}

ZuToken const& ZuCylinder::classToken() { return ZuGeom::ZuCylinderToken; }

ZuCylinder ZuCylinder::testObject() {
  ZuCylinder sample(ZuLineSegment::testObject(), 0.75);
  sample.fillForTest();
  return sample;
}
