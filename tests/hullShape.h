// hullShape.h - convex hull of a list of points, known by its support points alone, for tests of the convex engine.
#pragma once

#include <utility>
#include <vector>

#include "geometry/zuSphere.h"
#include "tests/randomValues.h"

/// The points that are at most `radius` from the hull of the vertices. It answers what the convex engine asks; the
/// rest, which nobody asks, is left as a sphere has it.
class HullShape : public ZuSphere {
 public:
  HullShape() : m_Vertices(1) {}
  explicit HullShape(std::vector<ZuVector> vertices, double radius = 0.0)
      : m_Vertices(std::move(vertices)), m_Radius(radius) {}
  /// A box about the origin, by its full sides.
  static HullShape box(double x, double y, double z) {
    std::vector<ZuVector> corners;
    for (double const cx : {-0.5, 0.5}) {
      for (double const cy : {-0.5, 0.5}) {
        for (double const cz : {-0.5, 0.5}) corners.emplace_back(cx * x, cy * y, cz * z);
      }
    }
    return HullShape(corners);
  }

  std::vector<ZuVector> const& vertices() const { return m_Vertices; }
  HullShape scaled(double factor) const {
    HullShape result = *this;
    for (ZuVector& vertex : result.m_Vertices) vertex *= factor;
    result.m_Radius *= factor;
    return result;
  }
  void setIsConvex(bool isConvex) { m_IsConvex = isConvex; }

  /// By trying all vertices; the first of equals.
  ZuVector computeSupportPoint(ZuVector const& direction) const override {
    ZuVector const* best = m_Vertices.data();
    double bestDot = best->dot(direction);
    for (ZuVector const& vertex : m_Vertices) {
      double const d = vertex.dot(direction);
      if (!(d > bestDot)) continue;
      bestDot = d;
      best = &vertex;
    }
    return m_Radius == 0.0 ? *best : *best + direction.unitVector() * m_Radius;
  }
  bool isConvex() const override { return m_IsConvex; }

 private:
  std::vector<ZuVector> m_Vertices;
  double m_Radius = 0.0;
  bool m_IsConvex = true;
};

/// Vertices on an ellipsoid, all of them extreme, with semi-axes of 0.3 to 1.
inline HullShape randomHull(RandomValues& r, unsigned int vertices) {
  ZuVector const axes(r.real(0.3, 1.0), r.real(0.3, 1.0), r.real(0.3, 1.0));
  std::vector<ZuVector> points;
  for (unsigned int i = 0; i < vertices; ++i) {
    ZuVector const d = r.direction();
    points.emplace_back(d.x() * axes.x(), d.y() * axes.y(), d.z() * axes.z());
  }
  return HullShape(points);
}
