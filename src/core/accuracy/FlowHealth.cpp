#include "core/accuracy/FlowHealth.h"

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <span>

#include "core/accuracy/HistoryDepth.h"
#include "core/model/ProjectSnapshot.h"
#include "core/model/SupportedDates.h"

namespace orvane {
namespace {

constexpr std::int64_t historyWeeks = 12;
constexpr std::size_t sliceWeeks = 4;

std::string oneDecimal(double value) {
  char text[64];
  std::snprintf(text, sizeof text, "%.1f", value);
  return text;
}

std::string plural(std::int64_t n, std::string_view noun) {
  return std::to_string(n) + " " + std::string(noun) + (n == 1 ? "" : "s");
}

double weeklyRate(std::span<const WeekThroughput> weeks) {
  const std::int64_t sum = std::accumulate(weeks.begin(), weeks.end(), std::int64_t{0},
                                           [](std::int64_t total, const WeekThroughput& w) { return total + w.count; });
  return static_cast<double>(sum) / static_cast<double>(std::max<std::size_t>(weeks.size(), 1));
}

std::string throughputNote(const FlowHealth& h) {
  const std::string recent = oneDecimal(h.recentThroughput);
  const std::string prior = oneDecimal(h.priorThroughput);
  switch (h.trend) {
    case ThroughputTrend::up:
    case ThroughputTrend::down:
      return std::string(h.trend == ThroughputTrend::up ? "Throughput is rising: " : "Throughput is falling: ") +
             recent + " tickets a week over the last four weeks, against " + prior + " in the four before.";
    case ThroughputTrend::level:
      break;
  }
  return "Throughput is steady at about " + recent + " tickets a week over the last four weeks (" + prior +
         " in the four before).";
}

std::string cycleNote(const std::optional<CycleTimeSummary>& cycle) {
  if (!cycle) return "No ticket has finished in the last 12 weeks, so there is no cycle time yet.";
  return "Half of the tickets finished in the last 12 weeks took " + oneDecimal(cycle->p50) +
         " days or less from start to finish, and 85% took " + oneDecimal(cycle->p85) + " days or less (" +
         plural(cycle->count, "ticket") + ").";
}

// "Work item age shows N of the M tickets in progress to be older ...": the
// infinitive keeps the fixed ending grammatical for one ticket and for many.
std::string ageingNote(const FlowHealth& h) {
  if (h.ageingOverP85 == 0) return "No in-progress ticket is older than 85% of finished work.";
  return "Work item age shows " + std::to_string(h.ageingOverP85) + " of the " + plural(h.inProgress, "ticket") +
         " in progress to be older than 85% of finished work and probably need attention.";
}

}  // namespace

std::string_view rawValue(ThroughputTrend trend) {
  switch (trend) {
    case ThroughputTrend::up:
      return "up";
    case ThroughputTrend::level:
      return "level";
    case ThroughputTrend::down:
      return "down";
  }
  return "level";
}

std::string_view displayLabel(ThroughputTrend trend) {
  switch (trend) {
    case ThroughputTrend::up:
      return "Rising";
    case ThroughputTrend::level:
      return "Steady";
    case ThroughputTrend::down:
      return "Falling";
  }
  return "Steady";
}

ThroughputTrend throughputTrend(double recent, double prior) {
  if (prior == 0) return recent > 0 ? ThroughputTrend::up : ThroughputTrend::level;
  if (recent > 1.2 * prior) return ThroughputTrend::up;
  if (recent < 0.8 * prior) return ThroughputTrend::down;
  return ThroughputTrend::level;
}

FlowHealth flowHealth(const ProjectSnapshot& project, Timestamp now) {
  requireSupportedDates(project);
  const CivilDate today = CivilDate::fromUtc(now);
  const std::vector<FlowTicket> tickets = flowTickets(project);
  FlowHealth h;

  const std::vector<WeekThroughput> weeks = FlowMetrics::weeklyThroughput(tickets, today, historyWeeks);
  const std::span<const WeekThroughput> all(weeks);
  const std::size_t recentCount = std::min(sliceWeeks, all.size());
  const std::size_t priorCount = std::min(sliceWeeks, all.size() - recentCount);
  h.recentThroughput = weeklyRate(all.last(recentCount));
  h.priorThroughput = weeklyRate(all.first(all.size() - recentCount).last(priorCount));
  h.trend = throughputTrend(h.recentThroughput, h.priorThroughput);

  // The last 12 weeks including today.
  const Timestamp since = today.addingDays(-(historyWeeks * 7 - 1)).utcMidnight();
  h.cycle = FlowMetrics::summary(FlowMetrics::cycleTimes(tickets, since));

  const std::vector<AgePoint> ages = FlowMetrics::ages(tickets, now);
  h.inProgress = static_cast<std::int64_t>(ages.size());
  if (h.cycle) {
    h.ageingOverP85 =
        std::count_if(ages.begin(), ages.end(), [&](const AgePoint& age) { return age.ageDays > h.cycle->p85; });
  }
  h.wipBreaches = wipBreaches(project);
  h.realWeeks = HistoryDepth::realWeeks(project, today);

  h.notes.push_back(throughputNote(h));
  h.notes.push_back(cycleNote(h.cycle));
  h.notes.push_back(ageingNote(h));
  for (const WIPBreach& breach : h.wipBreaches) {
    h.notes.push_back(breach.columnName + " holds " + std::to_string(breach.count) + " tickets against a limit of " +
                      std::to_string(breach.limit) + ".");
  }
  if (h.realWeeks < HistoryDepth::cautionBelowWeeks) {
    h.notes.push_back("Only " + plural(h.realWeeks, "week") +
                      " of real history exist, so read the trends with caution.");
  }
  return h;
}

}  // namespace orvane
