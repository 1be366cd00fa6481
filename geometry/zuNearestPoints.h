// zuNearestPoints.h - nearest points of figures over plain vectors. Group: figures.
#pragma once

#include "geometry/zuSegmentDistance.h"

/// Where two figures come closest, in one frame.
struct ZuNearestPair {
  ZuVector first;
  ZuVector second;
  double distanceSquared() const { return first.distanceSquaredTo(second); }
};

inline double zuClampToUnit(double t) { return t < 0.0 ? 0.0 : t > 1.0 ? 1.0 : t; }

/// A unit vector perpendicular to the given unit vector; for the zero vector some unit vector.
inline ZuVector zuPerpendicular(ZuVector const& u) {
  // Crossed with the coordinate axis that is farthest from u, so that nothing cancels.
  double const x = std::abs(u.x()), y = std::abs(u.y()), z = std::abs(u.z());
  ZuVector const axis = x <= y && x <= z ? ZuVector(1.0, 0.0, 0.0)
                        : y <= z         ? ZuVector(0.0, 1.0, 0.0)
                                         : ZuVector(0.0, 0.0, 1.0);
  ZuVector const perpendicular = u.cross(axis).unitVector();
  return perpendicular == ZuVector() ? axis : perpendicular;
}

/// The part of a vector that is across the unit vector. Exact where little is left of the vector too: what the first
/// rounding leaves along the unit vector would count there, so it is taken off again.
inline ZuVector zuAcross(ZuVector const& v, ZuVector const& unit) {
  ZuVector const once = v - v.dot(unit) * unit;
  return once - once.dot(unit) * unit;
}

/// The parameter, in [0, 1], of the point of the segment that is nearest to p; 0 for a degenerate segment.
inline double zuNearestParameter(ZuVector const& p, ZuPlainSegment const& segment) {
  if (segment.lengthSquared <= 0.0) return 0.0;
  return zuClampToUnit((p - segment.endpoint0).dot(segment.delta) / segment.lengthSquared);
}

/// Both ends exact.
inline ZuVector zuPointAt(ZuPlainSegment const& segment, double t) {
  return t >= 1.0 ? segment.endpoint1 : segment.endpoint0 + t * segment.delta;
}

/// A closest pair of two segments, also of degenerate ones: what zuDistanceSquared measures, with parameters in [0, 1]
/// that are those of the pair in every case. The steps of clamping are those of Ericson 2005, section 5.1.9.
inline void zuNearestParameters(ZuPlainSegment const& a, ZuPlainSegment const& b, double& s, double& t) {
  s = t = 0.0;
  if (b.lengthSquared == 0.0) {
    s = zuNearestParameter(b.endpoint0, a);
    return;
  }
  if (a.lengthSquared != 0.0 &&
      zuClosestParameters(a.delta, b.delta, b.lengthSquared, a.endpoint0 - b.endpoint0, s, t)) {
    s = zuClampToUnit(s);
  }
  t = zuNearestParameter(zuPointAt(a, s), b);
  if (t == 0.0 || t == 1.0) s = zuNearestParameter(zuPointAt(b, t), a);
}

inline ZuNearestPair zuNearestPair(ZuPlainSegment const& a, ZuPlainSegment const& b) {
  double s;
  double t;
  zuNearestParameters(a, b, s, t);
  return {zuPointAt(a, s), zuPointAt(b, t)};
}

/// How often zuRisingRoot halves its interval at the least: two steps in three are quicker, every third one halves, and
/// 54 halvings of [0, 1] leave nothing.
inline constexpr int theZuRootSteps = 3 * 54;

/// Where a continuous function that never falls passes 0 between the bounds: `low` when it is not negative there,
/// `high` when it is not positive there. The root is enclosed by false position with halved weights (the Illinois
/// method, Dowell and Jarratt 1971) until no double is left inside.
template <class Function>
double zuRisingRoot(Function const& f, double low, double high) {
  double fLow = f(low);
  if (fLow >= 0.0) return low;
  double fHigh = f(high);
  if (fHigh <= 0.0) return high;
  for (int step = 0; step < theZuRootSteps; ++step) {
    double t = step % 3 == 2 ? 0.5 * (low + high) : low - fLow * ((high - low) / (fHigh - fLow));
    if (!(t > low && t < high)) t = 0.5 * (low + high);
    if (!(t > low && t < high)) break;
    double const value = f(t);
    if (value == 0.0) return t;
    if (value < 0.0) {
      low = t;
      fLow = value;
      fHigh *= 0.5;
    } else {
      high = t;
      fHigh = value;
      fLow *= 0.5;
    }
  }
  return 0.5 * (low + high);
}

/// The parameter, in [0, 1], of the point of the segment that is nearest to a closed convex set, given the nearest
/// point of the set for a point as `project(p)`.
///
/// The squared distance of p(t) = endpoint0 + t * delta from the set is convex in t, and half its derivative is
/// g(t) = (p(t) - project(p(t))) . delta, which therefore never falls; the answer is its root. Where the segment runs
/// through the set, some point of the set is found.
template <class Project>
double zuNearestParameterTo(ZuPlainSegment const& segment, Project const& project) {
  return zuRisingRoot(
      [&](double t) {
        ZuVector const p = zuPointAt(segment, t);
        return (p - project(p)).dot(segment.delta);
      },
      0.0, 1.0);
}
