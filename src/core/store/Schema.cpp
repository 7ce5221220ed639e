#include "core/store/Schema.h"

#include <array>
#include <string>

#include "core/store/Database.h"

namespace orvane::Schema {
namespace {

// Version 1: the whole data model. Delete rules are foreign-key actions:
// a project takes everything it owns with it, a ticket its events,
// comments, checklist and links; deleting a column, epic, person or
// iteration leaves its tickets in place without it. Events keep column ids
// and names without a foreign key, so history survives a deleted column.
constexpr const char* version1 = R"sql(
CREATE TABLE projects (
  id BLOB PRIMARY KEY NOT NULL,
  name TEXT NOT NULL,
  key TEXT NOT NULL,
  created_at REAL NOT NULL,
  next_ticket_number INTEGER NOT NULL,
  committed_date REAL,
  filler_counts TEXT NOT NULL,
  filler_tier_raw TEXT NOT NULL,
  filler_lambda REAL,
  client_name TEXT NOT NULL,
  client_company TEXT NOT NULL,
  client_email TEXT NOT NULL,
  internal_name TEXT NOT NULL,
  internal_email TEXT NOT NULL
);
CREATE TABLE board_columns (
  id BLOB PRIMARY KEY NOT NULL,
  name TEXT NOT NULL,
  position INTEGER NOT NULL,
  type_raw TEXT NOT NULL,
  wip_limit INTEGER,
  project_id BLOB NOT NULL REFERENCES projects(id) ON DELETE CASCADE
);
CREATE INDEX board_columns_by_project ON board_columns(project_id, position);
CREATE TABLE epics (
  id BLOB PRIMARY KEY NOT NULL,
  name TEXT NOT NULL,
  color_hex TEXT,
  start_date REAL,
  due_date REAL,
  details TEXT NOT NULL,
  project_id BLOB NOT NULL REFERENCES projects(id) ON DELETE CASCADE
);
CREATE INDEX epics_by_project ON epics(project_id);
CREATE TABLE epic_dependencies (
  id BLOB PRIMARY KEY NOT NULL,
  created_at REAL NOT NULL,
  predecessor_id BLOB NOT NULL REFERENCES epics(id) ON DELETE CASCADE,
  successor_id BLOB NOT NULL REFERENCES epics(id) ON DELETE CASCADE
);
CREATE INDEX epic_dependencies_by_predecessor ON epic_dependencies(predecessor_id);
CREATE INDEX epic_dependencies_by_successor ON epic_dependencies(successor_id);
CREATE TABLE milestones (
  id BLOB PRIMARY KEY NOT NULL,
  name TEXT NOT NULL,
  details TEXT NOT NULL,
  date REAL NOT NULL,
  completed_at REAL,
  project_id BLOB NOT NULL REFERENCES projects(id) ON DELETE CASCADE,
  epic_id BLOB REFERENCES epics(id) ON DELETE CASCADE
);
CREATE INDEX milestones_by_project ON milestones(project_id);
CREATE INDEX milestones_by_epic ON milestones(epic_id);
CREATE TABLE iterations (
  id BLOB PRIMARY KEY NOT NULL,
  name TEXT NOT NULL,
  goal TEXT NOT NULL,
  start_date REAL NOT NULL,
  end_date REAL NOT NULL,
  started_at REAL,
  closed_at REAL,
  committed_count INTEGER NOT NULL,
  finished_count INTEGER NOT NULL,
  carried_over_count INTEGER NOT NULL,
  project_id BLOB NOT NULL REFERENCES projects(id) ON DELETE CASCADE
);
CREATE INDEX iterations_by_project ON iterations(project_id);
CREATE TABLE people (
  id BLOB PRIMARY KEY NOT NULL,
  name TEXT NOT NULL,
  color_hex TEXT,
  email TEXT NOT NULL,
  phone TEXT NOT NULL
);
CREATE TABLE tickets (
  id BLOB PRIMARY KEY NOT NULL,
  number INTEGER NOT NULL,
  title TEXT NOT NULL,
  details TEXT NOT NULL,
  priority_raw INTEGER NOT NULL,
  position INTEGER NOT NULL,
  created_at REAL NOT NULL,
  started_at REAL,
  completed_at REAL,
  archived_at REAL,
  due_date REAL,
  tags TEXT NOT NULL,
  blocked INTEGER NOT NULL,
  this_week INTEGER NOT NULL,
  project_id BLOB NOT NULL REFERENCES projects(id) ON DELETE CASCADE,
  column_id BLOB REFERENCES board_columns(id) ON DELETE SET NULL,
  epic_id BLOB REFERENCES epics(id) ON DELETE SET NULL,
  assignee_id BLOB REFERENCES people(id) ON DELETE SET NULL,
  iteration_id BLOB REFERENCES iterations(id) ON DELETE SET NULL
);
CREATE INDEX tickets_by_project ON tickets(project_id, number, id);
CREATE INDEX tickets_by_column ON tickets(column_id, position);
CREATE INDEX tickets_by_epic ON tickets(epic_id);
CREATE INDEX tickets_by_assignee ON tickets(assignee_id);
CREATE INDEX tickets_by_iteration ON tickets(iteration_id);
CREATE TABLE ticket_events (
  id BLOB PRIMARY KEY NOT NULL,
  at REAL NOT NULL,
  from_column_id BLOB,
  from_column_name TEXT,
  to_column_id BLOB NOT NULL,
  to_column_name TEXT NOT NULL,
  ticket_id BLOB NOT NULL REFERENCES tickets(id) ON DELETE CASCADE
);
CREATE INDEX ticket_events_by_ticket ON ticket_events(ticket_id, at);
CREATE TABLE ticket_comments (
  id BLOB PRIMARY KEY NOT NULL,
  body TEXT NOT NULL,
  created_at REAL NOT NULL,
  ticket_id BLOB NOT NULL REFERENCES tickets(id) ON DELETE CASCADE
);
CREATE INDEX ticket_comments_by_ticket ON ticket_comments(ticket_id);
CREATE TABLE checklist_items (
  id BLOB PRIMARY KEY NOT NULL,
  title TEXT NOT NULL,
  is_done INTEGER NOT NULL,
  position INTEGER NOT NULL,
  ticket_id BLOB NOT NULL REFERENCES tickets(id) ON DELETE CASCADE
);
CREATE INDEX checklist_items_by_ticket ON checklist_items(ticket_id, position);
CREATE TABLE ticket_links (
  id BLOB PRIMARY KEY NOT NULL,
  kind_raw TEXT NOT NULL,
  created_at REAL NOT NULL,
  source_id BLOB NOT NULL REFERENCES tickets(id) ON DELETE CASCADE,
  target_id BLOB NOT NULL REFERENCES tickets(id) ON DELETE CASCADE
);
CREATE INDEX ticket_links_by_source ON ticket_links(source_id);
CREATE INDEX ticket_links_by_target ON ticket_links(target_id);
CREATE TABLE ticket_file_links (
  id BLOB PRIMARY KEY NOT NULL,
  name TEXT NOT NULL,
  path TEXT NOT NULL,
  bookmark TEXT,
  added_at REAL NOT NULL,
  ticket_id BLOB NOT NULL REFERENCES tickets(id) ON DELETE CASCADE
);
CREATE INDEX ticket_file_links_by_ticket ON ticket_file_links(ticket_id);
CREATE TABLE forecast_records (
  id BLOB PRIMARY KEY NOT NULL,
  run_at REAL NOT NULL,
  kind_raw TEXT NOT NULL,
  as_of_day TEXT NOT NULL,
  backlog INTEGER NOT NULL,
  target_day TEXT,
  what_if_percent REAL NOT NULL,
  samples TEXT NOT NULL,
  provenance TEXT NOT NULL,
  result_days TEXT NOT NULL,
  result_counts TEXT NOT NULL,
  inconclusive INTEGER NOT NULL,
  commitment_day TEXT,
  confidence_pct REAL,
  note TEXT NOT NULL,
  project_id BLOB REFERENCES projects(id) ON DELETE CASCADE
);
CREATE INDEX forecast_records_by_project ON forecast_records(project_id, run_at);
)sql";

// Step k takes a store from version k to k + 1.
constexpr std::array<const char*, currentVersion> steps{version1};

}  // namespace

void migrate(Database& db, std::int64_t fromVersion) {
  for (std::int64_t version = fromVersion; version < currentVersion; ++version) {
    db.exec(steps[static_cast<std::size_t>(version)]);
  }
  db.exec("PRAGMA application_id = " + std::to_string(applicationId));
  db.exec("PRAGMA user_version = " + std::to_string(currentVersion));
}

}  // namespace orvane::Schema
