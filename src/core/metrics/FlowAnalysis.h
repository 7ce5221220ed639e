#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/metrics/FlowRange.h"
#include "core/metrics/FlowScreen.h"
#include "core/metrics/ProcessBehaviour.h"

namespace orvane {

struct ProjectSnapshot;

// Tickets started and finished in one of the engine's weeks, and the running
// gap: started minus finished, summed from the first week shown. A gap that
// keeps growing is work in progress piling up.
struct WeekFlow {
  CivilDate start;
  CivilDate end;
  std::int64_t arrivals = 0;    // startedAt on one of the week's UTC days
  std::int64_t departures = 0;  // completedAt on one of them (the week's throughput)
  std::int64_t gap = 0;

  friend bool operator==(const WeekFlow&, const WeekFlow&) = default;
};

// Little's law over a range: average WIP = throughput x average cycle time,
// when the flow is stable. The cycle time it implies is compared with the
// average cycle time of the tickets finished in the range.
struct LittlesLaw {
  FlowRange range;
  double throughputPerDay = 0;             // departures / days
  std::optional<double> impliedCycleDays;  // averageWip / throughputPerDay; absent without departures
  std::optional<double> averageCycleDays;  // of tickets finished in the range with a cycle time
  std::optional<double> gapPct;            // |implied - average| / average x 100, when both exist and average > 0
  bool stable() const { return gapPct && *gapPct <= 20; }

  friend bool operator==(const LittlesLaw&, const LittlesLaw&) = default;
};

// One measure on a process behaviour chart: its values in order, what each
// is called in a sentence, the chart (absent below two values) and its
// signals in words.
struct BehaviourMeasure {
  std::string name;  // "Weekly throughput"
  std::vector<std::string> labels;
  std::optional<XmRChart> chart;
  std::vector<std::string> sentences;

  friend bool operator==(const BehaviourMeasure&, const BehaviourMeasure&) = default;
};

// What the flow says beyond the four tiles, over the same W weeks.
struct FlowAnalysis {
  std::vector<WeekFlow> weeks;
  std::optional<std::int64_t> wipLimitSum;  // see wipLimitSum()
  BehaviourMeasure throughput;              // tickets finished per week
  BehaviourMeasure arrivals;                // tickets started per week
  BehaviourMeasure wip;                     // in progress at the end of each day (the cumulative flow's in progress)
  BehaviourMeasure cycleTime;               // each finished ticket's days, in order of finishing
  LittlesLaw littlesLaw;                    // over the whole 7 x W days
  std::string littlesLawSentence;
  std::string predictabilitySentence;

  friend bool operator==(const FlowAnalysis&, const FlowAnalysis&) = default;
};

namespace FlowAnalyses {

std::vector<WeekFlow> arrivalsAndDepartures(std::span<const FlowTicket> tickets, CivilDate asOf, std::int64_t weeks);

// The sum of the WIP limits of the in-progress columns that have one;
// absent when none has.
std::optional<std::int64_t> wipLimitSum(const ProjectSnapshot& project);

LittlesLaw littlesLaw(std::span<const FlowTicket> tickets, const FlowRange& range);
// Whether the law holds within 20%, and what a larger gap means for the
// forecasts.
std::string littlesLawSentence(const LittlesLaw& law);

// The ratio of the 85% to the 50% cycle time, and what it means for
// promises: predictable up to 2, fairly predictable up to 3, unpredictable
// above.
std::string predictabilitySentence(const std::optional<CycleTimeSummary>& summary);

// The process behaviour charts of throughput, arrivals and WIP take only
// the weeks and days from `projectBegan` (the project's first UTC day) on:
// before it the zeros come from no process, and would put every later value
// beyond the limits.
FlowAnalysis analyse(std::span<const FlowTicket> tickets, const FlowScreen::Figures& figures,
                     std::optional<std::int64_t> wipLimitSum, CivilDate projectBegan);

}  // namespace FlowAnalyses
}  // namespace orvane
