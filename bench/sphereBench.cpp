// Two spheres through the shape interface.
#include <benchmark/benchmark.h>

#include "foundation/zuManipulatorSystem.h"
#include "geometry/zuShapeProximityDescriptor.h"
#include "geometry/zuSphere.h"
#include "geometry/zuSystemShapeProximityState.h"

namespace {

class TwoLinks : public ZuManipulatorSystem {
 public:
  unsigned int numberOfManipulators() const override { return 2; }
  unsigned int numberOfLinks(unsigned int) const override { return 1; }
  unsigned int numberOfShapes(unsigned int, unsigned int) const override { return 1; }
};

/// A pair of spheres in general position, and what a query needs.
struct Pair {
  Pair() {
    state.resizeDatabaseToSystem(TwoLinks());
    state.setIsInitialized(true);
    descriptor.setKey1(ZuShapeStateCacheKey(1, 0, 0));
    descriptor.setKey2(ZuShapeStateCacheKey(0, 0, 0));
  }
  ZuSphere sphere1{ZuVector(0.1, 0.2, 0.3), 0.5, 3};
  ZuSphere sphere2{ZuVector(-0.3, 0.1, 0.0), 0.25, 3};
  ZuShape const* shape1 = &sphere1;  // as clients hold them
  ZuShape const* shape2 = &sphere2;
  ZuCoordinateSystemTransformation xform{ZuVector(1.0, 2.0, 0.5), ZuOrientation(0.5, 0.5, -0.5, 0.5)};
  ZuShapeProximityDescriptor descriptor;
  ZuSystemShapeProximityState state;
};

void distance(benchmark::State& state) {
  Pair pair;
  for (auto _ : state) {
    benchmark::DoNotOptimize(pair.shape2);
    benchmark::DoNotOptimize(pair.shape1->distanceTo(*pair.shape2, pair.xform, pair.descriptor, pair.state));
  }
}

void contact(benchmark::State& state) {
  Pair pair;
  for (auto _ : state) {
    benchmark::DoNotOptimize(pair.shape2);
    benchmark::DoNotOptimize(
        pair.shape1->checkIntersect(*pair.shape2, pair.xform, pair.descriptor, pair.state, nullptr));
  }
}

void witnessPoints(benchmark::State& state) {
  Pair pair;
  ZuVector w1;
  ZuVector w2;
  for (auto _ : state) {
    benchmark::DoNotOptimize(pair.shape2);
    benchmark::DoNotOptimize(
        pair.shape1->distanceAndWitnessPointsTo(*pair.shape2, pair.xform, pair.descriptor, pair.state, w1, w2));
    benchmark::DoNotOptimize(w2);
  }
}

}  // namespace

BENCHMARK(distance)->Name("sphereSphere/distanceTo");
BENCHMARK(contact)->Name("sphereSphere/checkIntersect");
BENCHMARK(witnessPoints)->Name("sphereSphere/distanceAndWitnessPointsTo");
