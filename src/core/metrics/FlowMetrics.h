#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/metrics/FlowTicket.h"
#include "engine/CivilDate.h"

namespace orvane {

// Tickets finished in one rolling seven-day window, both ends inclusive.
struct WeekThroughput {
  CivilDate start;
  CivilDate end;
  std::int64_t count = 0;

  friend bool operator==(const WeekThroughput&, const WeekThroughput&) = default;
};

struct CycleTimePoint {
  Uuid id;
  std::string reference;
  std::string title;
  Timestamp completedAt;
  double days = 0;

  friend bool operator==(const CycleTimePoint&, const CycleTimePoint&) = default;
};

// In days.
struct CycleTimeSummary {
  std::int64_t count = 0;
  double average = 0;
  double p50 = 0;
  double p70 = 0;
  double p85 = 0;
  double p95 = 0;

  friend bool operator==(const CycleTimeSummary&, const CycleTimeSummary&) = default;
};

// How long one item in progress has been worked on.
struct AgePoint {
  Uuid id;
  std::string reference;
  std::string title;
  Timestamp startedAt;
  double ageDays = 0;  // never negative

  friend bool operator==(const AgePoint&, const AgePoint&) = default;
};

// The tickets in each state at the end of one UTC day.
struct FlowDay {
  CivilDate date;
  std::int64_t backlog = 0;
  std::int64_t inProgress = 0;
  std::int64_t done = 0;

  std::int64_t total() const { return backlog + inProgress + done; }

  friend bool operator==(const FlowDay&, const FlowDay&) = default;
};

// Flow measures over a list of FlowTicket. Days are UTC days; a week is one
// of the engine's rolling seven-day windows, so these weeks are the weeks of
// the forecast's throughput history.
namespace FlowMetrics {

// `weeks` windows of seven days, oldest first, the last ending on asOf; each
// counts the tickets whose completedAt falls on one of its UTC days. No
// windows (weeks < 1) gives an empty list.
std::vector<WeekThroughput> weeklyThroughput(std::span<const FlowTicket> tickets, CivilDate asOf, std::int64_t weeks);

// One point per finished ticket with a cycle time, finished at or after
// `since` when given; ascending by completedAt, ties in ticket order.
std::vector<CycleTimePoint> cycleTimes(std::span<const FlowTicket> tickets,
                                       std::optional<Timestamp> since = std::nullopt);

// Count, mean and the 50/70/85/95th percentiles (the engine's percentile) of
// the points' days; absent for no points.
std::optional<CycleTimeSummary> summary(std::span<const CycleTimePoint> points);

// Tickets in an in-progress column, started and not finished; oldest first,
// ties in ticket order. A start in the future is age 0.
std::vector<AgePoint> ages(std::span<const FlowTicket> tickets, Timestamp now);

// `days` days ending on asOf, oldest first. On each day a ticket counts as
// done, in progress or backlog by its stored dates before the following
// midnight (UTC), in that order of precedence; a ticket created later is not
// counted. days < 1 gives an empty list.
std::vector<FlowDay> cumulative(std::span<const FlowTicket> tickets, CivilDate asOf, std::int64_t days);

}  // namespace FlowMetrics
}  // namespace orvane
