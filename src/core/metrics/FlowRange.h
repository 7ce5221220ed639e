#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "core/metrics/FlowTicket.h"
#include "engine/CivilDate.h"

namespace orvane {

// The flow over a range of whole UTC days, both ends included: how much
// work was in progress on average, and how fast work entered progress and
// left it. What the cumulative flow chart says about a range chosen on it.
struct FlowRange {
  CivilDate from;
  CivilDate to;
  std::int64_t days = 0;        // to - from + 1
  double averageWip = 0;        // mean of the daily in-progress counts (as the cumulative flow counts them)
  std::int64_t arrivals = 0;    // tickets whose startedAt falls on one of the days
  std::int64_t departures = 0;  // tickets whose completedAt falls on one of the days

  double arrivalsPerWeek() const { return static_cast<double>(arrivals) * 7 / static_cast<double>(days); }
  double departuresPerWeek() const { return static_cast<double>(departures) * 7 / static_cast<double>(days); }

  friend bool operator==(const FlowRange&, const FlowRange&) = default;
};

// Absent when `to` is before `from`.
std::optional<FlowRange> flowRange(std::span<const FlowTicket> tickets, CivilDate from, CivilDate to);

// "From 3 Feb to 24 Feb 2026 (22 days): on average 4.2 tickets in progress;
// 2.1 started and 1.8 finished a week."
std::string flowRangeSentence(const FlowRange& range);

}  // namespace orvane
