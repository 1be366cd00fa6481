#include "geometry/zuConvexCorePrivate.h"

#include <typeinfo>

#include "geometry/zuCapsule.h"
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
        ZuLineSegment const& core = capsule->lineSegment();
        m_Kind = SEGMENT;
        center = core.endpoint0() * 0.5 + core.endpoint1() * 0.5;
        m_Half = core.endpoint1() * 0.5 - core.endpoint0() * 0.5;
        radius = capsule->radius();
      }
      break;
    default:
      break;
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
  m_Extent = largest(m_Offset) + scale * (largest(core1.center) + largest(core2.center));
}

/// Directions of a scaled set may be of any length; points as large as doubles allow want short ones.
void ZuCoreDifference::supportScaled(ZuVector const& direction, ZuCorePoint& point) {
  ZuVector const unit = direction.unitVector();
  point.p = core1.support(unit) * m_Scale;
  point.q = core2.support(m_Turn.inverseTimes(-unit)) * m_Scale;
  finish(point);
}
