// Meshes: building what is derived from them, support points, and questions to a surface of 30,000 facets.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

#include "geometry/zuAABBCollisionDetection.h"
#include "geometry/zuLineSegment.h"
#include "geometry/zuTriPhysicalExtent.h"
#include "tests/objReader.h"
#include "tests/randomValues.h"

namespace {

ZuTriPhysicalExtent realMesh(std::string const& name) {
  ObjMesh const file = ObjMesh::read(sharedFile("data/objects/" + name));
  ZuTriPhysicalExtent mesh;
  mesh.setPoints(ZuXmlVectorVector(file.points));
  unsigned int const group = mesh.addGroup("");
  for (auto const& face : file.faces) mesh.addFacet(group, face);
  return mesh;
}

/// A hull of that many random points on an ellipsoid.
ZuTriPhysicalExtent hullOf(unsigned int vertices) {
  RandomValues random(vertices);
  ZuXmlVectorVector points;
  for (unsigned int i = 0; i < vertices; ++i) {
    ZuVector const d = random.direction();
    points.pushBack(ZuVector(d.x(), 0.7 * d.y(), 0.4 * d.z()));
  }
  ZuTriPhysicalExtent mesh;
  mesh.convexHull(points);
  return mesh;
}

void skipWithout(ZuTriPhysicalExtent const& mesh, benchmark::State& state) {
  if (mesh.points().empty()) state.SkipWithError("the real meshes are not there");
}

void buildNeighbors(benchmark::State& state, char const* name) {
  ZuTriPhysicalExtent mesh = realMesh(name);
  skipWithout(mesh, state);
  for (auto _ : state) {
    mesh.resetNeighborFlags();
    mesh.initNeighborInformation();
  }
}
BENCHMARK_CAPTURE(buildNeighbors, armadillo, "armadillo.obj")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(buildNeighbors, boat, "boat.obj")->Unit(benchmark::kMillisecond);

void buildEverything(benchmark::State& state, char const* name) {
  ZuTriPhysicalExtent mesh = realMesh(name);
  skipWithout(mesh, state);
  for (auto _ : state) {
    mesh.resetNeighborFlags();
    mesh.init();
    mesh.AABBGen();
  }
}
BENCHMARK_CAPTURE(buildEverything, boat, "boat.obj")->Unit(benchmark::kMillisecond);

template <bool Recomputed>
void support(benchmark::State& state, double step) {
  ZuTriPhysicalExtent const mesh = hullOf(static_cast<unsigned int>(state.range(0)));
  RandomValues random(7);
  std::vector<ZuVector> directions;
  ZuVector d(1.0, 0.0, 0.0);
  for (unsigned int i = 0; i < 1024; ++i) directions.push_back(d = (d + random.direction() * step).unitVector());
  unsigned int i = 0;
  for (auto _ : state) {
    ZuVector const& direction = directions[i++ % 1024];
    benchmark::DoNotOptimize(Recomputed ? mesh.computeSupportPoint(direction) : mesh.supportPoint(direction));
  }
}
void computeSupportPointCold(benchmark::State& state) { support<true>(state, 100.0); }
void computeSupportPointCoherent(benchmark::State& state) { support<true>(state, 0.01); }
void supportPointCold(benchmark::State& state) { support<false>(state, 100.0); }
void supportPointCoherent(benchmark::State& state) { support<false>(state, 0.01); }
BENCHMARK(computeSupportPointCold)->RangeMultiplier(2)->Range(8, 4096);
BENCHMARK(computeSupportPointCoherent)->RangeMultiplier(2)->Range(8, 4096);
BENCHMARK(supportPointCold)->RangeMultiplier(8)->Range(8, 4096);
BENCHMARK(supportPointCoherent)->RangeMultiplier(8)->Range(8, 4096);

/// Not convex: 14,587 vertices.
void computeSupportPointOfArmadillo(benchmark::State& state) {
  ZuTriPhysicalExtent const mesh = realMesh("armadillo.obj");
  skipWithout(mesh, state);
  RandomValues random(7);
  for (auto _ : state) benchmark::DoNotOptimize(mesh.computeSupportPoint(random.direction()));
}
BENCHMARK(computeSupportPointOfArmadillo);

/// Places as far apart as the mesh is wide, about half of them near its surface.
struct Questions {
  explicit Questions(ZuTriPhysicalExtent const& mesh) {
    RandomValues random(11);
    for (unsigned int i = 0; i < 1024; ++i) {
      ZuVector const& corner = mesh.point(random.index(mesh.numberOfPoints()));
      places.push_back(corner + random.vector(i % 2 == 0 ? 0.1 : 0.005));
    }
  }
  ZuVector const& next() { return places[i++ % 1024]; }
  std::vector<ZuVector> places;
  unsigned int i = 0;
};

void pointDistance(benchmark::State& state) {
  ZuTriPhysicalExtent const mesh = realMesh("armadillo.obj");
  skipWithout(mesh, state);
  Questions questions(mesh);
  mesh.AABBGen();
  for (auto _ : state) benchmark::DoNotOptimize(mesh.distanceTo(questions.next()));
}
BENCHMARK(pointDistance);

void segmentDistance(benchmark::State& state) {
  ZuTriPhysicalExtent const mesh = realMesh("armadillo.obj");
  skipWithout(mesh, state);
  Questions questions(mesh);
  mesh.AABBGen();
  for (auto _ : state) {
    ZuVector const& start = questions.next();
    benchmark::DoNotOptimize(mesh.distanceTo(ZuLineSegment(start, start + ZuVector(0.03, 0.02, -0.01))));
  }
}
BENCHMARK(segmentDistance);

void meshDistance(benchmark::State& state, double step) {
  ZuTriPhysicalExtent const mesh1 = realMesh("armadillo.obj"), mesh2 = realMesh("scorpion.obj");
  skipWithout(mesh1, state);
  ZuAABBCollisionDetection const processor;
  RandomValues random(13);
  std::vector<ZuCoordinateSystemTransformation> frames;
  ZuVector place(0.25, 0.0, 0.0);
  for (unsigned int i = 0; i < 256; ++i) {
    if (step == 0.0) place = random.direction() * 0.25;
    place += random.vector(step);
    frames.emplace_back(place, step == 0.0 ? random.orientation() : ZuOrientation(1.0, 0.01 * i, 0.0, 0.0));
  }
  unsigned int i = 0;
  for (auto _ : state) {
    ZuVector witness1, witness2;
    double distance = 0.0;
    processor.nearestPoints(mesh1, mesh2, frames[i++ % 256], nullptr, witness1, witness2, distance);
    benchmark::DoNotOptimize(distance);
  }
}
BENCHMARK_CAPTURE(meshDistance, cold, 0.0)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(meshDistance, coherent, 0.001)->Unit(benchmark::kMicrosecond);

}  // namespace
