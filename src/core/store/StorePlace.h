#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace orvane {

// What keeps a store from being opened or written that lies in where it is
// kept rather than in what it holds. A file with such a problem is never
// called damaged: nothing is wrong with it, and the user can fix the place.
enum class PlaceProblem {
  diskFull,  // no space left (SQLITE_FULL, ENOSPC, EDQUOT)
  readOnly,  // a read-only disk or a folder or file that may not be written
  isFolder,  // the path names a folder
  notAFile,  // a pipe, socket or device: SQLite would block on it or worse
};

// The problem behind a failure that SQLite reported with `sqliteCode` (its
// extended result code) and the operating system with `systemErrno`; none
// when the failure is about the file's content or unknown.
std::optional<PlaceProblem> placeProblemOf(int sqliteCode, int systemErrno);

// The problem a path has before SQLite sees it: a folder, or a file that is
// not a regular file (SQLite would wait forever for a pipe). A symbolic link
// is judged by what it points to; a path with nothing there has none.
std::optional<PlaceProblem> placeProblemOf(const std::filesystem::path& path);

// The problem of the folder that holds (or is to hold) a store, asked of the
// file system itself: a read-only mount, no space left, or no permission to
// write there. SQLite does not always keep the errno behind a file it could
// not open (the shared-memory file of a WAL store on a read-only disk).
std::optional<PlaceProblem> placeProblemOfFolder(const std::filesystem::path& folder);

// The problem behind a failure on the store at `path`: by its codes, or,
// when SQLite could not open or write a file and kept no errno that tells,
// by asking the file system about the store's folder.
std::optional<PlaceProblem> placeProblemOf(int sqliteCode, int systemErrno, const std::filesystem::path& path);

// The one sentence that names the problem of the store at `path` and says
// what to do about it.
std::string sentenceFor(PlaceProblem problem, const std::filesystem::path& path);

}  // namespace orvane
