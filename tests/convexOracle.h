// convexOracle.h - distances and depths of polytopes by other means than the library's, in extended precision.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "foundation/zuCoordinateSystemTransformation.h"

namespace oracle {

using Real = long double;
struct Vector {
  Real c[3];
  Real operator[](int k) const { return c[k]; }
};
using Points = std::vector<Vector>;

inline Vector operator+(Vector const& a, Vector const& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
inline Vector operator-(Vector const& a, Vector const& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
inline Vector operator*(Vector const& a, Real s) { return {a[0] * s, a[1] * s, a[2] * s}; }
inline Real dot(Vector const& a, Vector const& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
inline Real length(Vector const& a) { return std::sqrt(dot(a, a)); }
inline Vector cross(Vector const& a, Vector const& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
inline Vector extended(ZuVector const& v) { return {v.x(), v.y(), v.z()}; }

/// The points in the world; the quaternion is normalised in extended precision.
inline Points placed(std::vector<ZuVector> const& points, ZuCoordinateSystemTransformation const& T) {
  Real const w = T.orientation()[0];
  Vector const u{T.orientation()[1], T.orientation()[2], T.orientation()[3]};
  Real const scale = 2.0L / (w * w + dot(u, u));
  Points result;
  result.reserve(points.size());
  for (ZuVector const& point : points) {
    Vector const p = extended(point), uxp = cross(u, p);
    result.push_back(p + (uxp * w + cross(u, uxp)) * scale + extended(T.translation()));
  }
  return result;
}

inline Vector const& farthest(Points const& points, Vector const& direction) {
  Vector const* best = &points[0];
  Real bestDot = dot(*best, direction);
  for (Vector const& p : points) {
    Real const d = dot(p, direction);
    if (d > bestDot) {
      bestDot = d;
      best = &p;
    }
  }
  return *best;
}

/// The point nearest to the origin of the plane, line or point through the first n points; false when a weight is
/// negative or the points are dependent. Gauss-Jordan on the normal equations of the edges.
inline bool nearestOfFace(Vector const* face, int n, Vector& nearest) {
  Real m[3][4] = {};
  for (int i = 1; i < n; ++i) {
    for (int j = 1; j < n; ++j) m[i - 1][j - 1] = dot(face[i] - face[0], face[j] - face[0]);
    m[i - 1][3] = -dot(face[0], face[i] - face[0]);
  }
  for (int k = 0; k < n - 1; ++k) {
    int pivot = k;
    for (int i = k; i < n - 1; ++i) {
      if (std::abs(m[i][k]) > std::abs(m[pivot][k])) pivot = i;
    }
    if (m[pivot][k] == 0.0L) return false;
    std::swap(m[k], m[pivot]);
    for (int i = 0; i < n - 1; ++i) {
      Real const factor = i == k ? 0.0L : m[i][k] / m[k][k];
      for (int j = k; j < 4; ++j) m[i][j] -= factor * m[k][j];
    }
  }
  Real rest = 1.0L;
  nearest = face[0];
  for (int k = 0; k < n - 1; ++k) {
    Real const weight = m[k][3] / m[k][k];
    if (weight < 0.0L) return false;
    rest -= weight;
    nearest = nearest + (face[k + 1] - face[0]) * weight;
  }
  return rest >= 0.0L;
}

/// The point of the hull of a few points nearest to the origin, by trying all faces; leaves the points of its face.
inline Vector nearestByTrial(Points& points) {
  Vector nearest{}, candidate;
  Real best = std::numeric_limits<Real>::infinity();
  Points bestFace;
  for (unsigned int set = 1; set < 1U << points.size(); ++set) {
    if (__builtin_popcount(set) > 4) continue;
    Points face;
    for (unsigned int i = 0; i < points.size(); ++i) {
      if ((set >> i & 1U) != 0) face.push_back(points[i]);
    }
    if (!nearestOfFace(face.data(), static_cast<int>(face.size()), candidate)) continue;
    if (!(dot(candidate, candidate) < best)) continue;
    best = dot(candidate, candidate);
    nearest = candidate;
    bestFace = face;
  }
  points = bestFace;
  return nearest;
}

/// The distance of the hulls of a few points, by trying all faces of the differences, which is right to the last digits
/// for thin figures too; it can only err upwards.
inline double distanceByTrial(std::vector<ZuVector> const& first, std::vector<ZuVector> const& second) {
  Points differences;
  for (ZuVector const& p : first) {
    for (ZuVector const& q : second) differences.push_back(extended(p) - extended(q));
  }
  return static_cast<double>(length(nearestByTrial(differences)));
}

/// The distance of two point sets' hulls, zero within rounding when they overlap: the minimum-norm point of P. Wolfe,
/// "Finding the nearest point in a polytope" (1976), with the best face of the kept points found by trying them all.
inline double distance(Points const& a, Points const& b) {
  Vector v = a[0] - b[0];
  Points kept{v};
  for (;;) {
    Real const now = dot(v, v);
    Vector const w = farthest(a, v * -1.0L) - farthest(b, v);
    if (now - dot(v, w) <= 1e-18L * now) return static_cast<double>(std::sqrt(now));
    kept.push_back(w);
    v = nearestByTrial(kept);
    if (!(dot(v, v) < now)) return static_cast<double>(std::sqrt(now));
  }
}

/// The depth of two overlapping polytopes: the least extent of the difference set along the normals of its facets,
/// which are those of the facets of the two and the products of their edges. Any further directions do no harm, so
/// `normals` and `edges` may be more than those of the hulls. Not above 0: they do not overlap.
inline double depth(Points const& a, Points const& b, Points const& normals, Points const& edgesA,
                    Points const& edgesB) {
  Real least = std::numeric_limits<Real>::infinity();
  auto const tryBoth = [&](Vector const& direction) {
    if (length(direction) == 0.0L) return;
    Vector const d = direction * (1.0L / length(direction)), back = d * -1.0L;
    least = std::min({least, dot(farthest(a, d), d) - dot(farthest(b, back), d),
                      dot(farthest(a, back), back) - dot(farthest(b, d), back)});
  };
  for (Vector const& n : normals) tryBoth(n);
  for (Vector const& ea : edgesA) {
    for (Vector const& eb : edgesB) {
      Vector const d = cross(ea, eb);
      // Parallel within rounding: another pair, or a facet, stands for the facets of such an edge.
      if (dot(d, d) > 1e-26L * dot(ea, ea) * dot(eb, eb)) tryBoth(d);
    }
  }
  return static_cast<double>(least);
}

/// depth() for few points, from all edges and facet normals that their hulls can have, and more.
inline double depth(Points const& a, Points const& b) {
  Points edges[2], normals;
  for (Points const* points : {&a, &b}) {
    for (auto p = points->begin(); p != points->end(); ++p) {
      for (auto q = p + 1; q != points->end(); ++q) {
        edges[points == &b].push_back(*q - *p);
        for (auto s = q + 1; s != points->end(); ++s) normals.push_back(cross(*q - *p, *s - *p));
      }
    }
  }
  return depth(a, b, normals, edges[0], edges[1]);
}

}  // namespace oracle
