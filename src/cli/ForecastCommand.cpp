#include "cli/ForecastCommand.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/CliError.h"
#include "cli/ForecastJson.h"
#include "cli/ForecastText.h"
#include "cli/GlobalOptions.h"
#include "cli/NumberParsing.h"
#include "cli/OptionParser.h"
#include "cli/ProjectLookup.h"
#include "cli/StoreAccess.h"
#include "cli/TextLayout.h"
#include "core/accuracy/ForecastAccuracy.h"
#include "core/accuracy/ForecastNarrative.h"
#include "core/forecast/Backtest.h"
#include "core/forecast/ReproductionScript.h"
#include "engine/ColdStart.h"

namespace orvane::cli {
namespace {

using nlohmann::json;

constexpr std::string_view forecastUsage =
    "Usage: orvane-cli forecast when PROJECT [options]\n"
    "       orvane-cli forecast by-date PROJECT YYYY-MM-DD [options]\n"
    "       orvane-cli forecast epic PROJECT EPIC --share PERCENT [--json]\n"
    "       orvane-cli forecast iteration PROJECT ITERATION [--what-if P] [--json]\n"
    "       orvane-cli forecast roadmap PROJECT [--json]\n"
    "       orvane-cli forecast log PROJECT [--json]\n"
    "       orvane-cli forecast backtest PROJECT --as-of YYYY-MM-DD [--json]\n"
    "       orvane-cli forecast estimate PROJECT WEEKLY|--clear\n"
    "       orvane-cli forecast commit PROJECT YYYY-MM-DD|--clear\n"
    "\n"
    "Forecasts simulate 10,000 futures drawn from the project's last 12 weeks of\n"
    "throughput, ending today (UTC) or on --now; weeks before the project began\n"
    "are filled from its weekly estimate. Epic and iteration names are matched\n"
    "ignoring case.\n"
    "\n"
    "  when        when the open tickets are done, at 50, 70, 85 and 95%\n"
    "  by-date     how many tickets are done by a day\n"
    "    --what-if P          change the weekly throughput by P percent, e.g. -20\n"
    "    --backlog-change N   add N tickets to the backlog (negative: remove)\n"
    "    --log                keep the run in the project's forecast log\n"
    "    --note TEXT          a note kept with the logged run\n"
    "    --script             (when) print a Python/NumPy script that rebuilds\n"
    "                         this forecast and prints its four levels\n"
    "  epic        when an epic's open tickets are done, its due date's chance\n"
    "    --share PERCENT      the epic's share of the team, above 0 up to 100\n"
    "  iteration   the chance an iteration's open tickets are done by its last day\n"
    "  roadmap     every epic scheduled along its dependencies, with milestones\n"
    "  log         the logged runs\n"
    "  backtest    the when-forecast of a past day, from the tickets created by\n"
    "              then and the completions before it, next to the day that\n"
    "              work was really finished\n"
    "  estimate    set the weekly throughput of the weeks before the project\n"
    "              began (0 to 1000), or --clear it for the default of 5\n"
    "  commit      set the committed date forecasts are scored against, or\n"
    "              --clear it\n"
    "  --json      print the result record as one JSON object\n"
    "  --help      print this text\n";

constexpr OptionSpec projectSpecs[] = {{"--what-if", true}, {"--backlog-change", true}, {"--log", false},
                                       {"--note", true},    {"--json", false},          {"--script", false},
                                       {"--help", false}};
constexpr OptionSpec epicSpecs[] = {{"--share", true}, {"--json", false}, {"--help", false}};
constexpr OptionSpec iterationSpecs[] = {{"--what-if", true}, {"--json", false}, {"--help", false}};
constexpr OptionSpec jsonSpecs[] = {{"--json", false}, {"--help", false}};
constexpr OptionSpec backtestSpecs[] = {{"--as-of", true}, {"--json", false}, {"--help", false}};
constexpr OptionSpec clearSpecs[] = {{"--clear", false}, {"--help", false}};

std::string inQuotes(std::string_view text) { return "\"" + std::string(text) + "\""; }

std::string dayText(const CivilDate& day) { return day.displayText() + " (" + day.description() + ")"; }

std::string signedNumber(double value) { return (value > 0 ? "+" : "") + shortestNumber(value); }

double whatIfOption(const ParsedOptions& parsed) {
  const auto text = parsed.value("--what-if");
  if (!text) return 0;
  const ParsedNumber<double> number = parseDouble(*text);
  if (!number.ok() || !std::isfinite(number.value)) {
    throw CliError("--what-if needs a percentage, such as -20 or 15.");
  }
  return number.value;
}

void writeWhatIf(double percent, std::ostream& out) {
  if (percent != 0) out << "What-if: weekly throughput changed by " << signedNumber(percent) << "%.\n";
}

// The backlog line of a project forecast: the open tickets and the
// scenario's change, when there is one.
void writeBacklog(std::int64_t backlog, std::int64_t open, std::int64_t change, CivilDate asOf, std::ostream& out) {
  out << "Backlog: ";
  if (change == 0) {
    out << counted(open, "open ticket");
  } else {
    out << counted(backlog, "ticket") << " (" << open << " open, " << (change > 0 ? "+" : "") << change
        << " in this scenario)";
  }
  out << ", as of " << dayText(asOf) << ".\n";
}

int projectForecast(const ParsedOptions& parsed, const CommandContext& context, bool byDate) {
  const std::string command = byDate ? "forecast by-date" : "forecast when";
  if (byDate) {
    expectPositionals(parsed, {"PROJECT", "YYYY-MM-DD"}, command);
  } else {
    expectPositionals(parsed, {"PROJECT"}, command);
  }
  std::optional<CivilDate> target;
  if (byDate) {
    target = parseDay(parsed.positionals()[1]);
    if (!target) {
      throw CliError("forecast by-date needs a day like 2026-04-30; " + inQuotes(parsed.positionals()[1]) +
                     " is not one.");
    }
  }
  const double whatIf = whatIfOption(parsed);
  std::int64_t change = 0;
  if (const auto text = parsed.value("--backlog-change")) {
    const ParsedNumber<std::int64_t> number = parseInt64(*text);
    if (!number.ok()) throw CliError("--backlog-change needs a whole number of tickets, such as 5 or -3.");
    change = number.value;
  }
  const bool log = parsed.has("--log");
  if (parsed.has("--note") && !log) throw CliError("--note goes with --log: only a logged run keeps a note.");
  const std::string note(parsed.value("--note").value_or(""));

  const ProjectSnapshot project = loadProject(context.store.service(), parsed.positionals()[0]);
  ForecastService& forecasts = context.store.forecasts();
  const CivilDate today = ForecastService::todayUTC(context.now);
  const ForecastInput input = forecasts.input(project.project.id, today, whatIf, target, change);
  if (parsed.has("--script")) {
    if (byDate) throw CliError("--script goes with forecast when: it rebuilds the four levels of a when-forecast.");
    if (log || parsed.has("--json")) throw CliError("--script prints the script alone, without --log or --json.");
    context.out << reproductionScript(input);
    return exitOk;
  }

  json result;
  std::optional<ForecastRecord> record;
  std::ostringstream text;
  if (byDate) {
    const ByDateForecast forecast = input.runByDate();
    if (log) record = forecasts.log(forecast, project.project.id, note, context.now);
    result = byDateJson(forecast);
    writeWrapped(text, "How many tickets of " + inQuotes(project.project.name) + " will be done by " +
                           forecast.target.displayText() + "?");
    writeBacklog(forecast.backlog, project.remainingBacklog(), change, forecast.asOf, text);
    writeWhatIf(whatIf, text);
    writeByDateText(forecast, text);
  } else {
    const WhenForecast forecast = input.runWhen();
    if (log) record = forecasts.log(forecast, project.project.id, note, context.now);
    result = whenJson(forecast);
    writeWrapped(text, "When will " + inQuotes(project.project.name) + " be done?");
    writeBacklog(forecast.backlog, project.remainingBacklog(), change, forecast.asOf, text);
    writeWhatIf(whatIf, text);
    writeWhenText(forecast, "Committed date", text);
    // In words, against the latest logged run before this one.
    text << '\n';
    for (const std::string& line :
         ForecastNarrative::lines(forecast, latestBefore(forecastHistory(project), context.now))) {
      writeWrapped(text, line);
    }
  }
  if (parsed.has("--json")) {
    if (record) result["logged"] = forecastRecordJson(*record);
    context.out << result.dump(2) << '\n';
    return exitOk;
  }
  context.out << text.str();
  if (record) {
    context.out << "\nLogged.\n";
    if (!record->note.empty()) context.out << "Note: " << record->note << '\n';
  }
  return exitOk;
}

int epicForecast(const ParsedOptions& parsed, const CommandContext& context) {
  expectPositionals(parsed, {"PROJECT", "EPIC"}, "forecast epic");
  const auto shareText = parsed.value("--share");
  if (!shareText) throw CliError("forecast epic needs --share PERCENT, the epic's share of the team, such as 40.");
  const ParsedNumber<double> percent = parseDouble(*shareText);
  if (!percent.ok()) throw CliError("--share needs a percentage, such as 40.");

  const ProjectSnapshot project = loadProject(context.store.service(), parsed.positionals()[0]);
  const Epic& epic = findEpic(project, parsed.positionals()[1]);
  const CivilDate today = ForecastService::todayUTC(context.now);
  const ForecastInput input = context.store.forecasts().input(epic, percent.value / 100, today, context.calendar);
  const WhenForecast forecast = input.runWhen();
  if (parsed.has("--json")) {
    context.out << whenJson(forecast).dump(2) << '\n';
    return exitOk;
  }
  writeWrapped(context.out,
               "When will the epic " + inQuotes(epic.name) + " of " + inQuotes(project.project.name) + " be done?");
  writeWrapped(context.out, "Backlog: " + counted(forecast.backlog, "open ticket") + ", at " +
                                shortestNumber(percent.value) + "% of the team's throughput, as of " +
                                dayText(forecast.asOf) + ".");
  writeWhenText(forecast, "Due date", context.out);
  return exitOk;
}

int iterationForecast(const ParsedOptions& parsed, const CommandContext& context) {
  expectPositionals(parsed, {"PROJECT", "ITERATION"}, "forecast iteration");
  const double whatIf = whatIfOption(parsed);
  const ProjectSnapshot project = loadProject(context.store.service(), parsed.positionals()[0]);
  const Iteration& iteration = findIteration(project, parsed.positionals()[1]);
  const CivilDate today = ForecastService::todayUTC(context.now);
  const IterationForecast forecast = context.store.forecasts().input(iteration, whatIf, today, context.calendar).run();
  if (parsed.has("--json")) {
    context.out << iterationJson(forecast).dump(2) << '\n';
    return exitOk;
  }
  writeWrapped(context.out, "Iteration " + inQuotes(iteration.name) + " of " + inQuotes(project.project.name) +
                                ", as of " + dayText(forecast.asOf) + ".");
  writeWhatIf(whatIf, context.out);
  writeIterationText(forecast, context.out);
  return exitOk;
}

int roadmapForecast(const ParsedOptions& parsed, const CommandContext& context) {
  expectPositionals(parsed, {"PROJECT"}, "forecast roadmap");
  const ProjectSnapshot project = loadProject(context.store.service(), parsed.positionals()[0]);
  ForecastService& forecasts = context.store.forecasts();
  const CivilDate today = ForecastService::todayUTC(context.now);
  const RoadmapForecastInput input = forecasts.roadmapInput(project.project.id, today, context.calendar);
  const RoadmapForecast forecast = input.run();
  const std::vector<EpicScheduleConflict> conflicts = forecasts.scheduleConflicts(project.project.id, context.calendar);
  std::map<Uuid, std::string> milestoneNames;
  for (const Milestone& milestone : project.milestones) milestoneNames[milestone.id] = milestone.name;

  if (parsed.has("--json")) {
    json result = roadmapJson(forecast, [](const Uuid& id) { return id.text(); });
    for (const RoadmapEpicNode& node : input.epics) {
      if (result["epics"].contains(node.id.text())) result["epics"][node.id.text()]["name"] = node.name;
    }
    json names = json::object();
    for (const auto& [id, name] : milestoneNames) names[id.text()] = name;
    json overlaps = json::array();
    for (const EpicScheduleConflict& conflict : conflicts) {
      overlaps.push_back(
          {{"predecessor", {{"id", conflict.predecessor.id.text()}, {"name", conflict.predecessor.name}}},
           {"successor", {{"id", conflict.successor.id.text()}, {"name", conflict.successor.name}}},
           {"overlapDays", conflict.overlapDays}});
    }
    result["milestoneNames"] = std::move(names);
    result["conflicts"] = std::move(overlaps);
    context.out << result.dump(2) << '\n';
    return exitOk;
  }
  writeWrapped(context.out, "Roadmap of " + inQuotes(project.project.name) + " as of " + dayText(forecast.asOf) + ", " +
                                counted(forecast.iterations, "simulation") + " per epic.");
  writeRoadmapText(forecast, RoadmapContext{input, milestoneNames, conflicts}, context.out);
  return exitOk;
}

int forecastLog(const ParsedOptions& parsed, const CommandContext& context) {
  expectPositionals(parsed, {"PROJECT"}, "forecast log");
  const ProjectSnapshot project = loadProject(context.store.service(), parsed.positionals()[0]);
  if (parsed.has("--json")) {
    json records = json::array();
    for (const ForecastRecord& record : project.forecasts) records.push_back(forecastRecordJson(record));
    context.out << records.dump(2) << '\n';
    return exitOk;
  }
  if (project.forecasts.empty()) {
    writeWrapped(context.out, "No forecast runs are logged for " + inQuotes(project.project.name) +
                                  "; add --log to a when or by-date forecast to log it.");
    return exitOk;
  }
  context.out << "Forecast log of " << inQuotes(project.project.name) << ": "
              << counted(static_cast<std::int64_t>(project.forecasts.size()), "run") << '\n';
  writeForecastLog(project.forecasts, context.out);
  return exitOk;
}

int backtestForecast(const ParsedOptions& parsed, const CommandContext& context) {
  expectPositionals(parsed, {"PROJECT"}, "forecast backtest");
  const auto asOfText = parsed.value("--as-of");
  if (!asOfText) throw CliError("forecast backtest needs --as-of YYYY-MM-DD, the past day to forecast from.");
  const std::optional<CivilDate> day = parseDay(*asOfText);
  if (!day) throw CliError("--as-of needs a day like 2026-04-30; " + inQuotes(*asOfText) + " is not one.");
  const ProjectSnapshot project = loadProject(context.store.service(), parsed.positionals()[0]);
  Backtest backtest;
  try {
    backtest = runBacktest(context.store.store(), project.project.id, *day, ForecastService::todayUTC(context.now));
  } catch (const BacktestError& error) {
    throw CliError(error.what());
  }
  const WhenForecast& forecast = backtest.forecast;
  if (parsed.has("--json")) {
    json result = whenJson(forecast);
    json outcome = {{"stillOpen", backtest.stillOpen},
                    {"finishedOn", backtest.finishedOn ? json(backtest.finishedOn->description()) : json(nullptr)}};
    json met = json::object();
    for (const auto& [level, done] : backtest.levelsMet) met[std::to_string(level)] = done;
    outcome["levelsMet"] = std::move(met);
    result["actual"] = std::move(outcome);
    context.out << result.dump(2) << '\n';
    return exitOk;
  }
  writeWrapped(context.out, "How would the forecast of " + inQuotes(project.project.name) + " on " +
                                forecast.asOf.displayText() + " have done?");
  writeWrapped(context.out, "Backlog then: " + counted(forecast.backlog, "ticket") +
                                " (created by that day and not done before it).");
  writeWhenText(forecast, "Committed date", context.out);
  context.out << '\n';
  if (!backtest.finishedOn) {
    writeWrapped(context.out, "Actual: the work is still open, " + std::to_string(backtest.stillOpen) + " of " +
                                  std::to_string(forecast.backlog) + " tickets still open.");
    return exitOk;
  }
  writeWrapped(context.out, "Actual: finished on " + dayText(*backtest.finishedOn) + ", " +
                                counted(backtest.finishedOn->daysSince(forecast.asOf), "day") + " later.");
  for (const auto& [level, done] : backtest.levelsMet) {
    context.out << "  " << level << "%  by " << forecast.dates.at(level).displayText() << ": "
                << (done ? "finished in time" : "missed") << '\n';
  }
  return exitOk;
}

// PROJECT and VALUE, or PROJECT and --clear; the value when one is given.
std::optional<std::string> valueOrClear(const ParsedOptions& parsed, std::string_view command,
                                        std::string_view valueName) {
  if (!parsed.has("--clear")) {
    expectPositionals(parsed, {"PROJECT", valueName}, command);
    return parsed.positionals()[1];
  }
  if (parsed.positionals().size() > 1) {
    throw CliError(std::string(command) + " takes " + std::string(valueName) + " or --clear, not both.");
  }
  expectPositionals(parsed, {"PROJECT"}, command);
  return std::nullopt;
}

int setEstimate(const ParsedOptions& parsed, const CommandContext& context) {
  const std::optional<std::string> text = valueOrClear(parsed, "forecast estimate", "WEEKLY");
  std::optional<double> weekly;
  if (text) {
    const ParsedNumber<double> number = parseDouble(*text);
    if (!number.ok()) throw ForecastServiceError(ForecastServiceError::Case::invalidEstimate);
    weekly = number.value;
  }
  const ProjectSnapshot project = loadProject(context.store.service(), parsed.positionals()[0]);
  context.store.forecasts().setColdStartEstimate(project.project.id, weekly);
  const double rate = weekly.value_or(ColdStart::defaultLambda);
  writeWrapped(context.out, "Weeks before " + inQuotes(project.project.name) + " began now count " +
                                (weekly ? "your estimate, " : "the default estimate, ") + shortestNumber(rate) +
                                (rate == 1 ? " ticket" : " tickets") + " each.");
  return exitOk;
}

int setCommitment(const ParsedOptions& parsed, const CommandContext& context) {
  const std::optional<std::string> text = valueOrClear(parsed, "forecast commit", "YYYY-MM-DD");
  std::optional<CivilDate> day;
  if (text) {
    day = parseDay(*text);
    if (!day) throw CliError("forecast commit needs a day like 2026-04-30; " + inQuotes(*text) + " is not one.");
  }
  const ProjectSnapshot project = loadProject(context.store.service(), parsed.positionals()[0]);
  // Stored as the day's UTC midnight, so its UTC day is the day given.
  context.store.forecasts().setCommitment(project.project.id, day ? std::optional(day->utcMidnight()) : std::nullopt);
  if (day) {
    context.out << "Committed date of " << inQuotes(project.project.name) << " set to " << dayText(*day) << ".\n";
  } else {
    context.out << "Committed date of " << inQuotes(project.project.name) << " cleared.\n";
  }
  return exitOk;
}

}  // namespace

int runForecast(std::span<const std::string> args, const CommandContext& context) {
  if (args.empty() || args.front() == "--help") {
    (args.empty() ? context.err : context.out) << forecastUsage;
    return args.empty() ? exitUsage : exitOk;
  }
  const std::string& action = args.front();
  std::span<const OptionSpec> specs;
  if (action == "when" || action == "by-date") {
    specs = projectSpecs;
  } else if (action == "epic") {
    specs = epicSpecs;
  } else if (action == "iteration") {
    specs = iterationSpecs;
  } else if (action == "roadmap" || action == "log") {
    specs = jsonSpecs;
  } else if (action == "backtest") {
    specs = backtestSpecs;
  } else if (action == "estimate" || action == "commit") {
    specs = clearSpecs;
  } else {
    throw CliError("Unknown forecast command \"" + action +
                   "\"; use when, by-date, epic, iteration, roadmap, log, backtest, estimate or commit.");
  }
  const ParsedOptions parsed = parseArguments(args.subspan(1), specs, "forecast " + action);
  if (parsed.has("--help")) {
    context.out << forecastUsage;
    return exitOk;
  }
  if (action == "when" || action == "by-date") return projectForecast(parsed, context, action == "by-date");
  if (action == "epic") return epicForecast(parsed, context);
  if (action == "iteration") return iterationForecast(parsed, context);
  if (action == "roadmap") return roadmapForecast(parsed, context);
  if (action == "log") return forecastLog(parsed, context);
  if (action == "backtest") return backtestForecast(parsed, context);
  if (action == "estimate") return setEstimate(parsed, context);
  return setCommitment(parsed, context);
}

}  // namespace orvane::cli
