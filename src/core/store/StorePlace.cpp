#include "core/store/StorePlace.h"

#include <sqlite3.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace orvane {
namespace {

std::string quoted(const std::filesystem::path& path) { return "\"" + path.string() + "\""; }

}  // namespace

std::optional<PlaceProblem> placeProblemOf(int sqliteCode, int systemErrno) {
  const int primary = sqliteCode & 0xFF;
  if (primary == SQLITE_FULL) return PlaceProblem::diskFull;
  // Every READONLY means the file, its folder or its disk refused a write
  // (a connection that reads on purpose never gets here).
  if (primary == SQLITE_READONLY) return PlaceProblem::readOnly;
  // Only a failure of the file system itself has an errno worth reading;
  // damage, a foreign file or a lock held by another program has none.
  if (primary != SQLITE_IOERR && primary != SQLITE_CANTOPEN && primary != SQLITE_PERM) return std::nullopt;
  switch (systemErrno) {
    case ENOSPC:
    case EDQUOT:
      return PlaceProblem::diskFull;
    case EROFS:
    case EACCES:
    case EPERM:
      return PlaceProblem::readOnly;
    case EISDIR:
      return PlaceProblem::isFolder;
    default:
      return std::nullopt;
  }
}

std::optional<PlaceProblem> placeProblemOf(const std::filesystem::path& path) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  if (error || status.type() == std::filesystem::file_type::not_found) return std::nullopt;
  if (status.type() == std::filesystem::file_type::directory) return PlaceProblem::isFolder;
  if (status.type() != std::filesystem::file_type::regular) return PlaceProblem::notAFile;
  return std::nullopt;
}

std::optional<PlaceProblem> placeProblemOfFolder(const std::filesystem::path& folder) {
  const std::string name = folder.empty() ? std::string(".") : folder.string();
  struct statvfs disk {};
  if (statvfs(name.c_str(), &disk) == 0) {
    if ((disk.f_flag & ST_RDONLY) != 0) return PlaceProblem::readOnly;
    if (disk.f_bavail == 0) return PlaceProblem::diskFull;
  }
  if (access(name.c_str(), W_OK) != 0 && errno != ENOENT) return PlaceProblem::readOnly;
  return std::nullopt;
}

std::optional<PlaceProblem> placeProblemOf(int sqliteCode, int systemErrno, const std::filesystem::path& path) {
  if (const auto problem = placeProblemOf(sqliteCode, systemErrno)) return problem;
  const int primary = sqliteCode & 0xFF;
  if (primary != SQLITE_CANTOPEN && primary != SQLITE_IOERR) return std::nullopt;
  return placeProblemOfFolder(path.parent_path());
}

std::string sentenceFor(PlaceProblem problem, const std::filesystem::path& path) {
  switch (problem) {
    case PlaceProblem::diskFull:
      return "The disk that holds " + quoted(path) + " is full; free some space on it and try again.";
    case PlaceProblem::readOnly:
      return quoted(path) +
             " cannot be written, because its disk or folder is read-only; make it writable, or copy the file to "
             "a folder you can write to and open that copy.";
    case PlaceProblem::isFolder:
      return quoted(path) + " is a folder, not a database file; give the path of a file in it, such as " +
             quoted(path / "orvane.sqlite") + ".";
    case PlaceProblem::notAFile:
      return quoted(path) + " is not a regular file (a pipe, socket or device); give the path of a database file.";
  }
  return {};
}

}  // namespace orvane
