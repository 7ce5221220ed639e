#include "core/store/Store.h"

#include <cstdlib>
#include <system_error>

#include "core/store/Schema.h"

namespace orvane {
namespace {

std::string quoted(const std::filesystem::path& path) { return "\"" + path.string() + "\""; }

bool isDamage(int code) {
  const int primary = code & 0xFF;
  return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB || primary == SQLITE_IOERR;
}

struct Inspection {
  std::int64_t applicationId = 0;
  std::int64_t version = 0;
  std::int64_t objects = 0;  // tables, indexes, ... of any kind
};

// Reads what kind of file this is without writing to it.
Inspection inspect(const std::filesystem::path& path) {
  try {
    Database db(path.string(), SQLITE_OPEN_READONLY);
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
  } catch (const SqliteError& error) {
    if ((error.code() & 0xFF) == SQLITE_NOTADB) throw StoreError(quoted(path) + " is not an Orvane database.");
    if (isDamage(error.code())) throw StoreError("The database " + quoted(path) + " is damaged (" + error.what() + ").");
    throw StoreError("The database " + quoted(path) + " could not be read (" + error.what() + ").");
  }
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

Store Store::open(const std::filesystem::path& path) {
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
  } else if (path.has_parent_path()) {
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    if (error) {
      throw StoreError("The database could not be created in " + quoted(path.parent_path()) + " (" +
                       error.message() + ").");
    }
  }

  try {
    // One connection serves one thread, so SQLite need not lock around each call.
    Database db(path.string(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX);
    db.exec("PRAGMA foreign_keys = ON");
    db.exec("PRAGMA journal_mode = WAL");
    // Every commit reaches the disk before the operation returns: nothing a
    // user stored is lost, even to a power cut.
    db.exec("PRAGMA synchronous = FULL");
    // Snapshots read whole projects; let them come from memory.
    db.exec("PRAGMA cache_size = -65536");
    db.exec("PRAGMA mmap_size = 268435456");
    if (version < Schema::currentVersion) {
      Transaction transaction(db);
      Schema::migrate(db, version);
      transaction.commit();
    }
    return Store(path, std::move(db));
  } catch (const SqliteError& error) {
    throw StoreError("The database " + quoted(path) + " could not be opened for writing (" + error.what() + ").");
  }
}

}  // namespace orvane
