#include "geometry/zuConvexSolid.h"

#include <algorithm>
#include <string>

#include "geometry/zuAxisAlignedBoundingBox.h"
#include "geometry/zuBasePhysicalExtent.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuRobustGjk.h"
#include "geometry/zuShapeProximityDescriptor.h"
#include "geometry/zuSphere.h"

namespace {

/// Times the size of their coordinates: the direction between points that are closer is spoilt by rounding, to 2e-7 rad
/// and more.
constexpr double theMeeting = 1e-9;

/// Types that are shapes of their own, without a convex solid behind them.
bool isAnswered(ZuShape::ZuShapeValues type) {
  return type >= ZuShape::PHYSICAL_EXTENT && type <= ZuShape::CONE && type != ZuShape::GRID_PHYSICAL_EXTENT;
}

}  // namespace

ZuVector ZuConvexSolid::supportPoint(ZuVector const& direction) const { return computeSupportPoint(direction); }

/// Balls, and capsules of which the core does not meet the solid. The depth of such a capsule is its radius less the
/// distance of the core: the points within the radius of the difference set of solid and core are those of the
/// difference set of solid and capsule, and the origin is that much below their surface.
bool ZuConvexSolid::inClosedForm(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                 Contact& contact) const {
  ZuShapeValues const otherType = other.type();
  if (otherType == SPHERE) {
    ZuSphere const& sphere = as<ZuSphere>(other);
    contact.distance = nearestSurfacePoint(xform * sphere.center(), contact.onThis, contact.normal) - sphere.radius();
    return true;
  }
  if (otherType != CAPSULE) return false;
  ZuCapsule const& capsule = as<ZuCapsule>(other);
  ZuPlainSegment const core = capsule.lineSegment().plain().transformedBy(xform);
  if (core.lengthSquared == 0.0) {
    contact.distance = nearestSurfacePoint(core.endpoint0, contact.onThis, contact.normal) - capsule.radius();
    return true;
  }
  ZuVector onCore;
  double const apart = nearestPoints(core, contact.onThis, onCore);
  if (!(apart > 0.0) || !(apart > theMeeting * (contact.onThis.mag() + onCore.mag()))) {
    return whereCoreEnters(capsule, xform, contact);
  }
  contact.normal = (onCore - contact.onThis).unitVector();
  contact.distance = apart - capsule.radius();
  return true;
}

/// What the robust engine has to say of the core, which meets the solid; the radius goes on top.
bool ZuConvexSolid::whereCoreEnters(ZuCapsule const& capsule, ZuCoordinateSystemTransformation const& xform,
                                    Contact& contact) const {
  ZuCapsule const core(capsule.lineSegment(), 0.0);
  ZuVector onCore, separation;
  double distance = 0.0;
  static thread_local ZuRobustGJK engine;
  engine.distance(*this, core, ZuCoordinateSystemTransformation::nullObject(), xform, true, contact.onThis, onCore,
                  distance, &separation);
  contact.normal = distance < 0.0 ? separation.unitVector() : ZuVector();
  contact.distance = std::min(distance, 0.0) - capsule.radius();
  return contact.normal != ZuVector();
}

void ZuConvexSolid::axisAlignedBoundingBoxInPrimary(ZuAxisAlignedBoundingBox& box) const {
  box.resize(capsuleBoundingVolume());
}

double ZuConvexSolid::distanceTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                 ZuShapeProximityDescriptor const& descriptor,
                                 ZuSystemShapeProximityState& state) const {
  Contact contact;
  if (inClosedForm(other, xform, contact)) return contact.distance;
  if (isAnswered(other.type())) return ZuShape::distanceTo(other, xform, descriptor, state);
  printUnanswered("distanceTo-->Distance", other);
  return 0.0;
}

double ZuConvexSolid::distanceTo(ZuLineSegment const& segment) const {
  ZuVector unused0;
  ZuVector unused1;
  return nearestPoints(segment.plain(), unused0, unused1);
}

double ZuConvexSolid::distanceTo(ZuVector const& point) const {
  ZuVector unused0;
  ZuVector unused1;
  return nearestSurfacePoint(point, unused0, unused1);
}

bool ZuConvexSolid::checkIntersect(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                   ZuShapeProximityDescriptor const& descriptor, ZuSystemShapeProximityState& state,
                                   KeyPairs* pairs) const {
  Contact contact;
  if (inClosedForm(other, xform, contact)) return report(contact.distance <= 0.0, descriptor, pairs);
  if (!isAnswered(other.type())) {
    printUnanswered("checkIntersect-->Check", other);
    return false;
  }
  double distance = 0.0;
  bool const answered = gjkDistanceQuery(other, descriptor.key1(), descriptor.key2(), xform, false, state, distance);
  return report(answered && distance <= 0.0, descriptor, pairs);
}

bool ZuConvexSolid::checkIntersect(ZuLineSegment const& segment) const { return distanceTo(segment) <= 0.0; }

bool ZuConvexSolid::checkIntersect(ZuVector const& point) const { return distanceTo(point) <= 0.0; }

void ZuConvexSolid::physicalExtent(std::vector<ZuBasePhysicalExtent*>& extents) const {
  extents.push_back(&physicalExtent());
}

bool ZuConvexSolid::computePenetrationDistanceAndSupportPoints(ZuShape const& other,
                                                               ZuCoordinateSystemTransformation const& xform,
                                                               ZuVector& witness1, ZuVector& witness2, double& distance,
                                                               ZuVector& direction) const {
  Contact contact;
  if (!inClosedForm(other, xform, contact)) {
    return ZuShape::computePenetrationDistanceAndSupportPoints(other, xform, witness1, witness2, distance, direction);
  }
  witness1 = contact.onThis;
  witness2 = xform.inverseTimes(contact.onOther());
  distance = contact.distance;
  direction = contact.normal;
  return distance <= 0.0;
}

double ZuConvexSolid::distanceAndWitnessPointsTo(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                                                 ZuShapeProximityDescriptor const& descriptor,
                                                 ZuSystemShapeProximityState& state, ZuVector& witness1,
                                                 ZuVector& witness2) const {
  Contact contact;
  if (inClosedForm(other, xform, contact)) {
    witness1 = contact.onThis;
    witness2 = xform.inverseTimes(contact.onOther());
    return contact.distance;
  }
  if (isAnswered(other.type())) {
    return ZuShape::distanceAndWitnessPointsTo(other, xform, descriptor, state, witness1, witness2);
  }
  printUnanswered("distanceAndWitnessPointsTo-->Distance", other);
  return 0.0;
}

void ZuConvexSolid::printUnanswered(char const* operation, ZuShape const& other) const {
  printNotSupported((className() + std::string("::") + operation).c_str(), other);
}

void ZuConvexSolid::refuseToFit(ZuShape const& other) const { printUnanswered("fitFromShape-->expand", other); }

bool ZuConvexSolid::fitToVerticesOf(ZuShape const& other) {
  if (!isMesh(other.type()) && other.type() != TETRAHEDRON && other.type() != BOX) return false;
  fitToPoints(other.physicalExtent().points());
  return true;
}
