// minimumNorm.h - distance of the origin from the hull of a few points, by trying all sub-simplices.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "foundation/zuVector.h"

/// An independent reference for distances between small convex sets: the differences of their points go in, and the
/// hull of those is as far from the origin as the sets are from each other. Solves for the nearest point of every set
/// of up to four points in long double and keeps the nearest one that is a convex combination, so it can only err
/// upwards.
class MinimumNorm {
 public:
  static double distance(std::vector<ZuVector> const& points) {
    MinimumNorm search;
    search.m_Points = &points;
    search.extend(0, {}, 0);
    return static_cast<double>(std::sqrt(search.m_Best));
  }
  static double distance(std::vector<ZuVector> const& first, std::vector<ZuVector> const& second) {
    std::vector<ZuVector> differences;
    for (ZuVector const& p : first) {
      for (ZuVector const& q : second) differences.push_back(p - q);
    }
    return distance(differences);
  }

 private:
  using Real = long double;
  using Vector = std::array<Real, 3>;

  static Vector wide(ZuVector const& p) { return {p.x(), p.y(), p.z()}; }
  static Real dot(Vector const& p, Vector const& q) { return p[0] * q[0] + p[1] * q[1] + p[2] * q[2]; }

  void extend(std::size_t next, std::array<std::size_t, 4> chosen, unsigned int count) {
    if (count > 0) tryOut(chosen, count);
    for (std::size_t i = next; i < m_Points->size() && count < 4; ++i) {
      chosen[count] = i;
      extend(i + 1, chosen, count + 1);
    }
  }

  /// Weights of the point of the affine hull nearest to the origin: the normal equations, by elimination with pivots.
  void tryOut(std::array<std::size_t, 4> const& chosen, unsigned int count) {
    Vector const base = wide((*m_Points)[chosen[0]]);
    Vector edges[3];
    Real m[3][4];
    unsigned int const n = count - 1;
    for (unsigned int i = 0; i < n; ++i) {
      edges[i] = wide((*m_Points)[chosen[i + 1]]);
      for (unsigned int k = 0; k < 3; ++k) edges[i][k] -= base[k];
    }
    for (unsigned int i = 0; i < n; ++i) {
      for (unsigned int j = 0; j < n; ++j) m[i][j] = dot(edges[i], edges[j]);
      m[i][n] = -dot(edges[i], base);
    }
    Real rest = 1;
    Vector nearest = base;
    for (unsigned int i = 0; i < n; ++i) {
      unsigned int pivot = i;
      for (unsigned int j = i; j < n; ++j) pivot = std::abs(m[j][i]) > std::abs(m[pivot][i]) ? j : pivot;
      std::swap(m[i], m[pivot]);
      if (m[i][i] == 0) return;
      for (unsigned int j = 0; j < n; ++j) {
        Real const factor = j == i ? 0 : m[j][i] / m[i][i];
        for (unsigned int k = i; k <= n; ++k) m[j][k] -= factor * m[i][k];
      }
    }
    for (unsigned int i = 0; i < n; ++i) {
      Real const weight = m[i][n] / m[i][i];
      if (!(weight >= 0)) return;
      rest -= weight;
      for (unsigned int k = 0; k < 3; ++k) nearest[k] += weight * edges[i][k];
    }
    if (rest >= 0) m_Best = std::min(m_Best, dot(nearest, nearest));
  }

  std::vector<ZuVector> const* m_Points = nullptr;
  Real m_Best = HUGE_VALL;
};
