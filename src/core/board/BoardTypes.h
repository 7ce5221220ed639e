#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/model/ColumnType.h"
#include "core/model/TicketPriority.h"
#include "core/model/Uuid.h"
#include "engine/Timestamp.h"

namespace orvane {

// A column a new project starts with.
struct ColumnTemplate {
  std::string name;
  ColumnType type = ColumnType::backlog;
  std::optional<std::int64_t> wipLimit;

  // Backlog, To Do (backlog), In Progress (limit 5), Review (limit 3), Done.
  static const std::vector<ColumnTemplate>& standard();

  friend bool operator==(const ColumnTemplate&, const ColumnTemplate&) = default;
};

// What a move did: whether the ticket changed column, and whether its new
// column now holds more active tickets than its WIP limit (a warning only).
struct MoveResult {
  bool changedColumn = false;
  bool wipLimitExceeded = false;

  friend bool operator==(const MoveResult&, const MoveResult&) = default;
};

// The fields of a new ticket. Without a column it goes to the first backlog
// column of the board.
struct NewTicket {
  std::string title;
  std::string details;
  TicketPriority priority = TicketPriority::medium;
  std::optional<Uuid> column;
  std::optional<Uuid> epic;
  std::optional<Timestamp> dueDate;
  std::vector<std::string> tags;
};

// The editable text fields of a ticket (the ticket window).
struct TicketFields {
  std::string title;
  std::string details;
  TicketPriority priority = TicketPriority::medium;
  std::optional<Timestamp> dueDate;
  std::vector<std::string> tags;
};

// Who a project's reports are for.
struct ProjectSetup {
  std::string clientName;
  std::string clientCompany;
  std::string clientEmail;
  std::string internalName;
  std::string internalEmail;
};

// Where the open tickets of a closing iteration go: into another iteration,
// or (no iteration) back to the backlog, out of every iteration.
struct IterationCarryOver {
  std::optional<Uuid> iteration;

  static IterationCarryOver backlog() { return {}; }
  static IterationCarryOver into(const Uuid& target) { return {target}; }
};

struct IterationCloseResult {
  std::int64_t finished = 0;
  std::int64_t carriedOver = 0;

  friend bool operator==(const IterationCloseResult&, const IterationCloseResult&) = default;
};

}  // namespace orvane
