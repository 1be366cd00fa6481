// Hulls, triangles, and the hierarchy of boxes over the facets of a mesh.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include "geometry/zuAABBHierarchyGeneration.h"
#include "geometry/zuConvexHull.h"
#include "geometry/zuGeomTriangle.h"

namespace {

using Hierarchy = ZuAABBHierarchyGeneration;

class Random {
 public:
  double real() { return static_cast<double>(m_Engine() >> 11) * 0x1p-52 - 1.0; }
  ZuVector vector() {
    double const x = real(), y = real(), z = real();
    return ZuVector(x, y, z);
  }

 private:
  std::mt19937_64 m_Engine{20240601};
};

/// A closed surface like a crumpled ball of about 1 m: 2 n^2 facets.
std::vector<ZuGeomTriangle> crumpledBall(unsigned int n) {
  double const pi = std::acos(-1.0);
  auto const at = [&](unsigned int i, unsigned int j) {
    double const u = pi * i / n, v = 2.0 * pi * (j % n) / n, r = 1.0 + 0.2 * std::sin(5.0 * u) * std::cos(7.0 * v);
    return ZuVector(r * std::sin(u) * std::cos(v), r * std::sin(u) * std::sin(v), r * std::cos(u));
  };
  std::vector<ZuGeomTriangle> facets;
  for (unsigned int i = 0; i < n; ++i) {
    for (unsigned int j = 0; j < n; ++j) {
      facets.emplace_back(at(i, j), at(i + 1, j), at(i + 1, j + 1));
      facets.emplace_back(at(i, j), at(i + 1, j + 1), at(i, j + 1));
    }
  }
  return facets;
}

std::vector<Hierarchy::Box> boxesOf(std::vector<ZuGeomTriangle> const& facets) {
  std::vector<Hierarchy::Box> boxes;
  for (ZuGeomTriangle const& f : facets) boxes.push_back(Hierarchy::Box::around(f.point(0), f.point(1), f.point(2)));
  return boxes;
}

void hullOfPoints(benchmark::State& state) {
  Random random;
  std::vector<ZuVector> points;
  for (std::int64_t i = 0; i < state.range(0); ++i) points.push_back(random.vector().unitVector());
  ZuConvexHull engine;
  std::vector<ZuGJKTriangle> triangles;
  for (auto _ : state) benchmark::DoNotOptimize(engine.computeConvexHull(points, triangles));
}
BENCHMARK(hullOfPoints)->Arg(4)->Arg(16)->Arg(256)->Arg(4096)->Unit(benchmark::kMicrosecond);

/// Figures of about the size of the gaps between them.
template <class Query>
void withTriangle(benchmark::State& state, Query const& query) {
  Random random;
  std::vector<ZuGeomTriangle> triangles;
  for (unsigned int i = 0; i < 1024; ++i) {
    ZuVector const a = random.vector(), b = random.vector(), c = random.vector();
    triangles.emplace_back(a, b, c);
  }
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(query(triangles[i], triangles[(i + 1) % 1024]));
    i = (i + 1) % 1024;
  }
}
BENCHMARK_CAPTURE(withTriangle, distanceToPoint, [](auto const& s, auto const& t) { return s.distanceTo(t.point(0)); });
BENCHMARK_CAPTURE(withTriangle, distanceToTriangle, [](auto const& s, auto const& t) { return s.distanceTo(t); });
BENCHMARK_CAPTURE(withTriangle, contactWithTriangle, [](auto const& s, auto const& t) { return s.checkIntersect(t); });

void buildHierarchy(benchmark::State& state) {
  auto const boxes = boxesOf(crumpledBall(static_cast<unsigned int>(state.range(0))));
  Hierarchy hierarchy;
  for (auto _ : state) hierarchy.build(boxes);
  state.counters["facets"] = static_cast<double>(boxes.size());
}
BENCHMARK(buildHierarchy)->Arg(16)->Arg(128)->Unit(benchmark::kMicrosecond);

/// From within 0.5 m of the surface, on both sides.
void nearestFacetToPoint(benchmark::State& state) {
  std::vector<ZuGeomTriangle> const facets = crumpledBall(static_cast<unsigned int>(state.range(0)));
  Hierarchy hierarchy;
  hierarchy.build(boxesOf(facets));
  std::vector<ZuGeomTriangle> ordered;
  for (unsigned int const i : hierarchy.order()) ordered.push_back(facets[i]);
  Random random;
  for (auto _ : state) {
    ZuVector const p = random.vector().unitVector() * (1.0 + 0.5 * random.real());
    benchmark::DoNotOptimize(hierarchy.nearest(
        HUGE_VAL, [&p](Hierarchy::Box const& box) { return box.distanceSquaredTo(p); },
        [&](unsigned int place, double& best) {
          best = std::min(best, ordered[place].closestPoint(p).distanceSquaredTo(p));
        }));
  }
}
BENCHMARK(nearestFacetToPoint)->Arg(16)->Arg(128);

}  // namespace
