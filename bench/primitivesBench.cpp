// Figures, boxes and the memory of pairs: what proximity queries do by the million.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "foundation/zuManipulatorSystem.h"
#include "geometry/zuAxisAlignedBoundingBox.h"
#include "geometry/zuGeneralMotion.h"
#include "geometry/zuLineSegment.h"
#include "geometry/zuSystemShapeProximityState.h"

namespace {

constexpr std::size_t theCases = 1024;  ///< enough that branches can't be learnt, few enough for the first caches

class Random {
 public:
  double real() { return static_cast<double>(m_Engine() >> 11) * 0x1p-52 - 1.0; }
  ZuVector vector() {
    double const x = real(), y = real(), z = real();
    return ZuVector(x, y, z);
  }
  int index(int count) { return static_cast<int>(m_Engine() % static_cast<unsigned int>(count)); }

 private:
  std::mt19937_64 m_Engine{20240601};
};

std::vector<ZuLineSegment> segments() {
  Random random;
  std::vector<ZuLineSegment> all;
  for (std::size_t i = 0; i < theCases; ++i) {
    ZuVector const p = random.vector(), q = random.vector();
    all.emplace_back(p, q);
  }
  return all;
}

/// Ten manipulators of ten links of the given number of shapes.
class Arms : public ZuManipulatorSystem {
 public:
  explicit Arms(unsigned int shapesOfALink) : m_ShapesOfALink(shapesOfALink) {}
  unsigned int numberOfManipulators() const override { return 10; }
  unsigned int numberOfLinks(unsigned int) const override { return 10; }
  unsigned int numberOfShapes(unsigned int, unsigned int link) const override {
    return link == m_theReservedLink ? 0 : m_ShapesOfALink;
  }

 private:
  unsigned int m_ShapesOfALink;
};

void segmentToSegment(benchmark::State& state) {
  std::vector<ZuLineSegment> const all = segments();
  std::size_t i = 0;
  for (auto _ : state) {
    double s, t;
    benchmark::DoNotOptimize(all[i].distanceSquaredTo(all[(i * 5 + 1) % theCases], s, t));
    i = (i + 1) % theCases;
  }
}

void plainSegmentToSegment(benchmark::State& state) {
  std::vector<ZuPlainSegment> all;
  for (ZuLineSegment const& segment : segments()) all.push_back(segment.plain());
  std::size_t i = 0;
  for (auto _ : state) {
    double s, t;
    benchmark::DoNotOptimize(zuDistanceSquared(all[i], all[(i * 5 + 1) % theCases], s, t));
    i = (i + 1) % theCases;
  }
}

void lookUp(benchmark::State& state) {
  int const shapesOfALink = static_cast<int>(state.range(0));
  ZuSystemShapeProximityState memory;
  memory.resizeDatabaseToSystem(Arms(static_cast<unsigned int>(shapesOfALink)));
  Random random;
  std::vector<ZuShapeStateCacheKey> keys;
  for (std::size_t i = 0; i < theCases; ++i) {
    int const manipulator = random.index(10), link = random.index(10), shape = random.index(shapesOfALink);
    keys.emplace_back(manipulator, link, shape);
  }
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(memory.getProximityData(keys[i], keys[(i * 5 + 1) % theCases]));
    i = (i + 1) % theCases;
  }
}

template <class T>
void copy(benchmark::State& state) {
  std::vector<T> const from(theCases, T::testObject());
  std::size_t i = 0;
  for (auto _ : state) {
    T const made(from[i]);
    benchmark::DoNotOptimize(&made);
    i = (i + 1) % theCases;
  }
}

}  // namespace

BENCHMARK(segmentToSegment);
BENCHMARK(plainSegmentToSegment);
BENCHMARK(lookUp)->ArgName("shapesOfALink")->Arg(1)->Arg(10);
BENCHMARK(copy<ZuLineSegment>);
BENCHMARK(copy<ZuAxisAlignedBoundingBox>);
BENCHMARK(copy<ZuGeneralMotion>);
BENCHMARK(copy<ZuShapeProximityData>);
