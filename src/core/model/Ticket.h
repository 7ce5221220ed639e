#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/model/FlowState.h"
#include "core/model/TicketPriority.h"
#include "core/model/Uuid.h"
#include "engine/Timestamp.h"

namespace orvane {

// The highest ticket number a project may hold. Far beyond any real
// project, and far enough below the 64-bit limit that counting on from it
// can never overflow.
inline constexpr std::int64_t maxTicketNumber = 999'999'999;

struct Ticket {
  Uuid id;
  std::int64_t number = 0;  // per-project, never reused
  std::string title;
  std::string details;
  std::int64_t priorityRaw = static_cast<std::int64_t>(TicketPriority::medium);
  std::int64_t position = 0;  // among the column's active tickets
  Timestamp createdAt;
  std::optional<Timestamp> startedAt;
  std::optional<Timestamp> completedAt;
  std::optional<Timestamp> archivedAt;
  std::optional<Timestamp> dueDate;
  std::vector<std::string> tags;
  bool blocked = false;  // the manual flag; see isBlocked for the whole answer
  bool thisWeek = false;
  Uuid projectId;
  std::optional<Uuid> columnId;
  std::optional<Uuid> epicId;
  std::optional<Uuid> assigneeId;
  std::optional<Uuid> iterationId;

  bool isArchived() const { return archivedAt.has_value(); }
  std::optional<TicketPriority> priority() const { return ticketPriorityFromRaw(priorityRaw); }
  // An unknown stored priority is shown and sorted as medium.
  TicketPriority effectivePriority() const { return priority().value_or(TicketPriority::medium); }
  FlowState flow() const { return {startedAt, completedAt}; }
  void setFlow(const FlowState& state) {
    startedAt = state.startedAt;
    completedAt = state.completedAt;
  }

  friend bool operator==(const Ticket&, const Ticket&) = default;
};

// One per change of column; the history flow metrics replay. Column names are
// kept as they were, so history survives renames and deletions.
struct TicketEvent {
  Uuid id;
  Timestamp at;
  std::optional<Uuid> fromColumnId;  // absent for the creation event
  std::optional<std::string> fromColumnName;
  Uuid toColumnId;
  std::string toColumnName;
  Uuid ticketId;

  friend bool operator==(const TicketEvent&, const TicketEvent&) = default;
};

struct TicketComment {
  Uuid id;
  std::string body;
  Timestamp createdAt;
  Uuid ticketId;

  friend bool operator==(const TicketComment&, const TicketComment&) = default;
};

struct ChecklistItem {
  Uuid id;
  std::string title;
  bool isDone = false;
  std::int64_t position = 0;  // 0-based within the ticket
  Uuid ticketId;

  friend bool operator==(const ChecklistItem&, const ChecklistItem&) = default;
};

struct TicketLink {
  Uuid id;
  std::string kindRaw;  // LinkKind
  Timestamp createdAt;
  Uuid sourceId;
  Uuid targetId;

  friend bool operator==(const TicketLink&, const TicketLink&) = default;
};

// A link to a file on disk; the file itself is never copied. Linux has no
// bookmarks that follow a moved file, so only the path is kept.
struct TicketFileLink {
  Uuid id;
  std::string name;  // shown label, by default the file's last path component
  std::string path;  // absolute
  std::optional<std::string> bookmark;
  Timestamp addedAt;
  Uuid ticketId;

  friend bool operator==(const TicketFileLink&, const TicketFileLink&) = default;
};

}  // namespace orvane
