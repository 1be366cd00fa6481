// Reading and writing a list of vectors; bytes per second are those of the plain document.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <string>

#include "foundation/zuXmlVectorVector.h"

namespace {

constexpr unsigned int theVectors = 100000;

/// Points in a cube of 2 m, as computed (17 digits) or as written by hand (rounded to a micrometre, 6 digits).
ZuXmlVectorVector points(bool rounded) {
  std::mt19937_64 engine(20240601);
  auto const coordinate = [&] {
    double const value = static_cast<double>(engine() >> 11) * 0x1p-52 - 1.0;
    return rounded ? std::round(value * 1e6) / 1e6 : value;
  };
  ZuXmlVectorVector list;
  list.reserve(theVectors);
  for (unsigned int i = 0; i < theVectors; ++i) {
    double const x = coordinate(), y = coordinate(), z = coordinate();
    list.pushBack(ZuVector(x, y, z));
  }
  return list;
}

void report(benchmark::State& state, std::string const& document) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(document.size()));
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * theVectors);
}

void writePoints(benchmark::State& state, bool rounded) {
  ZuXmlVectorVector const list = points(rounded);
  std::string document;
  for (auto _ : state) {
    if (!list.writeToBuffer(document, "points")) state.SkipWithError("not written");
    benchmark::DoNotOptimize(document.data());
  }
  report(state, document);
}

void readPoints(benchmark::State& state, bool rounded) {
  std::string document;
  points(rounded).writeToBuffer(document, "points");
  ZuXmlVectorVector list;
  for (auto _ : state) {
    if (!list.readFromBuffer(document)) state.SkipWithError("not read");
    benchmark::DoNotOptimize(list.data());
  }
  report(state, document);
}

void readCompressedPoints(benchmark::State& state, bool rounded) {
  std::string document;
  std::string compressed;
  points(rounded).writeToBuffer(document, "points");
  points(rounded).writeToCompressedBuffer(compressed, "points");
  ZuXmlVectorVector list;
  for (auto _ : state) {
    if (!list.readFromCompressedBuffer(compressed)) state.SkipWithError("not read");
    benchmark::DoNotOptimize(list.data());
  }
  report(state, document);
}

}  // namespace

BENCHMARK_CAPTURE(readPoints, digits17, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readPoints, digits6, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readCompressedPoints, digits17, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(writePoints, digits17, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(writePoints, digits6, true)->Unit(benchmark::kMillisecond);
