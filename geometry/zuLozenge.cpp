#include "geometry/zuLozenge.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <tuple>

#include "foundation/zuPrint.h"
#include "geometry/zuBox.h"
#include "geometry/zuBoxPairPrivate.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuGeomTokens.h"
#include "geometry/zuNearestPoints.h"
#include "geometry/zuPointFit.h"
#include "geometry/zuPolyPhysicalExtent.h"
#include "geometry/zuPolygonWithKey.h"
#include "geometry/zuRevolve.h"
#include "geometry/zuShapePointEvent.h"
#include "geometry/zuSphere.h"

namespace {

constexpr double thePi = 3.141592653589793;

/// Of sides 2a and 2b. By Steiner: the area swept to both sides, a half tube along each side, and a ball.
double lozengeVolume(double a, double b, double radius) {
  return radius * (8.0 * a * b + radius * (thePi * 2.0 * (a + b) + radius * thePi * (4.0 / 3.0)));
}

/// Core, as a box without height, and radius.
struct PlainLozenge {
  ZuPlainBox core;
  double radius;

  double outside(ZuVector const& p) const {
    ZuVector const d = p - core.center;
    double const u = std::max(std::abs(d.dot(core.axes[0])) - core.extents.x(), 0.0);
    double const v = std::max(std::abs(d.dot(core.axes[1])) - core.extents.y(), 0.0);
    double const w = d.dot(core.axes[2]);
    return std::sqrt(u * u + v * v + w * w) - radius;
  }
  void takeIn(ZuVector const* points, std::size_t count) {
    double missing = 0.0;
    for (std::size_t i = 0; i < count; ++i) missing = std::max(missing, outside(points[i]));
    radius += missing;
  }
  ZuRectangle rectangle() const {
    return ZuRectangle(core.center, core.axes[0] * core.extents.x(), core.axes[1] * core.extents.y());
  }
};

/// A side of the core on an axis: from low to high, or anywhere between the two when low is above high.
struct Side {
  double low = HUGE_VAL;
  double high = -HUGE_VAL;

  /// Reaches the point x from both sides within the given distance.
  void reach(double x, double within) {
    low = std::min(low, x + within);
    high = std::max(high, x - within);
  }
  void close() {
    if (high < low) low = high = 0.5 * (low + high);
  }
  double beyond(double x) const { return std::max({low - x, x - high, 0.0}); }
  void moveTowards(double x, double by) { (x > high ? high : low) += x > high ? by : -by; }
};

/// Least lozenges: three variables turn the axes, and one makes the radius larger than half the height, which may
/// shorten the core by more than it costs.
struct LozengeRule {
  static constexpr std::size_t theVariables = 4;
  using Solid = PlainLozenge;
  /// Times the longest half side: what is added to the radius, so that of flat lozenges the one of least area is best.
  static constexpr double theThickness = 1e-6;

  static PlainLozenge around(ZuFitFrame const& frame, std::array<double, theVariables> const& x, ZuVector const* points,
                             std::size_t count) {
    PlainLozenge result{{frame.center, {}, {}}, 0.0};
    frame.turnedAxes(x[0], x[1], x[2], result.core.axes);
    ZuVector const* const axes = result.core.axes;
    Side height;
    for (std::size_t i = 0; i < count; ++i) height.reach((points[i] - frame.center).dot(axes[2]), 0.0);
    double const middle = 0.5 * (height.low + height.high);
    result.radius = 0.5 * (height.high - height.low) + std::abs(x[3]) * frame.size;
    auto const reachAt = [&](ZuVector const& d) {
      double const w = d.dot(axes[2]) - middle;
      return std::sqrt(std::max(result.radius * result.radius - w * w, 0.0));
    };
    Side u, v;
    for (std::size_t i = 0; i < count; ++i) {
      ZuVector const d = points[i] - frame.center;
      double const reach = reachAt(d);
      u.reach(d.dot(axes[0]), reach);
      v.reach(d.dot(axes[1]), reach);
    }
    u.close();
    v.close();
    for (std::size_t i = 0; i < count; ++i) {
      ZuVector const d = points[i] - frame.center;
      moveCorner(u, d.dot(axes[0]), v, d.dot(axes[1]), reachAt(d));
    }
    result.core.center += axes[0] * (0.5 * (u.low + u.high)) + axes[1] * (0.5 * (v.low + v.high)) + axes[2] * middle;
    result.core.extents = {0.5 * (u.high - u.low), 0.5 * (v.high - v.low), 0.0};
    return result;
  }
  static double measure(PlainLozenge const& l) {
    double const least = theThickness * std::max(l.core.extents.x(), l.core.extents.y());
    return lozengeVolume(l.core.extents.x(), l.core.extents.y(), l.radius + least);
  }
  static double outside(PlainLozenge const& l, ZuVector const& p) { return l.outside(p); }

 private:
  /// Moves a corner outwards, by the same amount along both sides, to where the point x, y is within reach.
  static void moveCorner(Side& u, double x, Side& v, double y, double reach) {
    double const du = u.beyond(x);
    double const dv = v.beyond(y);
    if (!(du * du + dv * dv > reach * reach)) return;
    double const rest = std::max(2.0 * reach * reach - (du - dv) * (du - dv), 0.0);
    double const by = 0.5 * (du + dv - std::sqrt(rest));
    if (du > 0.0) u.moveTowards(x, by);
    if (dv > 0.0) v.moveTowards(y, by);
  }
};

/// The mesh of a lozenge: rings around the normal of the core, each with an arc at every corner.
class LozengeMesh {
 public:
  LozengeMesh(ZuRectangle const& core, double radius, unsigned int steps, std::string const& key)
      : m_Core(ZuPlainBox::aroundRectangle(core)), m_Radius(radius), m_Steps(steps), m_Key(key) {
    unsigned int const rings = radius > 0.0 ? 2 * steps : 0;
    for (unsigned int ring = 0; ring < rings; ++ring) {
      for (unsigned int arc = 0; arc < 4; ++arc) {
        for (unsigned int step = 0; step < steps; ++step) addQuad(ring, arc, step, arc, step + 1);
        addQuad(ring, arc, steps, (arc + 1) % 4, 0);
      }
    }
    addLoop({at(rings, 0, 0), at(rings, 1, 0), at(rings, 2, 0), at(rings, 3, 0)});
    addLoop({at(0, 3, 0), at(0, 2, 0), at(0, 1, 0), at(0, 0, 0)});
  }

  ZuXmlVectorVector points;
  ZuXmlVectorType<ZuPolygonWithKey> facets;

 private:
  /// Signs of the corner of each arc, counter-clockwise.
  static constexpr double theSigns[4][2] = {{1.0, 1.0}, {-1.0, 1.0}, {-1.0, -1.0}, {1.0, -1.0}};

  void addQuad(unsigned int ring, unsigned int arc0, unsigned int step0, unsigned int arc1, unsigned int step1) {
    addLoop({at(ring, arc0, step0), at(ring, arc1, step1), at(ring + 1, arc1, step1), at(ring + 1, arc0, step0)});
  }
  /// Corners that have become one are left out, and facets with less than three.
  void addLoop(std::vector<unsigned int> loop) {
    loop.erase(std::unique(loop.begin(), loop.end()), loop.end());
    while (loop.size() > 1 && loop.front() == loop.back()) loop.pop_back();
    if (loop.size() < 3) return;
    facets.pushBack(ZuPolygonWithKey(loop.data(), static_cast<unsigned int>(loop.size()), m_Key));
  }
  /// The vertex of a ring, 0 at the bottom and 2 * steps at the top; one that is there already is used again.
  unsigned int at(unsigned int ring, unsigned int arc, unsigned int step) {
    bool const isPole = ring == 0 || ring == 2 * m_Steps || m_Radius == 0.0;
    unsigned int const turn = isPole ? 0 : (arc * m_Steps + step) % (4 * m_Steps);
    double const sx = m_Core.extents.x() > 0.0 ? theSigns[arc][0] : 0.0;
    double const sy = m_Core.extents.y() > 0.0 ? theSigns[arc][1] : 0.0;
    auto const [entry, isNew] = m_Places.try_emplace({ring, turn, sx, sy}, static_cast<unsigned int>(points.size()));
    if (!isNew) return entry->second;
    double const rise = 0.5 * thePi * (static_cast<double>(ring) / m_Steps - 1.0);
    double const angle = 0.5 * thePi * turn / m_Steps;
    double const across = isPole ? 0.0 : m_Radius * std::cos(rise);
    points.pushBack(m_Core.center + m_Core.axes[0] * (sx * m_Core.extents.x() + across * std::cos(angle)) +
                    m_Core.axes[1] * (sy * m_Core.extents.y() + across * std::sin(angle)) +
                    m_Core.axes[2] * (m_Radius * std::sin(rise)));
    return entry->second;
  }

  ZuPlainBox m_Core;
  double m_Radius;
  unsigned int m_Steps;
  std::string m_Key;
  std::map<std::tuple<unsigned int, unsigned int, double, double>, unsigned int> m_Places;
};

/// The first and the last parameter at which a segment is in one of several convex parts.
struct Stay {
  double entry = HUGE_VAL;
  double exit = -HUGE_VAL;

  void include(ZuShape const& part, ZuLineSegment const& segment) {
    ZuShapePointEvent event;
    if (!part.intersectLineSegment(segment, event)) return;
    entry = std::min(entry, event.entry.t);
    exit = std::max(exit, event.exit.t);
  }
};

}  // namespace

bool ZuLozenge::operator==(ZuLozenge const& other) const {
  return ZuShape::operator==(other) && m_Rectangle == other.m_Rectangle && m_Radius == other.m_Radius;
}

ZuRectangle const& ZuLozenge::rectangle() const { return m_Rectangle; }

void ZuLozenge::setRectangle(ZuRectangle const& rectangle) {
  m_Rectangle = rectangle;
  geometryChanged();
}

ZuReal ZuLozenge::radius() const { return m_Radius; }

void ZuLozenge::setRadius(ZuReal radius) {
  m_Radius = radius;
  geometryChanged();
}

ZuReal ZuLozenge::volume() const {
  return lozengeVolume(m_Rectangle.halfEdge(0).mag(), m_Rectangle.halfEdge(1).mag(), m_Radius);
}

ZuCapsule const& ZuLozenge::capsuleBoundingVolume() const { return capsuleAround(); }

void ZuLozenge::fitFromShape(ZuShape const& other) {
  if (fitToVerticesOf(other)) return;
  if (other.type() == SPHERE) {
    ZuSphere const& sphere = as<ZuSphere>(other);
    setRectangle(ZuRectangle(sphere.center(), ZuVector(), ZuVector()));
    setRadius(sphere.radius());
  } else if (other.type() == CAPSULE) {
    ZuCapsule const& capsule = as<ZuCapsule>(other);
    setRectangle(ZuRectangle(capsule.lineSegment().center(), capsule.lineSegment().delta() * 0.5, ZuVector()));
    setRadius(capsule.radius());
  } else if (other.type() == LOZENGE) {
    ZuLozenge const& lozenge = as<ZuLozenge>(other);
    setRectangle(lozenge.rectangle());
    setRadius(lozenge.radius());
  } else {
    refuseToFit(other);
  }
}

ZuVector ZuLozenge::computeSupportPoint(ZuVector const& direction) const {
  ZuVector const& h0 = m_Rectangle.halfEdge(0);
  ZuVector const& h1 = m_Rectangle.halfEdge(1);
  return m_Rectangle.center() + h0 * std::copysign(1.0, direction.dot(h0)) +
         h1 * std::copysign(1.0, direction.dot(h1)) + direction.unitVector() * m_Radius.value();
}

void ZuLozenge::scaleBy(ZuReal factor) {
  scaleChainBy(factor);
  setRectangle(
      ZuRectangle(m_Rectangle.center() * factor, m_Rectangle.halfEdge(0) * factor, m_Rectangle.halfEdge(1) * factor));
  setRadius(m_Radius * std::abs(factor));
}

void ZuLozenge::transformBy(ZuCoordinateSystemTransformation const& xform) {
  ZuShape::transformBy(xform);
  m_Rectangle.transformBy(xform);
  geometryChanged();
}

double ZuLozenge::distanceTo(ZuLineSegment const& segment) const { return m_Rectangle.distanceTo(segment) - m_Radius; }

/// Through the plate between the two flat faces, or one of the tubes about its sides.
bool ZuLozenge::intersectLineSegment(ZuLineSegment const& segment, ZuShapePointEvent& event) const {
  event = ZuShapePointEvent();
  event.shapeID = proximityDatabaseIndex();
  event.hit = checkIntersect(segment);
  if (!event.hit) return false;
  ZuPlainBox const core = ZuPlainBox::aroundRectangle(m_Rectangle);
  ZuOrientation orientation;
  orientation.setFromDcmColumns(core.axes[0], core.axes[1], core.axes[2]);
  Stay stay;
  stay.include(
      ZuBox(ZuCoordinateSystemTransformation(core.center, orientation), {core.extents.x(), core.extents.y(), m_Radius}),
      segment);
  for (unsigned int i = 0; i < 4; ++i) stay.include(ZuCapsule(m_Rectangle.side(i), m_Radius), segment);
  if (!(stay.entry <= stay.exit)) {  // it touches, by rounding alone
    ZuVector onCore, onSegment;
    m_Rectangle.distanceTo(segment, onCore, onSegment);
    stay.entry = stay.exit = zuNearestParameter(onSegment, segment.plain());
  }
  event.startsInside = distanceTo(segment.endpoint0()) < 0.0;
  event.endsInside = distanceTo(segment.endpoint1()) < 0.0;
  auto const surfacePoint = [&](double t, bool isInside) {
    ZuShapeSurfacePoint result{t, zuPointAt(segment.plain(), t), ZuVector()};
    if (isInside || !(m_Radius > 0.0)) return result;
    result.normal = (result.point - m_Rectangle.closestPoint(result.point)).unitVector();
    return result;
  };
  event.entry = surfacePoint(event.startsInside ? 0.0 : stay.entry, event.startsInside);
  event.exit = surfacePoint(event.endsInside ? 1.0 : stay.exit, event.endsInside);
  return true;
}

void ZuLozenge::fitToPoints(ZuXmlVectorVector const& points) {
  if (!zuCanBeFitted(points.data(), points.size())) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuLozenge::fitToPoints-->no points, or not finite (%zu points)",
                                points.size());
    return;
  }
  PlainLozenge fit{ZuPlainBox::aroundPoint(points[0]), 0.0};
  if (ZuPointSpread(points.data(), points.size()).size > 0.0) {
    fit = ZuPointFit<LozengeRule>::around(points.data(), points.size());
  }
  fit.takeIn(points.data(), points.size());
  setRectangle(fit.rectangle());
  setRadius(fit.radius);
}

ZuBasePhysicalExtent& ZuLozenge::physicalExtent() const {
  if (keptExtent() == nullptr) {
    auto extent = std::make_unique<ZuPolyPhysicalExtent>();
    dressExtent(*extent);
    LozengeMesh const mesh(m_Rectangle, m_Radius, zuQuarterSteps(detailLevel()), extent->surfaceProperty());
    extent->setPoints(mesh.points);
    extent->setFacets(mesh.facets);
    extent->setIsConvex(true);
    keepExtent(std::move(extent));
  }
  return *keptExtent();
}

bool ZuLozenge::inClosedForm(ZuShape const& other, ZuCoordinateSystemTransformation const& xform,
                             Contact& contact) const {
  ZuPlainBox core{};
  double otherRadius = 0.0;
  if (other.type() == CAPSULE) {
    core = ZuPlainBox::aroundSegment(as<ZuCapsule>(other).lineSegment().plain());
    otherRadius = as<ZuCapsule>(other).radius();
  } else if (other.type() == BOX) {
    core = as<ZuBox>(other).plain();
  } else if (other.type() == LOZENGE) {
    core = ZuPlainBox::aroundRectangle(as<ZuLozenge>(other).rectangle());
    otherRadius = as<ZuLozenge>(other).radius();
  } else {
    return ZuConvexSolid::inClosedForm(other, xform, contact);
  }
  ZuBoxPair const pair(ZuPlainBox::aroundRectangle(m_Rectangle), core.transformedBy(xform));
  ZuSeparation const found = pair.separation().grownBy(m_Radius, otherRadius);
  contact = {found.point1, found.direction, found.distance};
  return true;
}

double ZuLozenge::nearestSurfacePoint(ZuVector const& point, ZuVector& onSurface, ZuVector& normal) const {
  ZuVector const nearest = m_Rectangle.closestPoint(point);
  ZuVector const gap = point - nearest;
  normal = gap.unitVector();
  if (normal == ZuVector()) normal = ZuPlainBox::aroundRectangle(m_Rectangle).axes[2];
  onSurface = nearest + normal * m_Radius.value();
  return gap.mag() - m_Radius;
}

double ZuLozenge::nearestPoints(ZuPlainSegment const& segment, ZuVector& onSolid, ZuVector& onSegment) const {
  double const distance =
      m_Rectangle.distanceTo(ZuLineSegment(segment.endpoint0, segment.endpoint1), onSolid, onSegment);
  onSolid += (onSegment - onSolid).unitVector() * m_Radius.value();
  return distance - m_Radius;
}

void ZuLozenge::registerComponents() {
  ZuShape::registerComponents();
  registerComponent(ZuGeom::ZuRectangleToken, &m_Rectangle);
  registerComponent(ZuGeom::ZuRadiusToken, &m_Radius);
}

ZuToken const& ZuLozenge::classToken() { return ZuGeom::ZuLozengeToken; }

ZuLozenge ZuLozenge::testObject() {
  ZuLozenge sample(ZuRectangle::testObject(), 0.75);
  sample.fillForTest();
  return sample;
}
