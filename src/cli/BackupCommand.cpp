#include "cli/BackupCommand.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/CliError.h"
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
    "into the store it came from is named with \" (restored)\". A file that\n"
    "cannot be restored adds nothing. \"-\" reads standard input.\n"
    "\n"
    "  --json   print the report as a JSON object\n"
    "  --help   print this text\n";

constexpr OptionSpec backupSpecs[] = {{"--help", false}};
constexpr OptionSpec restoreSpecs[] = {{"--json", false}, {"--help", false}};

std::string readAll(const std::string& path, std::istream& standardInput) {
  if (path == "-") return std::string(std::istreambuf_iterator<char>(standardInput), {});
  std::ifstream in(path, std::ios::binary);
  if (!in) throw CliError("The file could not be read: " + path);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  if (in.bad()) throw CliError("The file could not be read: " + path);
  return bytes.str();
}

// Writes to a temporary file beside `path`, flushes it to disk, then renames
// it over `path`: the folder holds the old file or the whole new one, never
// a part of it.
void writeAtomically(const std::string& path, std::string_view bytes) {
  const std::filesystem::path target(path);
  const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : ".";
  std::string temporary = (folder / ("." + target.filename().string() + ".XXXXXX")).string();
  const auto fail = [&](int error) {
    throw CliError("The file could not be written: " + path + " (" + std::strerror(error) + ").", exitFailure);
  };
  const int fd = ::mkstemp(temporary.data());
  if (fd < 0) fail(errno);
  std::size_t written = 0;
  while (written < bytes.size()) {
    const ssize_t n = ::write(fd, bytes.data() + written, bytes.size() - written);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      const int error = n < 0 ? errno : EIO;
      ::close(fd);
      ::unlink(temporary.c_str());
      fail(error);
    }
    written += static_cast<std::size_t>(n);
  }
  // mkstemp makes the file private; the backup gets the usual mode.
  const mode_t mask = ::umask(0);
  ::umask(mask);
  ::fchmod(fd, 0666 & ~mask);
  if (::fsync(fd) != 0) {
    const int error = errno;
    ::close(fd);
    ::unlink(temporary.c_str());
    fail(error);
  }
  if (::close(fd) != 0 || std::rename(temporary.c_str(), path.c_str()) != 0) {
    const int error = errno;
    ::unlink(temporary.c_str());
    fail(error);
  }
}

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
  writeAtomically(path, document);
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
  const std::string bytes = readAll(path, context.in);
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
  context.out << counted(static_cast<std::int64_t>(report.warnings.size()), "minor problem") << " skipped:\n";
  for (const std::string& warning : report.warnings) context.out << "  " << warning << '\n';
  return exitOk;
}

}  // namespace orvane::cli
