#pragma once

// What the benchmarks that generate big stores share: a scratch file per
// run and the rows every generated project starts with.

#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "core/board/BoardService.h"
#include "core/store/Rows.h"

namespace orvane::bench {

// A file in the temporary folder, named for this run, with any leftovers of
// an earlier store of that name (and its WAL files) removed.
inline std::filesystem::path scratchStorePath(const std::string& name) {
  const auto path = std::filesystem::temp_directory_path() / ("orvane-bench-" + std::to_string(getpid()) + "-" + name);
  for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(path.string() + suffix);
  return path;
}

// The standard board's columns written for `project`, in board order.
inline std::vector<BoardColumn> writeStandardColumns(Database& db, const Uuid& project) {
  std::vector<BoardColumn> columns;
  for (const auto& column : ColumnTemplate::standard()) {
    columns.push_back({Uuid::random(), column.name, static_cast<std::int64_t>(columns.size()),
                       std::string(rawValue(column.type)), column.wipLimit, project});
    rows::insert(db, columns.back());
  }
  return columns;
}

}  // namespace orvane::bench
