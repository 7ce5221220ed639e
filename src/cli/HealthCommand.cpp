#include "cli/HealthCommand.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "cli/CliError.h"
#include "cli/OptionParser.h"
#include "cli/ProjectLookup.h"
#include "cli/StoreAccess.h"
#include "cli/TextLayout.h"
#include "core/accuracy/FlowHealth.h"

namespace orvane::cli {
namespace {

using nlohmann::json;

constexpr std::string_view healthUsage =
    "Usage: orvane-cli health PROJECT [--json]\n"
    "\n"
    "Sums up the recent flow of PROJECT (its name or its ticket key): throughput\n"
    "of the last four weeks against the four before, cycle time over the last 12\n"
    "weeks, work in progress older than 85% of finished work, columns over their\n"
    "WIP limit and how many of the 12 weeks are real history. Weeks are UTC weeks\n"
    "ending today (or on --now), the weeks the forecast uses.\n"
    "\n"
    "  --json   print one JSON object: {project, asOf, recentThroughput,\n"
    "           priorThroughput, trend, cycle, inProgress, ageingOverP85,\n"
    "           wipBreaches, realWeeks, notes}\n"
    "  --help   print this text\n";

constexpr OptionSpec healthSpecs[] = {{"--json", false}, {"--help", false}};

std::string oneDecimal(double value) {
  char text[64];
  std::snprintf(text, sizeof text, "%.1f", value);
  return text;
}

json healthJson(const ProjectSnapshot& s, const FlowHealth& h, CivilDate today) {
  json breaches = json::array();
  for (const WIPBreach& b : h.wipBreaches) {
    breaches.push_back({{"column", b.columnName}, {"count", b.count}, {"limit", b.limit}});
  }
  json cycle = nullptr;
  if (h.cycle) {
    cycle = {{"count", h.cycle->count}, {"average", h.cycle->average}, {"p50", h.cycle->p50},
             {"p70", h.cycle->p70},     {"p85", h.cycle->p85},         {"p95", h.cycle->p95}};
  }
  return {{"project", {{"id", s.project.id.text()}, {"name", s.project.name}, {"key", s.project.key}}},
          {"asOf", today.description()},
          {"recentThroughput", h.recentThroughput},
          {"priorThroughput", h.priorThroughput},
          {"trend", rawValue(h.trend)},
          {"cycle", std::move(cycle)},
          {"inProgress", h.inProgress},
          {"ageingOverP85", h.ageingOverP85},
          {"wipBreaches", std::move(breaches)},
          {"realWeeks", h.realWeeks},
          {"notes", h.notes}};
}

void writeHealth(const ProjectSnapshot& s, const FlowHealth& h, CivilDate today, std::ostream& out) {
  out << "Flow health of " << s.project.name << " (" << s.project.key << "), " << today.displayText() << "\n\n";
  const auto row = [&out](std::string_view name, const std::string& value) {
    out << "  " << padRight(name, 16) << value << '\n';
  };
  row("Throughput", oneDecimal(h.recentThroughput) + " a week, " + oneDecimal(h.priorThroughput) + " before (" +
                        std::string(displayLabel(h.trend)) + ")");
  row("Cycle time", h.cycle ? "50% within " + oneDecimal(h.cycle->p50) + " d, 85% within " + oneDecimal(h.cycle->p85) +
                                  " d (" + counted(h.cycle->count, "ticket") + ")"
                            : std::string("none in the last 12 weeks"));
  row("In progress",
      std::to_string(h.inProgress) + ", " + std::to_string(h.ageingOverP85) + " past the 85% cycle time");
  std::string breaches;
  for (const WIPBreach& b : h.wipBreaches) {
    breaches +=
        (breaches.empty() ? "" : ", ") + b.columnName + " " + std::to_string(b.count) + "/" + std::to_string(b.limit);
  }
  row("Over WIP limit", breaches.empty() ? std::string("no column") : breaches);
  row("Real history", std::to_string(h.realWeeks) + " of 12 weeks");
  out << '\n';
  for (const std::string& note : h.notes) writeWrapped(out, note);
}

}  // namespace

int runHealth(std::span<const std::string> args, const CommandContext& context) {
  const ParsedOptions parsed = parseArguments(args, healthSpecs, "health");
  if (parsed.has("--help")) {
    context.out << healthUsage;
    return exitOk;
  }
  expectPositionals(parsed, {"PROJECT"}, "health");
  const ProjectSnapshot snapshot = loadProject(context.store.service(), parsed.positionals()[0]);
  const FlowHealth health = flowHealth(snapshot, context.now);
  const CivilDate today = CivilDate::fromUtc(context.now);
  if (parsed.has("--json")) {
    context.out << healthJson(snapshot, health, today).dump(2) << '\n';
  } else {
    writeHealth(snapshot, health, today, context.out);
  }
  return exitOk;
}

}  // namespace orvane::cli
