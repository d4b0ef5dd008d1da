#pragma once

#include <benchmark/benchmark.h>

/// How the cost of an operation grows with its input: the time per element should not.

inline void countPerElement(benchmark::State& state, std::size_t elements) {
  state.counters["per element"] =
      benchmark::Counter(static_cast<double>(elements),
                         benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

inline void thousandToMillion(benchmark::internal::Benchmark* benchmark) {
  benchmark->RangeMultiplier(10)->Range(1000, 1000000)->Unit(benchmark::kMillisecond);
}
