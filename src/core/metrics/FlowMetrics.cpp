#include "core/metrics/FlowMetrics.h"

#include <algorithm>
#include <unordered_map>

#include "core/model/ProjectSnapshot.h"
#include "engine/ColdStart.h"
#include "engine/Percentile.h"

namespace orvane {

namespace {
constexpr double secondsPerDay = 86400.0;
constexpr std::int64_t daysPerWeek = 7;
}  // namespace

std::vector<FlowTicket> flowTickets(const ProjectSnapshot& project) {
  std::unordered_map<Uuid, bool> inProgressColumns;
  inProgressColumns.reserve(project.columns.size());
  for (const BoardColumn& column : project.columns) {
    inProgressColumns.emplace(column.id, column.type() == ColumnType::inProgress);
  }

  std::vector<FlowTicket> result;
  result.reserve(project.tickets.size());
  for (const Ticket& ticket : project.tickets) {
    if (ticket.isArchived()) continue;
    FlowTicket flow;
    flow.id = ticket.id;
    flow.reference = project.referenceCode(ticket);
    flow.title = ticket.title;
    flow.createdAt = ticket.createdAt;
    flow.startedAt = ticket.startedAt;
    flow.completedAt = ticket.completedAt;
    flow.cycleDays = ticket.flow().cycleTimeDays();
    if (ticket.columnId) {
      // A column that is gone, or of an unknown type, is not in progress.
      const auto it = inProgressColumns.find(*ticket.columnId);
      flow.inProgressNow = it != inProgressColumns.end() && it->second;
    }
    result.push_back(std::move(flow));
  }
  return result;
}

namespace FlowMetrics {

std::vector<WeekThroughput> weeklyThroughput(std::span<const FlowTicket> tickets, CivilDate asOf, std::int64_t weeks) {
  if (weeks < 1) return {};
  std::vector<std::int64_t> days;
  days.reserve(tickets.size());
  for (const FlowTicket& ticket : tickets) {
    if (ticket.completedAt) days.push_back(CivilDate::fromUtc(*ticket.completedAt).daysSinceEpoch());
  }
  std::sort(days.begin(), days.end());

  std::vector<WeekThroughput> result;
  const std::vector<PeriodWindow> windows = ColdStart::windows(asOf, weeks, daysPerWeek);
  result.reserve(windows.size());
  for (const PeriodWindow& window : windows) {
    const auto first = std::lower_bound(days.begin(), days.end(), window.start.daysSinceEpoch());
    const auto last = std::upper_bound(first, days.end(), window.end.daysSinceEpoch());
    result.push_back({window.start, window.end, static_cast<std::int64_t>(last - first)});
  }
  return result;
}

std::vector<CycleTimePoint> cycleTimes(std::span<const FlowTicket> tickets, std::optional<Timestamp> since) {
  std::vector<CycleTimePoint> points;
  for (const FlowTicket& ticket : tickets) {
    if (!ticket.completedAt || !ticket.cycleDays) continue;
    if (since && *ticket.completedAt < *since) continue;
    points.push_back({ticket.id, ticket.reference, ticket.title, *ticket.completedAt, *ticket.cycleDays});
  }
  std::stable_sort(points.begin(), points.end(),
                   [](const CycleTimePoint& a, const CycleTimePoint& b) { return a.completedAt < b.completedAt; });
  return points;
}

std::optional<CycleTimeSummary> summary(std::span<const CycleTimePoint> points) {
  if (points.empty()) return std::nullopt;
  std::vector<double> days;
  days.reserve(points.size());
  for (const CycleTimePoint& point : points) days.push_back(point.days);
  std::sort(days.begin(), days.end());
  double sum = 0;
  for (const double d : days) sum += d;
  CycleTimeSummary result;
  result.count = static_cast<std::int64_t>(days.size());
  result.average = sum / static_cast<double>(days.size());
  result.p50 = percentile(days, 50);
  result.p70 = percentile(days, 70);
  result.p85 = percentile(days, 85);
  result.p95 = percentile(days, 95);
  return result;
}

std::vector<AgePoint> ages(std::span<const FlowTicket> tickets, Timestamp now) {
  std::vector<AgePoint> points;
  for (const FlowTicket& ticket : tickets) {
    if (!ticket.inProgressNow || ticket.completedAt || !ticket.startedAt) continue;
    const double age = std::max(0.0, (now.secondsSince1970 - ticket.startedAt->secondsSince1970) / secondsPerDay);
    points.push_back({ticket.id, ticket.reference, ticket.title, *ticket.startedAt, age});
  }
  std::stable_sort(points.begin(), points.end(),
                   [](const AgePoint& a, const AgePoint& b) { return a.ageDays > b.ageDays; });
  return points;
}

std::vector<FlowDay> cumulative(std::span<const FlowTicket> tickets, CivilDate asOf, std::int64_t days) {
  if (days < 1) return {};
  std::vector<FlowDay> result;
  result.reserve(static_cast<std::size_t>(days));
  for (std::int64_t i = 0; i < days; ++i) {
    FlowDay day;
    day.date = asOf.addingDays(-(days - 1 - i));
    const Timestamp boundary = day.date.addingDays(1).utcMidnight();
    for (const FlowTicket& ticket : tickets) {
      if (ticket.completedAt && *ticket.completedAt < boundary) {
        ++day.done;
      } else if (ticket.startedAt && *ticket.startedAt < boundary) {
        ++day.inProgress;
      } else if (ticket.createdAt < boundary) {
        ++day.backlog;
      }
    }
    result.push_back(day);
  }
  return result;
}

}  // namespace FlowMetrics
}  // namespace orvane
