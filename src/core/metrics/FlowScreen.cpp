#include "core/metrics/FlowScreen.h"

#include <cstdio>

namespace orvane::FlowScreen {

namespace {

constexpr std::string_view enDash = "\u2013";

std::string formatted(const char* format, double value) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, format, value);
  return buffer;
}

}  // namespace

double Figures::averageWeeklyThroughput() const {
  if (throughput.empty()) return 0;
  std::int64_t sum = 0;
  for (const WeekThroughput& week : throughput) sum += week.count;
  return static_cast<double>(sum) / static_cast<double>(throughput.size());
}

Figures figures(std::span<const FlowTicket> tickets, Timestamp now, std::int64_t weeks) {
  Figures result;
  result.today = CivilDate::fromUtc(now);
  result.weeks = weeks;
  result.throughput = FlowMetrics::weeklyThroughput(tickets, result.today, weeks);
  // The first day of the first week.
  const Timestamp since = result.today.addingDays(-(7 * weeks - 1)).utcMidnight();
  result.cyclePoints = FlowMetrics::cycleTimes(tickets, since);
  result.summary = FlowMetrics::summary(result.cyclePoints);
  result.ages = FlowMetrics::ages(tickets, now);
  result.cumulative = FlowMetrics::cumulative(tickets, result.today, 7 * weeks);
  return result;
}

std::string dayFigure(double days) { return formatted(days < 10 ? "%.1f d" : "%.0f d", days); }

std::string throughputTile(const Figures& figures) { return formatted("%.1f", figures.averageWeeklyThroughput()); }

std::string medianCycleTimeTile(const Figures& figures) {
  return figures.summary ? dayFigure(figures.summary->p50) : std::string(enDash);
}

std::string p85CycleTimeTile(const Figures& figures) {
  return figures.summary ? dayFigure(figures.summary->p85) : std::string(enDash);
}

std::string inProgressTile(const Figures& figures) { return std::to_string(figures.ages.size()); }

std::string inProgressCaption(const Figures& figures) {
  return figures.ages.empty() ? "nothing started" : "oldest " + dayFigure(figures.ages.front().ageDays);
}

}  // namespace orvane::FlowScreen
