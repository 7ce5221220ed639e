#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/metrics/FlowMetrics.h"

namespace orvane {

// Every figure of the Flow screen for one redraw, computed together so the
// four tiles and the charts always come from the same weeks.
namespace FlowScreen {

// The week counts the screen offers, and the one it opens with.
inline constexpr std::array<std::int64_t, 5> weekChoices{4, 8, 12, 26, 52};
inline constexpr std::int64_t defaultWeeks = 12;

inline constexpr std::string_view note =
    "Archived tickets are left out of every chart. Weeks are UTC weeks ending today, the same ones the forecast uses.";

struct Figures {
  CivilDate today;  // the UTC day of now
  std::int64_t weeks = 0;
  std::vector<WeekThroughput> throughput;
  std::vector<CycleTimePoint> cyclePoints;  // finished since the first day of the first week
  std::optional<CycleTimeSummary> summary;
  std::vector<AgePoint> ages;
  std::vector<FlowDay> cumulative;  // 7 x weeks days ending today

  // Sum of the weekly counts over the number of weeks; 0 with no weeks.
  double averageWeeklyThroughput() const;
};

Figures figures(std::span<const FlowTicket> tickets, Timestamp now, std::int64_t weeks);

// "%.1f d" below 10 days, "%.0f d" from 10.
std::string dayFigure(double days);

// Tile values: "Throughput" ("%.1f"), "Median cycle time" and "P85 cycle
// time" (a day figure, or an en dash without a summary), "In progress" (the
// number of age points) and its caption ("oldest " and the first point's
// age, or "nothing started").
std::string throughputTile(const Figures& figures);
std::string medianCycleTimeTile(const Figures& figures);
std::string p85CycleTimeTile(const Figures& figures);
std::string inProgressTile(const Figures& figures);
std::string inProgressCaption(const Figures& figures);

}  // namespace FlowScreen
}  // namespace orvane
