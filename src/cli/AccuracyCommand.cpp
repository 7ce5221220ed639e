#include "cli/AccuracyCommand.h"

#include <nlohmann/json.hpp>

#include "cli/CliError.h"
#include "cli/OptionParser.h"
#include "cli/ProjectLookup.h"
#include "cli/StoreAccess.h"
#include "cli/TextLayout.h"
#include "core/accuracy/ForecastAccuracy.h"
#include "engine/ForecastResult.h"

namespace orvane::cli {
namespace {

using nlohmann::json;

constexpr std::string_view accuracyUsage =
    "Usage: orvane-cli accuracy PROJECT [--json]\n"
    "\n"
    "Judges the logged forecasts of PROJECT (its name or its ticket key) against\n"
    "what happened, as of today (or --now). A \"When\" forecast is judged once the\n"
    "tickets it covered, and those added until they were caught up, are done; a\n"
    "\"How many by a date\" forecast once its target day has passed. Each\n"
    "calibration table shows how often a level's promise held: a well calibrated\n"
    "85% level holds about 85% of the time. The history lists the dates of every\n"
    "logged \"When\" forecast.\n"
    "\n"
    "  --json   print one JSON object: {project, asOf, whenOutcomes,\n"
    "           byDateOutcomes, whenCalibration, byDateCalibration, history}\n"
    "  --help   print this text\n";

constexpr OptionSpec accuracySpecs[] = {{"--json", false}, {"--help", false}};

json dayOrNull(const std::optional<CivilDate>& day) { return day ? json(day->description()) : json(nullptr); }

json daysJson(const std::vector<CivilDate>& days) {
  json out = json::array();
  for (const CivilDate& day : days) out.push_back(day.description());
  return out;
}

json calibrationJson(const std::vector<CalibrationRow>& rows) {
  json out = json::array();
  for (const CalibrationRow& r : rows) {
    out.push_back({{"level", r.level}, {"hits", r.hits}, {"total", r.total}, {"hitPct", r.hitPct()}});
  }
  return out;
}

json accuracyJson(const ProjectSnapshot& s, const AccuracyReport& report,
                  const std::vector<ForecastHistoryPoint>& history, CivilDate today) {
  json when = json::array();
  for (const WhenOutcome& o : report.whenOutcomes) {
    when.push_back({{"id", o.id.text()},
                    {"asOf", o.asOf.description()},
                    {"dates", daysJson(o.dates)},
                    {"backlogThen", o.backlogThen},
                    {"addedSince", o.addedSince},
                    {"leftSince", o.leftSince},
                    {"finishedOn", dayOrNull(o.finishedOn)},
                    {"verdict",
                     {{"kind", rawValue(o.verdict.kind)},
                      {"remaining", o.verdict.remaining},
                      {"label", o.verdict.label()},
                      {"isFinished", o.verdict.isFinished()}}}});
  }
  json byDate = json::array();
  for (const ByDateOutcome& o : report.byDateOutcomes) {
    byDate.push_back({{"id", o.id.text()},
                      {"asOf", o.asOf.description()},
                      {"target", o.target.description()},
                      {"wholeWeeks", o.wholeWeeks},
                      {"counts", o.counts},
                      {"actual", o.actual},
                      {"levelsReached", o.levelsReached()}});
  }
  json points = json::array();
  for (const ForecastHistoryPoint& p : history) {
    points.push_back({{"id", p.id.text()},
                      {"runAt", p.runAt.secondsSince1970},
                      {"asOf", p.asOf.description()},
                      {"backlog", p.backlog},
                      {"p50", p.p50.description()},
                      {"p85", p.p85.description()},
                      {"p95", p.p95.description()},
                      {"commitment", dayOrNull(p.commitment)},
                      {"confidencePct", p.confidencePct ? json(*p.confidencePct) : json(nullptr)}});
  }
  return {{"project", {{"id", s.project.id.text()}, {"name", s.project.name}, {"key", s.project.key}}},
          {"asOf", today.description()},
          {"whenOutcomes", std::move(when)},
          {"byDateOutcomes", std::move(byDate)},
          {"whenCalibration", calibrationJson(report.whenCalibration)},
          {"byDateCalibration", calibrationJson(report.byDateCalibration)},
          {"history", std::move(points)}};
}

void writeCalibration(const std::vector<CalibrationRow>& rows, std::ostream& out) {
  out << "  Level   Hits  Judged  Hit rate\n";
  for (const CalibrationRow& r : rows) {
    out << "  " << padLeft(std::to_string(r.level) + "%", 5) << padLeft(std::to_string(r.hits), 7)
        << padLeft(std::to_string(r.total), 8) << padLeft(percentText(r.hitPct(), 1), 10) << '\n';
  }
}

void writeWhen(const AccuracyReport& report, std::ostream& out) {
  out << "\n\"When will it be done?\" forecasts\n";
  if (report.whenOutcomes.empty()) {
    out << "  None logged.\n";
    return;
  }
  for (const WhenOutcome& o : report.whenOutcomes) {
    out << "  " << o.asOf.description() << "  " << counted(o.backlogThen, "ticket");
    if (o.addedSince > 0) out << " (+" << o.addedSince << " added)";
    if (o.leftSince > 0) out << " (" << o.leftSince << " since archived or deleted)";
    out << "  " << o.verdict.label();
    if (o.finishedOn) out << ", done " << o.finishedOn->description();
    out << "\n              ";
    for (std::size_t i = 0; i < o.dates.size() && i < confidenceLevels.size(); ++i) {
      out << (i == 0 ? "" : ", ") << confidenceLevels[i] << "% " << o.dates[i].description();
    }
    out << '\n';
  }
  out << '\n';
  writeCalibration(report.whenCalibration, out);
}

void writeByDate(const AccuracyReport& report, std::ostream& out) {
  out << "\n\"How many by a date?\" forecasts whose day has passed\n";
  if (report.byDateOutcomes.empty()) {
    out << "  None to judge yet.\n";
    return;
  }
  for (const ByDateOutcome& o : report.byDateOutcomes) {
    out << "  " << o.asOf.description() << " to " << o.target.description() << " (" << counted(o.wholeWeeks, "week")
        << "): " << o.actual << " done\n              forecast ";
    for (std::size_t i = 0; i < o.counts.size() && i < confidenceLevels.size(); ++i) {
      out << (i == 0 ? "" : ", ") << confidenceLevels[i] << "% " << o.counts[i];
    }
    std::string reached;
    for (int level : o.levelsReached()) reached += (reached.empty() ? "" : ", ") + std::to_string(level) + "%";
    out << "; reached " << (reached.empty() ? std::string("no level") : reached) << '\n';
  }
  out << '\n';
  writeCalibration(report.byDateCalibration, out);
}

void writeHistory(const std::vector<ForecastHistoryPoint>& history, std::ostream& out) {
  out << "\nForecast history\n";
  if (history.empty()) {
    out << "  No \"When\" forecast is logged.\n";
    return;
  }
  out << "  Run on      Backlog  50%         85%         95%         Agreed (chance)\n";
  for (const ForecastHistoryPoint& p : history) {
    out << "  " << p.asOf.description() << padLeft(std::to_string(p.backlog), 9) << "  " << p.p50.description() << "  "
        << p.p85.description() << "  " << p.p95.description();
    if (p.commitment) {
      out << "  " << p.commitment->description();
      if (p.confidencePct) out << " (" << percentText(*p.confidencePct, 1) << ')';
    }
    out << '\n';
  }
}

}  // namespace

int runAccuracy(std::span<const std::string> args, const CommandContext& context) {
  const ParsedOptions parsed = parseArguments(args, accuracySpecs, "accuracy");
  if (parsed.has("--help")) {
    context.out << accuracyUsage;
    return exitOk;
  }
  expectPositionals(parsed, {"PROJECT"}, "accuracy");
  const ProjectSnapshot snapshot = loadProject(context.store.service(), parsed.positionals()[0]);
  const AccuracyReport report = accuracyReport(snapshot, context.now);
  const std::vector<ForecastHistoryPoint> history = forecastHistory(snapshot);
  const CivilDate today = CivilDate::fromUtc(context.now);
  if (parsed.has("--json")) {
    context.out << accuracyJson(snapshot, report, history, today).dump(2) << '\n';
    return exitOk;
  }
  context.out << "Forecast accuracy of " << snapshot.project.name << " (" << snapshot.project.key << "), judged on "
              << today.displayText() << '\n';
  writeWhen(report, context.out);
  writeByDate(report, context.out);
  writeHistory(history, context.out);
  return exitOk;
}

}  // namespace orvane::cli
