#include "geometry/zuPointSpread.h"

#include <algorithm>
#include <cmath>

namespace {

/// Directions of extremePoints(), both signs counted; the working set of a fit starts with as many points at most.
constexpr unsigned int theHalfDirections = 64;
/// Turns of Jacobi's method on a symmetric 3x3 matrix; it converges quadratically, ten sweeps are more than enough.
constexpr unsigned int theSweeps = 10;

struct Symmetric {
  double m[3][3];
};

Symmetric scatter(ZuVector const* points, std::size_t count, ZuVector const& center) {
  Symmetric s{};
  for (std::size_t i = 0; i < count; ++i) {
    ZuVector const d = points[i] - center;
    double const c[3] = {d.x(), d.y(), d.z()};
    for (int row = 0; row < 3; ++row) {
      for (int column = 0; column < 3; ++column) s.m[row][column] += c[row] * c[column];
    }
  }
  return s;
}

/// Turns the coordinates p and q so that m[p][q] vanishes, and the columns of v with them.
void annihilate(Symmetric& a, Symmetric& v, int p, int q) {
  if (a.m[p][q] == 0.0) return;
  double const theta = (a.m[q][q] - a.m[p][p]) / (2.0 * a.m[p][q]);
  double const t = (theta < 0.0 ? -1.0 : 1.0) / (std::abs(theta) + std::hypot(theta, 1.0));
  double const c = 1.0 / std::hypot(t, 1.0);
  double const s = t * c;
  for (auto& row : a.m) {
    double const rp = row[p];
    row[p] = c * rp - s * row[q];
    row[q] = s * rp + c * row[q];
  }
  for (int k = 0; k < 3; ++k) {
    double const rp = a.m[p][k];
    a.m[p][k] = c * rp - s * a.m[q][k];
    a.m[q][k] = s * rp + c * a.m[q][k];
    double const vp = v.m[k][p];
    v.m[k][p] = c * vp - s * v.m[k][q];
    v.m[k][q] = s * vp + c * v.m[k][q];
  }
}

/// Eigenvectors, from the largest eigenvalue to the smallest, right-handed. Jacobi's method: Golub and Van
/// Loan, section 8.5.
void eigenvectors(Symmetric a, ZuVector (&axes)[3]) {
  Symmetric v{{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}};
  for (unsigned int sweep = 0; sweep < theSweeps; ++sweep) {
    annihilate(a, v, 0, 1);
    annihilate(a, v, 0, 2);
    annihilate(a, v, 1, 2);
  }
  int order[3] = {0, 1, 2};
  std::stable_sort(order, order + 3, [&a](int i, int j) { return a.m[i][i] > a.m[j][j]; });
  for (int i = 0; i < 2; ++i) axes[i] = ZuVector(v.m[0][order[i]], v.m[1][order[i]], v.m[2][order[i]]).unitVector();
  axes[2] = axes[0].cross(axes[1]);
}

}  // namespace

ZuPointSpread::ZuPointSpread(ZuVector const* points, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) center += (points[i] - center) / static_cast<double>(i + 1);
  for (std::size_t i = 0; i < count; ++i) size = std::max(size, points[i].distanceTo(center));
  if (size > 0.0) eigenvectors(scatter(points, count, center), axes);
}

std::vector<ZuVector> ZuPointSpread::extremePoints(ZuVector const* points, std::size_t count) const {
  // Half of a spiral with steps of the golden angle covers the half-sphere evenly.
  double const goldenAngle = 2.399963229728653;
  std::vector<std::size_t> extremes;
  for (unsigned int k = 0; k < theHalfDirections; ++k) {
    double const z = (k + 0.5) / theHalfDirections;
    double const r = std::sqrt(1.0 - z * z);
    ZuVector const direction =
        axes[0] * (r * std::cos(k * goldenAngle)) + axes[1] * (r * std::sin(k * goldenAngle)) + axes[2] * z;
    auto const [low, high] = std::minmax_element(points, points + count, [&](ZuVector const& a, ZuVector const& b) {
      return a.dot(direction) < b.dot(direction);
    });
    extremes.push_back(static_cast<std::size_t>(low - points));
    extremes.push_back(static_cast<std::size_t>(high - points));
  }
  std::sort(extremes.begin(), extremes.end());
  extremes.erase(std::unique(extremes.begin(), extremes.end()), extremes.end());
  std::vector<ZuVector> result;
  for (std::size_t i : extremes) result.push_back(points[i]);
  return result;
}

ZuPointStretch::ZuPointStretch(ZuVector const* points, std::size_t count) {
  ZuPointSpread const spread(points, count);
  center = spread.center;
  for (int k = 0; k < 3; ++k) {
    axes[k] = spread.axes[k];
    for (std::size_t i = 0; i < count; ++i) {
      extents[k] = std::max(extents[k], std::abs(axes[k].dot(points[i] - center)));
    }
    // An axis of less variance than a flat one is flat too.
    if (!(extents[k] > m_theFlatSet * spread.size) || (k > 0 && extents[k - 1] == 0.0)) extents[k] = 0.0;
  }
}

int ZuPointStretch::dimension() const { return (extents[0] > 0.0) + (extents[1] > 0.0) + (extents[2] > 0.0); }

ZuVector ZuPointStretch::to(ZuVector const& point) const {
  auto const component = [&](int k) { return extents[k] > 0.0 ? axes[k].dot(point - center) / extents[k] : 0.0; };
  return {component(0), component(1), component(2)};
}

ZuVector ZuPointStretch::from(ZuVector const& stretched) const {
  return center + axes[0] * (stretched.x() * extents[0]) + axes[1] * (stretched.y() * extents[1]) +
         axes[2] * (stretched.z() * extents[2]);
}

bool zuCanBeFitted(ZuVector const* points, std::size_t count) {
  return count != 0 && std::all_of(points, points + count, [](ZuVector const& p) {
           return std::isfinite(p.x()) && std::isfinite(p.y()) && std::isfinite(p.z());
         });
}
