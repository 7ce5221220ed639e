// SQLite declares its session extension only when these are defined; the
// library the store links against is built with both.
#define SQLITE_ENABLE_SESSION 1
#define SQLITE_ENABLE_PREUPDATE_HOOK 1
#include "core/store/ChangeRecorder.h"

#include <sqlite3.h>

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/store/Database.h"

namespace orvane {
namespace {

constexpr const char* undoRefused = "This change can no longer be undone because the project was changed elsewhere.";
constexpr const char* redoRefused = "This change can no longer be redone because the project was changed elsewhere.";

void check(sqlite3* db, int rc) {
  if (rc != SQLITE_OK) throw SqliteError(rc, db ? sqlite3_errmsg(db) : sqlite3_errstr(rc));
}

struct SessionDeleter {
  void operator()(sqlite3_session* session) const { sqlite3session_delete(session); }
};

struct SqliteFree {
  void operator()(void* memory) const { sqlite3_free(memory); }
};

// Any row that is not as the changeset expects stops the whole apply.
int abortOnConflict(void*, int, sqlite3_changeset_iter*) { return SQLITE_CHANGESET_ABORT; }

// Foreign-key actions off for the life of the object, restored after. The
// setting cannot change inside a transaction, so this wraps it.
class ForeignKeyActionsOff {
 public:
  explicit ForeignKeyActionsOff(Database& db) : db_(db), wasOn_(db.scalarInt("PRAGMA foreign_keys") != 0) {
    if (wasOn_) db_.exec("PRAGMA foreign_keys = OFF");
  }
  ~ForeignKeyActionsOff() {
    if (!wasOn_) return;
    try {
      db_.exec("PRAGMA foreign_keys = ON");
    } catch (const SqliteError&) {
      // Only fails inside a transaction, which the apply never leaves open.
    }
  }
  ForeignKeyActionsOff(const ForeignKeyActionsOff&) = delete;
  ForeignKeyActionsOff& operator=(const ForeignKeyActionsOff&) = delete;

 private:
  Database& db_;
  bool wasOn_;
};

// The foreign keys of the schema, read once per apply: for each table, the
// references it holds (child side) and those that point at it (parent side).
struct Reference {
  std::string child;
  int childColumn = 0;
  std::string childColumnName;
  std::string parent;
  int parentColumn = 0;
  std::string parentColumnName;
};

class ReferenceCheck {
 public:
  explicit ReferenceCheck(Database& db) : db_(db) {
    std::vector<std::string> tables;
    Statement list = db.prepare("SELECT name FROM sqlite_schema WHERE type = 'table' AND name NOT LIKE 'sqlite_%'");
    while (list.step()) tables.push_back(list.text(0));
    for (const std::string& table : tables) {
      Statement keys = db.prepare("SELECT \"table\", \"from\", \"to\" FROM pragma_foreign_key_list(?1)");
      keys.bind(1, table);
      while (keys.step()) {
        Reference reference{table, columnIndex(table, keys.text(1)), keys.text(1), keys.text(0), 0, ""};
        // No target column names the parent's primary key.
        reference.parentColumnName = keys.isNull(2) ? primaryKey(reference.parent) : keys.text(2);
        reference.parentColumn = columnIndex(reference.parent, reference.parentColumnName);
        references_.push_back(std::move(reference));
      }
    }
  }
  ~ReferenceCheck() {
    for (auto& [sql, statement] : statements_) sqlite3_finalize(statement);
  }
  ReferenceCheck(const ReferenceCheck&) = delete;
  ReferenceCheck& operator=(const ReferenceCheck&) = delete;

  // Whether every row the changeset wrote refers to rows that exist, and no
  // row it deleted is still referred to. Each test is one indexed lookup, so
  // the cost follows the size of the step, not of the file.
  bool holds(const std::vector<unsigned char>& bytes) {
    sqlite3_changeset_iter* raw = nullptr;
    check(db_.handle(),
          sqlite3changeset_start(&raw, static_cast<int>(bytes.size()), const_cast<unsigned char*>(bytes.data())));
    const std::unique_ptr<sqlite3_changeset_iter, void (*)(sqlite3_changeset_iter*)> iterator(
        raw, [](sqlite3_changeset_iter* it) { sqlite3changeset_finalize(it); });
    while (sqlite3changeset_next(raw) == SQLITE_ROW) {
      const char* table = nullptr;
      int columns = 0;
      int op = 0;
      int indirect = 0;
      check(db_.handle(), sqlite3changeset_op(raw, &table, &columns, &op, &indirect));
      for (const Reference& reference : references_) {
        if (op != SQLITE_DELETE && reference.child == table) {
          sqlite3_value* value = nullptr;
          if (sqlite3changeset_new(raw, reference.childColumn, &value) != SQLITE_OK) continue;
          if (value != nullptr && sqlite3_value_type(value) != SQLITE_NULL &&
              !exists(reference.parent, reference.parentColumnName, value))
            return false;
        }
        if (op != SQLITE_INSERT && reference.parent == table) {
          sqlite3_value* value = nullptr;
          if (sqlite3changeset_old(raw, reference.parentColumn, &value) != SQLITE_OK) continue;
          if (value == nullptr || sqlite3_value_type(value) == SQLITE_NULL) continue;
          // An update that keeps the key leaves its children in place.
          sqlite3_value* after = nullptr;
          if (op == SQLITE_UPDATE &&
              (sqlite3changeset_new(raw, reference.parentColumn, &after) != SQLITE_OK || after == nullptr))
            continue;
          if (exists(reference.child, reference.childColumnName, value)) return false;
        }
      }
    }
    return true;
  }

 private:
  int columnIndex(const std::string& table, const std::string& column) {
    Statement info = db_.prepare("SELECT cid FROM pragma_table_info(?1) WHERE name = ?2");
    info.bindAll(table, column);
    return info.step() ? static_cast<int>(info.int64(0)) : -1;
  }
  std::string primaryKey(const std::string& table) {
    Statement info = db_.prepare("SELECT name FROM pragma_table_info(?1) WHERE pk = 1");
    info.bind(1, table);
    return info.step() ? info.text(0) : std::string("rowid");
  }
  bool exists(const std::string& table, const std::string& column, sqlite3_value* value) {
    const std::string sql = "SELECT 1 FROM \"" + table + "\" WHERE \"" + column + "\" = ?1 LIMIT 1";
    sqlite3_stmt*& statement = statements_[sql];
    if (statement == nullptr)
      check(db_.handle(), sqlite3_prepare_v2(db_.handle(), sql.c_str(), -1, &statement, nullptr));
    sqlite3_reset(statement);
    check(db_.handle(), sqlite3_bind_value(statement, 1, value));
    const int rc = sqlite3_step(statement);
    if (rc != SQLITE_ROW && rc != SQLITE_DONE) check(db_.handle(), rc);
    return rc == SQLITE_ROW;
  }

  Database& db_;
  std::vector<Reference> references_;
  std::unordered_map<std::string, sqlite3_stmt*> statements_;
};

void apply(Database& db, std::vector<unsigned char> bytes, bool invert, const char* refusal) {
  sqlite3* handle = db.handle();
  if (!sqlite3_get_autocommit(handle)) {
    throw std::logic_error("A recorded change can only be applied outside a transaction.");
  }
  if (invert) {
    int size = 0;
    void* inverted = nullptr;
    check(handle, sqlite3changeset_invert(static_cast<int>(bytes.size()), bytes.data(), &size, &inverted));
    const std::unique_ptr<void, SqliteFree> owner(inverted);
    const auto* begin = static_cast<const unsigned char*>(inverted);
    bytes.assign(begin, begin + size);
  }
  const ForeignKeyActionsOff actionsOff(db);
  Transaction transaction(db);
  const int rc =
      sqlite3changeset_apply(handle, static_cast<int>(bytes.size()), bytes.data(), nullptr, abortOnConflict, nullptr);
  if (rc == SQLITE_ABORT) throw ChangeConflictError(refusal);
  check(handle, rc);
  // With the actions off nothing kept the references whole while applying;
  // a reference to a row removed elsewhere shows up here.
  if (!ReferenceCheck(db).holds(bytes)) throw ChangeConflictError(refusal);
  transaction.commit();
}

}  // namespace

ChangeRecorder::ChangeRecorder(Database& db) : db_(db) {}

Changeset ChangeRecorder::record(const std::function<void()>& change) {
  sqlite3* handle = db_.handle();
  sqlite3_session* raw = nullptr;
  check(handle, sqlite3session_create(handle, "main", &raw));
  const std::unique_ptr<sqlite3_session, SessionDeleter> session(raw);
  check(handle, sqlite3session_attach(raw, nullptr));  // every table, present and future

  const auto take = [&] {
    int size = 0;
    void* bytes = nullptr;
    check(handle, sqlite3session_changeset(raw, &size, &bytes));
    const std::unique_ptr<void, SqliteFree> owner(bytes);
    Changeset changeset;
    const auto* begin = static_cast<const unsigned char*>(bytes);
    if (size > 0) changeset.bytes_.assign(begin, begin + size);
    return changeset;
  };

  try {
    change();
  } catch (...) {
    // The operation that threw rolled itself back; earlier ones of the same
    // step did commit and are taken back here.
    const Changeset partial = take();
    if (!partial.empty() && sqlite3_get_autocommit(handle)) {
      try {
        apply(db_, partial.bytes_, true, undoRefused);
      } catch (const std::exception&) {
        // The step's own refusal is what the user needs to read.
      }
    }
    throw;
  }
  return take();
}

void ChangeRecorder::revert(const Changeset& changeset) {
  if (!changeset.empty()) apply(db_, changeset.bytes_, true, undoRefused);
}

void ChangeRecorder::reapply(const Changeset& changeset) {
  if (!changeset.empty()) apply(db_, changeset.bytes_, false, redoRefused);
}

}  // namespace orvane
