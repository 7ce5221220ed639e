#include <benchmark/benchmark.h>

#include <optional>
#include <vector>

#include "engine/MonteCarlo.h"
#include "engine/Pcg64.h"

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

namespace {

// The floor under any bit-exact forecast of this size: 10,000 x 520 bounded
// draws need 2,600,000 64-bit outputs of the generator, one after another.
void BM_GeneratorOutputsOfOneForecast(benchmark::State& state) {
  for (auto _ : state) {
    orvane::PCG64 generator(1);
    std::uint64_t mixed = 0;
    for (int i = 0; i < 2'600'000; ++i) mixed ^= generator.nextUInt64();
    benchmark::DoNotOptimize(mixed);
  }
}
BENCHMARK(BM_GeneratorOutputsOfOneForecast)->Unit(benchmark::kMillisecond);

}  // namespace
