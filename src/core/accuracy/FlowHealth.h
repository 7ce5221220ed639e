#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/metrics/FlowMetrics.h"
#include "core/reports/WIPBreach.h"
#include "engine/Timestamp.h"

namespace orvane {

struct ProjectSnapshot;

// The last four weeks' throughput against the four before.
enum class ThroughputTrend { up, level, down };

std::string_view rawValue(ThroughputTrend trend);      // "up", "level", "down"
std::string_view displayLabel(ThroughputTrend trend);  // "Rising", "Steady", "Falling"

// The trend of a recent rate against a prior one: with no prior work, up
// when there is any recent work, else level; otherwise up above 1.2 x prior,
// down below 0.8 x prior (both bounds strict), else level.
ThroughputTrend throughputTrend(double recent, double prior);

// A one-screen verdict on the project's recent flow. Weeks are the UTC
// weeks of the forecast's history, ending today.
struct FlowHealth {
  double recentThroughput = 0;  // tickets a week, the last four weeks
  double priorThroughput = 0;   // tickets a week, the four weeks before
  ThroughputTrend trend = ThroughputTrend::level;
  std::optional<CycleTimeSummary> cycle;  // tickets finished in the last 12 weeks
  std::int64_t inProgress = 0;
  std::int64_t ageingOverP85 = 0;  // in progress for longer than cycle->p85; 0 without a cycle
  std::vector<WIPBreach> wipBreaches;
  std::int64_t realWeeks = 0;  // HistoryDepth::realWeeks of the 12 weeks ending today
  // Throughput, cycle time, ageing, one per WIP breach, and a caution when
  // real history is thin (HistoryDepth::cautionBelowWeeks).
  std::vector<std::string> notes;

  friend bool operator==(const FlowHealth&, const FlowHealth&) = default;
};

// Today is the UTC day of `now`. Throws UnsupportedDateError when the
// project holds a date outside the supported range.
FlowHealth flowHealth(const ProjectSnapshot& project, Timestamp now);

}  // namespace orvane
