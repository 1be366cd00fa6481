// overPoses.h - the loop of benchmarks that ask about many poses.
#pragma once

#include <benchmark/benchmark.h>

/// Runs query(i) over the numbers below the count, again and again.
template <class Query>
void overPoses(benchmark::State& state, std::size_t count, Query const& query) {
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(query(i));
    i = i + 1 < count ? i + 1 : 0;
  }
}
