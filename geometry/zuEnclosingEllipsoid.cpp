#include "geometry/zuEnclosingEllipsoid.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "geometry/zuPointSpread.h"

namespace {

/// How far, relatively, a squared distance may be from the one that all points with weight have in the end: the volume
/// is then as near, times 3/2, to the least.
constexpr double theGap = 1e-5;
/// Steps on one set of points; a few hundred are taken.
constexpr int theSteps = 3000;
/// Points that are added, one at a time.
constexpr int theRounds = 60;

/// The weights of points in d dimensions; a point x is lifted to (x, 1).
class Weights {
 public:
  Weights(std::vector<ZuVector> const& points, int dimension) : m_Points(points), m_Size(dimension + 1) {
    m_Weights.assign(points.size(), 1.0 / static_cast<double>(points.size()));
  }
  std::vector<double> const& values() const { return m_Weights; }
  void addPoint() { m_Weights.push_back(0.0); }

  void improve() {
    for (int i = 0; i < theSteps; ++i) {
      if (!step()) return;
    }
  }

 private:
  double lifted(std::size_t i, int k) const {
    return k + 1 == m_Size ? 1.0 : m_Points[i][static_cast<unsigned int>(k)];
  }

  /// Cholesky's factor of the sum of weight * lifted * lifted^T.
  void factorize() {
    for (auto& row : m_L) std::fill(row, row + 4, 0.0);
    for (std::size_t i = 0; i < m_Points.size(); ++i) {
      if (m_Weights[i] == 0.0) continue;
      for (int r = 0; r < m_Size; ++r) {
        for (int c = 0; c <= r; ++c) m_L[r][c] += m_Weights[i] * lifted(i, r) * lifted(i, c);
      }
    }
    for (int c = 0; c < m_Size; ++c) {
      for (int k = 0; k < c; ++k) m_L[c][c] -= m_L[c][k] * m_L[c][k];
      m_L[c][c] = std::sqrt(m_L[c][c]);
      for (int r = c + 1; r < m_Size; ++r) {
        for (int k = 0; k < c; ++k) m_L[r][c] -= m_L[r][k] * m_L[c][k];
        m_L[r][c] /= m_L[c][c];
      }
    }
  }
  /// The squared distance of a lifted point by the inverse of that sum.
  double distance(std::size_t i) const {
    double z[4], sum = 0.0;
    for (int r = 0; r < m_Size; ++r) {
      z[r] = lifted(i, r);
      for (int k = 0; k < r; ++k) z[r] -= m_L[r][k] * z[k];
      z[r] /= m_L[r][r];
      sum += z[r] * z[r];
    }
    return sum;
  }
  /// Gives weight to the farthest point, or takes it from the nearest of those that have some, whichever is farther
  /// from the distance that all of these have at the optimum, the number of dimensions. The amounts maximise the
  /// determinant on the way (Todd and Yildirim 2007, section 3).
  /// @return false when both are within the gap
  bool step() {
    factorize();
    std::size_t far = 0, near = 0;
    double most = -1.0, least = HUGE_VAL;
    for (std::size_t i = 0; i < m_Points.size(); ++i) {
      double const d = distance(i);
      if (d > most) most = d, far = i;
      if (m_Weights[i] > 0.0 && d < least) least = d, near = i;
    }
    double const n = m_Size;
    if (!(most - n > theGap * n || n - least > theGap * n)) return false;
    if (most - n >= n - least) {
      shift(far, (most - n) / (n * (most - 1.0)));
    } else {
      double const all = m_Weights[near] / (1.0 - m_Weights[near]);
      shift(near, -(least > 1.0 ? std::min((n - least) / (n * (least - 1.0)), all) : all));
    }
    return true;
  }
  void shift(std::size_t point, double amount) {
    for (double& weight : m_Weights) weight *= 1.0 - amount;
    m_Weights[point] = std::max(m_Weights[point] + amount, 0.0);
    if (m_Weights[point] < theNothing) m_Weights[point] = 0.0;
  }

  /// A weight that rounding leaves where all was taken.
  static constexpr double theNothing = 1e-15;

  std::vector<ZuVector> const& m_Points;
  std::vector<double> m_Weights;
  int m_Size;
  double m_L[4][4];
};

/// Semi-axes along the axes of the weighted points, so that the weighted mean of the squared distances is 1; then all
/// of the points inside.
struct Placed {
  explicit Placed(ZuEnclosingEllipsoid& ellipsoid, int dimension) : m_Ellipsoid(ellipsoid), m_Dimension(dimension) {}

  void placeBy(std::vector<ZuVector> const& points, std::vector<double> const& weights) {
    ZuVector center;
    for (std::size_t i = 0; i < points.size(); ++i) center += points[i] * weights[i];
    std::vector<ZuVector> scatter;  // with the opposite points, so that their mean is the origin
    for (std::size_t i = 0; i < points.size(); ++i) {
      if (weights[i] == 0.0) continue;
      scatter.push_back((points[i] - center) * std::sqrt(m_Dimension * weights[i]));
      scatter.push_back(-scatter.back());
    }
    ZuPointSpread const spread(scatter.data(), scatter.size());
    m_Ellipsoid.center = center;
    for (int k = 0; k < 3; ++k) {
      m_Ellipsoid.axes[k] = spread.axes[k];
      double sum = 0.0;
      for (ZuVector const& p : scatter) sum += 0.5 * p.dot(spread.axes[k]) * p.dot(spread.axes[k]);
      m_Ellipsoid.radii[k] = k < m_Dimension ? std::sqrt(sum) : 0.0;
    }
  }
  /// 1 on the surface.
  double squared(ZuVector const& point) const {
    double sum = 0.0;
    for (int k = 0; k < m_Dimension; ++k) {
      double const component = (point - m_Ellipsoid.center).dot(m_Ellipsoid.axes[k]) / m_Ellipsoid.radii[k];
      sum += component * component;
    }
    return sum;
  }

 private:
  ZuEnclosingEllipsoid& m_Ellipsoid;
  int m_Dimension;
};

}  // namespace

ZuEnclosingEllipsoid::ZuEnclosingEllipsoid(ZuVector const* points, std::size_t count) {
  ZuPointStretch const stretch(points, count);
  int const dimension = stretch.dimension();
  center = points[0];
  for (int k = 0; k < 3; ++k) axes[k] = stretch.axes[k];
  if (dimension == 0) return;
  std::vector<ZuVector> working = ZuPointSpread(points, count).extremePoints(points, count);
  std::vector<ZuVector> even;
  for (ZuVector const& p : working) even.push_back(stretch.to(p));
  Weights weights(even, dimension);
  Placed const placed(*this, dimension);
  for (int round = 0;; ++round) {
    weights.improve();
    Placed(*this, dimension).placeBy(working, weights.values());
    ZuVector const* const worst = std::max_element(points, points + count, [&](ZuVector const& a, ZuVector const& b) {
      return placed.squared(a) < placed.squared(b);
    });
    double const most = placed.squared(*worst);
    if (most <= 1.0 + 8.0 * theGap || round == theRounds) {
      for (double& radius : radii) radius *= std::sqrt(most);
      return;
    }
    working.push_back(*worst);
    even.push_back(stretch.to(*worst));
    weights.addPoint();
  }
}
