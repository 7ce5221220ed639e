#include "core/metrics/FlowAnalysis.h"

#include <cmath>
#include <cstdio>

#include "core/model/ProjectSnapshot.h"

namespace orvane::FlowAnalyses {
namespace {

std::string oneDecimal(double value) {
  char text[64];
  std::snprintf(text, sizeof text, "%.1f", value);
  return text;
}

std::int64_t countOn(std::span<const FlowTicket> tickets, std::optional<Timestamp> FlowTicket::*when, CivilDate from,
                     CivilDate to) {
  std::int64_t count = 0;
  for (const FlowTicket& ticket : tickets) {
    if (!(ticket.*when)) continue;
    const CivilDate day = CivilDate::fromUtc(*(ticket.*when));
    count += (!(day < from) && !(to < day)) ? 1 : 0;
  }
  return count;
}

BehaviourMeasure measure(std::string name, const std::vector<double>& values, std::vector<std::string> labels) {
  BehaviourMeasure m;
  m.name = std::move(name);
  m.labels = std::move(labels);
  m.chart = xmrChart(values);
  m.sentences = xmrSentences(m.chart, m.name, m.labels);
  return m;
}

}  // namespace

std::vector<WeekFlow> arrivalsAndDepartures(std::span<const FlowTicket> tickets, CivilDate asOf, std::int64_t weeks) {
  std::vector<WeekFlow> result;
  std::int64_t gap = 0;
  // The throughput's weeks, so departures equal its counts.
  for (const WeekThroughput& week : FlowMetrics::weeklyThroughput(tickets, asOf, weeks)) {
    WeekFlow flow{week.start, week.end, countOn(tickets, &FlowTicket::startedAt, week.start, week.end), week.count, 0};
    gap += flow.arrivals - flow.departures;
    flow.gap = gap;
    result.push_back(flow);
  }
  return result;
}

std::optional<std::int64_t> wipLimitSum(const ProjectSnapshot& project) {
  std::optional<std::int64_t> sum;
  for (const BoardColumn& column : project.columns) {
    if (column.type() == ColumnType::inProgress && column.wipLimit) sum = sum.value_or(0) + *column.wipLimit;
  }
  return sum;
}

LittlesLaw littlesLaw(std::span<const FlowTicket> tickets, const FlowRange& range) {
  LittlesLaw law;
  law.range = range;
  law.throughputPerDay = static_cast<double>(range.departures) / static_cast<double>(range.days);
  if (range.departures > 0) law.impliedCycleDays = range.averageWip / law.throughputPerDay;
  double sum = 0;
  std::int64_t count = 0;
  for (const FlowTicket& ticket : tickets) {
    if (!ticket.completedAt || !ticket.cycleDays) continue;
    const CivilDate day = CivilDate::fromUtc(*ticket.completedAt);
    if (day < range.from || range.to < day) continue;
    sum += *ticket.cycleDays;
    ++count;
  }
  if (count > 0) law.averageCycleDays = sum / static_cast<double>(count);
  if (law.impliedCycleDays && law.averageCycleDays && *law.averageCycleDays > 0)
    law.gapPct = std::abs(*law.impliedCycleDays - *law.averageCycleDays) / *law.averageCycleDays * 100;
  return law;
}

std::string littlesLawSentence(const LittlesLaw& law) {
  if (!law.gapPct) {
    return "Little's law cannot be checked over these days: it needs tickets that were started and finished in "
           "them.";
  }
  const std::string figures =
      oneDecimal(law.range.averageWip) + " tickets in progress at " + oneDecimal(law.throughputPerDay) +
      " finished a day imply " + oneDecimal(*law.impliedCycleDays) +
      " days per ticket, against an average cycle time of " + oneDecimal(*law.averageCycleDays) + " days";
  const std::string gap = oneDecimal(*law.gapPct) + "%";
  if (law.stable()) {
    return "Little's law holds over these days: " + figures + ", a gap of " + gap +
           ". The flow is stable, so forecasts drawn from its throughput rest on firm ground.";
  }
  if (*law.impliedCycleDays > *law.averageCycleDays) {
    return "Little's law is off by " + gap + " over these days: " + figures +
           ". Work in progress is piling up faster than it is finished, so the flow is not stable and forecasts "
           "drawn from this throughput are likely too optimistic.";
  }
  return "Little's law is off by " + gap + " over these days: " + figures +
         ". Old work is being cleared or work in progress is shrinking, so the flow is not stable and forecasts "
         "drawn from this throughput may not hold once that ends.";
}

std::string predictabilitySentence(const std::optional<CycleTimeSummary>& summary) {
  if (!summary) return "No ticket has finished in these weeks, so how predictable cycle time is cannot be said.";
  if (summary->p50 <= 0) {
    return "Half of the tickets finished in no time, so the ratio of the 85% to the 50% cycle time says nothing.";
  }
  const double ratio = summary->p85 / summary->p50;
  const std::string figures = "the 85% cycle time (" + oneDecimal(summary->p85) + " days) is " + oneDecimal(ratio) +
                              " times the median (" + oneDecimal(summary->p50) + " days)";
  if (ratio <= 2) {
    return "Cycle time is predictable: " + figures + ", so a promise of " + oneDecimal(summary->p85) +
           " days per ticket holds 85% of the time with little padding.";
  }
  if (ratio <= 3) {
    return "Cycle time is fairly predictable: " + figures +
           "; promise by the 85% figure, never by the median, which half of the tickets take longer than.";
  }
  return "Cycle time is unpredictable: " + figures +
         ", so a few tickets take far longer than most; promises made at the median will often be broken, and even "
         "the 85% figure is fragile until the slow tickets are understood.";
}

FlowAnalysis analyse(std::span<const FlowTicket> tickets, const FlowScreen::Figures& figures,
                     std::optional<std::int64_t> limitSum, CivilDate projectBegan) {
  FlowAnalysis a;
  a.weeks = arrivalsAndDepartures(tickets, figures.today, figures.weeks);
  a.wipLimitSum = limitSum;

  std::vector<double> finished, started, wip, days;
  std::vector<std::string> weekLabels, dayLabels, references;
  for (const WeekFlow& week : a.weeks) {
    if (week.end < projectBegan) continue;
    finished.push_back(static_cast<double>(week.departures));
    started.push_back(static_cast<double>(week.arrivals));
    weekLabels.push_back("the week ending " + week.end.displayShort());
  }
  for (const FlowDay& day : figures.cumulative) {
    if (day.date < projectBegan) continue;
    wip.push_back(static_cast<double>(day.inProgress));
    dayLabels.push_back(day.date.displayShort());
  }
  for (const CycleTimePoint& point : figures.cyclePoints) {
    days.push_back(point.days);
    references.push_back(point.reference);
  }
  a.throughput = measure("Weekly throughput", finished, weekLabels);
  a.arrivals = measure("Weekly arrivals", started, weekLabels);
  a.wip = measure("Daily work in progress", wip, dayLabels);
  a.cycleTime = measure("Cycle time", days, references);

  if (!figures.cumulative.empty()) {
    const std::optional<FlowRange> range =
        flowRange(tickets, figures.cumulative.front().date, figures.cumulative.back().date);
    if (range) a.littlesLaw = littlesLaw(tickets, *range);
  }
  a.littlesLawSentence = littlesLawSentence(a.littlesLaw);
  a.predictabilitySentence = predictabilitySentence(figures.summary);
  return a;
}

}  // namespace orvane::FlowAnalyses
