#pragma once

// What the benchmarks that generate big stores share: a scratch file per
// run and the rows every generated project starts with.

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "core/board/BoardService.h"
#include "core/store/Rows.h"

namespace orvane::bench {

// Removes the store at `path` with its WAL files.
inline void removeStore(const std::filesystem::path& path) {
  for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(path.string() + suffix);
}

// A file in the temporary folder, named for this run, with any leftovers of
// an earlier store of that name removed.
inline std::filesystem::path scratchStorePath(const std::string& name) {
  const auto path = std::filesystem::temp_directory_path() / ("orvane-bench-" + std::to_string(getpid()) + "-" + name);
  removeStore(path);
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

// Writes ticket `n` of project number `p` into `columns[c]`, at that column's
// next position, the way a heavy user's tickets look: created at n × 10
// minutes, started a day later once past the first two columns, done three
// days after creation in the last; with its creation event and, once
// started, its move, a comment and a checklist item.
inline Ticket writeTicket(Database& db, const Uuid& project, int p, int n, const std::vector<BoardColumn>& columns,
                          std::size_t c, std::vector<std::int64_t>& nextPosition,
                          std::optional<Uuid> assignee = std::nullopt) {
  const double day = 86400;
  Ticket ticket;
  ticket.id = Uuid::random();
  ticket.number = n;
  ticket.title = "Ticket number " + std::to_string(n) + " of project " + std::to_string(p);
  ticket.details = "Some details that a person wrote about this ticket.";
  ticket.position = nextPosition[c]++;
  ticket.createdAt = Timestamp{n * 600.0};
  if (c >= 2) ticket.startedAt = Timestamp{n * 600.0 + day};
  if (c == 4) ticket.completedAt = Timestamp{n * 600.0 + 3 * day};
  ticket.tags = {"web", "checkout"};
  ticket.projectId = project;
  ticket.columnId = columns[c].id;
  ticket.assigneeId = assignee;
  rows::insert(db, ticket);
  rows::insert(db, TicketEvent{Uuid::random(), ticket.createdAt, std::nullopt, std::nullopt, columns[0].id,
                               columns[0].name, ticket.id});
  if (c >= 2) {
    rows::insert(db, TicketEvent{Uuid::random(), *ticket.startedAt, columns[0].id, columns[0].name, columns[c].id,
                                 columns[c].name, ticket.id});
    rows::insert(db, TicketComment{Uuid::random(), "Looks good to me.", *ticket.startedAt, ticket.id});
    rows::insert(db, ChecklistItem{Uuid::random(), "Write the tests", c == 4, 0, ticket.id});
  }
  return ticket;
}

}  // namespace orvane::bench
