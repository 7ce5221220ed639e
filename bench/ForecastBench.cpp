#include <benchmark/benchmark.h>

#include <algorithm>
#include <thread>
#include <vector>

#include "core/forecast/ForecastInput.h"
#include "core/forecast/IterationForecast.h"
#include "core/forecast/RoadmapEvaluation.h"
#include "core/forecast/RoadmapForecast.h"

namespace {

using namespace orvane;

const CivilDate asOf(2026, 3, 2);

// Twelve weeks of a small team's real throughput, oldest first.
std::vector<PeriodCount> twelveWeeks() {
  const std::int64_t counts[] = {3, 5, 4, 6, 2, 7, 5, 4, 3, 6, 5, 4};
  std::vector<PeriodCount> history;
  CivilDate start = asOf.addingDays(-83);
  for (const std::int64_t count : counts) {
    history.push_back(PeriodCount{{start, start.addingDays(6)}, count, ProvenanceTier::actual});
    start = start.addingDays(7);
  }
  return history;
}

// "When will it be done?" for a backlog of 100: the forecast users run most,
// and the yardstick for the others.
void BM_WhenForecast(benchmark::State& state) {
  const ForecastInput input{asOf, 100, 0, twelveWeeks(), std::nullopt, std::nullopt};
  for (auto _ : state) benchmark::DoNotOptimize(input.runWhen());
}
BENCHMARK(BM_WhenForecast)->Unit(benchmark::kMillisecond)->UseRealTime();

// 17 days left end inside a week: two runs, blended.
void BM_IterationForecast(benchmark::State& state) {
  const IterationForecastInput input{asOf, asOf.addingDays(16), std::nullopt, 30, 0, twelveWeeks()};
  for (auto _ : state) benchmark::DoNotOptimize(input.run());
}
BENCHMARK(BM_IterationForecast)->Unit(benchmark::kMillisecond)->UseRealTime();

// A large roadmap: 40 epics of about 20 open tickets each, in chains of up to
// five, some planned to start later, most with a due day.
RoadmapForecastInput roadmap40Epics() {
  RoadmapForecastInput input{asOf, twelveWeeks(), {}, {}};
  for (int k = 0; k < 40; ++k) {
    RoadmapEpicNode epic{Uuid::random(), "Epic " + std::to_string(k), 15 + (k * 7) % 11, 0, std::nullopt, {}};
    if (k % 5 != 0) epic.predecessors.push_back(input.epics.back().id);
    if (k % 3 == 0) epic.startOffsetDays = 7 * (k % 4);
    if (k % 4 != 3) epic.dueDay = asOf.addingDays(28 * (1 + k % 5));
    input.epics.push_back(epic);
    input.milestones.push_back({Uuid::random(), asOf.addingDays(30 + k), epic.id, false});
  }
  return input;
}

// On a shared machine the fastest of several repetitions is the figure that
// says most about the code: run with --benchmark_repetitions=N.
double fastest(const std::vector<double>& times) { return *std::min_element(times.begin(), times.end()); }

// The epics one after another on one thread, as the yardstick for the run on
// every core below.
void BM_Roadmap40EpicsOneThread(benchmark::State& state) {
  const RoadmapForecastInput input = roadmap40Epics();
  for (auto _ : state) benchmark::DoNotOptimize(evaluateRoadmap(input, 1));
}
BENCHMARK(BM_Roadmap40EpicsOneThread)->Unit(benchmark::kMillisecond)->UseRealTime()->ComputeStatistics("min", fastest);

void BM_Roadmap40Epics(benchmark::State& state) {
  const RoadmapForecastInput input = roadmap40Epics();
  state.counters["threads"] = static_cast<double>(std::max(1u, std::thread::hardware_concurrency()));
  for (auto _ : state) benchmark::DoNotOptimize(input.run());
}
BENCHMARK(BM_Roadmap40Epics)->Unit(benchmark::kMillisecond)->UseRealTime()->ComputeStatistics("min", fastest);

}  // namespace
