#include "core/metrics/FlowRange.h"

#include <cstdio>

#include "core/metrics/FlowMetrics.h"

namespace orvane {
namespace {

std::string oneDecimal(double value) {
  char text[64];
  std::snprintf(text, sizeof text, "%.1f", value);
  return text;
}

bool within(const std::optional<Timestamp>& instant, CivilDate from, CivilDate to) {
  if (!instant) return false;
  const CivilDate day = CivilDate::fromUtc(*instant);
  return !(day < from) && !(to < day);
}

}  // namespace

std::optional<FlowRange> flowRange(std::span<const FlowTicket> tickets, CivilDate from, CivilDate to) {
  if (to < from) return std::nullopt;
  FlowRange range;
  range.from = from;
  range.to = to;
  range.days = to.daysSince(from) + 1;
  std::int64_t wipDays = 0;
  for (const FlowDay& day : FlowMetrics::cumulative(tickets, to, range.days)) wipDays += day.inProgress;
  range.averageWip = static_cast<double>(wipDays) / static_cast<double>(range.days);
  for (const FlowTicket& ticket : tickets) {
    range.arrivals += within(ticket.startedAt, from, to) ? 1 : 0;
    range.departures += within(ticket.completedAt, from, to) ? 1 : 0;
  }
  return range;
}

std::string flowRangeSentence(const FlowRange& r) {
  const std::string from = r.from.year == r.to.year ? r.from.displayShort() : r.from.displayText();
  return "From " + from + " to " + r.to.displayText() + " (" + std::to_string(r.days) +
         (r.days == 1 ? " day" : " days") + "): on average " + oneDecimal(r.averageWip) + " tickets in progress; " +
         oneDecimal(r.arrivalsPerWeek()) + " started and " + oneDecimal(r.departuresPerWeek()) + " finished a week.";
}

}  // namespace orvane
