#pragma once

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

#include "core/store/Database.h"

namespace orvane {

// Why a store could not be opened; the message is the full sentence shown to
// the user (after "The database could not be opened: ").
class StoreError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The one SQLite file that holds everything. Opening never modifies,
// deletes or overwrites a file that is not an Orvane store, is damaged, or
// comes from a newer version: it is inspected read-only first. The one
// exception is SQLite's own recovery: a transaction that a killed program
// left half-written (a hot rollback journal) is rolled back before anything
// is judged.
class Store {
 public:
  // What to do when the file is sound but its place refuses writing (a
  // full disk, a read-only disk or folder).
  enum class WhenUnwritable {
    refuse,   // throw StoreError naming the problem
    readOnly  // open it for reading; every write then fails (SQLITE_READONLY)
  };

  // Opens the store at `path`, creating it (and its folder) when there is no
  // file yet, and migrating an older format forward. Throws StoreError. A
  // folder, a pipe or a device given as `path` is refused before SQLite
  // touches it. A new store is made in one transaction: a kill while it is
  // made leaves either no store or a whole one.
  static Store open(const std::filesystem::path& path, WhenUnwritable whenUnwritable = WhenUnwritable::refuse);

  // $XDG_DATA_HOME/orvane/orvane.sqlite, or ~/.local/share/orvane/orvane.sqlite.
  static std::filesystem::path defaultPath();

  Database& db() { return db_; }
  const std::filesystem::path& path() const { return path_; }

  // Why this store was opened for reading only (the full sentence); none when
  // it can be written.
  const std::optional<std::string>& readOnlyReason() const { return readOnlyReason_; }

  // The sentence naming what in the store's place made `error` happen (a full
  // disk, a read-only place, or the reason it was opened read-only); none
  // when the failure is not about the place.
  std::optional<std::string> placeProblemBehind(const SqliteError& error) const;

 private:
  Store(std::filesystem::path path, Database db, std::optional<std::string> readOnlyReason = std::nullopt)
      : path_(std::move(path)), db_(std::move(db)), readOnlyReason_(std::move(readOnlyReason)) {}

  std::filesystem::path path_;
  Database db_;
  std::optional<std::string> readOnlyReason_;
};

}  // namespace orvane
