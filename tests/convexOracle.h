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

/// The least value of d . (a - b), over unit d, that the difference set lies below: the support function.
inline Real supportValue(Points const& a, Points const& b, Vector const& d) {
  return dot(farthest(a, d), d) - dot(farthest(b, d * -1.0L), d);
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

struct Nearest {
  Vector point{};    ///< of a - b, nearest to the origin; zero within rounding when they overlap
  Real lower = 0.0;  ///< proven lower bound of the distance
};

/// The point of the difference of two point sets' hulls nearest to the origin: the minimum-norm point of P. Wolfe,
/// "Finding the nearest point in a polytope" (1976), with the best face of the kept points found by trying them all.
inline Nearest nearestPoint(Points const& a, Points const& b) {
  Nearest result;
  Vector v = a[0] - b[0];
  std::vector<Vector> kept{v};
  for (;;) {
    Real const now = dot(v, v);
    Vector const w = farthest(a, v * -1.0L) - farthest(b, v);
    if (now > 0.0L) result.lower = std::max(result.lower, dot(v, w) / std::sqrt(now));
    result.point = v;
    if (now - dot(v, w) <= 1e-18L * now || now == 0.0L) return result;
    kept.push_back(w);
    Real best = now;
    std::vector<Vector> bestFace = kept;
    for (unsigned int set = 1; set < 1U << kept.size(); ++set) {
      std::vector<Vector> face;
      for (unsigned int i = 0; i < kept.size(); ++i) {
        if ((set >> i & 1U) != 0) face.push_back(kept[i]);
      }
      Vector candidate;
      if (face.size() > 4 || !nearestOfFace(face.data(), static_cast<int>(face.size()), candidate)) continue;
      if (dot(candidate, candidate) < best) {
        best = dot(candidate, candidate);
        v = candidate;
        bestFace = face;
      }
    }
    if (!(best < now)) return result;
    kept = bestFace;
  }
}

/// The depth of two overlapping polytopes: the least support value of the difference set over the normals of its
/// facets, which are those of the facets of the two and the products of their edges. Any further directions do no
/// harm, so `normals` and `edges` may be more than those of the hulls. Not above 0: they do not overlap.
inline Real depth(Points const& a, Points const& b, Points const& normals, Points const& edgesA, Points const& edgesB,
                  Vector& direction) {
  Real least = std::numeric_limits<Real>::infinity();
  auto const tryBoth = [&](Vector const& d) {
    Real const size = length(d);
    if (size == 0.0L) return;
    for (Real const sign : {1.0L, -1.0L}) {
      Real const h = supportValue(a, b, d * (sign / size));
      if (h < least) {
        least = h;
        direction = d * (sign / size);
      }
    }
  };
  for (Vector const& n : normals) tryBoth(n);
  for (Vector const& ea : edgesA) {
    for (Vector const& eb : edgesB) {
      Vector const d = cross(ea, eb);
      // Parallel within rounding: another pair, or a facet, stands for the facets of such an edge.
      if (dot(d, d) > 1e-26L * dot(ea, ea) * dot(eb, eb)) tryBoth(d);
    }
  }
  return least;
}

/// All edges and facet normals that the hull of the points can have, and more: for few points.
inline void allEdgesAndNormals(Points const& points, Points& edges, Points& normals) {
  for (std::size_t i = 0; i < points.size(); ++i) {
    for (std::size_t j = i + 1; j < points.size(); ++j) {
      edges.push_back(points[j] - points[i]);
      for (std::size_t k = j + 1; k < points.size(); ++k) {
        normals.push_back(cross(points[j] - points[i], points[k] - points[i]));
      }
    }
  }
}

/// depth() for few points, from nothing but the points.
inline Real depthByTrial(Points const& a, Points const& b, Vector& direction) {
  Points edgesA, edgesB, normals;
  allEdgesAndNormals(a, edgesA, normals);
  allEdgesAndNormals(b, edgesB, normals);
  return depth(a, b, normals, edgesA, edgesB, direction);
}

}  // namespace oracle
