#pragma once

#include <filesystem>
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
// comes from a newer version: it is inspected read-only first.
class Store {
 public:
  // Opens the store at `path`, creating it (and its folder) when there is no
  // file yet, and migrating an older format forward. Throws StoreError.
  static Store open(const std::filesystem::path& path);

  // $XDG_DATA_HOME/orvane/orvane.sqlite, or ~/.local/share/orvane/orvane.sqlite.
  static std::filesystem::path defaultPath();

  Database& db() { return db_; }
  const std::filesystem::path& path() const { return path_; }

 private:
  Store(std::filesystem::path path, Database db) : path_(std::move(path)), db_(std::move(db)) {}

  std::filesystem::path path_;
  Database db_;
};

}  // namespace orvane
