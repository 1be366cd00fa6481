#include "geometry/zuLoopTrianglesPrivate.h"

#include <algorithm>

namespace {

/// Corners up to which ears are looked for: the search takes time with the third power of the number in the worst case.
constexpr std::size_t theLargestCutLoop = 256;

/// A polygon seen along its normal: a turn is above 0 when it goes the way of the polygon.
class EarCutter {
 public:
  EarCutter(ZuXmlVectorVector const& points, ZuListView<unsigned int> loop)
      : m_Points(points), m_Loop(loop.begin(), loop.end()) {
    for (std::size_t k = 1; k + 1 < m_Loop.size(); ++k) {
      m_Normal += (at(k) - at(0)).cross(at(k + 1) - at(0));
    }
  }

  /// Corners on a straight edge are no dents.
  bool isConvex() const {
    for (std::size_t k = 0; k < m_Loop.size(); ++k) {
      if (turn(at(before(k)), at(k), at(after(k))) < 0.0) return false;
    }
    return true;
  }

  /// False when no ear is left before the loop is cut up.
  bool cut(std::vector<unsigned int>& triangles) {
    while (m_Loop.size() > 3) {
      std::size_t ear = 0;
      while (ear < m_Loop.size() && !isEar(ear)) ++ear;
      // What is left may have corners on straight edges only: their triangles have no area, and close the surface.
      if (ear == m_Loop.size()) ear = straightCorner();
      if (ear == m_Loop.size()) return false;
      triangles.insert(triangles.end(), {m_Loop[before(ear)], m_Loop[ear], m_Loop[after(ear)]});
      m_Loop.erase(m_Loop.begin() + static_cast<std::ptrdiff_t>(ear));
    }
    triangles.insert(triangles.end(), m_Loop.begin(), m_Loop.end());
    return true;
  }

 private:
  std::size_t before(std::size_t k) const { return k == 0 ? m_Loop.size() - 1 : k - 1; }
  std::size_t after(std::size_t k) const { return k + 1 == m_Loop.size() ? 0 : k + 1; }
  ZuVector const& at(std::size_t k) const { return m_Points[m_Loop[k]]; }
  double turn(ZuVector const& a, ZuVector const& b, ZuVector const& c) const {
    return (b - a).cross(c - b).dot(m_Normal);
  }

  std::size_t straightCorner() const {
    std::size_t k = 0;
    while (k < m_Loop.size() && turn(at(before(k)), at(k), at(after(k))) != 0.0) ++k;
    return k;
  }

  bool isEar(std::size_t ear) const {
    ZuVector const &a = at(before(ear)), &b = at(ear), &c = at(after(ear));
    if (!(turn(a, b, c) > 0.0)) return false;
    for (std::size_t k = 0; k < m_Loop.size(); ++k) {
      ZuVector const& p = at(k);
      if (p == a || p == b || p == c) continue;
      if (turn(a, b, p) >= 0.0 && turn(b, c, p) >= 0.0 && turn(c, a, p) >= 0.0) return false;
    }
    return true;
  }

  ZuXmlVectorVector const& m_Points;
  std::vector<unsigned int> m_Loop;
  ZuVector m_Normal;
};

bool mayBeCut(ZuXmlVectorVector const& points, ZuListView<unsigned int> loop) {
  return loop.size() > 3 && loop.size() <= theLargestCutLoop &&
         std::all_of(loop.begin(), loop.end(), [&points](unsigned int i) { return i < points.size(); });
}

}  // namespace

void zuCutLoop(ZuXmlVectorVector const& points, ZuListView<unsigned int> loop, std::vector<unsigned int>& triangles) {
  if (mayBeCut(points, loop)) {
    std::size_t const start = triangles.size();
    EarCutter cutter(points, loop);
    if (!cutter.isConvex()) {
      if (cutter.cut(triangles)) return;
      triangles.resize(start);
    }
  }
  for (std::size_t k = 1; k + 1 < loop.size(); ++k) triangles.insert(triangles.end(), {loop[0], loop[k], loop[k + 1]});
}
