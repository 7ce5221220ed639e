#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "core/board/BoardService.h"
#include "core/forecast/ForecastService.h"
#include "core/store/Store.h"

namespace orvane::cli {

// The store of one run, opened on first use: a command that needs no store
// (simulate) never touches the file, not even to create it.
class StoreAccess {
 public:
  // No path means Store::defaultPath().
  explicit StoreAccess(std::optional<std::filesystem::path> path) : path_(std::move(path)) {}
  StoreAccess(const StoreAccess&) = delete;
  StoreAccess& operator=(const StoreAccess&) = delete;

  // Throws CliError (exit 1) with "The database could not be opened: " and
  // the store's own reason when the file cannot be opened. A sound store
  // whose disk is full or read-only is opened for reading only.
  BoardService& service();
  // The forecast service over the same store; throws as service() does.
  ForecastService& forecasts();
  // The store itself, for work that spans one transaction of its own
  // (ticket import); opens it as service() does.
  Store& store() {
    service();
    return *store_;
  }
  // The sentence naming the store's place as the cause of `error` (a full
  // disk, a read-only place); none when it is not, or nothing was opened.
  std::optional<std::string> placeProblemBehind(const SqliteError& error) const;

 private:
  std::optional<std::filesystem::path> path_;
  std::optional<Store> store_;
  std::unique_ptr<BoardService> service_;       // refers to *store_
  std::unique_ptr<ForecastService> forecasts_;  // refers to *store_
};

}  // namespace orvane::cli
