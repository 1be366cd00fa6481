// zuSegmentDistance.h - distances of segments and lines over plain vectors. Group: figures.
#pragma once

#include "foundation/zuCoordinateSystemTransformation.h"

// What the virtual operations of ZuLineSegment and ZuLine compute, free of virtual calls and of XML: for code that asks
// by the million. All points in one frame; any unit of length, its square for squared distances. No function allocates,
// prints or screens nan. Lengths from 1e-75 to 1e75 are safe from underflow and overflow of the fourth powers inside.
//
// Guarantees of the distance of two segments, in units of the rounding of their coordinates (differences included):
// 1. It is right for every angle between them, however small: within 8 eps times the largest extent of the pair.
// 2. The parameters are those of a closest pair only where the comments of the functions say so.

/// The points endpoint0 + t * delta, 0 <= t <= 1; a point ("degenerate") when lengthSquared is exactly 0.
struct ZuPlainSegment {
  ZuVector endpoint0;
  ZuVector endpoint1;
  ZuVector delta;        ///< endpoint1 - endpoint0
  double lengthSquared;  ///< |delta|^2

  static constexpr ZuPlainSegment between(ZuVector const& endpoint0, ZuVector const& endpoint1) {
    ZuVector const delta = endpoint1 - endpoint0;
    return {endpoint0, endpoint1, delta, delta.magSquared()};
  }
  /// The segment in frame 1, for one in frame 2; its squared length is taken over, the transformation being rigid.
  constexpr ZuPlainSegment transformedBy(ZuCoordinateSystemTransformation const& t_12) const {
    ZuVector const e0 = t_12 * endpoint0, e1 = t_12 * endpoint1;
    return {e0, e1, e1 - e0, lengthSquared};
  }
};

/// Point to segment, squared. t is the raw parameter of the projection on the carrier line: below 0 or above 1 where an
/// endpoint is nearest; 0 for a degenerate segment.
inline double zuDistanceSquared(ZuVector const& p, ZuPlainSegment const& segment, double& t) {
  ZuVector const w = p - segment.endpoint0;
  if (segment.lengthSquared <= 0.0) {
    t = 0.0;
    return w.magSquared();
  }
  t = segment.delta.dot(w) / segment.lengthSquared;
  if (t <= 0.0) return w.magSquared();
  if (t >= 1.0) return segment.endpoint1.distanceSquaredTo(p);
  return (w - t * segment.delta).magSquared();
}

/// The parameter that a degenerate segment reports for its carrier line, which it does not have.
inline constexpr double theZuFarParameter = 1e300;

/// Point to carrier line, squared, t not clamped. A degenerate segment has no line: 0, with t = 1e300.
inline double zuCarrierDistanceSquared(ZuVector const& p, ZuPlainSegment const& segment, double& t) {
  if (segment.lengthSquared <= 0.0) {
    t = theZuFarParameter;
    return 0.0;
  }
  ZuVector const w = p - segment.endpoint0;
  t = segment.delta.dot(w) / segment.lengthSquared;
  return (w - t * segment.delta).magSquared();
}

/// Largest sine of an angle between lines that count as parallel: four roundings of a component. With less, the
/// parameters of lines that are parallel but for rounding would be noise divided by noise.
inline constexpr double theZuParallelSine = 4.0 * 0x1p-52;

/// Where the lines p + s u and q + t v come closest, given w = p - q and vSquared = |v|^2: false, and nothing is set,
/// when they are parallel.
///
/// With a = u.u, b = u.v, c = v.v, d = u.w, e = v.w the minimum is at s = (b e - c d) / D and t = (a e - b d) / D,
/// D = a c - b^2; parallel means D = 0. In doubles the difference of a c and b^2 is noise once the angle is below 1e-8,
/// and the two parameters, wrong by different amounts, name points far from each other: of random pairs at angles below
/// 1e-8 one in four had a distance off by more than 1e-12 of its extent, the worst by 1.9 extents. Lagrange's identity
/// gives the same quantities without that loss, D = |u x v|^2 and b e - c d = (u x v).(v x w), and t = (b s + e) / c is
/// the best t for s whatever error s has: on the same pairs the worst distance is off by 2 eps of the extent.
///
/// Directions that are multiples of each other only up to rounding leave a cross product of rounding alone, from which
/// no parameter can be had: lines count as parallel when the sine of their angle is at most theZuParallelSine.
inline bool zuClosestParameters(ZuVector const& u, ZuVector const& v, double vSquared, ZuVector const& w, double& s,
                                double& t) {
  ZuVector const normal = u.cross(v);
  double const determinant = normal.magSquared();
  if (determinant <= theZuParallelSine * theZuParallelSine * u.magSquared() * vSquared) return false;
  s = normal.dot(v.cross(w)) / determinant;
  t = (u.dot(v) * s + v.dot(w)) / vSquared;
  return true;
}

/// Carrier line to carrier line, squared; s on a, t on b, neither clamped. Parallel lines: s = 0.
inline double zuCarrierDistanceSquared(ZuPlainSegment const& a, ZuPlainSegment const& b, double& s, double& t) {
  ZuVector const w = a.endpoint0 - b.endpoint0;
  if (zuClosestParameters(a.delta, b.delta, b.lengthSquared, w, s, t)) {
    return (t * b.delta - w - s * a.delta).magSquared();
  }
  s = 0.0;
  return zuCarrierDistanceSquared(a.endpoint0, b, t);
}

/// The least of the four distances from an endpoint to the other segment, squared, the first of equals. The endpoint's
/// own parameter is 0 or 1, that of the other segment raw.
inline double zuClosestEndpoint(ZuPlainSegment const& a, ZuPlainSegment const& b, double& s, double& t) {
  double best = zuDistanceSquared(b.endpoint0, a, s);
  t = 0.0;
  double raw;
  auto const isBetter = [&best](double candidate) { return candidate < best ? (best = candidate, true) : false; };
  if (isBetter(zuDistanceSquared(b.endpoint1, a, raw))) s = raw, t = 1.0;
  if (isBetter(zuDistanceSquared(a.endpoint0, b, raw))) s = 0.0, t = raw;
  if (isBetter(zuDistanceSquared(a.endpoint1, b, raw))) s = 1.0, t = raw;
  return best;
}

/// Segment to segment, squared, for segments of which neither is degenerate.
///
/// The squared distance is convex in (s, t). Let its least point on the carrier lines be (s, t). If it lies in the unit
/// square, it is the answer. If only t is outside, the way from there to any better point of the square would cross the
/// near edge t = 0 or 1, so the least point is on that edge: a point-to-segment distance; likewise for s. If both are
/// outside, the least point is on some edge. The parameters are those of a closest pair, except: where t alone was
/// outside, s stays that of the carrier lines, and parameters of projections are raw.
inline double zuNondegenerateDistanceSquared(ZuPlainSegment const& a, ZuPlainSegment const& b, double& s, double& t) {
  double const onLines = zuCarrierDistanceSquared(a, b, s, t);
  bool const sIsInside = 0.0 <= s && s <= 1.0;
  bool const tIsInside = 0.0 <= t && t <= 1.0;
  if (sIsInside && tIsInside) return onLines;
  if (sIsInside) {
    bool const isBefore = t < 0.0;
    t = isBefore ? 0.0 : 1.0;
    double unused;
    return zuDistanceSquared(isBefore ? b.endpoint0 : b.endpoint1, a, unused);
  }
  if (tIsInside) {
    bool const isBefore = s < 0.0;
    s = isBefore ? 0.0 : 1.0;
    return zuDistanceSquared(isBefore ? a.endpoint0 : a.endpoint1, b, t);
  }
  return zuClosestEndpoint(a, b, s, t);
}

/// Segment to segment, squared. A degenerate segment gives s = t = 0 and its point's distance.
inline double zuDistanceSquared(ZuPlainSegment const& a, ZuPlainSegment const& b, double& s, double& t) {
  if (a.lengthSquared != 0.0 && b.lengthSquared != 0.0) return zuNondegenerateDistanceSquared(a, b, s, t);
  s = t = 0.0;
  double unused;
  return a.lengthSquared == 0.0 ? zuDistanceSquared(a.endpoint0, b, unused) : zuDistanceSquared(b.endpoint0, a, unused);
}
