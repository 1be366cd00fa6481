#include "geometry/zuHalfSpace.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

#include "foundation/zuPrint.h"
#include "geometry/zuBasePhysicalExtent.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuGeomTokens.h"
#include "geometry/zuNearestPoints.h"
#include "geometry/zuPointSpread.h"
#include "geometry/zuPolyPhysicalExtent.h"
#include "geometry/zuPolygonWithKey.h"
#include "geometry/zuShapePointEvent.h"
#include "geometry/zuShapeProximityDescriptor.h"

namespace {

/// The corners of the slab's faces, counter-clockwise from outside; bits 0 and 1 of a corner are its sides along the
/// plane, bit 2 is set below the plane.
constexpr unsigned int theFaces[6][4] = {{0, 1, 3, 2}, {4, 6, 7, 5}, {0, 4, 5, 1},
                                         {2, 3, 7, 6}, {0, 2, 6, 4}, {1, 5, 7, 3}};

/// The sign of x, 0 for one that is rounding of numbers of the size.
double side(double x, double size) { return x > size ? 1.0 : x < -size ? -1.0 : 0.0; }

}  // namespace

bool ZuHalfSpace::operator==(ZuHalfSpace const& other) const {
  return ZuShape::operator==(other) && m_Plane == other.m_Plane;
}

void ZuHalfSpace::setPlane(ZuPlane const& plane) {
  m_Plane = plane;
  geometryChanged();
}

ZuVector ZuHalfSpace::normal() const {
  ZuVector const unit = m_Plane.normal().unitVector();
  return unit == ZuVector() ? ZuVector::xVector(1.0) : unit;
}

ZuReal ZuHalfSpace::volume() const { return std::numeric_limits<double>::infinity(); }

double ZuHalfSpace::nearestSurfacePoint(ZuVector const& point, ZuVector& onSurface, ZuVector& outward) const {
  double const distance = height(point);
  outward = normal();
  onSurface = point - outward * distance;
  return distance;
}

double ZuHalfSpace::nearestPoints(ZuPlainSegment const& segment, ZuVector& onSolid, ZuVector& onSegment) const {
  ZuVector unused;
  onSegment = height(segment.endpoint1) < height(segment.endpoint0) ? segment.endpoint1 : segment.endpoint0;
  return nearestSurfacePoint(onSegment, onSolid, unused);
}

/// Capsules that enter, too.
bool ZuHalfSpace::inClosedForm(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                               Contact& contact) const {
  if (other.type() != CAPSULE) return ZuConvexSolid::inClosedForm(other, xform, contact);
  ZuCapsule const& capsule = as<ZuCapsule>(other);
  ZuVector onCore;
  contact.normal = normal();
  contact.distance =
      nearestPoints(capsule.lineSegment().plain().transformedBy(xform), contact.onThis, onCore) - capsule.radius();
  return true;
}

bool ZuHalfSpace::overlapsWithoutBound(ZuShape const& other, ZuCoordinateSystemTransformation const& xform) const {
  if (other.type() != HALF_SPACE) return false;
  return !((normal() + xform.orientation() * as<ZuHalfSpace>(other).normal()).mag() <= m_theParallel);
}

bool ZuHalfSpace::pairDistance(ZuShape const& shape1, ZuShape const& shape2,
                               ZuCoordinateSystemTransformation const& xform, bool computePenetration,
                               ZuVector& witness1, ZuVector& witness2, double& distance, ZuVector& separation) {
  bool const isFirst = shape1.type() == HALF_SPACE;
  ZuHalfSpace const& half = as<ZuHalfSpace>(isFirst ? shape1 : shape2);
  ZuShape const& other = isFirst ? shape2 : shape1;
  ZuCoordinateSystemTransformation const toHalf = isFirst ? xform : xform.inverse();
  if (half.overlapsWithoutBound(other, toHalf)) return false;
  ZuVector const n = half.normal();
  ZuVector const lowest = other.type() == HALF_SPACE ? as<ZuHalfSpace>(other).base()
                                                     : other.computeSupportPoint(toHalf.orientation().inverseTimes(-n));
  ZuVector const inHalf = toHalf * lowest;
  distance = half.height(inHalf);
  ZuVector onHalf = inHalf - n * distance;
  if (!computePenetration && !(distance > 0.0)) {  // one common point
    distance = 0.0;
    onHalf = inHalf;
  }
  witness1 = isFirst ? onHalf : lowest;
  witness2 = isFirst ? lowest : onHalf;
  separation = n * -distance;
  if (!isFirst) separation = -(xform.orientation() * separation);
  return true;
}

double ZuHalfSpace::distanceTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                               ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state) const {
  if (!overlapsWithoutBound(other, xform)) return ZuConvexSolid::distanceTo(other, xform, descriptor, state);
  printUnanswered("distanceTo-->Distance", other);
  return 0.0;
}

double ZuHalfSpace::distanceTo(ZuLineSegment const& segment) const { return ZuConvexSolid::distanceTo(segment); }

double ZuHalfSpace::distanceAndWitnessPointsTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                               ZuShapeProximityDescriptor const& descriptor,
                                               ZuSystemShapeProximityState& state, ZuVector& witness1,
                                               ZuVector& witness2) const {
  if (!overlapsWithoutBound(other, xform)) {
    return ZuConvexSolid::distanceAndWitnessPointsTo(other, xform, descriptor, state, witness1, witness2);
  }
  printUnanswered("distanceAndWitnessPointsTo-->Distance", other);
  return 0.0;
}

bool ZuHalfSpace::checkIntersect(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                 ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state,
                                 KeyPairs* pairs) const {
  if (overlapsWithoutBound(other, xform)) return report(true, descriptor, pairs);
  return ZuConvexSolid::checkIntersect(other, xform, descriptor, state, pairs);
}

bool ZuHalfSpace::intersectLineSegment(ZuLineSegment const& segment, ZuShapePointEvent& event) const {
  double const h0 = height(segment.endpoint0()), h1 = height(segment.endpoint1());
  event = ZuShapePointEvent();
  event.shapeID = proximityDatabaseIndex();
  event.hit = checkIntersect(segment);
  if (!event.hit) return false;
  event.startsInside = h0 < 0.0;
  event.endsInside = h1 < 0.0;
  auto const fill = [&](ZuShapeSurfacePoint& place, double t, bool isInside) {
    place = {t, zuPointAt(segment.plain(), t), isInside ? ZuVector() : normal()};
  };
  fill(event.entry, h0 > 0.0 ? h0 / (h0 - h1) : 0.0, event.startsInside);
  fill(event.exit, h1 > 0.0 ? h0 / (h0 - h1) : 1.0, event.endsInside);
  return true;
}

void ZuHalfSpace::fitFromShape(ZuShape const& other) {
  ZuVector const n = normal();
  ZuShapeValues const kind = other.type();
  if (isMesh(kind)) return fitToPoints(as<ZuBasePhysicalExtent>(other).points());
  if (kind == HALF_SPACE && (as<ZuHalfSpace>(other).normal() - n).mag() <= m_theParallel) {
    return setPlane(ZuPlane(as<ZuHalfSpace>(other).base(), n));
  }
  if (kind > CONE || kind == GRID_PHYSICAL_EXTENT || kind == HALF_SPACE) return refuseToFit(other);
  setPlane(ZuPlane(base() + n * height(other.computeSupportPoint(n)), n));
}

void ZuHalfSpace::fitToPoints(ZuXmlVectorVector const& points) {
  if (!zuCanBeFitted(points.data(), points.size())) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuHalfSpace::fitToPoints-->no points, or not finite (%zu points)",
                                points.size());
    return;
  }
  double most = height(points[0]);
  for (ZuVector const& point : points) most = std::max(most, height(point));
  setPlane(ZuPlane(base() + normal() * most, normal()));
}

ZuVector ZuHalfSpace::computeSupportPoint(ZuVector const& direction) const {
  ZuVector const n = normal(), e1 = zuPerpendicular(n), e2 = n.cross(e1), d = direction.unitVector();
  double const depth = side(d.dot(n), m_theParallel) < 0.0 ? 2.0 * m_theReach : 0.0;
  return base() + e1 * (m_theReach * side(d.dot(e1), m_theParallel)) +
         e2 * (m_theReach * side(d.dot(e2), m_theParallel)) - n * depth;
}

void ZuHalfSpace::scaleBy(double factor) {
  scaleChainBy(factor);
  setPlane(ZuPlane(base() * factor, factor < 0.0 ? -normal() : normal()));
}

void ZuHalfSpace::transformBy(ZuCoordinateSystemTransformation const& xform) {
  ZuShape::transformBy(xform);
  setPlane(xform * m_Plane);
}

ZuBasePhysicalExtent& ZuHalfSpace::physicalExtent() const {
  if (keptExtent() == nullptr) {
    auto extent = std::make_unique<ZuPolyPhysicalExtent>();
    dressExtent(*extent);
    ZuVector const n = normal(), e1 = zuPerpendicular(n), e2 = n.cross(e1);
    ZuXmlVectorVector points;
    for (unsigned int corner = 0; corner < 8; ++corner) {
      points.pushBack(base() + e1 * ((corner & 1U) != 0 ? m_theReach : -m_theReach) +
                      e2 * ((corner & 2U) != 0 ? m_theReach : -m_theReach) -
                      n * ((corner & 4U) != 0 ? 2.0 * m_theReach : 0.0));
    }
    ZuXmlVectorType<ZuPolygonWithKey> facets;
    for (auto const& corners : theFaces) facets.pushBack(ZuPolygonWithKey(corners, 4, extent->surfaceProperty()));
    extent->setPoints(points);
    extent->setFacets(facets);
    extent->setIsConvex(true);
    keepExtent(std::move(extent));
  }
  return *keptExtent();
}

void ZuHalfSpace::registerComponents() {
  ZuShape::registerComponents();
  registerComponent(ZuGeom::ZuPlaneToken, &m_Plane);
}

ZuToken const& ZuHalfSpace::classToken() { return ZuGeom::ZuHalfSpaceToken; }

ZuHalfSpace ZuHalfSpace::testObject() {
  ZuHalfSpace sample(ZuPlane::testObject());
  sample.fillForTest();
  return sample;
}
