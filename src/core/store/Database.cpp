#include "core/store/Database.h"

#include <cstring>
#include <utility>

namespace orvane {
namespace {

[[noreturn]] void fail(sqlite3* db, int rc) {
  throw SqliteError(rc, db ? sqlite3_errmsg(db) : sqlite3_errstr(rc), db ? sqlite3_system_errno(db) : 0);
}

}  // namespace

Statement::Statement(sqlite3* db, std::string_view sql) : db_(db) {
  const int rc = sqlite3_prepare_v3(db, sql.data(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT,
                                    &statement_, nullptr);
  if (rc != SQLITE_OK) fail(db, rc);
}

Statement::Statement(Statement&& other) noexcept
    : db_(other.db_), statement_(std::exchange(other.statement_, nullptr)) {}

Statement& Statement::operator=(Statement&& other) noexcept {
  if (this != &other) {
    sqlite3_finalize(statement_);
    db_ = other.db_;
    statement_ = std::exchange(other.statement_, nullptr);
  }
  return *this;
}

Statement::~Statement() { sqlite3_finalize(statement_); }

void Statement::check(int rc) const {
  if (rc != SQLITE_OK) fail(db_, rc);
}

Statement& Statement::bind(int index, std::nullopt_t) {
  check(sqlite3_bind_null(statement_, index));
  return *this;
}
Statement& Statement::bind(int index, std::int64_t value) {
  check(sqlite3_bind_int64(statement_, index, value));
  return *this;
}
Statement& Statement::bind(int index, double value) {
  check(sqlite3_bind_double(statement_, index, value));
  return *this;
}
Statement& Statement::bind(int index, std::string_view value) {
  check(sqlite3_bind_text64(statement_, index, value.data(), value.size(), SQLITE_TRANSIENT, SQLITE_UTF8));
  return *this;
}

Statement& Statement::bind(int index, const Uuid& value) {
  check(sqlite3_bind_blob(statement_, index, value.bytes.data(), static_cast<int>(value.bytes.size()), SQLITE_TRANSIENT));
  return *this;
}

bool Statement::step() {
  const int rc = sqlite3_step(statement_);
  if (rc == SQLITE_ROW) return true;
  if (rc == SQLITE_DONE) return false;
  sqlite3_reset(statement_);
  fail(db_, rc);
}

void Statement::run() {
  while (step()) {
  }
  sqlite3_reset(statement_);
}

void Statement::reset() {
  sqlite3_reset(statement_);
  sqlite3_clear_bindings(statement_);
}

int Statement::columnCount() const { return sqlite3_column_count(statement_); }
bool Statement::isNull(int column) const { return sqlite3_column_type(statement_, column) == SQLITE_NULL; }
std::int64_t Statement::int64(int column) const { return sqlite3_column_int64(statement_, column); }
double Statement::real(int column) const { return sqlite3_column_double(statement_, column); }

std::string Statement::text(int column) const {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
  return bytes ? std::string(bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))) : std::string();
}

std::string_view Statement::textView(int column) const {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
  return bytes ? std::string_view(bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))) : std::string_view();
}

Uuid Statement::uuid(int column) const {
  Uuid id;
  const void* bytes = sqlite3_column_blob(statement_, column);
  if (bytes == nullptr || sqlite3_column_bytes(statement_, column) != static_cast<int>(id.bytes.size())) {
    throw SqliteError(SQLITE_CORRUPT, "an identifier in the database is not 16 bytes long");
  }
  std::memcpy(id.bytes.data(), bytes, id.bytes.size());
  return id;
}

std::optional<std::int64_t> Statement::optionalInt64(int column) const {
  return isNull(column) ? std::nullopt : std::optional(int64(column));
}
std::optional<double> Statement::optionalReal(int column) const {
  return isNull(column) ? std::nullopt : std::optional(real(column));
}
std::optional<std::string> Statement::optionalText(int column) const {
  return isNull(column) ? std::nullopt : std::optional(text(column));
}
std::optional<Uuid> Statement::optionalUuid(int column) const {
  return isNull(column) ? std::nullopt : std::optional(uuid(column));
}
std::optional<Timestamp> Statement::optionalTimestamp(int column) const {
  return isNull(column) ? std::nullopt : std::optional(timestamp(column));
}

Database::Database(const std::string& path, int flags) {
  const int rc = sqlite3_open_v2(path.c_str(), &db_, flags, nullptr);
  if (rc != SQLITE_OK) {
    const std::string message = db_ ? sqlite3_errmsg(db_) : sqlite3_errstr(rc);
    const int systemErrno = db_ ? sqlite3_system_errno(db_) : 0;
    sqlite3_close_v2(db_);
    db_ = nullptr;
    throw SqliteError(rc, message, systemErrno);
  }
  sqlite3_extended_result_codes(db_, 1);
  sqlite3_busy_timeout(db_, 5000);
}

Database::Database(Database&& other) noexcept
    : db_(std::exchange(other.db_, nullptr)), statements_(std::move(other.statements_)) {}

Database& Database::operator=(Database&& other) noexcept {
  if (this != &other) {
    statements_.clear();
    sqlite3_close_v2(db_);
    db_ = std::exchange(other.db_, nullptr);
    statements_ = std::move(other.statements_);
  }
  return *this;
}

Database::~Database() {
  statements_.clear();  // finalize before closing
  sqlite3_close_v2(db_);
}

void Database::exec(std::string_view sql) {
  char* error = nullptr;
  const std::string text(sql);
  const int rc = sqlite3_exec(db_, text.c_str(), nullptr, nullptr, &error);
  if (rc != SQLITE_OK) {
    const std::string message = error ? error : sqlite3_errstr(rc);
    sqlite3_free(error);
    throw SqliteError(rc, message, sqlite3_system_errno(db_));
  }
}

Statement Database::prepare(std::string_view sql) { return Statement(db_, sql); }

Statement& Database::cached(const std::string& sql) {
  auto it = statements_.find(sql);
  if (it == statements_.end()) it = statements_.emplace(sql, std::make_unique<Statement>(db_, sql)).first;
  it->second->reset();
  return *it->second;
}

std::int64_t Database::scalarInt(std::string_view sql) {
  Statement statement = prepare(sql);
  return statement.step() ? statement.int64(0) : 0;
}

int Database::changes() const { return sqlite3_changes(db_); }

Transaction::Transaction(Database& db) : db_(db), nested_(sqlite3_get_autocommit(db.handle()) == 0) {
  db_.exec(nested_ ? "SAVEPOINT nested_operation" : "BEGIN IMMEDIATE");
}

Transaction::~Transaction() {
  if (open_) {
    try {
      db_.exec(nested_ ? "ROLLBACK TO nested_operation; RELEASE nested_operation" : "ROLLBACK");
    } catch (const SqliteError&) {
      // The transaction may already have been rolled back by SQLite itself
      // (after a failed commit or a full disk); there is nothing left to undo.
    }
  }
}

void Transaction::commit() {
  db_.exec(nested_ ? "RELEASE nested_operation" : "COMMIT");
  open_ = false;
}

}  // namespace orvane
