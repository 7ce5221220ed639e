#include "cli/ExchangeCommands.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <set>
#include <sstream>

#include "cli/CliError.h"
#include "cli/FileAccess.h"
#include "cli/OptionParser.h"
#include "cli/ProjectLookup.h"
#include "cli/StoreAccess.h"
#include "cli/TextLayout.h"
#include "core/exchange/CsvCodec.h"
#include "core/exchange/TicketCsv.h"
#include "core/exchange/TicketImport.h"
#include "core/exchange/TicketXlsx.h"
#include "core/exchange/XlsxReadError.h"
#include "core/exchange/XlsxWriteError.h"
#include "engine/CivilDate.h"

namespace orvane::cli {
namespace {

constexpr std::string_view exportUsage =
    "Usage: orvane-cli export PROJECT FILE.csv|FILE.xlsx\n"
    "\n"
    "Writes every ticket of the project, archived ones included, as a ticket\n"
    "file that can be imported again: title, description, column, priority,\n"
    "epic, tags, the five dates (UTC), assignee and blocked. The kind of file\n"
    "follows the name's ending. An existing file is replaced.\n"
    "\n"
    "  --help   print this text\n";

constexpr std::string_view importUsage =
    "Usage: orvane-cli import PROJECT FILE.csv|FILE.xlsx [--dry-run] [--extend-history]\n"
    "\n"
    "Adds the tickets of a file (comma, semicolon or tab separated text, or the\n"
    "first sheet of a workbook) to the project. The first row names the\n"
    "columns; only \"title\" is required. Rows with a problem are listed with\n"
    "their row number and skipped (errors) or imported as well as possible\n"
    "(warnings). Missing epics and people are created.\n"
    "\n"
    "  --dry-run          check everything and report, but change nothing\n"
    "  --extend-history   move the project's start back to the earliest\n"
    "                     created date of the file\n"
    "  --help             print this text\n";

constexpr std::string_view templateUsage =
    "Usage: orvane-cli template FILE.xlsx\n"
    "\n"
    "Writes a workbook with the ticket columns, an example row and a sheet\n"
    "that explains each column, ready to fill in and import.\n"
    "\n"
    "  --help   print this text\n";

constexpr OptionSpec helpOnly[] = {{"--help", false}};
constexpr OptionSpec importSpecs[] = {{"--dry-run", false}, {"--extend-history", false}, {"--help", false}};

enum class FileKind { csv, xlsx };

FileKind kindOf(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (extension == ".csv") return FileKind::csv;
  if (extension == ".xlsx") return FileKind::xlsx;
  throw CliError("The file name must end in .csv or .xlsx: " + path);
}

// "4,000": the number as counted() writes it, without a noun.
std::string grouped(std::int64_t n) {
  const std::string text = counted(n, "");
  return text.substr(0, text.find(' '));
}

std::string people(std::int64_t n) { return n == 1 ? "1 person" : grouped(n) + " people"; }

// A line on a terminal that rewrites itself: "Importing… 4,000 of 10,000
// rows". Shown only when stderr is the process's own terminal, and only for
// imports long enough to notice.
class ProgressLine {
 public:
  explicit ProgressLine(const CommandContext& context)
      : enabled_(&context.err == &std::cerr && ::isatty(STDERR_FILENO) == 1) {}
  ~ProgressLine() {
    if (shown_) std::cerr << "\r\x1b[K" << std::flush;
  }
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  ImportProgress callback() {
    if (!enabled_) return {};
    return [this](std::int64_t done, std::int64_t total) {
      if (total < 1000 || (done % 250 != 0 && done != total)) return;
      shown_ = true;
      std::cerr << "\rImporting\xE2\x80\xA6 " << grouped(done) << " of " << counted(total, "row") << "\x1b[K"
                << std::flush;
    };
  }

 private:
  bool enabled_;
  bool shown_ = false;
};

}  // namespace

int runExport(std::span<const std::string> args, const CommandContext& context) {
  const ParsedOptions parsed = parseArguments(args, helpOnly, "export");
  if (parsed.has("--help")) {
    context.out << exportUsage;
    return exitOk;
  }
  expectPositionals(parsed, {"PROJECT", "FILE"}, "export");
  const std::string& path = parsed.positionals()[1];
  const FileKind kind = kindOf(path);
  const ProjectSnapshot snapshot = loadProject(context.store.service(), parsed.positionals()[0]);
  std::string bytes;
  try {
    bytes = kind == FileKind::csv ? TicketCSV::exportText(snapshot) : TicketXlsx::exportWorkbook(snapshot);
  } catch (const XLSXWriteError& error) {
    throw CliError(error.what());
  }
  writeAtomically(path, bytes, FileContent::tickets);
  context.out << "Exported " << counted(static_cast<std::int64_t>(snapshot.tickets.size()), "ticket") << " of "
              << snapshot.project.name << " to " << path << ".\n";
  return exitOk;
}

int runImport(std::span<const std::string> args, const CommandContext& context) {
  const ParsedOptions parsed = parseArguments(args, importSpecs, "import");
  if (parsed.has("--help")) {
    context.out << importUsage;
    return exitOk;
  }
  expectPositionals(parsed, {"PROJECT", "FILE"}, "import");
  const std::string& path = parsed.positionals()[1];
  const FileKind kind = kindOf(path);
  const bool dryRun = parsed.has("--dry-run");

  // The whole file is read before anything is written: a file that cannot
  // be read at all is refused with its sentence and changes nothing.
  ParsedImport rows;
  try {
    const std::string bytes = readFile(path, context.in, FileContent::tickets);
    rows = kind == FileKind::csv ? TicketCSV::parse(bytes) : TicketXlsx::parse(bytes);
  } catch (const TicketCSVError& error) {
    throw CliError(error.what());
  } catch (const CSVError& error) {
    throw CliError(error.what());
  } catch (const XLSXReadError& error) {
    throw CliError(error.what());
  }

  BoardService& service = context.store.service();
  const ProjectSnapshot snapshot = loadProject(service, parsed.positionals()[0]);
  ImportReport report;
  {
    ProgressLine progress(context);
    report = importTickets(context.store.store(), rows, snapshot.project.id, context.now,
                           parsed.has("--extend-history"), ImportOptions{progress.callback(), dryRun});
  }

  for (const ImportIssue& issue : report.issues) {
    context.out << "Row " << issue.rowNumber << (issue.isError ? ": error: " : ": warning: ") << issue.message << '\n';
  }
  context.out << (dryRun ? "Would import " : "Imported ") << counted(report.imported, "ticket") << " into "
              << snapshot.project.name;
  if (report.createdEpics > 0 || report.createdPeople > 0) {
    context.out << ", creating " << counted(report.createdEpics, "epic") << " and " << people(report.createdPeople);
  }
  context.out << ".\n";
  // A row may have more than one error (two bad dates) but is skipped once.
  std::set<std::int64_t> skipped;
  for (const ImportIssue& issue : report.issues) {
    if (issue.isError) skipped.insert(issue.rowNumber);
  }
  const auto warnings = static_cast<std::int64_t>(report.issues.size()) - report.errorCount();
  if (!report.issues.empty()) {
    context.out << counted(static_cast<std::int64_t>(skipped.size()), "row") << " skipped, "
                << counted(warnings, "warning") << ".\n";
  }
  if (report.projectHistoryExtendedTo) {
    context.out << "The project's history " << (dryRun ? "would now start" : "now starts") << " on "
                << CivilDate::fromUtc(*report.projectHistoryExtendedTo).description() << ".\n";
  }
  if (dryRun) context.out << "Nothing was changed (--dry-run).\n";
  return exitOk;
}

int runTemplate(std::span<const std::string> args, const CommandContext& context) {
  const ParsedOptions parsed = parseArguments(args, helpOnly, "template");
  if (parsed.has("--help")) {
    context.out << templateUsage;
    return exitOk;
  }
  expectPositionals(parsed, {"FILE"}, "template");
  const std::string& path = parsed.positionals()[0];
  if (kindOf(path) != FileKind::xlsx) throw CliError("The template is a workbook; name it FILE.xlsx.");
  writeAtomically(path, TicketXlsx::importTemplate(), FileContent::tickets);
  context.out << "Wrote the import template to " << path << ".\n";
  return exitOk;
}

}  // namespace orvane::cli
