#include "geometry/zuCone.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "foundation/zuPrint.h"
#include "geometry/zuAxisAlignedBoundingBox.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuCylinder.h"
#include "geometry/zuGeomTokens.h"
#include "geometry/zuPointFit.h"
#include "geometry/zuPolyPhysicalExtent.h"
#include "geometry/zuSphere.h"

namespace {

constexpr double thePi = 3.141592653589793;
/// Times the extent of the points: the least span along the axis from which a cone is fitted. Of points in a plane, one
/// of height 0 would lose the direction of its axis, and a very low one keeps it only to the rounding of its end
/// points.
constexpr double theLeastSpan = 1e-6;
/// Storing a cone rounds its axis, which shows in flat ones; a second round takes that in, and a third.
constexpr int theRoundsOfGrowth = 4;
/// Of the search for the height of a cone on a known axis: step of the variable, and how often it starts.
constexpr double theStepOfHeight = 0.3;
constexpr unsigned int theStartsOfHeight = 4;

double coneVolume(ZuFrustum const& cone) { return thePi / 3.0 * cone.radius0 * cone.radius0 * cone.length; }

/// The cone about the line, upright, that holds the points and is (1 + e^x) times as high as they are along it, or as
/// the least span. With the base under the lowest, a point h above it and r off the line needs the radius r / (1 -
/// h/H).
ZuFrustum standing(ZuVector const& origin, ZuVector const& unit, double x, double leastSpan, ZuVector const* points,
                   std::size_t count) {
  double low = HUGE_VAL;
  double high = -HUGE_VAL;
  for (ZuVector const* p = points; p != points + count; ++p) {
    double const height = (*p - origin).dot(unit);
    low = std::min(low, height);
    high = std::max(high, height);
  }
  double const height = std::max(high - low, leastSpan) * (1.0 + std::exp(x));
  double radius = 0.0;
  for (ZuVector const* p = points; p != points + count; ++p) {
    double const h = (*p - origin).dot(unit);
    double const r = (*p - origin - h * unit).mag();
    radius = std::max(radius, r / (1.0 - (h - low) / height));
  }
  return {origin + low * unit, unit, height, radius, 0.0};
}

/// The farthest that the point is outside the plane of the base or the cone's mantle.
double outsideOf(ZuFrustum const& cone, ZuVector const& p) {
  double const h = (p - cone.base).dot(cone.axis);
  double const over = zuAcross(p - cone.base, cone.axis).mag() - cone.radiusAt(h);
  double const slant = std::hypot(cone.length, cone.radius0);
  return std::max(-h, slant > 0.0 ? over * (cone.length / slant) : over);
}

/// Least cones: two variables tilt the axis, two shift it, the last one is that of the height; either end may be up.
struct ConeRule {
  static constexpr std::size_t theVariables = 5;
  using Solid = ZuFrustum;

  static ZuFrustum around(ZuFitFrame const& frame, std::array<double, theVariables> const& x, ZuVector const* points,
                          std::size_t count) {
    ZuVector const axis = (frame.axes[0] + x[0] * frame.axes[1] + x[1] * frame.axes[2]).unitVector();
    ZuVector const origin = frame.center + (x[2] * frame.axes[1] + x[3] * frame.axes[2]) * frame.size;
    ZuFrustum const up = standing(origin, axis, x[4], theLeastSpan * frame.size, points, count);
    ZuFrustum const down = standing(origin, -axis, x[4], theLeastSpan * frame.size, points, count);
    return measure(down) < measure(up) ? down : up;
  }
  static double measure(ZuFrustum const& cone) { return coneVolume(cone); }
  static double outside(ZuFrustum const& cone, ZuVector const& p) { return outsideOf(cone, p); }
};

/// The least cone on the line that holds the points. For a point h above the base and r off the line, the volume of
/// the cone through it is as r^2 H^3 / (H - h)^2, which falls until H = 3 h and rises from there: the largest of such
/// functions has no other minimum than the least.
ZuFrustum leastOnLine(ZuVector const& origin, ZuVector const& unit, std::vector<ZuVector> const& points) {
  auto const cone = [&](double x) { return standing(origin, unit, x, 0.0, points.data(), points.size()); };
  using Search = ZuSimplexSearch<1>;
  auto const measure = [&](Search::Point const& x) { return coneVolume(cone(x[0])); };
  return cone(Search::minimum(measure, {0.0}, theStepOfHeight, theStartsOfHeight).x[0]);
}

/// The least cone upright on a capsule's end 0, in closed form. Its base touches one ball and its mantle the other.
/// With a = L + r up to the far ball's centre and s the sine of the half angle, the height is a + r / s and the volume
/// as (a s + r)^3 / (s (1 - s^2)), which is least where 3 r s^2 + 2 a s - r = 0: r / s = a + sqrt(a^2 + 3 r^2). A ball
/// gives s = 1/3 and twice its volume.
ZuFrustum aroundCapsule(ZuPlainSegment const& core, double radius) {
  ZuFrustum cone = ZuFrustum::along(core, radius, 0.0);
  double const r = cone.radius0;
  if (r == 0.0) return cone;
  double const a = cone.length + r;
  double const rOverS = a + std::sqrt(a * a + 3.0 * r * r);
  double const sine = r / rOverS;
  cone.base -= r * cone.axis;
  cone.length = a + rOverS;
  cone.radius0 = cone.length * sine / std::sqrt((1.0 - sine) * (1.0 + sine));
  return cone;
}

}  // namespace

bool ZuCone::operator==(ZuCone const& other) const {
  return ZuShape::operator==(other) && m_LineSegment == other.m_LineSegment && m_Radius == other.m_Radius;
}

ZuFrustum ZuCone::solid() const { return ZuFrustum::along(m_LineSegment.plain(), m_Radius, 0.0); }

ZuLineSegment const& ZuCone::lineSegment() const { return m_LineSegment; }

void ZuCone::setLineSegment(ZuLineSegment const& segment) {
  m_LineSegment = segment;
  geometryChanged();
}

ZuReal ZuCone::radius() const { return m_Radius; }

void ZuCone::setRadius(ZuReal radius) {
  m_Radius = radius;
  geometryChanged();
}

ZuReal ZuCone::volume() const { return coneVolume(solid()); }

bool ZuCone::expandToInclude(ZuXmlVectorVector const& points) {
  if (points.empty()) return false;
  if (!zuCanBeFitted(points.data(), points.size())) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuCone::expandToInclude-->not finite (%zu points)", points.size());
    return false;
  }
  ZuFrustum const now = solid();
  auto const isOutside = [&](ZuVector const& p) { return !now.holds(p); };
  if (std::none_of(points.begin(), points.end(), isOutside)) return false;
  std::vector<ZuVector> all(points.begin(), points.end());
  all.push_back(now.base + now.radius0 * zuPerpendicular(now.axis));
  all.push_back(m_LineSegment.endpoint1());
  becomeAround(leastOnLine(now.base, now.axis, all), ZuXmlVectorVector(all));
  return true;
}

void ZuCone::become(ZuFrustum const& cone) {
  setLineSegment(ZuLineSegment(cone.base, cone.base + cone.length * cone.axis));
  setRadius(cone.radius0);
}

/// Becomes the cone, with its base and its mantle moved out by what rounding has left outside.
void ZuCone::becomeAround(ZuFrustum const& cone, ZuXmlVectorVector const& points) {
  ZuCone grown;
  grown.become(cone);
  for (int round = 0; round < theRoundsOfGrowth; ++round) {
    ZuFrustum now = grown.solid();
    double most = 0.0;
    for (ZuVector const& p : points) most = std::max(most, outsideOf(now, p));
    if (most == 0.0) break;
    double const slant = std::hypot(now.length, now.radius0);
    double const upward = now.radius0 > 0.0 ? most * (slant / now.radius0) : most;
    double const slope = now.length > 0.0 ? now.radius0 / now.length : 0.0;
    now.base -= most * now.axis;
    now.length += most + upward;
    now.radius0 = std::max(slope * now.length, now.radius0 + most);
    grown.become(now);
  }
  setLineSegment(grown.m_LineSegment);
  setRadius(grown.m_Radius);
}

void ZuCone::fitFromShape(ZuShape const& other) {
  if (fitToVerticesOf(other)) return;
  switch (other.type()) {
    case SPHERE: {
      ZuSphere const& sphere = as<ZuSphere>(other);
      return become(aroundCapsule(ZuPlainSegment::between(sphere.center(), sphere.center()), sphere.radius()));
    }
    case CAPSULE: {
      ZuCapsule const& capsule = as<ZuCapsule>(other);
      return become(aroundCapsule(capsule.lineSegment().plain(), capsule.radius()));
    }
    case ELLIPSOID: {
      // The least cone around a ball of radius 1, 4 high and the root of 2 in radius, stretched.
      ZuCylinder around;
      around.fitFromShape(other);
      ZuFrustum cone = ZuFrustum::along(around.lineSegment().plain(), std::sqrt(2.0) * around.radius(), 0.0);
      cone.length *= 2.0;
      return become(cone);
    }
    case LOZENGE: {
      ZuCapsule around;
      around.fitFromShape(other);
      return become(aroundCapsule(around.lineSegment().plain(), around.radius()));
    }
    case CYLINDER: {
      // By the rule of leastOnLine(), for its upper rim.
      ZuCylinder const& cylinder = as<ZuCylinder>(other);
      ZuFrustum cone = ZuFrustum::along(cylinder.lineSegment().plain(), cylinder.radius(), 0.0);
      if (cone.length > 0.0) cone.radius0 *= 1.5;
      cone.length *= 3.0;
      return become(cone);
    }
    case CONE: {
      ZuCone const& cone = as<ZuCone>(other);
      ZuLineSegment const axis = cone.lineSegment();
      setRadius(cone.radius());
      return setLineSegment(axis);
    }
    default:
      refuseToFit(other);
  }
}

/// From the base's centre, the apex is as far in the direction as its dot product with the axis, `along`, and the rim
/// as far as the radius times the length of the part across.
ZuVector ZuCone::computeSupportPoint(ZuVector const& direction) const {
  if (!ZuAxialDirection::isSafe(direction)) return supportOfExtremes(direction);
  ZuAxialDirection const seen(direction, m_LineSegment.delta(), m_LineSegment.lengthSquared());
  double const radius = std::max(0.0, m_Radius.value());
  bool const isDisc = !(m_LineSegment.lengthSquared() > 0.0);
  if (!isDisc && seen.along > 0.0 && seen.along >= radius * seen.across) return m_LineSegment.endpoint1();
  return seen.across == 0.0 ? m_LineSegment.endpoint0() : m_LineSegment.endpoint0() + seen.unit * radius;
}

ZuVector ZuCone::supportOfExtremes(ZuVector const& direction) const {
  ZuVector const unit = direction.unitVector();
  if (unit != ZuVector()) return ZuCone::computeSupportPoint(unit);
  if (direction != ZuVector()) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuCone::computeSupportPoint-->not finite (%g %g %g)", direction.x(),
                                direction.y(), direction.z());
  }
  return m_LineSegment.endpoint0();
}

void ZuCone::scaleBy(double factor) {
  scaleChainBy(factor);
  setLineSegment(ZuLineSegment(m_LineSegment.endpoint0() * factor, m_LineSegment.endpoint1() * factor));
  setRadius(m_Radius * std::abs(factor));
}

void ZuCone::transformBy(ZuCoordinateSystemTransformation const& xform) {
  ZuShape::transformBy(xform);
  m_LineSegment.transformBy(xform);
  geometryChanged();
}

bool ZuCone::checkIntersect(ZuLineSegment const& segment) const {
  double entry;
  double exit;
  return solid().cut(segment.plain(), entry, exit);
}

bool ZuCone::intersectLineSegment(ZuLineSegment const& segment, ZuShapePointEvent& event) const {
  bool const hit = solid().intersect(segment.plain(), event);
  event.shapeID = proximityDatabaseIndex();
  return hit;
}

void ZuCone::fitToPoints(ZuXmlVectorVector const& points) {
  if (!zuCanBeFitted(points.data(), points.size())) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuCone::fitToPoints-->no points, or not finite (%zu points)",
                                points.size());
    return;
  }
  if (ZuPointSpread(points.data(), points.size()).size > 0.0) {
    becomeAround(ZuPointFit<ConeRule>::around(points.data(), points.size()), points);
  } else {
    ZuVector const point = points[0];
    become(ZuFrustum::along(ZuPlainSegment::between(point, point), 0.0, 0.0));
  }
}

ZuBasePhysicalExtent& ZuCone::physicalExtent() const {
  if (keptExtent() == nullptr) {
    auto extent = std::make_unique<ZuPolyPhysicalExtent>();
    dressExtent(*extent);
    ZuFrustum const s = solid();
    std::vector<ZuOutlinePoint> outline{{0.0, s.radius0}};
    if (s.length > 0.0) outline.push_back({s.length, 0.0});
    zuRevolve(*extent, s.base, s.axis, outline, zuSlices(detailLevel()));
    keepExtent(std::move(extent));
  }
  return *keptExtent();
}

ZuCapsule const& ZuCone::capsuleBoundingVolume() const { return capsuleAround(); }

double ZuCone::nearestSurfacePoint(ZuVector const& point, ZuVector& onSurface, ZuVector& normal) const {
  return solid().signedDistanceTo(point, onSurface, normal);
}

double ZuCone::nearestPoints(ZuPlainSegment const& segment, ZuVector& onSolid, ZuVector& onSegment) const {
  double t;
  double const distance = solid().distanceTo(segment, t, onSolid);
  onSegment = zuPointAt(segment, t);
  return distance;
}

void ZuCone::registerComponents() {
  ZuShape::registerComponents();
  registerComponent(ZuGeom::ZuLineSegmentToken, &m_LineSegment);
  registerComponent(ZuGeom::ZuRadiusToken, &m_Radius);
}

ZuToken const& ZuCone::classToken() { return ZuGeom::ZuConeToken; }

ZuCone ZuCone::testObject() {
  ZuCone sample(ZuLineSegment::testObject(), 0.75);
  sample.fillForTest();
  return sample;
}
