#include "geometry/zuConvexCorePrivate.h"

#include <typeinfo>

#include "geometry/zuBox.h"
#include "geometry/zuBoxPairPrivate.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuCone.h"
#include "geometry/zuCylinder.h"
#include "geometry/zuEllipsoid.h"
#include "geometry/zuLozenge.h"
#include "geometry/zuSphere.h"

namespace {

/// The shape as a Solid, when it is one and no subclass that may have support points of its own.
template <class Solid>
Solid const* exactly(ZuShape const& shape) {
  return typeid(shape) == typeid(Solid) ? static_cast<Solid const*>(&shape) : nullptr;
}

}  // namespace

ZuConvexCore::ZuConvexCore(ZuShape const& shape) : m_Shape(shape) {
  switch (shape.type()) {
    case ZuShape::SPHERE:
      if (auto const* sphere = exactly<ZuSphere>(shape)) {
        m_Kind = POINT;
        center = sphere->center();
        radius = sphere->radius();
      }
      break;
    case ZuShape::CAPSULE:
      if (auto const* capsule = exactly<ZuCapsule>(shape)) {
        m_Kind = SEGMENT;
        takeSegment(capsule->lineSegment().endpoint0(), capsule->lineSegment().endpoint1());
        radius = capsule->radius();
      }
      break;
    case ZuShape::BOX:
      if (auto const* box = exactly<ZuBox>(shape)) takeBox(box->extents(), box->primaryFrame());
      break;
    case ZuShape::CYLINDER:
      if (auto const* cylinder = exactly<ZuCylinder>(shape)) {
        m_Kind = CYLINDER;
        takeAxial(cylinder->lineSegment().endpoint0(), cylinder->lineSegment().endpoint1(), cylinder->radius());
      }
      break;
    case ZuShape::CONE:
      if (auto const* cone = exactly<ZuCone>(shape)) {
        m_Kind = CONE;
        takeAxial(cone->lineSegment().endpoint0(), cone->lineSegment().endpoint1(), cone->radius());
      }
      break;
    case ZuShape::ELLIPSOID:
      if (auto const* ellipsoid = exactly<ZuEllipsoid>(shape)) {
        takeBox(ellipsoid->radii(), ellipsoid->primaryFrame());
        m_Kind = ELLIPSOID;
      }
      break;
    case ZuShape::LOZENGE:
      if (auto const* lozenge = exactly<ZuLozenge>(shape)) {
        m_Kind = RECTANGLE;
        center = lozenge->rectangle().center();
        m_Half = lozenge->rectangle().halfEdge(0);
        m_OtherHalf = lozenge->rectangle().halfEdge(1);
        radius = lozenge->radius();
      }
      break;
    default:
      break;
  }
}

void ZuConvexCore::takeBox(ZuVector const& half, ZuCoordinateSystemTransformation const& frame) {
  m_Kind = BOX;
  m_Half = half;
  if (frame.hasRotation()) turn = ZuTurn(frame);
  center = frame.translation();
}

/// Halves first: the sum of two ends may leave the doubles.
void ZuConvexCore::takeSegment(ZuVector const& end0, ZuVector const& end1) {
  center = end0 * 0.5 + end1 * 0.5;
  m_Half = end1 * 0.5 - end0 * 0.5;
}

/// A radius that is negative or nan counts as 0.
void ZuConvexCore::takeAxial(ZuVector const& end0, ZuVector const& end1, double radiusAcross) {
  takeSegment(end0, end1);
  alignWithSegment();
  m_Half = ZuVector(radiusAcross > 0.0 ? radiusAcross : 0.0, 0.0, m_Half.mag());
}

/// Lets the z axis of the core's frame run along the segment; that of the shape when it has no length.
void ZuConvexCore::alignWithSegment() {
  if (m_Half.x() == 0.0 && m_Half.y() == 0.0) return;
  ZuVector const z = m_Half.unitVector();
  ZuVector const x = (std::abs(z.x()) < 0.5 ? ZuVector::xVector(1.0) : ZuVector::yVector(1.0)).cross(z).unitVector();
  turn = ZuTurn(x, z.cross(x), z);
}

bool ZuConvexCore::isBox(ZuPlainBox& box) const {
  // Half edges of a rectangle that are not at a right angle, by more than rounding, are no box.
  constexpr double theRightAngle = 4.0 * 0x1p-52;
  switch (m_Kind) {
    case BOX:
      box = ZuPlainBox::aroundPoint(ZuVector());
      box.extents = ZuVector(std::abs(m_Half.x()), std::abs(m_Half.y()), std::abs(m_Half.z()));
      return true;
    case RECTANGLE:
      box = ZuPlainBox::aroundHalfEdges(ZuVector(), m_Half, m_OtherHalf);
      return std::abs(m_Half.dot(m_OtherHalf)) <= theRightAngle * m_Half.mag() * m_OtherHalf.mag();
    case SEGMENT:
      box = ZuPlainBox::aroundSegment(ZuPlainSegment::between(-m_Half, m_Half));
      return true;
    case POINT:
      box = ZuPlainBox::aroundPoint(ZuVector());
      return true;
    default:
      return false;
  }
}

ZuVector ZuConvexCore::askShape(ZuVector const& d) const { return m_Shape.computeSupportPoint(d); }

ZuCoreDifference::ZuCoreDifference(ZuShape const& shape1, ZuShape const& shape2,
                                   ZuCoordinateSystemTransformation const& T1,
                                   ZuCoordinateSystemTransformation const& T2, double scale)
    : core1(shape1), core2(shape2), m_Scale(scale) {
  ZuTurn const turn1(T1), turn2(T2);
  m_World = turn1.times(core1.turn);
  m_Turn = m_World.inverseTimes(turn2.times(core2.turn));
  ZuVector const between = T2.translation() * scale - T1.translation() * scale;
  m_Offset = m_World.inverseTimes(between + (turn2.times(core2.center * scale) - turn1.times(core1.center * scale)));
  double const reach1 = core1.reach(), reach2 = core2.reach();
  m_HasReach = reach1 > 0.0 && reach2 > 0.0;
  m_Extent = largest(m_Offset) + scale * (largest(core1.center) + largest(core2.center) + reach1 + reach2);
}

/// Directions of a scaled set may be of any length; points as large as doubles allow want short ones.
void ZuCoreDifference::supportScaled(ZuVector const& direction, ZuCorePoint& point) {
  ZuVector const unit = direction.unitVector();
  point.p = core1.support(unit) * m_Scale;
  point.q = core2.support(m_Turn.inverseTimes(-unit)) * m_Scale;
  finish(point);
}

bool ZuCoreDifference::areBoxes(ZuPlainBox& box1, ZuPlainBox& box2) const {
  if (!core1.isBox(box1) || !core2.isBox(box2)) return false;
  box1.extents *= m_Scale;
  box2.extents *= m_Scale;
  for (ZuVector& axis : box2.axes) axis = m_Turn.times(axis);
  box2.center = m_Offset;
  return true;
}
