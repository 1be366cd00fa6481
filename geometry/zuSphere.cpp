#include "geometry/zuSphere.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "foundation/zuPrint.h"
#include "geometry/zuAxisAlignedBoundingBox.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuGeomTokens.h"
#include "geometry/zuLineSegment.h"
#include "geometry/zuPolyPhysicalExtent.h"
#include "geometry/zuShapePointEvent.h"

namespace {

constexpr double theFourThirdsOfPi = 4.1887902047863905;

/// The surface of a ball at a parameter of the segment.
ZuShapeSurfacePoint surfacePoint(ZuVector const& center, ZuLineSegment const& segment, double t) {
  ZuShapeSurfacePoint result;
  result.t = t;
  result.point = segment.endpoint0() + t * segment.delta();
  result.normal = (result.point - center).unitVector();
  return result;
}

}  // namespace

ZuSphere::ZuSphere(ZuVector const& center, double radius, int detailLevel) : m_Center(center), m_Radius(radius) {
  setDetailLevel(static_cast<unsigned int>(std::max(detailLevel, 0)));
}

bool ZuSphere::operator==(ZuSphere const& other) const {
  return ZuShape::operator==(other) && m_Center == other.m_Center && m_Radius == other.m_Radius;
}

ZuVector const& ZuSphere::center() const { return m_Center; }

void ZuSphere::setCenter(ZuVector const& center) {
  m_Center = center;
  geometryChanged();
}

double ZuSphere::radius() const { return m_Radius; }

void ZuSphere::setRadius(double radius) {
  m_Radius = radius;
  geometryChanged();
}

bool ZuSphere::contains(ZuSphere const& other) const {
  return other.center().distanceTo(center()) + other.radius() <= radius();
}

bool ZuSphere::contains(ZuVector const& point) const {
  return center().distanceTo(point) - radius() <= m_thePointTolerance;
}

void ZuSphere::expandSelfToInclude(ZuSphere const& other) {
  if (contains(other)) return;
  ZuVector const otherCenter = other.center();
  double const otherRadius = other.radius();
  if (other.contains(*this)) {
    setCenter(otherCenter);
    setRadius(otherRadius);
    return;
  }
  double const length = center().distanceTo(otherCenter);
  ZuVector const u = (center() - otherCenter).unitVector();
  double const newRadius = 0.5 * (length + radius() + otherRadius);
  setCenter(0.5 * ((center() + radius() * u) + (otherCenter - otherRadius * u)));
  setRadius(newRadius);
}

double ZuSphere::volume() const { return theFourThirdsOfPi * radius() * radius() * radius(); }

bool ZuSphere::computeDistanceAndWitnessPoints(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                               bool skipWitness, ZuVector& witness1, ZuVector& witness2,
                                               double& distance, ZuVector& direction) const {
  if (other.type() != SPHERE) return false;
  ZuSphere const& sphere = as<ZuSphere>(other);
  ZuVector const c1 = m_Center;
  ZuVector const c2 = xform * sphere.m_Center.value();
  direction = c2 - c1;
  double const squared = direction.magSquared();
  distance = std::sqrt(squared) - m_Radius - sphere.m_Radius;
  if (skipWitness || squared == 0.0) return true;
  direction.normalize();
  witness1 = c1 + m_Radius.value() * direction;
  witness2 = xform.inverse() * (c2 - sphere.m_Radius.value() * direction);
  return true;
}

/// With w from the centre to endpoint 0 and d the segment: |w + t d|^2 = r^2. The root of larger magnitude comes first
/// and the other from their product, so that neither cancels (Press et al., Numerical Recipes, section 5.6).
bool ZuSphere::intersectSphereWithLineSegment(ZuVector const& center, double radius, ZuLineSegment const& segment,
                                              ZuShapePointEvent& event) {
  event = ZuShapePointEvent();
  ZuVector const w = segment.endpoint0() - center;
  ZuVector const d = segment.delta();
  double const a = d.magSquared();
  double const b = w.dot(d);
  double const c = w.magSquared() - radius * radius;
  double t0 = 0.0;
  double t1 = 0.0;
  if (a > 0.0) {
    // The distance of the line from the centre, rather than b * b - a * c, tells whether they meet.
    ZuVector const nearest = w - (b / a) * d;
    double const rest = radius * radius - nearest.magSquared();
    if (!(rest >= 0.0)) return false;
    double const q = -(b + std::copysign(std::sqrt(a * rest), b));
    t0 = q / a;
    t1 = q != 0.0 ? c / q : 0.0;
    if (t0 > t1) std::swap(t0, t1);
    if (t1 < 0.0 || t0 > 1.0) return false;
  } else if (!(c <= 0.0)) {
    return false;
  }
  event.hit = true;
  event.startsInside = c < 0.0;
  event.endsInside = (segment.endpoint1() - center).magSquared() < radius * radius;
  event.entry = surfacePoint(center, segment, event.startsInside ? 0.0 : std::clamp(t0, 0.0, 1.0));
  event.exit = surfacePoint(center, segment, event.endsInside ? 1.0 : std::clamp(t1, 0.0, 1.0));
  if (event.startsInside) event.entry.normal = ZuVector();
  if (event.endsInside) event.exit.normal = ZuVector();
  return true;
}

void ZuSphere::fitFromShape(ZuShape const& other) {
  if (isMesh(other.type())) return fitToPoints(as<ZuBasePhysicalExtent>(other).points());
  if (other.type() == SPHERE) return expandSelfToInclude(as<ZuSphere>(other));
  if (other.type() != CAPSULE) return printNotSupported("ZuSphere::fitFromShape-->expand", other);
  ZuCapsule const& capsule = as<ZuCapsule>(other);
  setCenter(capsule.lineSegment().center());
  setRadius(std::max(center().distanceTo(capsule.lineSegment().endpoint0()), capsule.radius()));
}

ZuVector ZuSphere::computeSupportPoint(ZuVector const& direction) const {
  ZuVector const c = m_Center;
  double const r = m_Radius;
  double const length = direction.mag();
  if (length != 0.0) return c + direction * (r / length);
  double const offset = c.mag();
  return offset != 0.0 ? c * (r / offset + 1.0) : ZuVector(0.0, 0.0, r);
}

ZuVector ZuSphere::supportPoint(ZuVector const& direction) const { return computeSupportPoint(direction); }

void ZuSphere::scaleBy(double factor) {
  scaleChainBy(factor);
  setCenter(center() * factor);
  setRadius(radius() * factor);
}

void ZuSphere::transformBy(ZuCoordinateSystemTransformation const& xform) {
  ZuShape::transformBy(xform);
  setCenter(xform * center());
}

double ZuSphere::distanceTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                            ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state) const {
  ZuShapeValues const otherType = other.type();
  if (otherType == SPHERE) {
    ZuSphere const& sphere = as<ZuSphere>(other);
    return m_Center.value().distanceTo(xform * sphere.m_Center.value()) - m_Radius - sphere.m_Radius;
  }
  if (isMesh(otherType)) return ZuShape::distanceTo(other, xform, descriptor, state);
  printNotSupported("ZuSphere::distanceTo-->Distance", other);
  return 0.0;
}

double ZuSphere::distanceTo(ZuLineSegment const& segment) const { return segment.distanceTo(center()) - radius(); }

double ZuSphere::distanceTo(ZuVector const& point) const { return center().distanceTo(point) - radius(); }

bool ZuSphere::checkIntersect(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                              ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState&,
                              KeyPairs* pairs) const {
  switch (other.type()) {
    case SPHERE: {
      ZuSphere const& sphere = as<ZuSphere>(other);
      double const reach = m_Radius + sphere.m_Radius;
      double const squared = m_Center.value().distanceSquaredTo(xform * sphere.m_Center.value());
      return report(reach * reach >= squared, descriptor, pairs);
    }
    case POLY_PHYSICAL_EXTENT:
    case TRI_PHYSICAL_EXTENT:
      // The centre in the mesh's frame rather than the mesh in this one: the same distance without a copy of the mesh.
      return report(other.distanceTo(xform.inverse() * center()) - radius() < 0.0, descriptor, pairs);
    default:
      printNotSupported("ZuSphere::checkIntersect-->Check", other);
      return false;
  }
}

bool ZuSphere::checkIntersect(ZuLineSegment const& segment) const {
  return radius() * radius() >= segment.distanceSquaredTo(center());
}

bool ZuSphere::intersectLineSegment(ZuLineSegment const& segment, ZuShapePointEvent& event) const {
  bool const hit = intersectSphereWithLineSegment(center(), radius(), segment, event);
  event.shapeID = proximityDatabaseIndex();
  return hit;
}

bool ZuSphere::checkIntersect(ZuVector const& point) const {
  return radius() * radius() >= center().distanceSquaredTo(point);
}

void ZuSphere::fitToPoints(ZuXmlVectorVector const& points) {
  if (points.empty()) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuSphere::fitToPoints-->no points");
    return;
  }
  // Beside this sphere: the points may be those of its own approximation, which goes when it changes.
  ZuSphere grown(points[0], 0.0, 3);
  ZuSphere pointSphere(points[0], 0.0, 3);
  for (ZuVector const& point : points) {
    pointSphere.setCenter(point);
    grown.expandSelfToInclude(pointSphere);
  }
  setCenter(grown.center());
  setRadius(grown.radius());
}

void ZuSphere::physicalExtent(std::vector<ZuBasePhysicalExtent*>& extents) const {
  extents.push_back(&physicalExtent());
}

ZuBasePhysicalExtent& ZuSphere::physicalExtent() const {
  if (keptExtent() == nullptr) {
    auto extent = std::make_unique<ZuPolyPhysicalExtent>();
    dressExtent(*extent);
    icosahedron(*extent, radius(), center(), detailLevel());
    keepExtent(std::move(extent));
  }
  return *keptExtent();
}

bool ZuSphere::computePenetrationDistanceAndSupportPoints(ZuShape const& other,
                                                          ZuCoordinateSystemTransformation const& xform,
                                                          ZuVector& witness1, ZuVector& witness2, double& distance,
                                                          ZuVector& direction) const {
  if (other.type() != SPHERE) {
    return ZuShape::computePenetrationDistanceAndSupportPoints(other, xform, witness1, witness2, distance, direction);
  }
  computeDistanceAndWitnessPoints(other, xform, false, witness1, witness2, distance, direction);
  return distance <= 0.0;
}

double ZuSphere::distanceAndWitnessPointsTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                            ZuShapeProximityDescriptor const& descriptor,
                                            ZuSystemShapeProximityState& state, ZuVector& witness1,
                                            ZuVector& witness2) const {
  ZuShapeValues const otherType = other.type();
  if (otherType == SPHERE) {
    double distance = 0.0;
    ZuVector direction;
    computeDistanceAndWitnessPoints(other, xform, false, witness1, witness2, distance, direction);
    return distance;
  }
  if (isMesh(otherType)) {
    return ZuShape::distanceAndWitnessPointsTo(other, xform, descriptor, state, witness1, witness2);
  }
  printNotSupported("ZuSphere::distanceAndWitnessPointsTo-->Distance", other);
  return 0.0;
}

void ZuSphere::axisAlignedBoundingBoxInPrimary(ZuAxisAlignedBoundingBox& box) const {
  box.resize(capsuleBoundingVolume());
}

ZuCapsule const& ZuSphere::capsuleBoundingVolume() const { return capsuleAround(); }

void ZuSphere::registerComponents() {
  ZuShape::registerComponents();
  registerComponent(ZuGeom::ZuCenterToken, &m_Center);
  registerComponent(ZuGeom::ZuRadiusToken, &m_Radius);
}

ZuToken const& ZuSphere::classToken() { return ZuGeom::ZuSphereToken; }

ZuSphere ZuSphere::testObject() {
  ZuSphere sample(ZuVector::testObject(), 0.75, 3);
  sample.fillForTest();
  return sample;
}
