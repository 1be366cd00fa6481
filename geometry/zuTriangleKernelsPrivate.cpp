#include "geometry/zuTriangleKernelsPrivate.h"

#include <algorithm>

#include "geometry/zuExactSignsPrivate.h"

namespace ZuTriangleKernels {
namespace {

using ZuExactSigns::side;
using ZuExactSigns::turn;

ZuVector nearer(ZuVector const& point, ZuVector const& first, ZuVector const& second) {
  return first.distanceSquaredTo(point) <= second.distanceSquaredTo(point) ? first : second;
}

ZuVector closestPointOnEdges(Triangle const& t, ZuVector const& point) {
  ZuVector const onSides =
      nearer(point, closestPoint(Segment{t.b, t.c}, point), closestPoint(Segment{t.c, t.a}, point));
  return nearer(point, closestPoint(Segment{t.a, t.b}, point), onSides);
}

/// Squared distance of the carrier lines when the points nearest to each other lie inside both segments, `best`
/// otherwise or when it is smaller. The cross product keeps the parameters of nearly parallel segments good to
/// eps / angle, and thus the points good to eps.
double betterByInnerPoints(Segment const& s, Segment const& t, double best) {
  ZuVector const u = s.q - s.p, v = t.q - t.p, r = t.p - s.p;
  ZuVector const n = u.cross(v);
  double const nn = n.magSquared();
  if (!(nn > 0.0)) return best;
  double const alongS = r.cross(v).dot(n) / nn, alongT = r.cross(u).dot(n) / nn;
  if (!(alongS > 0.0 && alongS < 1.0 && alongT > 0.0 && alongT < 1.0)) return best;
  return std::min(best, (r + v * alongT - u * alongS).magSquared());
}

/// False also when a coordinate is not finite.
template <unsigned int M, unsigned int N>
bool boxesOverlap(ZuVector const (&first)[M], ZuVector const (&second)[N]) {
  for (unsigned int axis = 0; axis < 3; ++axis) {
    double low[2] = {first[0][axis], second[0][axis]}, high[2] = {low[0], low[1]};
    double notFinite = 0.0;
    auto const include = [&](unsigned int which, double value) {
      low[which] = std::min(low[which], value);
      high[which] = std::max(high[which], value);
      notFinite += value - value;
    };
    for (ZuVector const& p : first) include(0, p[axis]);
    for (ZuVector const& p : second) include(1, p[axis]);
    if (notFinite != 0.0 || low[0] > high[1] || low[1] > high[0]) return false;
  }
  return true;
}

bool shadowBoxesOverlap(Segment const& s, Segment const& t, unsigned int axis) {
  for (unsigned int k = 0; k < 3; ++k) {
    if (k == axis) continue;
    if (std::max(s.p[k], s.q[k]) < std::min(t.p[k], t.q[k])) return false;
    if (std::max(t.p[k], t.q[k]) < std::min(s.p[k], s.q[k])) return false;
  }
  return true;
}

/// Whether the shadows of two segments along an axis have a point in common.
bool shadowsMeet(Segment const& s, Segment const& t, unsigned int axis) {
  int const tp = turn(s.p, s.q, t.p, axis), tq = turn(s.p, s.q, t.q, axis);
  int const sp = turn(t.p, t.q, s.p, axis), sq = turn(t.p, t.q, s.q, axis);
  if (tp * tq > 0 || sp * sq > 0) return false;
  // All on one line: what is left is whether they overlap along it.
  if (tp == 0 && tq == 0 && sp == 0 && sq == 0) return shadowBoxesOverlap(s, t, axis);
  return true;
}

/// Whether the shadow of the point along an axis lies in that of the triangle, when that has an area.
bool shadowContains(Triangle const& t, ZuVector const& point, unsigned int axis) {
  int const ab = turn(t.a, t.b, point, axis), bc = turn(t.b, t.c, point, axis), ca = turn(t.c, t.a, point, axis);
  int const whole = turn(t.a, t.b, t.c, axis);
  return whole != 0 && ab * whole >= 0 && bc * whole >= 0 && ca * whole >= 0;
}

bool shadowsMeet(Triangle const& t, Segment const& s, unsigned int axis) {
  return shadowContains(t, s.p, axis) || shadowsMeet(Segment{t.a, t.b}, s, axis) ||
         shadowsMeet(Segment{t.b, t.c}, s, axis) || shadowsMeet(Segment{t.c, t.a}, s, axis);
}

/// Two figures of one plane meet when their shadows along all three axes do: along one of the axes the plane keeps its
/// shape, and in the other two what meets in space meets as a shadow. The same holds on one line and in one point.
template <class Figure>
bool coplanarMeet(Figure const& figure, Segment const& s) {
  return shadowsMeet(figure, s, 0) && shadowsMeet(figure, s, 1) && shadowsMeet(figure, s, 2);
}

bool meet(Segment const& s, Segment const& t) { return side(s.p, s.q, t.p, t.q) == 0 && coplanarMeet(s, t); }

bool isDegenerate(Triangle const& t) {
  return turn(t.a, t.b, t.c, 0) == 0 && turn(t.a, t.b, t.c, 1) == 0 && turn(t.a, t.b, t.c, 2) == 0;
}

bool degenerateMeets(Triangle const& t, Segment const& s) {
  return meet({t.a, t.b}, s) || meet({t.b, t.c}, s) || meet({t.c, t.a}, s);
}

/// The segment's ends lie on the given sides of the plane of a triangle that has an area.
bool meets(Triangle const& t, Segment const& s, int sideOfP, int sideOfQ) {
  if (sideOfP * sideOfQ > 0) return false;
  if (sideOfP == 0 && sideOfQ == 0) return coplanarMeet(t, s);
  // The segment's line crosses the plane in one point, and passes the three edges there on one side.
  int const ab = side(s.p, s.q, t.a, t.b), bc = side(s.p, s.q, t.b, t.c), ca = side(s.p, s.q, t.c, t.a);
  return (ab >= 0 && bc >= 0 && ca >= 0) || (ab <= 0 && bc <= 0 && ca <= 0);
}

/// Whether an edge of the first triangle meets the second one.
bool edgeMeets(Triangle const& edges, Triangle const& t) {
  if (isDegenerate(t)) {
    return degenerateMeets(t, {edges.a, edges.b}) || degenerateMeets(t, {edges.b, edges.c}) ||
           degenerateMeets(t, {edges.c, edges.a});
  }
  int const a = side(t.a, t.b, t.c, edges.a), b = side(t.a, t.b, t.c, edges.b), c = side(t.a, t.b, t.c, edges.c);
  return meets(t, {edges.a, edges.b}, a, b) || meets(t, {edges.b, edges.c}, b, c) || meets(t, {edges.c, edges.a}, c, a);
}

}  // namespace

ZuVector closestPoint(Segment const& segment, ZuVector const& point) {
  ZuVector const d = segment.q - segment.p;
  double const along = (point - segment.p).dot(d), whole = d.magSquared();
  if (!(along > 0.0)) return segment.p;
  return along >= whole ? segment.q : segment.p + d * (along / whole);
}

// With e from a to b, and h, square to e, from the foot of c on that line, at a + f e, to c: the point of the plane
// next to p is a + t e + y h, with the weight y for c, t - f y for b and the rest for a. A weight below 0 puts p beyond
// the opposite edge: beyond one edge, the nearest point is on it; beyond two, on one of them. In a needle h may be
// rounding only, and y anything; but t e is good to an ulp of the triangle's extent, h itself is not longer than that,
// and whatever the sign of y, the edges chosen cover the needle's length.
ZuVector closestPoint(Triangle const& triangle, ZuVector const& point) {
  auto const& [a, b, c] = triangle;
  ZuVector const e = b - a, toC = c - a, toPoint = point - a;
  double const ee = e.magSquared();
  if (!(ee > 0.0)) return closestPoint(Segment{a, c}, point);
  double const f = toC.dot(e) / ee, t = toPoint.dot(e) / ee;
  ZuVector const h = toC - e * f;
  double const hh = h.magSquared();
  if (!(hh > 0.0)) return closestPointOnEdges(triangle, point);
  double const y = (toPoint - e * t).dot(h) / hh;
  bool const beyondAB = y < 0.0, beyondCA = t - f * y < 0.0, beyondBC = (1.0 - t) - (1.0 - f) * y < 0.0;
  if (!(beyondAB || beyondCA || beyondBC)) return a + (e * t + h * y);
  if (!beyondAB) {
    if (!beyondCA) return closestPoint(Segment{b, c}, point);
    if (!beyondBC) return closestPoint(Segment{c, a}, point);
    return nearer(point, closestPoint(Segment{b, c}, point), closestPoint(Segment{c, a}, point));
  }
  ZuVector const onAB = t <= 0.0 ? a : (t >= 1.0 ? b : a + e * t);
  if (beyondBC) return nearer(point, onAB, closestPoint(Segment{b, c}, point));
  return beyondCA ? nearer(point, onAB, closestPoint(Segment{c, a}, point)) : onAB;
}

double distanceSquared(Triangle const& triangle, ZuVector const& point) {
  return closestPoint(triangle, point).distanceSquaredTo(point);
}

// Between figures apart, the shortest way starts or ends at a corner, or joins the insides of two edges.

double distanceSquared(Triangle const& t, Segment const& segment) {
  if (intersects(t, segment)) return 0.0;
  double best = std::min(distanceSquared(t, segment.p), distanceSquared(t, segment.q));
  for (ZuVector const& corner : {t.a, t.b, t.c}) {
    best = std::min(best, closestPoint(segment, corner).distanceSquaredTo(corner));
  }
  for (Segment const& edge : {Segment{t.a, t.b}, Segment{t.b, t.c}, Segment{t.c, t.a}}) {
    best = betterByInnerPoints(edge, segment, best);
  }
  return best;
}

double distanceSquared(Triangle const& first, Triangle const& second) {
  if (intersects(first, second)) return 0.0;
  double best = distanceSquared(first, second.a);
  for (ZuVector const& corner : {second.b, second.c}) best = std::min(best, distanceSquared(first, corner));
  for (ZuVector const& corner : {first.a, first.b, first.c}) best = std::min(best, distanceSquared(second, corner));
  for (Segment const& edge : {Segment{first.a, first.b}, Segment{first.b, first.c}, Segment{first.c, first.a}}) {
    best = betterByInnerPoints(edge, {second.a, second.b}, best);
    best = betterByInnerPoints(edge, {second.b, second.c}, best);
    best = betterByInnerPoints(edge, {second.c, second.a}, best);
  }
  return best;
}

bool intersects(Triangle const& t, Segment const& s) {
  if (!boxesOverlap<3, 2>({t.a, t.b, t.c}, {s.p, s.q})) return false;
  if (isDegenerate(t)) return degenerateMeets(t, s);
  return meets(t, s, side(t.a, t.b, t.c, s.p), side(t.a, t.b, t.c, s.q));
}

bool intersects(Triangle const& first, Triangle const& second) {
  if (!boxesOverlap<3, 3>({first.a, first.b, first.c}, {second.a, second.b, second.c})) return false;
  return edgeMeets(first, second) || edgeMeets(second, first);
}

}  // namespace ZuTriangleKernels
