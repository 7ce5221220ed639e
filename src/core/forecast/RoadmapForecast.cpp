#include "core/forecast/RoadmapForecast.h"

#include <algorithm>
#include <bit>
#include <exception>
#include <functional>
#include <queue>
#include <span>
#include <unordered_map>

#include "core/forecast/ForecastInput.h"
#include "core/forecast/RoadmapEvaluation.h"
#include "engine/ForecastDate.h"
#include "engine/ForecastResult.h"
#include "engine/MonteCarlo.h"
#include "engine/ParallelFor.h"
#include "engine/Percentile.h"
#include "engine/SeedDerivation.h"
#include "engine/ThreadCount.h"

namespace orvane {
namespace {

// Added (k + 1) times to the seed of the epic at index k, so that epics with
// the same number of open tickets still simulate different futures.
constexpr std::uint64_t goldenRatioStep = 0x9E3779B97F4A7C15ULL;

// Sorts finish times ascending in linear time. They are never negative,
// -0.0 or NaN, so their bit patterns order as their values do, and an LSD
// radix sort on the patterns gives std::sort's order; digits that all values
// share (the low mantissa bits of whole periods, the exponent's top) are
// skipped.
void sortFinishes(std::vector<double>& values) {
  constexpr int digitBits = 11;
  constexpr std::uint64_t digitMask = (std::uint64_t{1} << digitBits) - 1;
  if (values.size() < 2) return;
  std::vector<std::uint64_t> keys(values.size()), moved(values.size());
  std::uint64_t differing = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    keys[i] = std::bit_cast<std::uint64_t>(values[i]);
    differing |= keys[i] ^ keys[0];
  }
  for (int shift = 0; shift < 64; shift += digitBits) {
    if (((differing >> shift) & digitMask) == 0) continue;
    std::size_t start[digitMask + 2] = {};
    for (const std::uint64_t key : keys) ++start[((key >> shift) & digitMask) + 1];
    for (std::size_t digit = 1; digit <= digitMask + 1; ++digit) start[digit] += start[digit - 1];
    for (const std::uint64_t key : keys) moved[start[(key >> shift) & digitMask]++] = key;
    keys.swap(moved);
  }
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = std::bit_cast<double>(keys[i]);
}

// Percent of the finish times at most `days` days after asOf. An empty list
// (nothing to wait for) gives 100.
double shareWithin(std::span<const double> sortedFinishes, std::int64_t days) {
  if (sortedFinishes.empty()) return 100.0;
  const double limit = static_cast<double>(days) / 7.0;
  const auto within = std::upper_bound(sortedFinishes.begin(), sortedFinishes.end(), limit) - sortedFinishes.begin();
  return static_cast<double>(within) / static_cast<double>(sortedFinishes.size()) * 100.0;
}

// The present predecessors of each epic, as indices into the input.
std::vector<std::vector<std::size_t>> predecessorIndices(const std::vector<RoadmapEpicNode>& epics,
                                                         const std::unordered_map<Uuid, std::size_t>& indexOf) {
  std::vector<std::vector<std::size_t>> predecessors(epics.size());
  for (std::size_t k = 0; k < epics.size(); ++k) {
    for (const Uuid& id : epics[k].predecessors) {
      const auto it = indexOf.find(id);
      if (it != indexOf.end()) predecessors[k].push_back(it->second);
    }
  }
  return predecessors;
}

std::unordered_map<Uuid, std::size_t> indexById(const std::vector<RoadmapEpicNode>& epics) {
  std::unordered_map<Uuid, std::size_t> indexOf;
  indexOf.reserve(epics.size());
  for (std::size_t k = 0; k < epics.size(); ++k) indexOf.emplace(epics[k].id, k);
  return indexOf;
}

// Every epic after its present predecessors; among the epics free to go the
// earliest in the caller's order goes first. Epics caught in a cycle (which
// the board never allows) follow at the end in the caller's order, so the
// order always holds every epic once.
std::vector<std::size_t> topologicalIndices(const std::vector<std::vector<std::size_t>>& predecessors) {
  const std::size_t n = predecessors.size();
  std::vector<std::size_t> waitingFor(n, 0);
  std::vector<std::vector<std::size_t>> successors(n);
  for (std::size_t k = 0; k < n; ++k) {
    waitingFor[k] = predecessors[k].size();
    for (const std::size_t p : predecessors[k]) successors[p].push_back(k);
  }
  std::priority_queue<std::size_t, std::vector<std::size_t>, std::greater<>> free;
  for (std::size_t k = 0; k < n; ++k) {
    if (waitingFor[k] == 0) free.push(k);
  }
  std::vector<std::size_t> order;
  order.reserve(n);
  std::vector<bool> placed(n, false);
  while (!free.empty()) {
    const std::size_t k = free.top();
    free.pop();
    order.push_back(k);
    placed[k] = true;
    for (const std::size_t s : successors[k]) {
      if (--waitingFor[s] == 0) free.push(s);
    }
  }
  for (std::size_t k = 0; k < n && order.size() < n; ++k) {
    if (!placed[k]) order.push_back(k);
  }
  return order;
}

// The chain of dependent epics that ends latest at 85%: from the epic with
// the latest 85% finish, back through the predecessor with the latest 85%
// finish, until an epic waits for no epic with open work. Ties go to the
// earlier epic in the caller's order. Only epics with open work take part.
std::vector<std::size_t> longestChainIndices(const std::vector<std::optional<double>>& p85Periods,
                                             const std::vector<std::vector<std::size_t>>& predecessors) {
  const auto latestOf = [&](const auto& candidates) {
    std::optional<std::size_t> best;
    for (const std::size_t k : candidates) {
      if (!p85Periods[k]) continue;
      if (!best || *p85Periods[k] > *p85Periods[*best] || (*p85Periods[k] == *p85Periods[*best] && k < *best)) {
        best = k;
      }
    }
    return best;
  };
  std::vector<std::size_t> all(p85Periods.size());
  for (std::size_t k = 0; k < all.size(); ++k) all[k] = k;

  std::vector<std::size_t> chain;
  std::vector<bool> onChain(p85Periods.size(), false);
  for (std::optional<std::size_t> k = latestOf(all); k && !onChain[*k]; k = latestOf(predecessors[*k])) {
    chain.push_back(*k);
    onChain[*k] = true;  // stops the walk on a cycle
  }
  std::reverse(chain.begin(), chain.end());
  return chain;
}

}  // namespace

bool EpicSchedule::isAtRisk() const {
  // An epic is at risk when it has a due day and open work, and either fewer
  // than 85% of the simulated futures meet the due day or its 85% date passes
  // it.
  if (!dueDay || open <= 0) return false;
  return chanceByDue.value_or(100.0) < 85.0 || p85SlipDays.value_or(0) > 0;
}

std::vector<Uuid> topologicalOrder(const std::vector<RoadmapEpicNode>& epics) {
  const auto predecessors = predecessorIndices(epics, indexById(epics));
  std::vector<Uuid> order;
  order.reserve(epics.size());
  for (const std::size_t k : topologicalIndices(predecessors)) order.push_back(epics[k].id);
  return order;
}

RoadmapForecast evaluateRoadmap(const RoadmapForecastInput& input, std::size_t workers) {
  const std::vector<RoadmapEpicNode>& epics = input.epics;
  const std::size_t n = epics.size();
  const std::vector<double> samples = ThroughputHistory::samples(input.history);
  const auto indexOf = indexById(epics);
  const auto predecessors = predecessorIndices(epics, indexOf);

  RoadmapForecast forecast;
  forecast.asOf = input.asOf;
  forecast.iterations = ForecastSettings::iterations;
  forecast.history = input.history;

  std::vector<std::size_t> withWork;
  for (std::size_t k = 0; k < n; ++k) {
    if (epics[k].open >= 1) withWork.push_back(k);
  }

  // Own durations. The runs are independent and each fills only its own
  // slot, so the number of workers cannot change any result. finishes[k]
  // stays empty for an epic with nothing open. Threads left over when there
  // are fewer epics than workers go to each epic's own run.
  const std::size_t threadsPerRun = std::max<std::size_t>(1, workers / std::max<std::size_t>(1, withWork.size()));
  std::vector<std::vector<double>> finishes(n);
  std::vector<char> inconclusive(n, 0);
  std::vector<std::exception_ptr> failures(n);
  parallelFor(withWork.size(), workers, [&](std::size_t j) {
    const std::size_t k = withWork[j];
    try {
      const std::uint64_t seed = deriveSeed(samples, epics[k].open) + (k + 1) * goldenRatioStep;
      const ForecastResult run = MonteCarlo::run(samples, epics[k].open, ForecastSettings::iterations,
                                                 ForecastSettings::maxPeriods, seed, std::nullopt, threadsPerRun);
      finishes[k].assign(run.periodsDistribution.begin(), run.periodsDistribution.end());
      inconclusive[k] = run.inconclusive;
    } catch (...) {
      failures[k] = std::current_exception();
    }
  });
  // The failure a serial run would have met first.
  for (const std::size_t k : withWork) {
    if (failures[k]) std::rethrow_exception(failures[k]);
    forecast.inconclusive = forecast.inconclusive || inconclusive[k];
  }

  // Finish times, in place over the durations: in each simulated future an
  // epic starts at its planned start or when the last of its predecessors is
  // done, whichever is later. An epic with nothing open finishes at 0, which
  // never delays a start, so only predecessors with work are looked at; one
  // not finished yet in this order can only sit on a cycle and is passed over.
  const auto iterations = static_cast<std::size_t>(ForecastSettings::iterations);
  std::vector<double> startAt(withWork.empty() ? 0 : iterations);
  std::vector<bool> finished(n, false);
  for (const std::size_t k : topologicalIndices(predecessors)) {
    if (finishes[k].empty()) continue;
    const double plannedStart = static_cast<double>(std::max<std::int64_t>(epics[k].startOffsetDays, 0)) / 7.0;
    std::fill(startAt.begin(), startAt.end(), plannedStart);
    for (const std::size_t p : predecessors[k]) {
      if (!finished[p]) continue;
      const double* before = finishes[p].data();
      for (std::size_t t = 0; t < iterations; ++t) startAt[t] = std::max(startAt[t], before[t]);
    }
    double* finish = finishes[k].data();
    for (std::size_t t = 0; t < iterations; ++t) finish[t] += startAt[t];
    finished[k] = true;
  }

  // The project is done, in each simulated future, when its last epic is.
  std::vector<double> projectFinishes;
  if (!withWork.empty()) {
    projectFinishes.assign(iterations, 0.0);
    for (const std::size_t k : withWork) {
      const double* finish = finishes[k].data();
      for (std::size_t t = 0; t < iterations; ++t) projectFinishes[t] = std::max(projectFinishes[t], finish[t]);
    }
  }

  // Everything from here on reads the finish times only as sorted lists.
  parallelFor(withWork.size() + 1, workers, [&](std::size_t j) {
    std::vector<double>& values = j < withWork.size() ? finishes[withWork[j]] : projectFinishes;
    sortFinishes(values);
  });

  std::vector<std::optional<double>> p85Periods(n);
  for (std::size_t k = 0; k < n; ++k) {
    const RoadmapEpicNode& epic = epics[k];
    EpicSchedule schedule;
    schedule.id = epic.id;
    schedule.open = epic.open;
    schedule.dueDay = epic.dueDay;
    const std::vector<double>& sorted = finishes[k];
    if (sorted.empty()) {
      if (epic.dueDay) schedule.chanceByDue = 100.0;
    } else {
      p85Periods[k] = percentile(sorted, 85);
      schedule.p50 = forecastDate(input.asOf, percentile(sorted, 50), ForecastSettings::periodDays);
      schedule.p85 = forecastDate(input.asOf, *p85Periods[k], ForecastSettings::periodDays);
      if (epic.dueDay) {
        schedule.chanceByDue = shareWithin(sorted, epic.dueDay->daysSince(input.asOf));
        schedule.p85SlipDays = schedule.p85->daysSince(*epic.dueDay);  // positive when late
      }
    }
    forecast.epics.insert_or_assign(epic.id, schedule);
  }

  for (const std::size_t k : longestChainIndices(p85Periods, predecessors)) {
    forecast.longestChain.push_back(epics[k].id);
    forecast.epics[epics[k].id].isOnLongestChain = true;
  }

  // With no epic at work the project is done today at every level.
  for (const int level : confidenceLevels) {
    forecast.projectDates[level] =
        projectFinishes.empty()
            ? input.asOf
            : forecastDate(input.asOf, percentile(projectFinishes, level), ForecastSettings::periodDays);
  }

  // A milestone that is done is certain. One tied to no epic of the roadmap
  // has nothing to wait for: it is met unless its day has passed. Otherwise
  // it is met in the futures where its epic is done by its day, which is all
  // of them for an epic with nothing open.
  for (const RoadmapMilestoneNode& milestone : input.milestones) {
    double chance;
    const auto epic = milestone.epicID ? indexOf.find(*milestone.epicID) : indexOf.end();
    if (milestone.isDone) {
      chance = 100.0;
    } else if (epic == indexOf.end()) {
      chance = milestone.day >= input.asOf ? 100.0 : 0.0;
    } else {
      chance = shareWithin(finishes[epic->second], milestone.day.daysSince(input.asOf));
    }
    forecast.milestoneChances.insert_or_assign(milestone.id, chance);
  }
  return forecast;
}

RoadmapForecast RoadmapForecastInput::run() const {
  return evaluateRoadmap(*this, engineThreads());
}

}  // namespace orvane
