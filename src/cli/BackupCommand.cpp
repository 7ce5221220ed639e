#include "cli/BackupCommand.h"

#include <nlohmann/json.hpp>

#include "cli/CliError.h"
#include "cli/FileAccess.h"
#include "cli/OptionParser.h"
#include "cli/StoreAccess.h"
#include "cli/TextLayout.h"
#include "core/backup/Backup.h"
#include "core/store/Database.h"

namespace orvane::cli {
namespace {

constexpr std::string_view backupUsage =
    "Usage: orvane-cli backup FILE\n"
    "\n"
    "Writes every person and every project, with all their tickets, history,\n"
    "epics, iterations and saved forecasts, to one JSON backup file. An\n"
    "existing file is replaced only once the new one is complete. \"-\" writes\n"
    "to standard output.\n"
    "\n"
    "  --help   print this text\n";

constexpr std::string_view restoreUsage =
    "Usage: orvane-cli restore FILE [--json]\n"
    "\n"
    "Adds the projects of a backup file beside the ones already there; nothing\n"
    "is deleted or changed. People are matched by name. A project restored\n"
    "into the store it came from, or whose name is in use, is named with\n"
    "\" (restored)\" (then \" (restored 2)\" ...); a key in use gets a digit\n"
    "(SHOP2). Values the file should not hold are put right where there is one\n"
    "right form (each listed as a warning); otherwise the file is refused. A\n"
    "file that cannot be restored adds nothing. \"-\" reads standard input.\n"
    "\n"
    "  --json   print the report as a JSON object\n"
    "  --help   print this text\n";

constexpr OptionSpec backupSpecs[] = {{"--help", false}};
constexpr OptionSpec restoreSpecs[] = {{"--json", false}, {"--help", false}};

std::string persons(std::int64_t n) { return n == 1 ? "1 person" : std::to_string(n) + " people"; }
std::string dependencies(std::int64_t n) {
  return n == 1 ? "1 epic dependency" : std::to_string(n) + " epic dependencies";
}

}  // namespace

int runBackup(std::span<const std::string> args, const CommandContext& context) {
  const ParsedOptions parsed = parseArguments(args, backupSpecs, "backup");
  if (parsed.has("--help")) {
    context.out << backupUsage;
    return exitOk;
  }
  expectPositionals(parsed, {"FILE"}, "backup");
  const std::string& path = parsed.positionals()[0];
  BoardService& service = context.store.service();
  const std::string document = service.makeBackup(context.now);
  if (path == "-") {
    context.out << document << '\n';
    return exitOk;
  }
  writeAtomically(path, document, FileContent::backup);
  Database& db = context.store.store().db();
  context.out << "Backed up " << counted(db.scalarInt("SELECT count(*) FROM projects"), "project") << " with "
              << counted(db.scalarInt("SELECT count(*) FROM tickets"), "ticket") << ", and "
              << persons(db.scalarInt("SELECT count(*) FROM people")) << ", to " << path << ".\n";
  return exitOk;
}

int runRestore(std::span<const std::string> args, const CommandContext& context) {
  const ParsedOptions parsed = parseArguments(args, restoreSpecs, "restore");
  if (parsed.has("--help")) {
    context.out << restoreUsage;
    return exitOk;
  }
  expectPositionals(parsed, {"FILE"}, "restore");
  const std::string& path = parsed.positionals()[0];
  const std::string bytes = readFile(path, context.in, FileContent::backup);
  Backup::Report report;
  try {
    report = context.store.service().restoreBackup(bytes);
  } catch (const Backup::BackupError& error) {
    throw CliError(error.what());
  }

  if (parsed.has("--json")) {
    const nlohmann::json json = {{"projects", report.projects},
                                 {"tickets", report.tickets},
                                 {"people", report.people},
                                 {"forecasts", report.forecasts},
                                 {"iterations", report.iterations},
                                 {"milestones", report.milestones},
                                 {"epicDependencies", report.epicDependencies},
                                 {"warnings", report.warnings}};
    context.out << json.dump(2) << '\n';
    return exitOk;
  }
  context.out << "Restored " << counted(report.projects, "project") << " with " << counted(report.tickets, "ticket")
              << ", " << counted(report.forecasts, "saved forecast") << ", " << counted(report.iterations, "iteration")
              << ", " << counted(report.milestones, "milestone") << " and " << dependencies(report.epicDependencies)
              << "; " << persons(report.people) << " added.\n";
  if (report.warnings.empty()) return exitOk;
  context.out << counted(static_cast<std::int64_t>(report.warnings.size()), "warning") << ":\n";
  for (const std::string& warning : report.warnings) context.out << "  " << warning << '\n';
  return exitOk;
}

}  // namespace orvane::cli
