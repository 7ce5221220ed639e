#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/model/Uuid.h"
#include "engine/Timestamp.h"

namespace orvane {

// A failure reported by SQLite, with its (extended) result code and the
// operating system's errno behind it, 0 when there was none: a full disk and
// a read-only file system are told apart by the latter.
class SqliteError : public std::runtime_error {
 public:
  SqliteError(int code, const std::string& message, int systemErrno = 0)
      : std::runtime_error(message), code_(code), systemErrno_(systemErrno) {}
  int code() const { return code_; }
  int systemErrno() const { return systemErrno_; }

 private:
  int code_;
  int systemErrno_;
};

// A prepared statement. Parameters are 1-based, result columns 0-based.
class Statement {
 public:
  Statement(sqlite3* db, std::string_view sql);
  Statement(Statement&&) noexcept;
  Statement& operator=(Statement&&) noexcept;
  ~Statement();

  Statement& bind(int index, std::nullopt_t);
  Statement& bind(int index, std::int64_t value);
  Statement& bind(int index, int value) { return bind(index, static_cast<std::int64_t>(value)); }
  Statement& bind(int index, bool value) { return bind(index, static_cast<std::int64_t>(value)); }
  Statement& bind(int index, double value);
  Statement& bind(int index, std::string_view value);
  Statement& bind(int index, const std::string& value) { return bind(index, std::string_view(value)); }
  Statement& bind(int index, const char* value) { return bind(index, std::string_view(value)); }
  // Identifiers are kept as their 16 bytes: half the size of the text form
  // in every index, and nothing to parse when read back.
  Statement& bind(int index, const Uuid& value);
  Statement& bind(int index, Timestamp value) { return bind(index, value.secondsSince1970); }
  template <typename T>
  Statement& bind(int index, const std::optional<T>& value) {
    return value ? bind(index, *value) : bind(index, std::nullopt);
  }

  // Binds the values to parameters 1, 2, ... in order.
  template <typename... Values>
  Statement& bindAll(const Values&... values) {
    int index = 0;
    (bind(++index, values), ...);
    return *this;
  }

  // Advances to the next row; false when there is none.
  bool step();
  // Runs a statement that returns no rows.
  void run();
  // Clears the bindings and rewinds, ready to run again.
  void reset();

  int columnCount() const;
  bool isNull(int column) const;
  std::int64_t int64(int column) const;
  double real(int column) const;
  std::string text(int column) const;
  // Valid until the next step or reset.
  std::string_view textView(int column) const;
  bool boolean(int column) const { return int64(column) != 0; }
  Uuid uuid(int column) const;
  Timestamp timestamp(int column) const { return Timestamp{real(column)}; }
  std::optional<std::int64_t> optionalInt64(int column) const;
  std::optional<double> optionalReal(int column) const;
  std::optional<std::string> optionalText(int column) const;
  std::optional<Uuid> optionalUuid(int column) const;
  std::optional<Timestamp> optionalTimestamp(int column) const;

 private:
  void check(int rc) const;

  sqlite3* db_ = nullptr;
  sqlite3_stmt* statement_ = nullptr;
};

// One SQLite connection. Statements prepared through `cached` are kept for
// the life of the connection, so hot paths parse their SQL once.
class Database {
 public:
  // Throws SqliteError when the file cannot be opened with these flags.
  Database(const std::string& path, int flags);
  Database(Database&&) noexcept;
  Database& operator=(Database&&) noexcept;
  ~Database();

  void exec(std::string_view sql);
  Statement prepare(std::string_view sql);
  // A prepared statement for this SQL, reset and ready for new bindings.
  Statement& cached(const std::string& sql);
  // The single value of a one-row, one-column query.
  std::int64_t scalarInt(std::string_view sql);
  int changes() const;
  sqlite3* handle() const { return db_; }

 private:
  sqlite3* db_ = nullptr;
  std::unordered_map<std::string, std::unique_ptr<Statement>> statements_;
};

// BEGIN IMMEDIATE on construction; rolls back on destruction unless
// committed, so an exception thrown inside leaves the database as it was.
//
// Opened while another transaction is open, it is a savepoint inside it:
// committing releases the savepoint (nothing is written until the outermost
// transaction commits) and rolling back undoes only what was done since it
// began. So one operation can be built from others and stay all or nothing.
class Transaction {
 public:
  explicit Transaction(Database& db);
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  ~Transaction();

  void commit();

 private:
  Database& db_;
  bool nested_;
  bool open_ = true;
};

}  // namespace orvane
