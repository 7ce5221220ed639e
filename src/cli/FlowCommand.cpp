#include "cli/FlowCommand.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "cli/CliError.h"
#include "cli/ForecastJson.h"
#include "cli/OptionParser.h"
#include "cli/ProjectLookup.h"
#include "cli/StoreAccess.h"
#include "cli/TextLayout.h"
#include "core/metrics/FlowAnalysis.h"
#include "core/metrics/FlowScreen.h"

namespace orvane::cli {
namespace {

using nlohmann::json;

constexpr std::string_view flowUsage =
    "Usage: orvane-cli flow PROJECT [--weeks W] [--json]\n"
    "\n"
    "Shows how work flows through PROJECT (its name or its ticket key) over the\n"
    "W weeks ending today (UTC) or on --now: throughput per week, cycle time of\n"
    "each finished ticket with its percentiles, the age of the work in progress\n"
    "and the cumulative flow of backlog, in progress and done per day; then\n"
    "tickets started against finished per week, process behaviour charts of\n"
    "weekly throughput, weekly arrivals, daily work in progress and cycle time\n"
    "with their signals, Little's law over the weeks and how predictable cycle\n"
    "time is.\n"
    "\n"
    "  --weeks W  4, 8, 12, 26 or 52 (default 12)\n"
    "  --json     print one JSON object: {project, asOf, weeks, tiles,\n"
    "             averageWeeklyThroughput, weeklyThroughput, cycleTimes, summary,\n"
    "             ages, cumulative, note, arrivalsDepartures, wipRun,\n"
    "             processBehaviour, littlesLaw, predictability}\n"
    "  --help     print this text\n";

constexpr OptionSpec flowSpecs[] = {{"--weeks", true}, {"--json", false}, {"--help", false}};

std::int64_t weeksOption(const ParsedOptions& parsed) {
  const auto text = parsed.value("--weeks");
  if (!text) return FlowScreen::defaultWeeks;
  for (const std::int64_t choice : FlowScreen::weekChoices) {
    if (*text == std::to_string(choice)) return choice;
  }
  throw CliError("--weeks must be 4, 8, 12, 26 or 52.");
}

std::string oneDecimal(double value) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.1f", value);
  return buffer;
}

json optionalNumber(const std::optional<CycleTimeSummary>& summary, double CycleTimeSummary::*field) {
  return summary ? json(*summary.*field) : json(nullptr);
}

json optionalJson(const std::optional<double>& value) { return value ? json(*value) : json(nullptr); }

json measureJson(const BehaviourMeasure& m) {
  json chart = nullptr;
  if (m.chart) {
    json signals = json::array();
    for (const XmRSignal& s : m.chart->detected) {
      signals.push_back({{"kind", rawValue(s.kind)}, {"first", s.first}, {"last", s.last}, {"above", s.above}});
    }
    chart = {{"values", m.chart->values},
             {"mean", m.chart->mean},
             {"movingRanges", m.chart->movingRanges},
             {"averageMovingRange", m.chart->averageMovingRange},
             {"upperLimit", m.chart->upperLimit},
             {"lowerLimit", m.chart->lowerLimit},
             {"movingRangeLimit", m.chart->movingRangeLimit},
             {"signals", std::move(signals)}};
  }
  return {{"name", m.name}, {"labels", m.labels}, {"chart", std::move(chart)}, {"sentences", m.sentences}};
}

// The analyses beyond the tiles, added beside the screen's own fields.
void addAnalysisJson(json& out, const FlowScreen::Figures& f, const FlowAnalysis& a) {
  json weeks = json::array();
  for (const WeekFlow& w : a.weeks) {
    weeks.push_back({{"start", w.start.description()},
                     {"end", w.end.description()},
                     {"arrivals", w.arrivals},
                     {"departures", w.departures},
                     {"gap", w.gap}});
  }
  json wipDays = json::array();
  for (const FlowDay& d : f.cumulative) wipDays.push_back({{"date", d.date.description()}, {"wip", d.inProgress}});
  const LittlesLaw& law = a.littlesLaw;
  std::optional<double> ratio;
  if (f.summary && f.summary->p50 > 0) ratio = f.summary->p85 / f.summary->p50;
  out["arrivalsDepartures"] = std::move(weeks);
  out["wipRun"] = {{"days", std::move(wipDays)}, {"limitSum", a.wipLimitSum ? json(*a.wipLimitSum) : json(nullptr)}};
  out["processBehaviour"] = {{"throughput", measureJson(a.throughput)},
                             {"arrivals", measureJson(a.arrivals)},
                             {"wip", measureJson(a.wip)},
                             {"cycleTime", measureJson(a.cycleTime)}};
  out["littlesLaw"] = {{"from", law.range.from.description()},
                       {"to", law.range.to.description()},
                       {"days", law.range.days},
                       {"averageWip", law.range.averageWip},
                       {"throughputPerDay", law.throughputPerDay},
                       {"impliedCycleDays", optionalJson(law.impliedCycleDays)},
                       {"averageCycleDays", optionalJson(law.averageCycleDays)},
                       {"gapPct", optionalJson(law.gapPct)},
                       {"stable", law.stable()},
                       {"sentence", a.littlesLawSentence}};
  out["predictability"] = {{"ratio", optionalJson(ratio)}, {"sentence", a.predictabilitySentence}};
}

json flowJson(const ProjectSnapshot& project, const FlowScreen::Figures& f) {
  json weeks = json::array();
  for (const WeekThroughput& w : f.throughput) {
    weeks.push_back({{"start", w.start.description()}, {"end", w.end.description()}, {"count", w.count}});
  }
  json points = json::array();
  for (const CycleTimePoint& p : f.cyclePoints) {
    points.push_back({{"id", p.id.text()},
                      {"reference", p.reference},
                      {"title", p.title},
                      {"completedAt", utcDateTimeText(p.completedAt)},
                      {"days", p.days}});
  }
  json ages = json::array();
  for (const AgePoint& a : f.ages) {
    ages.push_back({{"id", a.id.text()},
                    {"reference", a.reference},
                    {"title", a.title},
                    {"startedAt", utcDateTimeText(a.startedAt)},
                    {"ageDays", a.ageDays}});
  }
  json days = json::array();
  for (const FlowDay& d : f.cumulative) {
    days.push_back({{"date", d.date.description()},
                    {"backlog", d.backlog},
                    {"inProgress", d.inProgress},
                    {"done", d.done},
                    {"total", d.total()}});
  }
  json summary = nullptr;
  if (f.summary) {
    summary = {{"count", f.summary->count}, {"average", f.summary->average}, {"p50", f.summary->p50},
               {"p70", f.summary->p70},     {"p85", f.summary->p85},         {"p95", f.summary->p95}};
  }
  return {
      {"project", {{"id", project.project.id.text()}, {"name", project.project.name}, {"key", project.project.key}}},
      {"asOf", f.today.description()},
      {"weeks", f.weeks},
      {"tiles",
       {{"throughput", FlowScreen::throughputTile(f)},
        {"medianCycleTime", FlowScreen::medianCycleTimeTile(f)},
        {"p85CycleTime", FlowScreen::p85CycleTimeTile(f)},
        {"inProgress", FlowScreen::inProgressTile(f)},
        {"inProgressCaption", FlowScreen::inProgressCaption(f)}}},
      {"averageWeeklyThroughput", f.averageWeeklyThroughput()},
      {"weeklyThroughput", std::move(weeks)},
      {"cycleTimes", std::move(points)},
      {"summary", std::move(summary)},
      {"p85CycleDays", optionalNumber(f.summary, &CycleTimeSummary::p85)},
      {"ages", std::move(ages)},
      {"cumulative", std::move(days)},
      {"note", FlowScreen::note}};
}

// Bars of at most 40 marks, scaled to the largest count.
std::string bar(std::int64_t count, std::int64_t largest) {
  if (largest <= 0 || count <= 0) return "";
  return std::string(static_cast<std::size_t>(std::max<std::int64_t>(1, count * 40 / largest)), '#');
}

void writeFlow(const ProjectSnapshot& project, const FlowScreen::Figures& f, const FlowAnalysis& a, std::ostream& out) {
  writeWrapped(out, "Flow of \"" + project.project.name + "\", " + counted(f.weeks, "week") + " ending " +
                        f.today.displayText() + " (" + f.today.description() + ").");
  out << '\n';
  constexpr std::size_t tile = 20;
  out << padRight("Throughput", tile) << padRight("Median cycle time", tile) << padRight("P85 cycle time", tile)
      << "In progress\n";
  out << padRight(FlowScreen::throughputTile(f), tile) << padRight(FlowScreen::medianCycleTimeTile(f), tile)
      << padRight(FlowScreen::p85CycleTimeTile(f), tile) << FlowScreen::inProgressTile(f) << '\n';
  out << padRight("tickets per week", tile) << padRight("", tile) << padRight("85% finish within", tile)
      << FlowScreen::inProgressCaption(f) << '\n';

  out << "\nThroughput (tickets finished per week, average " << oneDecimal(f.averageWeeklyThroughput()) << ")\n";
  std::int64_t largest = 0;
  for (const WeekThroughput& w : f.throughput) largest = std::max(largest, w.count);
  for (const WeekThroughput& w : f.throughput) {
    out << "  " << w.start.description() << " to " << w.end.description() << padLeft(std::to_string(w.count), 5);
    if (w.count > 0) out << "  " << bar(w.count, largest);
    out << '\n';
  }

  out << "\nCycle time (days from start to finish)\n";
  if (f.cyclePoints.empty()) {
    out << "  No tickets finished in this range.\n";
  } else {
    for (const CycleTimePoint& p : f.cyclePoints) {
      out << "  " << CivilDate::fromUtc(p.completedAt).description() << "  " << padRight(p.reference, 10)
          << padLeft(oneDecimal(p.days), 7) << "  " << p.title << '\n';
    }
    const CycleTimeSummary& s = *f.summary;
    out << "  " << counted(s.count, "ticket") << ": average " << oneDecimal(s.average) << ", 50% " << oneDecimal(s.p50)
        << ", 70% " << oneDecimal(s.p70) << ", 85% " << oneDecimal(s.p85) << ", 95% " << oneDecimal(s.p95) << " days\n";
  }

  out << "\nWork item age (days since work started)\n";
  if (f.ages.empty()) {
    out << "  Nothing is in progress.\n";
  } else {
    for (const AgePoint& a : f.ages) {
      out << "  " << padRight(a.reference, 10) << padLeft(oneDecimal(a.ageDays), 7) << "  " << a.title << '\n';
    }
  }

  out << "\nCumulative flow\n  Day          Backlog  In progress     Done    Total\n";
  for (const FlowDay& d : f.cumulative) {
    out << "  " << d.date.description() << padLeft(std::to_string(d.backlog), 10)
        << padLeft(std::to_string(d.inProgress), 13) << padLeft(std::to_string(d.done), 9)
        << padLeft(std::to_string(d.total()), 9) << '\n';
  }
  out << "\nStarted against finished\n  Week ending   Started  Finished  Running gap\n";
  for (const WeekFlow& w : a.weeks) {
    out << "  " << w.end.description() << padLeft(std::to_string(w.arrivals), 10)
        << padLeft(std::to_string(w.departures), 10) << padLeft(std::to_string(w.gap), 13) << '\n';
  }
  out << "  WIP limits of the in-progress columns: "
      << (a.wipLimitSum ? std::to_string(*a.wipLimitSum) : std::string("none set")) << '\n';
  out << "\nProcess behaviour\n";
  for (const BehaviourMeasure* m : {&a.throughput, &a.arrivals, &a.wip, &a.cycleTime}) {
    for (const std::string& sentence : m->sentences) writeWrapped(out, "  " + sentence);
  }
  out << "\nStability and predictability\n";
  writeWrapped(out, "  " + a.littlesLawSentence);
  writeWrapped(out, "  " + a.predictabilitySentence);
  out << '\n';
  writeWrapped(out, FlowScreen::note);
}

}  // namespace

int runFlow(std::span<const std::string> args, const CommandContext& context) {
  const ParsedOptions parsed = parseArguments(args, flowSpecs, "flow");
  if (parsed.has("--help")) {
    context.out << flowUsage;
    return exitOk;
  }
  expectPositionals(parsed, {"PROJECT"}, "flow");
  const std::int64_t weeks = weeksOption(parsed);
  const ProjectSnapshot project = loadProject(context.store.service(), parsed.positionals()[0]);
  const std::vector<FlowTicket> tickets = flowTickets(project);
  const FlowScreen::Figures figures = FlowScreen::figures(tickets, context.now, weeks);
  const FlowAnalysis analysis = FlowAnalyses::analyse(tickets, figures, FlowAnalyses::wipLimitSum(project),
                                                            CivilDate::fromUtc(project.project.createdAt));
  if (parsed.has("--json")) {
    json out = flowJson(project, figures);
    addAnalysisJson(out, figures, analysis);
    context.out << out.dump(2) << '\n';
  } else {
    writeFlow(project, figures, analysis, context.out);
  }
  return exitOk;
}

}  // namespace orvane::cli
