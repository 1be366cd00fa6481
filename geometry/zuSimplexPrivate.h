// zuSimplexPrivate.h - points of segments, triangles and tetrahedra nearest to the origin. Group: convex engine.
#pragma once

#include <cmath>
#include <limits>

#include "foundation/zuVector.h"

/// Plain arithmetic over at most four points, without allocation or messages. Weights are those of the corners in the
/// sum that gives the point; they add up to 1.
///
/// All of it works on edges, differences of corners, and on cross products of edges, never on differences of dot
/// products: a simplex of size e at distance D from the origin then keeps an accuracy of eps D / e, which its own
/// rounded corners allow, instead of eps (D / e)^2.
namespace ZuSimplex {

/// A sine (of an angle in a triangle, of the solid angle of a tetrahedron) up to which corners count as dependent: the
/// rounding error of the products that it is computed from. Smaller, noise passes for a figure; larger, thin figures
/// are passed over that could be solved.
inline constexpr double theDependentSine = 8.0 * 0x1p-52;

/// Whether a set of places, one bit for each, holds the place.
constexpr bool holds(int set, int place) { return (set >> place & 1) != 0; }

/// Weights of the point of the plane through n, n + e0 and n + e1 nearest to the origin: `weights` of n + e0, n + e1
/// and n itself. `normal` is e0 x e1. False, and nothing is set, when the corners are on one line.
///
/// With -n = u e0 + v e1 + w normal, the products of both sides with e1 and e0 give (-n) x e1 . normal = u normal^2 and
/// e0 x (-n) . normal = v normal^2.
inline bool triangleWeights(ZuVector const& n, ZuVector const& e0, ZuVector const& e1, ZuVector const& normal,
                            double weights[3]) {
  double const square = normal.magSquared();
  double const smallest = theDependentSine * theDependentSine * e0.magSquared() * e1.magSquared();
  if (!(square > smallest)) return false;
  double const scale = 1.0 / square;
  weights[0] = normal.dot(e1.cross(n)) * scale;
  weights[1] = normal.dot(n.cross(e0)) * scale;
  weights[2] = 1.0 - (weights[0] + weights[1]);
  return true;
}

/// Weights with which the corners n + e0, n + e1, n + e2 and n give the origin, by Cramer's rule for -n = sum of
/// weights[i] e[i]. False, and nothing is set, when the corners are in one plane.
inline bool tetrahedronWeights(ZuVector const& n, ZuVector const e[3], double weights[4]) {
  ZuVector const normal12 = e[1].cross(e[2]);
  double const volume = e[0].dot(normal12);
  double const largest = e[0].mag() * e[1].mag() * e[2].mag();
  if (!(std::abs(volume) > theDependentSine * largest)) return false;
  double const scale = -1.0 / volume;
  weights[0] = n.dot(normal12) * scale;
  weights[1] = n.dot(e[2].cross(e[0])) * scale;
  weights[2] = n.dot(e[0].cross(e[1])) * scale;
  weights[3] = 1.0 - (weights[0] + weights[1] + weights[2]);
  return true;
}

/// The point of the segment a b nearest to the origin; `t` is the weight of b.
inline ZuVector nearestOnSegment(ZuVector const& a, ZuVector const& b, double& t) {
  ZuVector const edge = b - a;
  double const square = edge.magSquared();
  double const along = -a.dot(edge);
  t = along > 0.0 && square > 0.0 ? (along < square ? along / square : 1.0) : 0.0;
  return t < 1.0 ? a + edge * t : b;
}

/// The point of the triangle a b c nearest to the origin, with its weights; `normal` is (b - a) x (c - a). Inside, it
/// is the projection onto the plane; otherwise it lies on an edge that has the projection in front of it, and one
/// weight or two are exactly 0.
inline ZuVector nearestOnTriangle(ZuVector const& a, ZuVector const& b, ZuVector const& c, ZuVector const& normal,
                                  ZuVector& weights) {
  double const atA = normal.dot(b.cross(c)), atB = normal.dot(c.cross(a)), atC = normal.dot(a.cross(b));
  if (atA > 0.0 && atB > 0.0 && atC > 0.0) {
    weights = ZuVector(atA, atB, atC) * (1.0 / (atA + atB + atC));
    return normal * (normal.dot(a) / normal.magSquared());
  }
  ZuVector nearest;
  double t, least = std::numeric_limits<double>::infinity();
  auto const isNearer = [&](ZuVector const& from, ZuVector const& to) {
    ZuVector const onEdge = nearestOnSegment(from, to, t);
    if (!(onEdge.magSquared() < least)) return false;
    nearest = onEdge;
    least = onEdge.magSquared();
    return true;
  };
  if (!(atC > 0.0) && isNearer(a, b)) weights = ZuVector(1.0 - t, t, 0.0);
  if (!(atA > 0.0) && isNearer(b, c)) weights = ZuVector(0.0, 1.0 - t, t);
  if (!(atB > 0.0) && isNearer(c, a)) weights = ZuVector(t, 0.0, 1.0 - t);
  return nearest;
}

}  // namespace ZuSimplex
