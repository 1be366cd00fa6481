#include "geometry/zuFrustum.h"

#include <algorithm>
#include <cmath>

namespace {

/// Squared sine of the angle below which a line counts as parallel to the axis: that of rounding.
constexpr double theParallel = 1e-30;

}  // namespace

/// A point by its height and what of it is across the axis.
struct ZuFrustum::Place {
  ZuVector point;
  ZuVector radial;
  double height;
  double distance;  ///< from the axis
};

/// In the half-plane: a nearest point of the surface, and the unit normal there.
struct ZuFrustum::Nearest {
  ZuOutlinePoint corner;
  ZuOutlinePoint normal;
  double distance;
};

/// By how much a point of a line is farther from the axis than the radius at its height:
/// |w + t v| + slope * t - radius, which is convex in t.
struct ZuFrustum::Excess {
  ZuVector w;
  ZuVector v;
  double slope;
  double radius;

  Excess(ZuFrustum const& solid, ZuPlainSegment const& line)
      : w(zuAcross(line.endpoint0 - solid.base, solid.axis)), v(zuAcross(line.delta, solid.axis)) {
    double const narrowing = solid.length > 0.0 ? (solid.radius0 - solid.radius1) / solid.length : 0.0;
    slope = narrowing * line.delta.dot(solid.axis);
    radius = solid.radius0 - narrowing * (line.endpoint0 - solid.base).dot(solid.axis);
    if (v.magSquared() <= theParallel * line.lengthSquared) v = ZuVector();
  }
  double operator()(double t) const { return (w + t * v).mag() + slope * t - radius; }

  /// Where it is least between low and high. With u = t - t0 counted from the point nearest to the axis, at the
  /// distance d, the derivative v^2 u / sqrt(d^2 + v^2 u^2) + slope is 0 at u = -slope d / (|v| sqrt(v^2 - slope^2)).
  double whereLeast(double low, double high) const {
    double const squared = v.magSquared();
    double const product = squared * (squared - slope * slope);
    if (!(product > 0.0)) return slope > 0.0 ? low : slope < 0.0 ? high : 0.5 * (low + high);
    double const nearest = -w.dot(v) / squared;
    double const u = slope == 0.0 ? 0.0 : -slope * (w + nearest * v).mag() / std::sqrt(product);
    return std::clamp(nearest + u, low, high);
  }
};

ZuFrustum ZuFrustum::along(ZuPlainSegment const& segment, double radius0, double radius1) {
  bool const isDisc = !(segment.lengthSquared > 0.0);
  return {segment.endpoint0, isDisc ? ZuVector::zVector(1.0) : segment.delta.unitVector(),
          isDisc ? 0.0 : std::sqrt(segment.lengthSquared), std::max(0.0, radius0), std::max(0.0, radius1)};
}

double ZuFrustum::radiusAt(double height) const {
  return length > 0.0 ? radius0 - (radius0 - radius1) * (height / length) : radius0;
}

ZuFrustum::Place ZuFrustum::placeOf(ZuVector const& p) const {
  ZuVector const w = p - base;
  Place place{p, zuAcross(w, axis), w.dot(axis), 0.0};
  place.distance = place.radial.mag();
  return place;
}

bool ZuFrustum::holds(Place const& place) const {
  return place.height >= 0.0 && place.height <= length && place.distance <= radiusAt(place.height);
}

bool ZuFrustum::holds(ZuVector const& p) const { return holds(placeOf(p)); }

/// A vector in the half-plane of the place; some half-plane for a place on the axis.
ZuVector ZuFrustum::inSpace(Place const& place, ZuOutlinePoint const& v) const {
  ZuVector const out = place.distance > 0.0 ? place.radial * (v.radius / place.distance)
                                            : (v.radius == 0.0 ? ZuVector() : zuPerpendicular(axis) * v.radius);
  return v.height * axis + out;
}

/// For a place outside: on the flat side beyond whose plane the place is, or on the slanted side. The difference gives
/// the normal at corners only: on the sides, it would be rounding for places that are close.
ZuFrustum::Nearest ZuFrustum::nearestOutside(Place const& place) const {
  double const h = place.height;
  double const r = place.distance;
  auto const from = [&](ZuOutlinePoint const& corner) {
    Nearest nearest{corner, {h - corner.height, r - corner.radius}, 0.0};
    nearest.distance = std::hypot(nearest.normal.height, nearest.normal.radius);
    if (nearest.distance == 0.0) return Nearest{corner, sideDirection(), 0.0};
    nearest.normal = {nearest.normal.height / nearest.distance, nearest.normal.radius / nearest.distance};
    return nearest;
  };
  Nearest const onFlat = from({std::clamp(h, 0.0, length), std::min(r, h > length ? radius1 : radius0)});
  if (radius0 == radius1) return onFlat;
  double const narrowing = radius0 - radius1;
  double const along = (h * length - (r - radius0) * narrowing) / (length * length + narrowing * narrowing);
  double const part = zuClampToUnit(along);
  Nearest onSide = from({part * length, radius0 - part * narrowing});
  bool const isBesideFlat = h >= 0.0 && h <= length;
  if (!isBesideFlat && onFlat.distance <= onSide.distance) return onFlat;
  if (part > 0.0 && part < 1.0) onSide.normal = sideDirection();
  return onSide;
}

/// For a place inside: the nearest of the lines of the sides, whose foot is on the side itself.
ZuFrustum::Nearest ZuFrustum::nearestInside(Place const& place) const {
  double const overTop = place.height - length;
  double const overSide = heightOverSide(place);
  double const distance = std::max({-place.height, overTop, overSide});
  if (distance == overSide) {
    ZuOutlinePoint const out = sideDirection();
    return {{place.height - distance * out.height, place.distance - distance * out.radius}, out, distance};
  }
  bool const isTop = distance == overTop;
  return {{isTop ? length : 0.0, place.distance}, {isTop ? 1.0 : -1.0, 0.0}, distance};
}

double ZuFrustum::distanceTo(ZuVector const& p, ZuVector& closest) const {
  Place const place = placeOf(p);
  if (holds(place)) {
    closest = p;
    return 0.0;
  }
  Nearest const nearest = nearestOutside(place);
  closest = base + inSpace(place, nearest.corner);
  return nearest.distance;
}

double ZuFrustum::signedDistanceTo(ZuVector const& p, ZuVector& closest, ZuVector& normal) const {
  Place const place = placeOf(p);
  Nearest const nearest = holds(place) ? nearestInside(place) : nearestOutside(place);
  closest = base + inSpace(place, nearest.corner);
  normal = inSpace(place, nearest.normal);
  return nearest.distance;
}

/// Unit outward normal of the slanted side, in the half-plane.
ZuOutlinePoint ZuFrustum::sideDirection() const {
  double const slant = std::hypot(length, radius0 - radius1);
  return slant > 0.0 ? ZuOutlinePoint{(radius0 - radius1) / slant, length / slant} : ZuOutlinePoint{0.0, 1.0};
}

/// Of the place over the line of the slanted side: negative on the inner side.
double ZuFrustum::heightOverSide(Place const& place) const {
  return (place.distance - radiusAt(place.height)) * sideDirection().radius;
}

ZuVector ZuFrustum::sideNormal(Place const& place) const {
  ZuOutlinePoint const out = sideDirection();
  if (place.distance == 0.0) return (out.height * axis).unitVector();
  return (out.height * axis + (out.radius / place.distance) * place.radial).unitVector();
}

ZuVector ZuFrustum::normalAt(ZuVector const& p) const {
  Place const place = placeOf(p);
  double const overBase = std::abs(place.height);
  double const overTop = std::abs(place.height - length);
  if (overBase <= overTop && overBase < std::abs(heightOverSide(place))) return -axis;
  if (overTop < std::abs(heightOverSide(place))) return axis;
  return sideNormal(place);
}

/// The parameters in [0, 1] between the two planes; false when there are none.
bool ZuFrustum::betweenPlanes(ZuPlainSegment const& segment, double& low, double& high) const {
  double const from = (segment.endpoint0 - base).dot(axis);
  double const to = (segment.endpoint1 - base).dot(axis);
  low = 0.0;
  high = segment.lengthSquared > 0.0 ? 1.0 : 0.0;
  if (from == to) return from >= 0.0 && from <= length;
  double const first = -from / (to - from);
  double const last = (length - from) / (to - from);
  low = std::max(low, std::min(first, last));
  high = std::min(high, std::max(first, last));
  return low <= high;
}

bool ZuFrustum::cut(ZuPlainSegment const& segment, double& entry, double& exit) const {
  double low;
  double high;
  if (!betweenPlanes(segment, low, high)) return false;
  Excess const excess(*this, segment);
  double const least = excess.whereLeast(low, high);
  if (!(excess(least) <= 0.0)) return false;
  entry = excess(low) <= 0.0 ? low : zuRisingRoot([&](double t) { return -excess(t); }, low, least);
  exit = excess(high) <= 0.0 ? high : zuRisingRoot(excess, least, high);
  return true;
}

bool ZuFrustum::cutSide(ZuPlainSegment const& segment, double& entry, double& exit) const {
  double low;
  double high;
  if (!betweenPlanes(segment, low, high)) return false;
  Excess const excess(*this, segment);
  double const least = excess.whereLeast(low, high);
  bool const goesIn = excess(low) >= 0.0;
  bool const goesOut = excess(high) >= 0.0;
  if (!(excess(least) <= 0.0) || !(goesIn || goesOut)) return false;
  double const in = zuRisingRoot([&](double t) { return -excess(t); }, low, least);
  double const out = excess(high) <= 0.0 ? high : zuRisingRoot(excess, least, high);
  entry = goesIn ? in : out;
  exit = goesOut ? out : in;
  return true;
}

ZuShapeSurfacePoint ZuFrustum::sidePoint(ZuPlainSegment const& segment, double t) const {
  ZuVector const point = zuPointAt(segment, t);
  return {t, point, sideNormal(placeOf(point))};
}

bool ZuFrustum::intersect(ZuPlainSegment const& segment, ZuShapePointEvent& event) const {
  event = ZuShapePointEvent();
  double entry;
  double exit;
  event.hit = cut(segment, entry, exit);
  if (!event.hit) return false;
  ZuVector point;
  ZuVector normal;
  event.startsInside = signedDistanceTo(segment.endpoint0, point, normal) < 0.0;
  event.endsInside = signedDistanceTo(segment.endpoint1, point, normal) < 0.0;
  auto const at = [&](double t, bool isInside) {
    point = zuPointAt(segment, t);
    return ZuShapeSurfacePoint{t, point, isInside ? ZuVector() : normalAt(point)};
  };
  event.entry = at(event.startsInside ? 0.0 : entry, event.startsInside);
  event.exit = at(event.endsInside ? 1.0 : exit, event.endsInside);
  if (length > 0.0) return true;
  // A disc has both normals: against the segment on the way in, along it on the way out.
  if (event.entry.normal.dot(segment.delta) > 0.0) event.entry.normal = -event.entry.normal;
  if (event.exit.normal.dot(segment.delta) < 0.0) event.exit.normal = -event.exit.normal;
  return true;
}

double ZuFrustum::distanceTo(ZuPlainSegment const& segment, double& t, ZuVector& closest) const {
  double low;
  double high;
  if (betweenPlanes(segment, low, high)) {
    Excess const excess(*this, segment);
    t = excess.whereLeast(low, high);
    if (excess(t) <= 0.0) {
      closest = zuPointAt(segment, t);
      return 0.0;
    }
  }
  ZuVector nearest;
  t = zuNearestParameterTo(segment, [&](ZuVector const& p) {
    distanceTo(p, nearest);
    return nearest;
  });
  return distanceTo(zuPointAt(segment, t), closest);
}
