#include "geometry/zuEllipsoid.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <utility>

#include "foundation/zuPrint.h"
#include "geometry/zuCapsule.h"
#include "geometry/zuEnclosingEllipsoid.h"
#include "geometry/zuGeomTokens.h"
#include "geometry/zuNearestPoints.h"
#include "geometry/zuPointSpread.h"
#include "geometry/zuPolyPhysicalExtent.h"
#include "geometry/zuRectangle.h"
#include "geometry/zuShapePointEvent.h"
#include "geometry/zuSphere.h"

namespace {

constexpr double theFourThirdsOfPi = 4.1887902047863905;
/// Least semi-axis, m: its inverse squared is still a double.
constexpr double theLeastSemiAxis = 1e-100;
/// Times the size of the coordinates: to points that are nearer to the surface the normal is taken from the surface,
/// since rounding spoils the direction of their difference.
constexpr double theSurface = 1e-4;
/// Steps of the secular iteration, which takes three or four, at most thirteen of 20,000 random points; a bound for
/// numbers that are not finite.
constexpr int theSecularSteps = 200;

/// Root of the secular equation for a point with coordinates y >= 0 and semi-axes e from the longest to the shortest,
/// the last coordinate above 0. Writes the nearest point of the surface.
///
/// The nearest point x has y - x along the normal of the surface: x_i = e_i^2 y_i / (t + e_i^2), where t is the largest
/// root of the sum of (x_i / e_i)^2 = 1 (Eberly 2013). With l the least semi-axis and u = t / l^2 + 1 the terms become
///   p_i = x_i / e_i = w_i / (u + a_i), w_i = e_i y_i / l^2, a_i = (e_i^2 - l^2) / l^2 >= 0,
/// so that no digits of a small u are lost, and S(u), the sum of the p_i^2, is to be 1 for some u > 0. The function
/// S^(-1/2) - 1 is increasing and concave, almost a line (Moré and Sorensen 1983, section 3): from any u with S >= 1
/// Newton's method for it rises to the root and never passes it. Such a u is the largest w_i - a_i, where p_i = 1.
void solveSecular(unsigned int n, double const* e, double const* y, double* x) {
  double const least = e[n - 1];
  double w[3], a[3], u = 0.0;
  for (unsigned int i = 0; i < n; ++i) {
    w[i] = e[i] / least * (y[i] / least);
    a[i] = (e[i] - least) / least * ((e[i] + least) / least);
    u = std::max(u, w[i] - a[i]);
  }
  double sum = 1.0;
  for (int step = 0; step < theSecularSteps; ++step) {
    double slope = 0.0;
    sum = 0.0;
    for (unsigned int i = 0; i < n; ++i) {
      double const divisor = 1.0 / (u + a[i]), p = w[i] * divisor;
      x[i] = e[i] * p;
      sum += p * p;
      slope += p * p * divisor;
    }
    double const next = u + sum * (std::sqrt(sum) - 1.0) / slope;
    if (!(next > u)) break;
    u = next;
  }
  // Onto the surface: what the root still lacks is then of second order in the distance.
  for (unsigned int i = 0; i < n; ++i) x[i] /= std::sqrt(sum);
}

/// The point of the surface nearest to y, for y >= 0 and e from the longest to the shortest.
void nearestInOctant(unsigned int n, double const* e, double const* y, double* x) {
  if (n == 1) {
    x[0] = e[0];
    return;
  }
  double const least = e[n - 1];
  if (y[n - 1] > 0.0) return solveSecular(n, e, y, x);
  // In the plane of symmetry. Near the centre the nearest points are those beside the plane, t = -least^2.
  double rest = 1.0;
  bool isBeside = true;
  for (unsigned int i = 0; i + 1 < n; ++i) {
    double const numerator = e[i] * y[i], denominator = (e[i] - least) * (e[i] + least);
    isBeside = isBeside && numerator < denominator;
    x[i] = isBeside ? e[i] * (numerator / denominator) : 0.0;
    rest -= isBeside ? (numerator / denominator) * (numerator / denominator) : 0.0;
  }
  x[n - 1] = isBeside && rest > 0.0 ? least * std::sqrt(rest) : 0.0;
  if (!(isBeside && rest > 0.0)) nearestInOctant(n - 1, e, y, x);
}

/// The point of the surface nearest to a point, in the frame of the axes.
ZuVector nearestOnSurface(ZuVector const& semiAxes, ZuVector const& point) {
  unsigned int order[3] = {0, 1, 2};
  double const r[3] = {semiAxes.x(), semiAxes.y(), semiAxes.z()};
  for (auto const& [i, j] : {std::pair(0, 1), {1, 2}, {0, 1}}) {
    if (r[order[i]] < r[order[j]]) std::swap(order[i], order[j]);
  }
  double e[3], y[3], x[3];
  for (unsigned int k = 0; k < 3; ++k) {
    e[k] = r[order[k]];
    y[k] = std::abs(point[order[k]]);
  }
  nearestInOctant(3, e, y, x);
  ZuVector result;
  for (unsigned int k = 0; k < 3; ++k) result[order[k]] = std::copysign(x[k], point[order[k]]);
  return result;
}

/// Squared distance of the origin from a segment. Within the ends it is that of the line by the cross product, in which
/// coordinates of very different size don't cancel each other.
double squaredFromOrigin(ZuPlainSegment const& s) {
  double const t = s.lengthSquared > 0.0 ? -s.endpoint0.dot(s.delta) / s.lengthSquared : 0.0;
  if (t <= 0.0) return s.endpoint0.magSquared();
  if (t >= 1.0) return s.endpoint1.magSquared();
  return std::min(
      {s.endpoint0.cross(s.delta).magSquared() / s.lengthSquared, s.endpoint0.magSquared(), s.endpoint1.magSquared()});
}

}  // namespace

bool ZuEllipsoid::operator==(ZuEllipsoid const& other) const {
  return ZuShape::operator==(other) && m_PrimaryFrame == other.m_PrimaryFrame && m_Radii == other.m_Radii;
}

void ZuEllipsoid::setCenter(ZuVector const& center) {
  setPrimaryFrame(ZuCoordinateSystemTransformation(center, primaryFrame().orientation()));
}

void ZuEllipsoid::setPrimaryFrame(ZuCoordinateSystemTransformation const& primaryFrame) {
  m_PrimaryFrame = primaryFrame;
  geometryChanged();
}

void ZuEllipsoid::setRadii(ZuVector const& radii) {
  m_Radii = radii;
  geometryChanged();
}

/// Positive, none of them too small to divide by.
ZuVector ZuEllipsoid::semiAxes() const {
  double const x = std::abs(radii().x()), y = std::abs(radii().y()), z = std::abs(radii().z());
  double const least = std::max(m_theThinnest * std::max({x, y, z}), theLeastSemiAxis);
  return {std::max(x, least), std::max(y, least), std::max(z, least)};
}

/// Into the space in which the ellipsoid is the ball of radius 1 about the origin.
ZuVector ZuEllipsoid::toBall(ZuVector const& point) const {
  ZuVector const p = primaryFrame().inverseTimes(point), e = semiAxes();
  return {p.x() / e.x(), p.y() / e.y(), p.z() / e.z()};
}

ZuPlainSegment ZuEllipsoid::toBall(ZuPlainSegment const& segment) const {
  return ZuPlainSegment::between(toBall(segment.endpoint0), toBall(segment.endpoint1));
}

/// The outward unit normal, for a place on the ball.
ZuVector ZuEllipsoid::normalAt(ZuVector const& q) const {
  ZuVector const e = semiAxes();
  ZuVector const normal = ZuVector(q.x() / e.x(), q.y() / e.y(), q.z() / e.z()).unitVector();
  return primaryFrame().orientation() * (normal == ZuVector() ? ZuVector::zVector(1.0) : normal);
}

double ZuEllipsoid::nearestSurfacePoint(ZuVector const& point, ZuVector& onSurface, ZuVector& normal) const {
  onSurface = primaryFrame() * nearestOnSurface(semiAxes(), primaryFrame().inverseTimes(point));
  ZuVector const between = point - onSurface;
  double const distance = between.mag();
  double const sign = checkIntersect(point) ? -1.0 : 1.0;
  normal = distance > theSurface * (point.mag() + onSurface.mag()) ? between * (sign / distance)
                                                                   : normalAt(toBall(onSurface));
  return sign * distance;
}

double ZuEllipsoid::nearestPoints(ZuPlainSegment const& segment, ZuVector& onSolid, ZuVector& onSegment) const {
  if (squaredFromOrigin(toBall(segment)) <= 1.0) return 0.0;
  ZuVector const e = semiAxes(), inverse(1.0 / e.x(), 1.0 / e.y(), 1.0 / e.z());
  auto const project = [&](ZuVector const& p) {
    ZuVector const onBall(p.x() * inverse.x(), p.y() * inverse.y(), p.z() * inverse.z());
    return onBall.magSquared() <= 1.0 ? p : nearestOnSurface(e, p);
  };
  ZuPlainSegment const local = ZuPlainSegment::between(primaryFrame().inverseTimes(segment.endpoint0),
                                                       primaryFrame().inverseTimes(segment.endpoint1));
  double const t = zuNearestParameterTo(local, project);
  ZuVector const onLocal = zuPointAt(local, t), nearest = project(onLocal);
  onSegment = zuPointAt(segment, t);
  onSolid = primaryFrame() * nearest;
  return nearest.distanceTo(onLocal);
}

/// Closest is either a point within the rectangle, along whose normal the two are then apart, or one of a side.
double ZuEllipsoid::distanceTo(ZuRectangle const& rectangle) const {
  if (checkIntersect(rectangle)) return 0.0;
  ZuVector const normal = rectangle.normal();
  ZuVector const outward = normal.dot(center() - rectangle.center()) > 0.0 ? normal : -normal;
  ZuVector const lowest = computeSupportPoint(-outward);
  double const height = outward.dot(lowest - rectangle.center());
  if (height > 0.0) {
    ZuVector const w = lowest - rectangle.center();
    ZuVector const& h0 = rectangle.halfEdge(0);
    ZuVector const& h1 = rectangle.halfEdge(1);
    if (std::abs(w.dot(h0)) <= h0.magSquared() && std::abs(w.dot(h1)) <= h1.magSquared()) return height;
  }
  double least = std::numeric_limits<double>::infinity();
  for (unsigned int i = 0; i < 4; ++i) least = std::min(least, distanceTo(rectangle.side(i)));
  return least;
}

/// A side meets the ball, or the plane does within the sides.
bool ZuEllipsoid::checkIntersect(ZuRectangle const& rectangle) const {
  ZuVector const corner = toBall(rectangle.corner(0));
  for (unsigned int i = 0; i < 4; ++i) {
    if (checkIntersect(rectangle.side(i))) return true;
  }
  ZuVector const u = toBall(rectangle.corner(1)) - corner, v = toBall(rectangle.corner(3)) - corner;
  ZuVector const normal = u.cross(v).unitVector();
  double const height = normal.dot(corner);
  if (normal == ZuVector() || !(std::abs(height) <= 1.0)) return false;
  // The foot of the perpendicular is corner + s u + t v.
  ZuVector const foot = normal * height - corner;
  double const scale = u.cross(v).dot(normal);
  double const s = foot.cross(v).dot(normal), t = u.cross(foot).dot(normal);
  return s >= 0.0 && s <= scale && t >= 0.0 && t <= scale;
}

ZuReal ZuEllipsoid::volume() const { return theFourThirdsOfPi * std::abs(radii().prod()); }

void ZuEllipsoid::fitFromShape(ZuShape const& other) {
  if (fitToVerticesOf(other)) return;
  if (other.type() == SPHERE) {
    ZuSphere const& sphere = as<ZuSphere>(other);
    setPrimaryFrame(ZuCoordinateSystemTransformation(sphere.center()));
    setRadii(ZuVector(sphere.radius(), sphere.radius(), sphere.radius()));
  } else if (other.type() == ELLIPSOID) {
    ZuEllipsoid const& ellipsoid = as<ZuEllipsoid>(other);
    setPrimaryFrame(ellipsoid.primaryFrame());
    setRadii(ellipsoid.radii());
  } else {
    refuseToFit(other);
  }
}

/// With d the direction in the frame of the axes, (r_i d_i) is the direction in which the unit ball is asked.
ZuVector ZuEllipsoid::computeSupportPoint(ZuVector const& direction) const {
  ZuVector const d = primaryFrame().orientation().inverseTimes(direction);
  ZuVector const& r = radii();
  ZuVector const stretched(r.x() * d.x(), r.y() * d.y(), r.z() * d.z());
  ZuVector const onBall = stretched.unitVector();
  if (onBall != ZuVector()) {
    return primaryFrame() * ZuVector(r.x() * onBall.x(), r.y() * onBall.y(), r.z() * onBall.z());
  }
  if (std::isfinite(stretched.mag())) return primaryFrame() * ZuVector::xVector(direction == ZuVector() ? r.x() : 0.0);
  Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuEllipsoid::computeSupportPoint-->direction is not finite");
  return center();
}

void ZuEllipsoid::scaleBy(double factor) {
  scaleChainBy(factor);
  setCenter(center() * factor);
  setRadii(radii() * std::abs(factor));
}

void ZuEllipsoid::transformBy(ZuCoordinateSystemTransformation const& xform) {
  ZuShape::transformBy(xform);
  setPrimaryFrame(xform * primaryFrame());
}

bool ZuEllipsoid::checkIntersect(ZuLineSegment const& segment) const {
  return squaredFromOrigin(toBall(segment.plain())) <= 1.0;
}

bool ZuEllipsoid::checkIntersect(ZuVector const& point) const { return toBall(point).magSquared() <= 1.0; }

bool ZuEllipsoid::intersectLineSegment(ZuLineSegment const& segment, ZuShapePointEvent& event) const {
  ZuPlainSegment const line = toBall(segment.plain());
  double const nearest = squaredFromOrigin(line);
  event = ZuShapePointEvent();
  event.shapeID = proximityDatabaseIndex();
  event.hit = nearest <= 1.0;
  if (!event.hit) return false;
  event.startsInside = line.endpoint0.magSquared() < 1.0;
  event.endsInside = line.endpoint1.magSquared() < 1.0;
  double middle = 0.0, half = 0.0;
  ZuVector foot = line.endpoint0;
  if (line.lengthSquared > 0.0) {
    foot = line.delta.cross(line.endpoint0.cross(line.delta)) / line.lengthSquared;
    middle = -line.endpoint0.dot(line.delta) / line.lengthSquared;
    half = std::sqrt(std::max(1.0 - foot.magSquared(), 0.0) / line.lengthSquared);
  }
  // The places on the ball are taken from the foot: for a thin disc, those of t would be rounded away.
  auto const fill = [&](ZuShapeSurfacePoint& place, double t, bool isInside, ZuVector const& onBall) {
    place.t = zuClampToUnit(t);
    place.point = zuPointAt(segment.plain(), place.t);
    if (!isInside) place.normal = normalAt(onBall);
  };
  fill(event.entry, event.startsInside ? 0.0 : middle - half, event.startsInside, foot - line.delta * half);
  fill(event.exit, event.endsInside ? 1.0 : middle + half, event.endsInside, foot + line.delta * half);
  return true;
}

void ZuEllipsoid::fitToPoints(ZuXmlVectorVector const& points) {
  if (!zuCanBeFitted(points.data(), points.size())) {
    Zu::Print::instance().write(Zu::PRINT_WARNING, "ZuEllipsoid::fitToPoints-->no points, or not finite (%zu points)",
                                points.size());
    return;
  }
  ZuEnclosingEllipsoid const fit(points.data(), points.size());
  ZuOrientation orientation;
  orientation.setFromDcmColumns(fit.axes[0], fit.axes[1], fit.axes[2]);
  setPrimaryFrame(ZuCoordinateSystemTransformation(fit.center, orientation));
  setRadii(ZuVector(fit.radii[0], fit.radii[1], fit.radii[2]));
}

ZuBasePhysicalExtent& ZuEllipsoid::physicalExtent() const {
  if (keptExtent() == nullptr) {
    auto extent = std::make_unique<ZuPolyPhysicalExtent>();
    dressExtent(*extent);
    icosahedron(*extent, 1.0, ZuVector(), detailLevel());
    extent->scaleBy(std::abs(radii().x()), std::abs(radii().y()), std::abs(radii().z()));
    extent->transformBy(primaryFrame());
    keepExtent(std::move(extent));
  }
  return *keptExtent();
}

ZuCapsule const& ZuEllipsoid::capsuleBoundingVolume() const { return capsuleAround(); }

void ZuEllipsoid::registerComponents() {
  ZuShape::registerComponents();
  registerComponent(ZuGeom::ZuPrimaryFrameToken, &m_PrimaryFrame);
  registerComponent(ZuGeom::ZuRadiiToken, &m_Radii);
}

ZuToken const& ZuEllipsoid::classToken() { return ZuGeom::ZuEllipsoidToken; }

ZuEllipsoid ZuEllipsoid::testObject() {
  ZuEllipsoid sample(ZuCoordinateSystemTransformation::testObject(), ZuVector(0.5, 1.25, 0.75));
  sample.fillForTest();
  return sample;
}
