#include "core/store/Store.h"

#include <array>
#include <cstdlib>
#include <fstream>
#include <system_error>

#include "core/store/Schema.h"
#include "core/store/StorePlace.h"

namespace orvane {
namespace {

std::string quoted(const std::filesystem::path& path) { return "\"" + path.string() + "\""; }

bool isDamage(int code) {
  const int primary = code & 0xFF;
  return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB || primary == SQLITE_IOERR;
}

// The sentence for a failure to read the file at all.
StoreError readFailure(const std::filesystem::path& path, const SqliteError& error) {
  // A hot journal that could not be played back (its place refuses writing)
  // leaves the file half-written: it is neither read nor judged damaged.
  if (const auto problem = placeProblemOf(error.code(), error.systemErrno(), path)) {
    return StoreError(sentenceFor(*problem, path));
  }
  if ((error.code() & 0xFF) == SQLITE_NOTADB) return StoreError(quoted(path) + " is not an Orvane database.");
  if (isDamage(error.code())) return StoreError("The database " + quoted(path) + " is damaged (" + error.what() + ").");
  return StoreError("The database " + quoted(path) + " could not be read (" + error.what() + ").");
}

// Whether `journal` begins with the eight bytes SQLite writes at the head of
// every rollback journal; anything else beside the file is not ours to play.
bool isRollbackJournal(const std::filesystem::path& journal) {
  static constexpr std::array<unsigned char, 8> magic{0xd9, 0xd5, 0x05, 0xf9, 0x20, 0xa1, 0x63, 0xd7};
  std::ifstream in(journal, std::ios::binary);
  std::array<char, 8> head{};
  if (!in.read(head.data(), head.size())) return false;
  for (std::size_t i = 0; i < magic.size(); ++i) {
    if (static_cast<unsigned char>(head[i]) != magic[i]) return false;
  }
  return true;
}

// A program killed in the middle of a rollback-journal transaction (the
// first creation of a store is one) leaves a hot journal beside the file.
// Only a connection that may write can play it back, and until one does,
// every reader is refused ("attempt to write a readonly database"). This is
// SQLite's own recovery, so it runs before the file is judged; a journal
// that is not hot (another program is writing) is left alone by SQLite.
void rollBackHotJournal(const std::filesystem::path& path) {
  if (!isRollbackJournal(path.string() + "-journal")) return;
  try {
    Database db(path.string(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX);
    db.scalarInt("PRAGMA schema_version");
  } catch (const SqliteError&) {
    // Whatever stands in the way is judged, and named, by the inspection.
  }
}

// The path as a URI filename: "%", "?" and "#" would otherwise end it.
std::string uriOf(const std::filesystem::path& path) {
  std::string uri = "file:";
  for (const char c : std::filesystem::absolute(path).string()) {
    if (c == '%' || c == '?' || c == '#') {
      static constexpr char hex[] = "0123456789ABCDEF";
      uri += '%';
      uri += hex[static_cast<unsigned char>(c) >> 4];
      uri += hex[static_cast<unsigned char>(c) & 0xF];
    } else {
      uri += c;
    }
  }
  return uri;
}

// A connection that reads a sound store whose place refuses writing, without
// writing anything beside it.
Database openForReading(const std::filesystem::path& path, PlaceProblem problem) {
  if (problem == PlaceProblem::diskFull) {
    // A full disk has no room for the shared-memory index that WAL readers
    // keep beside the file. In exclusive locking mode SQLite keeps that index
    // in memory instead; query_only refuses every write, and with no
    // checkpoint on close the file stays exactly as it was.
    Database db(path.string(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX);
    sqlite3_db_config(db.handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    db.exec("PRAGMA locking_mode = EXCLUSIVE");
    db.exec("PRAGMA query_only = ON");
    db.scalarInt("PRAGMA schema_version");  // the first read: fails here, not later
    return db;
  }
  // Nothing can change a file on a read-only disk, so SQLite may read it as
  // immutable: no locks and no files beside it. Commits still waiting in a
  // WAL file would be skipped that way, so such a store is not read at all.
  std::error_code ignored;
  if (std::filesystem::file_size(path.string() + "-wal", ignored) > 0 && !ignored) {
    throw SqliteError(SQLITE_READONLY, "attempt to write a readonly database");
  }
  Database db(uriOf(path) + "?mode=ro&immutable=1", SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX);
  db.scalarInt("PRAGMA schema_version");
  return db;
}

struct Inspection {
  std::int64_t applicationId = 0;
  std::int64_t version = 0;
  std::int64_t objects = 0;  // tables, indexes, ... of any kind
};

Inspection inspectWith(Database& db, const std::filesystem::path& path) {
  Inspection found;
  found.applicationId = db.scalarInt("PRAGMA application_id");
  found.version = db.scalarInt("PRAGMA user_version");
  found.objects = db.scalarInt("SELECT count(*) FROM sqlite_schema");
  if (found.applicationId == Schema::applicationId) {
    Statement check = db.prepare("PRAGMA quick_check(1)");
    if (check.step() && check.text(0) != "ok") {
      throw StoreError("The database " + quoted(path) + " is damaged (" + check.text(0) + ").");
    }
  }
  return found;
}

// Reads what kind of file this is without writing to it.
Inspection inspect(const std::filesystem::path& path) {
  try {
    Database db(path.string(), SQLITE_OPEN_READONLY);
    return inspectWith(db, path);
  } catch (const SqliteError& error) {
    const auto problem = placeProblemOf(error.code(), error.systemErrno(), path);
    // A hot journal that is still there could not be played back: the file
    // is half-written and must not be read.
    if (!problem || error.code() == SQLITE_READONLY_ROLLBACK) throw readFailure(path, error);
    try {
      Database db = openForReading(path, *problem);
      return inspectWith(db, path);
    } catch (const SqliteError&) {
      throw readFailure(path, error);
    }
  }
}

// Makes the folder a new store goes into, naming what stands in the way.
void makeFolderFor(const std::filesystem::path& path) {
  const std::filesystem::path folder = path.parent_path();
  if (folder.empty()) return;
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (!error) return;
  for (std::filesystem::path above = folder; !above.empty(); above = above.parent_path()) {
    std::error_code ignored;
    const auto status = std::filesystem::status(above, ignored);
    if (status.type() == std::filesystem::file_type::not_found) {
      if (above == above.parent_path()) break;
      continue;
    }
    if (status.type() != std::filesystem::file_type::directory) {
      throw StoreError("The folder " + quoted(folder) + " for the database cannot be made, because " + quoted(above) +
                       " is a file, not a folder.");
    }
    break;
  }
  if (const auto problem = placeProblemOf(SQLITE_CANTOPEN, error.value())) {
    throw StoreError(sentenceFor(*problem, folder));
  }
  throw StoreError("The database could not be created in " + quoted(folder) + " (" + error.message() + ").");
}

Database openForWriting(const std::filesystem::path& path, std::int64_t version) {
  // One connection serves one thread, so SQLite need not lock around each call.
  Database db(path.string(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX);
  // A file (or its disk) that may only be read opens all the same; say so
  // now rather than at the first change.
  if (sqlite3_db_readonly(db.handle(), "main") == 1) {
    throw SqliteError(SQLITE_READONLY, "attempt to write a readonly database");
  }
  db.exec("PRAGMA foreign_keys = ON");
  // Every commit reaches the disk before the operation returns: nothing a
  // user stored is lost, even to a power cut.
  db.exec("PRAGMA synchronous = FULL");
  if (version < Schema::currentVersion) {
    // Schema, application id and version commit together, in the journal
    // mode the file already has (a rollback journal for a new file): a kill
    // leaves no store or a whole one, and the journal left by a kill is
    // rolled back at the next open.
    Transaction transaction(db);
    Schema::migrate(db, version);
    transaction.commit();
  }
  db.exec("PRAGMA journal_mode = WAL");
  // Snapshots read whole projects; let them come from memory.
  db.exec("PRAGMA cache_size = -65536");
  db.exec("PRAGMA mmap_size = 268435456");
  return db;
}

}  // namespace

std::filesystem::path Store::defaultPath() {
  const char* dataHome = std::getenv("XDG_DATA_HOME");
  std::filesystem::path base;
  if (dataHome != nullptr && *dataHome != '\0') {
    base = dataHome;
  } else {
    const char* home = std::getenv("HOME");
    base = std::filesystem::path(home != nullptr ? home : ".") / ".local" / "share";
  }
  return base / "orvane" / "orvane.sqlite";
}

Store Store::open(const std::filesystem::path& path, WhenUnwritable whenUnwritable) {
  // SQLite would block for ever on a pipe; a folder is no file at all.
  if (const auto problem = placeProblemOf(path)) throw StoreError(sentenceFor(*problem, path));
  rollBackHotJournal(path);

  std::error_code ignored;
  const bool isNew = !std::filesystem::exists(path, ignored) || std::filesystem::file_size(path, ignored) == 0;
  std::int64_t version = 0;
  if (!isNew) {
    const Inspection found = inspect(path);
    if (found.applicationId != Schema::applicationId && !(found.applicationId == 0 && found.objects == 0)) {
      throw StoreError(quoted(path) + " is not an Orvane database.");
    }
    if (found.version > Schema::currentVersion) {
      throw StoreError(quoted(path) + " was saved by a newer version of Orvane (data format " +
                       std::to_string(found.version) + "; this version reads format " +
                       std::to_string(Schema::currentVersion) + " and older).");
    }
    version = found.version;
  } else {
    makeFolderFor(path);
  }

  try {
    return Store(path, openForWriting(path, version));
  } catch (const SqliteError& error) {
    const auto problem = placeProblemOf(error.code(), error.systemErrno(), path);
    if (!problem) {
      throw StoreError("The database " + quoted(path) + " could not be opened for writing (" + error.what() + ").");
    }
    const std::string reason = sentenceFor(*problem, path);
    // Only a whole store of this version can be read as it is.
    if (whenUnwritable == WhenUnwritable::readOnly && version == Schema::currentVersion) {
      try {
        return Store(path, openForReading(path, *problem), reason);
      } catch (const SqliteError&) {
        // Not even reading works there; the place's problem is the answer.
      }
    }
    throw StoreError(reason);
  }
}

std::optional<std::string> Store::placeProblemBehind(const SqliteError& error) const {
  if (readOnlyReason_ && (error.code() & 0xFF) == SQLITE_READONLY) return readOnlyReason_;
  const auto problem = placeProblemOf(error.code(), error.systemErrno(), path_);
  return problem ? std::optional(sentenceFor(*problem, path_)) : std::nullopt;
}

}  // namespace orvane
