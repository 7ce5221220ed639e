#pragma once

#include <array>
#include <string_view>

#include "core/model/BoardColumn.h"
#include "core/model/Epic.h"
#include "core/model/ForecastRecord.h"
#include "core/model/Iteration.h"
#include "core/model/Person.h"
#include "core/model/Project.h"
#include "core/model/Ticket.h"
#include "core/store/Database.h"

namespace orvane {

// How each entity maps to its table: the column names in field order, the
// id first. `bind` fills parameters 1...n in that order; `read` builds the
// entity from result columns 0...n-1 of a row selected in that order.
template <typename T>
struct Table;

#define ORVANE_TABLE(Type, tableName, ...)                                        \
  template <>                                                                     \
  struct Table<Type> {                                                            \
    static constexpr std::string_view name = tableName;                           \
    static constexpr auto columns = std::to_array<std::string_view>({__VA_ARGS__}); \
    static void bind(Statement& statement, const Type& row);                      \
    static Type read(const Statement& statement);                                 \
  };

ORVANE_TABLE(Project, "projects", "id", "name", "key", "created_at", "next_ticket_number", "committed_date",
             "filler_counts", "filler_tier_raw", "filler_lambda", "client_name", "client_company", "client_email",
             "internal_name", "internal_email")
ORVANE_TABLE(BoardColumn, "board_columns", "id", "name", "position", "type_raw", "wip_limit", "project_id")
ORVANE_TABLE(Epic, "epics", "id", "name", "color_hex", "start_date", "due_date", "details", "project_id")
ORVANE_TABLE(EpicDependency, "epic_dependencies", "id", "created_at", "predecessor_id", "successor_id")
ORVANE_TABLE(Milestone, "milestones", "id", "name", "details", "date", "completed_at", "project_id", "epic_id")
ORVANE_TABLE(Iteration, "iterations", "id", "name", "goal", "start_date", "end_date", "started_at", "closed_at",
             "committed_count", "finished_count", "carried_over_count", "project_id")
ORVANE_TABLE(Person, "people", "id", "name", "color_hex", "email", "phone")
ORVANE_TABLE(Ticket, "tickets", "id", "number", "title", "details", "priority_raw", "position", "created_at",
             "started_at", "completed_at", "archived_at", "due_date", "tags", "blocked", "this_week", "project_id",
             "column_id", "epic_id", "assignee_id", "iteration_id")
ORVANE_TABLE(TicketEvent, "ticket_events", "id", "at", "from_column_id", "from_column_name", "to_column_id",
             "to_column_name", "ticket_id")
ORVANE_TABLE(TicketComment, "ticket_comments", "id", "body", "created_at", "ticket_id")
ORVANE_TABLE(ChecklistItem, "checklist_items", "id", "title", "is_done", "position", "ticket_id")
ORVANE_TABLE(TicketLink, "ticket_links", "id", "kind_raw", "created_at", "source_id", "target_id")
ORVANE_TABLE(TicketFileLink, "ticket_file_links", "id", "name", "path", "bookmark", "added_at", "ticket_id")
ORVANE_TABLE(ForecastRecord, "forecast_records", "id", "run_at", "kind_raw", "as_of_day", "backlog", "target_day",
             "what_if_percent", "samples", "provenance", "result_days", "result_counts", "inconclusive",
             "commitment_day", "confidence_pct", "note", "project_id")

#undef ORVANE_TABLE

}  // namespace orvane
