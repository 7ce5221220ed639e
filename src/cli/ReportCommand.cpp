#include "cli/ReportCommand.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "cli/CliError.h"
#include "cli/FileAccess.h"
#include "cli/GlobalOptions.h"
#include "cli/OptionParser.h"
#include "cli/ProjectLookup.h"
#include "cli/ReportPdf.h"
#include "cli/StoreAccess.h"
#include "cli/TextLayout.h"
#include "core/reports/ReportData.h"
#include "engine/LocalCivilDate.h"

namespace orvane::cli {
namespace {

using nlohmann::json;

constexpr std::string_view reportUsage =
    "Usage: orvane-cli report summary PROJECT [--json]\n"
    "       orvane-cli report epics PROJECT [--json]\n"
    "       orvane-cli report risk PROJECT [--json]\n"
    "       orvane-cli report workload PROJECT [--json]\n"
    "       orvane-cli report completed PROJECT [--from YYYY-MM-DD]\n"
    "                                  [--to YYYY-MM-DD] [--json]\n"
    "       orvane-cli report pdf PROJECT --audience client|internal\n"
    "                             [--from YYYY-MM-DD] [--to YYYY-MM-DD] --out FILE.pdf\n"
    "\n"
    "The tables behind the printable reports, as of today in this machine's time\n"
    "zone (or --now).\n"
    "\n"
    "  summary    tickets not started, in progress, done, blocked, overdue, archived\n"
    "  epics      every epic with its progress, dates and status\n"
    "  risk       blocked, overdue and ageing tickets, columns over their WIP\n"
    "             limit, late and at-risk epics\n"
    "  workload   open, blocked and overdue tickets per person, and those done in\n"
    "             the last 14 days; tickets without an assignee are left out\n"
    "  completed  tickets finished from --from to --to (both included), by epic;\n"
    "             without them the last 14 days through today. --from alone runs\n"
    "             to today, --to alone covers the 14 days ending on it\n"
    "  pdf        the printable report as an A4 PDF file: for the client (summary,\n"
    "             epics, milestones, the \"When\" forecast, roadmap, completed work\n"
    "             counted by epic) or internal (adds risks, workload, the completed\n"
    "             tickets, flow health and forecast accuracy). The period of the\n"
    "             completed work is the last 7 days through today by default\n"
    "  --json     print the table as one JSON object\n"
    "  --help     print this text\n";

constexpr OptionSpec plainSpecs[] = {{"--json", false}, {"--help", false}};
constexpr OptionSpec completedSpecs[] = {{"--from", true}, {"--to", true}, {"--json", false}, {"--help", false}};
constexpr OptionSpec pdfSpecs[] = {
    {"--audience", true}, {"--from", true}, {"--to", true}, {"--out", true}, {"--help", false}};

// The days a workload row counts as recent, and the default period of the
// completed report: two weeks, today included.
constexpr std::int64_t recentDays = 14;
// The default period of a PDF report: the week through today.
constexpr std::int64_t pdfReportDays = 7;

json optionalText(const std::optional<std::string>& text) { return text ? json(*text) : json(nullptr); }
json optionalDay(const std::optional<CivilDate>& day) { return day ? json(day->description()) : json(nullptr); }
std::string dayOrDash(const std::optional<CivilDate>& day) { return day ? day->description() : "-"; }

json projectJson(const ProjectSnapshot& p) {
  return {{"id", p.project.id.text()}, {"name", p.project.name}, {"key", p.project.key}};
}

std::string inQuotes(std::string_view text) { return "\"" + std::string(text) + "\""; }

std::string percentOf(const EpicStatusRow& row) {
  char buffer[16];
  std::snprintf(buffer, sizeof buffer, "%.0f%%", row.fraction() * 100);
  return buffer;
}

json epicRowJson(const EpicStatusRow& r) {
  return {{"id", r.id.text()},
          {"name", r.name},
          {"colorHex", optionalText(r.colorHex)},
          {"total", r.total},
          {"done", r.done},
          {"inProgress", r.inProgress},
          {"notStarted", r.notStarted},
          {"blocked", r.blocked},
          {"open", r.open()},
          {"fraction", r.fraction()},
          {"start", optionalDay(r.start)},
          {"due", optionalDay(r.due)},
          {"status", rawValue(r.status)},
          {"statusLabel", label(r.status)}};
}

void writeEpicTable(const std::vector<EpicStatusRow>& rows, std::ostream& out) {
  std::size_t width = 4;
  for (const EpicStatusRow& r : rows) width = std::max(width, widthOf(r.name));
  width = std::min<std::size_t>(width, 30) + 2;
  out << padRight("Epic", width) << padRight("Status", 10) << padLeft("Done", 10) << padLeft("Blocked", 9)
      << "  Start       Due\n";
  for (const EpicStatusRow& r : rows) {
    out << padRight(r.name, width) << padRight(label(r.status), 10)
        << padLeft(std::to_string(r.done) + "/" + std::to_string(r.total) + " " + percentOf(r), 10)
        << padLeft(std::to_string(r.blocked), 9) << "  " << padRight(dayOrDash(r.start), 12) << dayOrDash(r.due)
        << '\n';
  }
}

int summaryReport(const ProjectSnapshot& p, const CommandContext& context, bool asJson) {
  const ProjectSummary s = projectSummary(p, context.now);
  if (asJson) {
    context.out << json{{"project", projectJson(p)},  {"total", s.total},     {"notStarted", s.notStarted},
                        {"inProgress", s.inProgress}, {"done", s.done},       {"remaining", s.remaining()},
                        {"blocked", s.blocked},       {"overdue", s.overdue}, {"archived", s.archived}}
                       .dump(2)
                << '\n';
    return exitOk;
  }
  const CivilDate today = civilDateFromLocal(context.now, context.calendar);
  writeWrapped(context.out, "Summary of " + inQuotes(p.project.name) + " on " + today.displayText() + ".");
  const std::pair<const char*, std::int64_t> lines[] = {{"Tickets", s.total},          {"Not started", s.notStarted},
                                                        {"In progress", s.inProgress}, {"Done", s.done},
                                                        {"Remaining", s.remaining()},  {"Blocked", s.blocked},
                                                        {"Overdue", s.overdue},        {"Archived", s.archived}};
  for (const auto& [name, count] : lines)
    context.out << "  " << padRight(name, 14) << padLeft(std::to_string(count), 6) << '\n';
  return exitOk;
}

int epicsReport(const ProjectSnapshot& p, const CommandContext& context, bool asJson) {
  const std::vector<EpicStatusRow> rows = epicStatuses(p, context.now, context.calendar);
  if (asJson) {
    json list = json::array();
    for (const EpicStatusRow& r : rows) list.push_back(epicRowJson(r));
    context.out << json{{"project", projectJson(p)}, {"epics", std::move(list)}}.dump(2) << '\n';
    return exitOk;
  }
  const CivilDate today = civilDateFromLocal(context.now, context.calendar);
  writeWrapped(context.out, "Epics of " + inQuotes(p.project.name) + " on " + today.displayText() + ".");
  if (rows.empty()) {
    context.out << "No epics.\n";
    return exitOk;
  }
  context.out << '\n';
  writeEpicTable(rows, context.out);
  return exitOk;
}

json riskTicketsJson(const std::vector<RiskTicket>& tickets) {
  json list = json::array();
  for (const RiskTicket& t : tickets) {
    list.push_back({{"id", t.id.text()},
                    {"reference", t.reference},
                    {"title", t.title},
                    {"assignee", optionalText(t.assignee)},
                    {"detail", t.detail},
                    {"flagged", t.flagged}});
  }
  return list;
}

// The ticket on one line, what puts it at risk indented below it.
void writeRiskTickets(std::string_view heading, const std::vector<RiskTicket>& tickets, std::ostream& out) {
  if (tickets.empty()) return;
  out << '\n' << heading << " (" << tickets.size() << ")\n";
  for (const RiskTicket& t : tickets) {
    out << "  " << padRight(t.reference, 10) << t.title;
    if (t.assignee) out << " @" << *t.assignee;
    out << "\n" << std::string(12, ' ') << t.detail << '\n';
  }
}

int riskReportCommand(const ProjectSnapshot& p, const CommandContext& context, bool asJson) {
  const RiskReport r = riskReport(p, context.now, context.calendar);
  if (asJson) {
    json breaches = json::array();
    for (const WIPBreach& b : r.wipBreaches) {
      breaches.push_back({{"id", b.id.text()}, {"columnName", b.columnName}, {"count", b.count}, {"limit", b.limit}});
    }
    json late = json::array();
    for (const EpicStatusRow& e : r.lateEpics) late.push_back(epicRowJson(e));
    json atRisk = json::array();
    for (const EpicStatusRow& e : r.atRiskEpics) atRisk.push_back(epicRowJson(e));
    context.out << json{{"project", projectJson(p)},
                        {"blocked", riskTicketsJson(r.blocked)},
                        {"overdue", riskTicketsJson(r.overdue)},
                        {"ageing", riskTicketsJson(r.ageing)},
                        {"wipBreaches", std::move(breaches)},
                        {"lateEpics", std::move(late)},
                        {"atRiskEpics", std::move(atRisk)},
                        {"p85CycleDays", r.p85CycleDays ? json(*r.p85CycleDays) : json(nullptr)},
                        {"isClear", r.isClear()}}
                       .dump(2)
                << '\n';
    return exitOk;
  }
  const CivilDate today = civilDateFromLocal(context.now, context.calendar);
  writeWrapped(context.out, "Risks of " + inQuotes(p.project.name) + " on " + today.displayText() + ".");
  if (r.isClear()) {
    context.out << "Nothing is at risk.\n";
    return exitOk;
  }
  writeRiskTickets("Blocked", r.blocked, context.out);
  writeRiskTickets("Overdue", r.overdue, context.out);
  writeRiskTickets("Ageing", r.ageing, context.out);
  if (!r.wipBreaches.empty()) {
    context.out << "\nOver the WIP limit (" << r.wipBreaches.size() << ")\n";
    for (const WIPBreach& b : r.wipBreaches) {
      context.out << "  " << b.columnName << ": " << b.count << " tickets, limit " << b.limit << '\n';
    }
  }
  if (!r.lateEpics.empty()) {
    context.out << "\nLate epics (" << r.lateEpics.size() << ")\n";
    writeEpicTable(r.lateEpics, context.out);
  }
  if (!r.atRiskEpics.empty()) {
    context.out << "\nEpics at risk (" << r.atRiskEpics.size() << ")\n";
    writeEpicTable(r.atRiskEpics, context.out);
  }
  return exitOk;
}

int workloadReport(const ProjectSnapshot& p, const CommandContext& context, bool asJson) {
  const std::vector<WorkloadRow> rows = workload(p, context.now, recentDays, context.calendar);
  if (asJson) {
    json list = json::array();
    for (const WorkloadRow& w : rows) {
      list.push_back({{"id", w.id},
                      {"name", w.name},
                      {"notStarted", w.notStarted},
                      {"inProgress", w.inProgress},
                      {"open", w.open()},
                      {"blocked", w.blocked},
                      {"overdue", w.overdue},
                      {"doneRecently", w.doneRecently}});
    }
    context.out << json{{"project", projectJson(p)}, {"recentDays", recentDays}, {"people", std::move(list)}}.dump(2)
                << '\n';
    return exitOk;
  }
  const CivilDate today = civilDateFromLocal(context.now, context.calendar);
  writeWrapped(context.out, "Workload in " + inQuotes(p.project.name) + " on " + today.displayText() + ".");
  if (rows.empty()) {
    context.out << "No tickets are assigned to anyone.\n";
    return exitOk;
  }
  std::size_t width = 6;
  for (const WorkloadRow& w : rows) width = std::max(width, widthOf(w.name));
  width = std::min<std::size_t>(width, 24) + 2;
  context.out << '\n'
              << padRight("Person", width) << padLeft("Not started", 12) << padLeft("In progress", 12)
              << padLeft("Blocked", 8) << padLeft("Overdue", 8) << padLeft("Done (14 d)", 12) << '\n';
  for (const WorkloadRow& w : rows) {
    context.out << padRight(w.name, width) << padLeft(std::to_string(w.notStarted), 12)
                << padLeft(std::to_string(w.inProgress), 12) << padLeft(std::to_string(w.blocked), 8)
                << padLeft(std::to_string(w.overdue), 8) << padLeft(std::to_string(w.doneRecently), 12) << '\n';
  }
  return exitOk;
}

CivilDate dayOption(const ParsedOptions& parsed, std::string_view name) {
  const std::string_view text = *parsed.value(name);
  const std::optional<CivilDate> day = parseDay(text);
  if (!day) throw CliError(std::string(name) + " needs a day like 2026-04-30; " + inQuotes(text) + " is not one.");
  return *day;
}

int completedReportCommand(const ProjectSnapshot& p, const ParsedOptions& parsed, const CommandContext& context,
                           bool asJson) {
  const CivilDate today = civilDateFromLocal(context.now, context.calendar);
  const CivilDate to = parsed.has("--to") ? dayOption(parsed, "--to") : today;
  const CivilDate from = parsed.has("--from") ? dayOption(parsed, "--from") : to.addingDays(-(recentDays - 1));
  const CompletedReport r = completedReport(p, from, to, context.calendar);
  if (asJson) {
    json groups = json::array();
    for (const CompletedGroup& g : r.groups) {
      json items = json::array();
      for (const CompletedItem& i : g.items) {
        items.push_back({{"id", i.id.text()},
                         {"reference", i.reference},
                         {"title", i.title},
                         {"assignee", optionalText(i.assignee)},
                         {"completed", i.completed.description()}});
      }
      groups.push_back({{"id", g.id},
                        {"epicName", g.epicName},
                        {"colorHex", optionalText(g.colorHex)},
                        {"items", std::move(items)}});
    }
    context.out << json{{"project", projectJson(p)},
                        {"from", r.from.description()},
                        {"to", r.to.description()},
                        {"groups", std::move(groups)},
                        {"total", r.total}}
                       .dump(2)
                << '\n';
    return exitOk;
  }
  writeWrapped(context.out, "Completed in " + inQuotes(p.project.name) + " from " + r.from.displayText() + " to " +
                                r.to.displayText() + ": " + counted(r.total, "ticket") + ".");
  for (const CompletedGroup& g : r.groups) {
    context.out << '\n' << g.epicName << " (" << g.items.size() << ")\n";
    for (const CompletedItem& i : g.items) {
      context.out << "  " << i.completed.description() << "  " << padRight(i.reference, 10) << i.title;
      if (i.assignee) context.out << " @" << *i.assignee;
      context.out << '\n';
    }
  }
  return exitOk;
}

int pdfReportCommand(const ParsedOptions& parsed, const CommandContext& context) {
  if (!parsed.has("--audience")) throw CliError("report pdf needs --audience client or --audience internal.");
  const std::string audience(*parsed.value("--audience"));
  if (audience != "client" && audience != "internal") {
    throw CliError("Unknown audience " + inQuotes(audience) + "; the audiences are client and internal.");
  }
  if (!parsed.has("--out")) throw CliError("report pdf needs --out and the PDF file to write.");
  const std::string path(*parsed.value("--out"));
  const CivilDate today = civilDateFromLocal(context.now, context.calendar);
  const CivilDate to = parsed.has("--to") ? dayOption(parsed, "--to") : today;
  const CivilDate from = parsed.has("--from") ? dayOption(parsed, "--from") : to.addingDays(-(pdfReportDays - 1));
  if (from.daysSince(to) > 0) {
    throw CliError("The period starts after it ends: " + from.description() + " is after " + to.description() + ".");
  }
  const ReportPdfRenderer renderer = reportPdfRenderer();
  if (renderer == nullptr) {
    throw CliError("This orvane-cli was built without Qt, so it cannot draw PDF reports.", exitFailure);
  }
  const ProjectSnapshot project = loadProject(context.store.service(), parsed.positionals()[0]);
  const std::string pdf =
      renderer(ReportPdfJob{context.store.forecasts(), project, audience, from, to, context.now, context.calendar});
  writeAtomically(path, pdf, FileContent::tickets);
  return exitOk;
}

}  // namespace

int runReport(std::span<const std::string> args, const CommandContext& context) {
  if (args.empty() || args.front() == "--help" || args.front() == "-h") {
    (args.empty() ? context.err : context.out) << reportUsage;
    return args.empty() ? exitUsage : exitOk;
  }
  const std::string& kind = args.front();
  const bool completed = kind == "completed";
  const bool pdf = kind == "pdf";
  if (!completed && !pdf && kind != "summary" && kind != "epics" && kind != "risk" && kind != "workload") {
    throw CliError("Unknown report " + inQuotes(kind) +
                   "; the reports are summary, epics, risk, workload, completed and pdf.");
  }
  const std::string command = "report " + kind;
  const ParsedOptions parsed = completed ? parseArguments(args.subspan(1), completedSpecs, command)
                               : pdf     ? parseArguments(args.subspan(1), pdfSpecs, command)
                                         : parseArguments(args.subspan(1), plainSpecs, command);
  if (parsed.has("--help")) {
    context.out << reportUsage;
    return exitOk;
  }
  expectPositionals(parsed, {"PROJECT"}, command);
  if (pdf) return pdfReportCommand(parsed, context);
  const ProjectSnapshot project = loadProject(context.store.service(), parsed.positionals()[0]);
  const bool asJson = parsed.has("--json");
  if (kind == "summary") return summaryReport(project, context, asJson);
  if (kind == "epics") return epicsReport(project, context, asJson);
  if (kind == "risk") return riskReportCommand(project, context, asJson);
  if (kind == "workload") return workloadReport(project, context, asJson);
  return completedReportCommand(project, parsed, context, asJson);
}

}  // namespace orvane::cli
