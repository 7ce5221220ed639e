#include <benchmark/benchmark.h>

#include <optional>
#include <vector>

#include "engine/MonteCarlo.h"

namespace {

// Twelve weeks of a small team's throughput and a backlog of 100 tickets:
// the forecast a user runs most.
const std::vector<double> twelveWeeks{3, 5, 4, 6, 2, 7, 5, 4, 3, 6, 5, 4};

void BM_RunWhen(benchmark::State& state) {
  for (auto _ : state) {
    auto result = orvane::MonteCarlo::run(twelveWeeks, 100, 10000, 520, std::nullopt, std::nullopt);
    benchmark::DoNotOptimize(result);
  }
}
BENCHMARK(BM_RunWhen)->Unit(benchmark::kMillisecond);

void BM_RunWithHorizon(benchmark::State& state) {
  for (auto _ : state) {
    auto result = orvane::MonteCarlo::run(twelveWeeks, 100, 10000, 520, std::nullopt, 8);
    benchmark::DoNotOptimize(result);
  }
}
BENCHMARK(BM_RunWithHorizon)->Unit(benchmark::kMillisecond);

}  // namespace
