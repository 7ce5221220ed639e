#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <thread>
#include <vector>

#include "engine/MonteCarlo.h"
#include "engine/Pcg64.h"
#include "support/BaselineMonteCarlo.h"

namespace {

using namespace orvane;

// Twelve weeks of a small team's throughput and a backlog of 100 tickets:
// the forecast a user runs most.
const std::vector<double> twelveWeeks{3, 5, 4, 6, 2, 7, 5, 4, 3, 6, 5, 4};

// On a shared machine the fastest of several repetitions is the figure that
// says most about the code: run with --benchmark_repetitions=N.
double fastest(const std::vector<double>& times) { return *std::min_element(times.begin(), times.end()); }

std::size_t allCores() { return std::max(1u, std::thread::hardware_concurrency()); }

// A benchmark that measures a different forecast from the baseline's would
// compare nothing; stop before timing anything.
void requireSameAsBaseline(std::optional<std::int64_t> horizon) {
  const auto expected = baseline::runMonteCarlo(twelveWeeks, 100, 10000, 520, std::nullopt, horizon);
  for (const std::size_t threads : {std::size_t{1}, allCores()}) {
    if (MonteCarlo::run(twelveWeeks, 100, 10000, 520, std::nullopt, horizon, threads) != expected) std::abort();
  }
}

// The former engine: one thread, a plain loop over two interleaved copies of
// the generator. The yardstick for the two below.
void BM_WhenBaseline(benchmark::State& state) {
  requireSameAsBaseline(std::nullopt);
  for (auto _ : state) {
    benchmark::DoNotOptimize(baseline::runMonteCarlo(twelveWeeks, 100, 10000, 520, std::nullopt, std::nullopt));
  }
}
BENCHMARK(BM_WhenBaseline)->Unit(benchmark::kMillisecond)->UseRealTime()->ComputeStatistics("min", fastest);

void BM_WhenOneCore(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(MonteCarlo::run(twelveWeeks, 100, 10000, 520, std::nullopt, std::nullopt, 1));
  }
}
BENCHMARK(BM_WhenOneCore)->Unit(benchmark::kMillisecond)->UseRealTime()->ComputeStatistics("min", fastest);

void BM_WhenAllCores(benchmark::State& state) {
  state.counters["threads"] = static_cast<double>(allCores());
  for (auto _ : state) {
    benchmark::DoNotOptimize(MonteCarlo::run(twelveWeeks, 100, 10000, 520, std::nullopt, std::nullopt, allCores()));
  }
}
BENCHMARK(BM_WhenAllCores)->Unit(benchmark::kMillisecond)->UseRealTime()->ComputeStatistics("min", fastest);

// "How many by a date?" eight weeks ahead.
void BM_WithHorizonBaseline(benchmark::State& state) {
  requireSameAsBaseline(8);
  for (auto _ : state) benchmark::DoNotOptimize(baseline::runMonteCarlo(twelveWeeks, 100, 10000, 520, std::nullopt, 8));
}
BENCHMARK(BM_WithHorizonBaseline)->Unit(benchmark::kMillisecond)->UseRealTime()->ComputeStatistics("min", fastest);

void BM_WithHorizonOneCore(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(MonteCarlo::run(twelveWeeks, 100, 10000, 520, std::nullopt, 8, 1));
}
BENCHMARK(BM_WithHorizonOneCore)->Unit(benchmark::kMillisecond)->UseRealTime()->ComputeStatistics("min", fastest);

void BM_WithHorizonAllCores(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(MonteCarlo::run(twelveWeeks, 100, 10000, 520, std::nullopt, 8, allCores()));
  }
}
BENCHMARK(BM_WithHorizonAllCores)->Unit(benchmark::kMillisecond)->UseRealTime()->ComputeStatistics("min", fastest);

// The floor under a plain serial generator: 10,000 x 520 bounded draws need
// 2,600,000 64-bit outputs, one after another.
void BM_GeneratorOutputsOfOneForecast(benchmark::State& state) {
  for (auto _ : state) {
    PCG64 generator(1);
    std::uint64_t mixed = 0;
    for (int i = 0; i < 2'600'000; ++i) mixed ^= generator.nextUInt64();
    benchmark::DoNotOptimize(mixed);
  }
}
BENCHMARK(BM_GeneratorOutputsOfOneForecast)->Unit(benchmark::kMillisecond);

}  // namespace
