#include "geometry/zuCapsule.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "foundation/zuPrint.h"
#include "geometry/zuCone.h"
#include "geometry/zuCylinder.h"
#include "geometry/zuEllipsoid.h"
#include "geometry/zuGeomTokens.h"
#include "geometry/zuLozenge.h"
#include "geometry/zuNearestPoints.h"
#include "geometry/zuPointFit.h"
#include "geometry/zuPolyPhysicalExtent.h"
#include "geometry/zuRevolve.h"
#include "geometry/zuShapePointEvent.h"
#include "geometry/zuSphere.h"

namespace {

constexpr double thePi = 3.141592653589793;
/// Squared sine of the angle below which a line counts as parallel to the core: that of rounding.
constexpr double theParallel = 1e-30;
/// Cores closer than this, times the size of their coordinates, count as meeting: some roundings.
constexpr double theMeeting = 16.0 * 0x1p-52;

/// Of the search for the radius of a capsule about a solid: times the size of the solid, and how often.
constexpr double theStepOfRadius = 0.1;
constexpr unsigned int theStartsOfRadius = 3;

double capsuleVolume(double length, double radius) { return thePi * radius * radius * (length + radius * (4.0 / 3.0)); }

/// Core and radius without the shape around them.
struct PlainCapsule {
  ZuPlainSegment core;
  double radius;

  double outside(ZuVector const& p) const {
    double t;
    return std::sqrt(zuDistanceSquared(p, core, t)) - radius;
  }
  /// Makes the radius larger by what is missing.
  void takeIn(ZuVector const* points, std::size_t count) {
    double missing = 0.0;
    for (std::size_t i = 0; i < count; ++i) missing = std::max(missing, outside(points[i]));
    radius += missing;
  }
};

/// An axis: the line origin + t * unit.
struct Axis {
  ZuVector origin;
  ZuVector unit;

  double parameter(ZuVector const& p) const { return (p - origin).dot(unit); }
  double distanceSquared(ZuVector const& p) const {
    ZuVector const w = p - origin;
    return (w - w.dot(unit) * unit).magSquared();
  }
  /// The least radius of a tube about the axis that holds the points.
  double reach(ZuVector const* points, std::size_t count) const {
    double most = 0.0;
    for (std::size_t i = 0; i < count; ++i) most = std::max(most, distanceSquared(points[i]));
    return std::sqrt(most);
  }
};

/// Moves `first` down and `last` up to where a core from first to last has the points within the radius, which is at
/// least their reach. A point at parameter t and distance d from the axis is within the radius of every core that
/// reaches into [t - h, t + h], h^2 = radius^2 - d^2.
void stretch(Axis const& axis, double radius, ZuVector const* points, std::size_t count, double& first, double& last) {
  for (std::size_t i = 0; i < count; ++i) {
    double const t = axis.parameter(points[i]);
    double const h = std::sqrt(std::max(radius * radius - axis.distanceSquared(points[i]), 0.0));
    first = std::min(first, t + h);
    last = std::max(last, t - h);
  }
}

/// The shortest capsule on the axis, of a radius not below the reach, that holds the points.
PlainCapsule shortest(Axis const& axis, double radius, ZuVector const* points, std::size_t count) {
  double first = HUGE_VAL;
  double last = -HUGE_VAL;
  stretch(axis, radius, points, count, first, last);
  if (last < first) first = last = 0.5 * (first + last);  // a ball holds them: every core up to both ends does
  return {ZuPlainSegment::between(axis.origin + first * axis.unit, axis.origin + last * axis.unit), radius};
}

/// The least capsule on the axis that holds the balls of one radius about the points: a search over its radius, from
/// both ends, for the volume can fall again towards the ball.
ZuCapsule leastOnAxis(Axis const& axis, std::initializer_list<ZuVector> points, double ballRadius = 0.0) {
  double const reach = axis.reach(points.begin(), points.size());
  double const size = ZuPointSpread(points.begin(), points.size()).size;
  using Search = ZuSimplexSearch<1>;
  auto const capsule = [&](Search::Point const& x) {
    return shortest(axis, reach + std::abs(x[0]) * size, points.begin(), points.size());
  };
  auto const measure = [&](Search::Point const& x) {
    PlainCapsule const c = capsule(x);
    return capsuleVolume(std::sqrt(c.core.lengthSquared), c.radius + ballRadius);
  };
  Search::Result const thin = Search::minimum(measure, {0.0}, theStepOfRadius, theStartsOfRadius);
  Search::Result const thick = Search::minimum(measure, {1.0}, theStepOfRadius, theStartsOfRadius);
  PlainCapsule result = capsule(thick.value < thin.value ? thick.x : thin.x);
  result.takeIn(points.begin(), points.size());
  return ZuCapsule(ZuLineSegment(result.core.endpoint0, result.core.endpoint1), result.radius + ballRadius);
}

/// On the axis of the solid, which is the hull of its two rims. A capsule on the axis holds a rim when it holds a point
/// of it.
ZuCapsule around(ZuFrustum const& solid) {
  ZuVector const across = zuPerpendicular(solid.axis);
  return leastOnAxis({solid.base, solid.axis}, {solid.base + solid.radius0 * across,
                                                solid.base + solid.length * solid.axis + solid.radius1 * across});
}

/// Least capsules: two variables tilt the axis, two shift it, and one makes the radius larger than need be, which may
/// shorten the core by more than it costs.
struct CapsuleRule {
  static constexpr std::size_t theVariables = 5;
  using Solid = PlainCapsule;

  static PlainCapsule around(ZuFitFrame const& frame, std::array<double, theVariables> const& x, ZuVector const* points,
                             std::size_t count) {
    ZuVector const& e1 = frame.axes[1];
    ZuVector const& e2 = frame.axes[2];
    Axis const axis{frame.center + (x[2] * e1 + x[3] * e2) * frame.size,
                    (frame.axes[0] + x[0] * e1 + x[1] * e2).unitVector()};
    return shortest(axis, axis.reach(points, count) + std::abs(x[4]) * frame.size, points, count);
  }
  static double measure(PlainCapsule const& c) { return capsuleVolume(std::sqrt(c.core.lengthSquared), c.radius); }
  static double outside(PlainCapsule const& c, ZuVector const& p) { return c.outside(p); }
};

/// The parameters at which a line enters and leaves something; nothing when entry > exit.
struct Interval {
  double entry = HUGE_VAL;
  double exit = -HUGE_VAL;

  void unite(Interval const& other) {
    if (!(other.entry <= other.exit)) return;
    entry = std::min(entry, other.entry);
    exit = std::max(exit, other.exit);
  }
};

/// Where |w + t d| <= r, for d other than zero.
Interval insideBall(ZuVector const& w, ZuVector const& d, double r) {
  double const a = d.magSquared();
  double const middle = -w.dot(d) / a;
  double const rest = r * r - (w + middle * d).magSquared();
  if (!(rest >= 0.0)) return {};
  double const half = std::sqrt(rest / a);
  return {middle - half, middle + half};
}

/// Where a + t d is within r of the core's carrier line and between its ends.
Interval insideTube(ZuVector const& w, ZuVector const& d, ZuPlainSegment const& core, double r) {
  if (core.lengthSquared == 0.0) return {};
  double const along = d.dot(core.delta) / core.lengthSquared;
  double const from = w.dot(core.delta) / core.lengthSquared;
  ZuVector const across = d - along * core.delta;
  ZuVector const start = w - from * core.delta;
  Interval tube{-HUGE_VAL, HUGE_VAL};
  if (across.magSquared() > theParallel * d.magSquared()) {
    tube = insideBall(start, across, r);
  } else if (!(start.magSquared() <= r * r)) {
    return {};
  }
  if (along == 0.0) return from >= 0.0 && from <= 1.0 ? tube : Interval();
  double const first = -from / along;
  double const last = (1.0 - from) / along;
  return {std::max(tube.entry, std::min(first, last)), std::min(tube.exit, std::max(first, last))};
}

/// Where the segment is in the capsule, for one that does meet it.
Interval insideCapsule(ZuPlainSegment const& segment, PlainCapsule const& capsule) {
  Interval result;
  if (segment.lengthSquared > 0.0) {
    ZuVector const w = segment.endpoint0 - capsule.core.endpoint0;
    result = insideBall(w, segment.delta, capsule.radius);
    result.unite(insideBall(segment.endpoint0 - capsule.core.endpoint1, segment.delta, capsule.radius));
    result.unite(insideTube(w, segment.delta, capsule.core, capsule.radius));
  }
  if (result.entry <= 1.0 && result.exit >= 0.0) return {std::max(result.entry, 0.0), std::min(result.exit, 1.0)};
  // It touches, by rounding alone.
  double nearest;
  double unused;
  zuNearestParameters(segment, capsule.core, nearest, unused);
  return {nearest, nearest};
}

ZuShapeSurfacePoint surfacePoint(ZuPlainSegment const& segment, double t, PlainCapsule const& capsule) {
  ZuShapeSurfacePoint result;
  result.t = t;
  result.point = zuPointAt(segment, t);
  ZuVector const nearest = zuPointAt(capsule.core, zuNearestParameter(result.point, capsule.core));
  if (capsule.radius > 0.0) result.normal = (result.point - nearest).unitVector();
  return result;
}

/// The size, squared, of the numbers from which a difference of points of the two cores was formed.
double magnitudeSquared(ZuPlainSegment const& a, ZuPlainSegment const& b) {
  return a.endpoint0.magSquared() + a.endpoint1.magSquared() + b.endpoint0.magSquared() + b.endpoint1.magSquared();
}

/// The unit vector from one core to the other. Cores that meet come apart at the least cost along a perpendicular to
/// both: what their rounded points are apart says nothing there.
ZuVector directionBetween(ZuPlainSegment const& a, ZuPlainSegment const& b, ZuVector const& between) {
  if (between.magSquared() > theMeeting * theMeeting * magnitudeSquared(a, b)) return between.unitVector();
  ZuVector const normal = a.delta.cross(b.delta);
  if (normal.magSquared() > theParallel * a.lengthSquared * b.lengthSquared) return normal.unitVector();
  return zuPerpendicular((a.lengthSquared > 0.0 ? a.delta : b.delta).unitVector());
}

std::vector<ZuOutlinePoint> capsuleOutline(double length, double radius, unsigned int quarterSteps) {
  std::vector<ZuOutlinePoint> outline;
  for (unsigned int i = 0; i <= quarterSteps; ++i) {
    double const angle = 0.5 * thePi * i / quarterSteps;
    outline.push_back({-radius * std::cos(angle), i == 0 ? 0.0 : radius * std::sin(angle)});
  }
  // A core of length 0 has one equator.
  for (unsigned int i = length > 0.0 ? 0 : 1; i <= quarterSteps; ++i) {
    double const angle = 0.5 * thePi * i / quarterSteps;
    outline.push_back({length + radius * std::sin(angle), i == quarterSteps ? 0.0 : radius * std::cos(angle)});
  }
  return outline;
}

/// Along the longest axis, of the middle semi-axis b as radius. No capsule on that axis is smaller: one of the radius r
/// >= b needs the core a - r to reach the pole of the longest semi-axis a, and its volume rises with r. It is enough:
/// beyond the end of the core, at c = a - b, the squared distance of the ellipse's points from that end, that is
/// (x - c)^2 + b^2 (1 - x^2 / a^2), is convex in x, and at most b^2 at x = c and at x = a.
ZuCapsule around(ZuEllipsoid const& ellipsoid) {
  ZuVector const& radii = ellipsoid.radii();
  double const r[] = {std::abs(radii.x()), std::abs(radii.y()), std::abs(radii.z())};
  unsigned int const longest = r[0] >= r[1] && r[0] >= r[2] ? 0 : r[1] >= r[2] ? 1 : 2;
  double const middle = std::max(r[(longest + 1) % 3], r[(longest + 2) % 3]);
  ZuVector axis;
  axis[longest] = r[longest] - middle;
  axis = ellipsoid.primaryFrame().orientation() * axis;
  return ZuCapsule(ZuLineSegment(ellipsoid.center() - axis, ellipsoid.center() + axis), middle);
}

/// Along the longer edges.
ZuCapsule around(ZuLozenge const& lozenge) {
  ZuRectangle const& core = lozenge.rectangle();
  unsigned int const longer = core.halfEdge(0).magSquared() < core.halfEdge(1).magSquared() ? 1 : 0;
  return leastOnAxis(
      {core.center(), ZuFrustum::along(ZuPlainSegment::between(ZuVector(), core.halfEdge(longer)), 0, 0).axis},
      {core.corner(0), core.corner(1), core.corner(2), core.corner(3)}, std::max(0.0, lozenge.radius()));
}

}  // namespace

bool ZuCapsule::operator==(ZuCapsule const& other) const {
  return ZuShape::operator==(other) && m_LineSegment == other.m_LineSegment && m_Radius == other.m_Radius;
}

void ZuCapsule::fitFromShape(ZuShape const& other) {
  if (isMesh(other.type())) return fitToPoints(as<ZuBasePhysicalExtent>(other).points());
  switch (other.type()) {
    case SPHERE: {
      ZuSphere const& sphere = as<ZuSphere>(other);
      return become(ZuCapsule(ZuLineSegment(sphere.center(), sphere.center()), sphere.radius()));
    }
    case CAPSULE: {
      ZuCapsule const& capsule = as<ZuCapsule>(other);
      return become(ZuCapsule(capsule.lineSegment(), capsule.radius()));
    }
    case TETRAHEDRON:
    case BOX:
      return fitToPoints(other.physicalExtent().points());
    case ELLIPSOID:
      return become(around(as<ZuEllipsoid>(other)));
    case LOZENGE:
      return become(around(as<ZuLozenge>(other)));
    case CYLINDER: {
      ZuCylinder const& cylinder = as<ZuCylinder>(other);
      return become(around(ZuFrustum::along(cylinder.lineSegment().plain(), cylinder.radius(), cylinder.radius())));
    }
    case CONE: {
      ZuCone const& cone = as<ZuCone>(other);
      return become(around(ZuFrustum::along(cone.lineSegment().plain(), cone.radius(), 0.0)));
    }
    default:
      printNotSupported("ZuCapsule::fitFromShape-->expand", other);
  }
}

void ZuCapsule::become(ZuCapsule const& other) {
  setLineSegment(other.lineSegment());
  setRadius(other.radius());
}

ZuVector ZuCapsule::computeSupportPoint(ZuVector const& direction) const {
  ZuVector const& end0 = m_LineSegment.endpoint0();
  double const length = direction.mag();
  if (length == 0.0) return end0;
  if (!std::isfinite(length)) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuCapsule support point calculation failed.\n");
    return end0;
  }
  ZuVector const& end1 = m_LineSegment.endpoint1();
  ZuVector const& end = direction.dot(end1) > direction.dot(end0) ? end1 : end0;
  double const factor = m_Radius / length;
  // The quotient overflows for directions that are hardly more than denormal.
  return end + (std::isfinite(factor) ? direction * factor : direction.unitVector() * m_Radius.value());
}

ZuVector ZuCapsule::supportPoint(ZuVector const& direction) const { return computeSupportPoint(direction); }

void ZuCapsule::scaleBy(ZuReal factor) {
  scaleChainBy(factor);
  setLineSegment(ZuLineSegment(m_LineSegment.endpoint0() * factor, m_LineSegment.endpoint1() * factor));
  setRadius(m_Radius * std::abs(factor));
}

void ZuCapsule::transformBy(ZuCoordinateSystemTransformation const& xform) {
  ZuShape::transformBy(xform);
  m_LineSegment.transformBy(xform);
  geometryChanged();
}

/// The bound on the depth of two capsules: no deeper than the larger radius.
double ZuCapsule::boundedDistance(double coreDistance, double radius1, double radius2) {
  return std::max(coreDistance - radius1 - radius2, -std::max(radius1, radius2));
}

double ZuCapsule::distanceTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                             ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state) const {
  double s;
  double t;
  switch (other.type()) {
    case PHYSICAL_EXTENT:
    case POLY_PHYSICAL_EXTENT:
    case TRI_PHYSICAL_EXTENT:
      return ZuShape::distanceTo(other, xform, descriptor, state);
    case SPHERE: {
      ZuSphere const& sphere = as<ZuSphere>(other);
      double const squared = zuDistanceSquared(xform * sphere.center(), m_LineSegment.plain(), t);
      return std::sqrt(squared) - m_Radius - sphere.radius();
    }
    case CAPSULE: {
      ZuCapsule const& capsule = as<ZuCapsule>(other);
      ZuPlainSegment const core = capsule.m_LineSegment.plain().transformedBy(xform);
      double const squared = zuDistanceSquared(m_LineSegment.plain(), core, s, t);
      return boundedDistance(std::sqrt(squared), m_Radius, capsule.m_Radius);
    }
    default:
      printNotSupported("ZuCapsule::distanceTo-->Distance", other);
      return 0.0;
  }
}

double ZuCapsule::distanceTo(ZuLineSegment const& segment) const {
  return m_LineSegment.distanceTo(segment) - m_Radius;
}

double ZuCapsule::distanceTo(ZuVector const& point) const { return m_LineSegment.distanceTo(point) - m_Radius; }

bool ZuCapsule::checkIntersect(ZuShape const& other, ZuCoordinateSystemTransformation const&,
                               ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState&,
                               KeyPairs* pairs) const {
  switch (other.type()) {
    case PHYSICAL_EXTENT:
    case POLY_PHYSICAL_EXTENT:
    case TRI_PHYSICAL_EXTENT:
    case SPHERE:
      return report(capsuleMeets(m_LineSegment, m_Radius, other), descriptor, pairs);
    case CAPSULE: {
      ZuCapsule const& capsule = as<ZuCapsule>(other);
      double const reach = m_Radius + capsule.m_Radius;
      return report(m_LineSegment.distanceSquaredTo(capsule.m_LineSegment) <= reach * reach, descriptor, pairs);
    }
    default:
      printNotSupported("ZuCapsule::checkIntersect-->Check", other);
      return false;
  }
}

bool ZuCapsule::checkIntersect(ZuLineSegment const& segment) const {
  return m_LineSegment.distanceSquaredTo(segment) <= m_Radius * m_Radius;
}

bool ZuCapsule::intersectLineSegment(ZuLineSegment const& segment, ZuShapePointEvent& event) const {
  event = ZuShapePointEvent();
  event.shapeID = proximityDatabaseIndex();
  event.hit = checkIntersect(segment);
  if (!event.hit) return false;
  PlainCapsule const capsule{m_LineSegment.plain(), m_Radius};
  ZuPlainSegment const line = segment.plain();
  event.startsInside = m_LineSegment.distanceSquaredTo(line.endpoint0) < m_Radius * m_Radius;
  event.endsInside = m_LineSegment.distanceSquaredTo(line.endpoint1) < m_Radius * m_Radius;
  Interval const inside = insideCapsule(line, capsule);
  event.entry = surfacePoint(line, event.startsInside ? 0.0 : inside.entry, capsule);
  event.exit = surfacePoint(line, event.endsInside ? 1.0 : inside.exit, capsule);
  if (event.startsInside) event.entry.normal = ZuVector();
  if (event.endsInside) event.exit.normal = ZuVector();
  return true;
}

bool ZuCapsule::checkIntersect(ZuVector const& point) const {
  return m_LineSegment.distanceSquaredTo(point) <= m_Radius * m_Radius;
}

void ZuCapsule::fitToPoints(ZuXmlVectorVector const& points) {
  if (!zuCanBeFitted(points.data(), points.size())) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuCapsule::fitToPoints-->no points, or not finite (%zu points)",
                                points.size());
    return;
  }
  PlainCapsule capsule{ZuPlainSegment::between(points[0], points[0]), 0.0};
  if (ZuPointSpread(points.data(), points.size()).size > 0.0) {
    capsule = ZuPointFit<CapsuleRule>::around(points.data(), points.size());
  }
  capsule.takeIn(points.data(), points.size());
  setLineSegment(ZuLineSegment(capsule.core.endpoint0, capsule.core.endpoint1));
  setRadius(capsule.radius);
}

void ZuCapsule::physicalExtent(std::vector<ZuBasePhysicalExtent*>& extents) const {
  extents.push_back(&physicalExtent());
}

ZuBasePhysicalExtent& ZuCapsule::physicalExtent() const {
  if (keptExtent() == nullptr) {
    auto extent = std::make_unique<ZuPolyPhysicalExtent>();
    dressExtent(*extent);
    ZuVector const unit = m_LineSegment.delta().unitVector();
    ZuVector const axis = unit == ZuVector() ? ZuVector::zVector(1.0) : unit;
    zuRevolve(*extent, m_LineSegment.endpoint0(), axis,
              capsuleOutline(m_LineSegment.length(), m_Radius, zuQuarterSteps(detailLevel())), zuSlices(detailLevel()));
    keepExtent(std::move(extent));
  }
  return *keptExtent();
}

bool ZuCapsule::computePenetrationDistanceAndSupportPoints(ZuShape const& other,
                                                           ZuCoordinateSystemTransformation const& xform,
                                                           ZuVector& witness1, ZuVector& witness2, double& distance,
                                                           ZuVector& direction) const {
  if (other.type() != SPHERE && other.type() != CAPSULE) {
    return ZuShape::computePenetrationDistanceAndSupportPoints(other, xform, witness1, witness2, distance, direction);
  }
  computeDistanceAndWitnessPoints(other, xform, false, witness1, witness2, distance, direction);
  return distance <= 0.0;
}

double ZuCapsule::distanceAndWitnessPointsTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                             ZuShapeProximityDescriptor const& descriptor,
                                             ZuSystemShapeProximityState& state, ZuVector& witness1,
                                             ZuVector& witness2) const {
  if (other.type() > CAPSULE) {
    printNotSupported("ZuCapsule::distanceAndWitnessPointsTo-->Distance", other);
    return 0.0;
  }
  double distance = 0.0;
  ZuVector direction;
  if (computeDistanceAndWitnessPoints(other, xform, false, witness1, witness2, distance, direction)) return distance;
  return ZuShape::distanceAndWitnessPointsTo(other, xform, descriptor, state, witness1, witness2);
}

ZuLineSegment const& ZuCapsule::lineSegment() const { return m_LineSegment; }

void ZuCapsule::setLineSegment(ZuLineSegment const& segment) {
  m_LineSegment = segment;
  geometryChanged();
}

ZuReal ZuCapsule::radius() const { return m_Radius; }

void ZuCapsule::setRadius(ZuReal radius) {
  m_Radius = radius;
  geometryChanged();
}

ZuReal ZuCapsule::volume() const { return capsuleVolume(m_LineSegment.length(), m_Radius); }

bool ZuCapsule::expandToInclude(ZuXmlVectorVector const& points) {
  if (points.empty()) return false;
  if (!zuCanBeFitted(points.data(), points.size())) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuCapsule::expandToInclude-->not finite (%zu points)",
                                points.size());
    return false;
  }
  PlainCapsule const now{m_LineSegment.plain(), m_Radius};
  PlainCapsule thicker = now;
  thicker.takeIn(points.data(), points.size());
  if (!(thicker.radius > now.radius)) return false;
  PlainCapsule longer = thicker;
  if (now.core.lengthSquared > 0.0) {
    Axis const axis{now.core.endpoint0, now.core.delta.unitVector()};
    double const length = std::sqrt(now.core.lengthSquared);
    double first = 0.0;
    double last = length;
    longer.radius = std::max(now.radius, axis.reach(points.data(), points.size()));
    stretch(axis, longer.radius, points.data(), points.size(), first, last);
    longer.core = ZuPlainSegment::between(first < 0.0 ? axis.origin + first * axis.unit : now.core.endpoint0,
                                          last > length ? axis.origin + last * axis.unit : now.core.endpoint1);
    longer.takeIn(points.data(), points.size());
  }
  PlainCapsule const& best = CapsuleRule::measure(longer) < CapsuleRule::measure(thicker) ? longer : thicker;
  setLineSegment(ZuLineSegment(best.core.endpoint0, best.core.endpoint1));
  setRadius(best.radius);
  return true;
}

/// The distance from the core is convex, so along the other core it is largest at one of its ends.
bool ZuCapsule::expandToInclude(ZuCapsule const& other) {
  double const farther = std::max(m_LineSegment.distanceTo(other.m_LineSegment.endpoint0()),
                                  m_LineSegment.distanceTo(other.m_LineSegment.endpoint1()));
  double const growth = farther + other.m_Radius - m_Radius;
  if (!(growth > 0.0)) return false;
  setRadius(m_Radius + growth);
  return true;
}

bool ZuCapsule::computeDistanceAndWitnessPoints(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                                bool skipWitness, ZuVector& witness1, ZuVector& witness2,
                                                ZuReal& distance, ZuVector& direction) const {
  ZuPlainSegment core;
  double radius2;
  if (other.type() == SPHERE) {
    ZuSphere const& sphere = as<ZuSphere>(other);
    ZuVector const center = xform * sphere.center();
    core = ZuPlainSegment::between(center, center);
    radius2 = sphere.radius();
  } else if (other.type() == CAPSULE) {
    ZuCapsule const& capsule = as<ZuCapsule>(other);
    core = capsule.m_LineSegment.plain().transformedBy(xform);
    radius2 = capsule.m_Radius;
  } else {
    return false;
  }
  ZuNearestPair const nearest = zuNearestPair(m_LineSegment.plain(), core);
  ZuVector const between = nearest.second - nearest.first;
  double const coreDistance = between.mag();
  double const unbounded = coreDistance - m_Radius - radius2;
  distance = other.type() == SPHERE ? unbounded : boundedDistance(coreDistance, m_Radius, radius2);
  direction = directionBetween(m_LineSegment.plain(), core, between);
  if (skipWitness) return true;
  double const moveIn = 0.5 * (distance - unbounded);
  witness1 = nearest.first + direction * (m_Radius - moveIn);
  witness2 = xform.inverseTimes(nearest.second - direction * (radius2 - moveIn));
  return true;
}

void ZuCapsule::registerComponents() {
  ZuShape::registerComponents();
  registerComponent(ZuGeom::ZuLineSegmentToken, &m_LineSegment);
  registerComponent(ZuGeom::ZuRadiusToken, &m_Radius);
}

ZuToken const& ZuCapsule::classToken() { return ZuGeom::ZuCapsuleToken; }

ZuCapsule ZuCapsule::testObject() {
  ZuCapsule sample(ZuLineSegment::testObject(), 0.75);
  sample.fillForTest();
  return sample;
}
