#include "core/exchange/TicketImport.h"

#include <algorithm>
#include <string>
#include <unordered_map>

#include "core/board/BoardError.h"
#include "core/board/FlowRules.h"
#include "core/board/ServiceRules.h"
#include "core/store/Rows.h"
#include "core/text/Text.h"

namespace orvane {

std::int64_t ImportReport::errorCount() const {
  return std::count_if(issues.begin(), issues.end(), [](const ImportIssue& issue) { return issue.isError; });
}

namespace {

// The row's dates after they were made to agree with its column's type.
struct Dates {
  Timestamp created;
  std::optional<Timestamp> started;
  std::optional<Timestamp> completed;
  std::optional<Timestamp> archived;
};

// Makes the row's dates fit a ticket in a column of `type`, adding the
// warnings; false (with an error issue) when the row must be skipped.
bool reconcile(const ImportedRow& row, ColumnType type, Timestamp now, Dates& dates, std::vector<ImportIssue>& issues) {
  auto warn = [&](const char* message) { issues.push_back({row.rowNumber, message, false}); };
  dates = {row.createdAt.value_or(now), row.startedAt, row.completedAt, row.archivedAt};
  if (type == ColumnType::backlog && (dates.started || dates.completed)) {
    dates.started.reset();
    dates.completed.reset();
    warn("started_at and completed_at are ignored for a ticket in a Backlog column.");
  }
  if (type != ColumnType::done && dates.completed) {
    dates.completed.reset();
    warn("completed_at is ignored for a ticket that is not in a Done column.");
  }
  if (type == ColumnType::done && !dates.completed) {
    dates.completed = dates.created;
    warn("No completed_at for a ticket in a Done column; created_at was used.");
  }
  if (dates.started && dates.completed && *dates.completed < *dates.started) {
    issues.push_back({row.rowNumber, "completed_at is earlier than started_at. Row skipped.", true});
    return false;
  }
  std::optional<Timestamp> earliest;
  for (const auto& moment : {dates.started, dates.completed}) {
    if (moment && (!earliest || *moment < *earliest)) earliest = moment;
  }
  if (earliest && *earliest < dates.created) {
    dates.created = *earliest;
    warn("created_at was later than started_at or completed_at and was moved earlier.");
  }
  if (dates.archived) {
    Timestamp latest = dates.created;
    for (const auto& moment : {dates.started, dates.completed}) {
      if (moment && *moment > latest) latest = *moment;
    }
    if (*dates.archived < latest) {
      dates.archived = latest;
      warn("archived_at was earlier than the ticket's last activity and was moved later.");
    }
  }
  return true;
}

struct Step {
  const BoardColumn* column;
  Timestamp at;
};

// The moves that give a ticket in `target` the reconciled dates through the
// flow rules, earliest first; a step at the same moment as the next one is
// left out (the later column wins), as is a step into the column it is in.
std::vector<Step> history(const BoardColumn& target, const Dates& dates, const BoardColumn* firstBacklog,
                          const BoardColumn* firstInProgress) {
  std::vector<Step> steps;
  const ColumnType type = target.effectiveType();
  if (type == ColumnType::backlog || !firstBacklog) {
    steps.push_back({&target, dates.created});
  } else {
    steps.push_back({firstBacklog, dates.created});
    if (type == ColumnType::inProgress) {
      steps.push_back({&target, dates.started.value_or(dates.created)});
    } else {
      if (dates.started && firstInProgress) steps.push_back({firstInProgress, *dates.started});
      steps.push_back({&target, *dates.completed});
    }
  }
  std::vector<Step> kept;
  for (std::size_t i = 0; i < steps.size(); ++i) {
    if (i + 1 < steps.size() && steps[i + 1].at <= steps[i].at) continue;
    if (!kept.empty() && kept.back().column == steps[i].column) continue;
    kept.push_back(steps[i]);
  }
  return kept;
}

}  // namespace

ImportReport importTickets(Store& store, const ParsedImport& parsed, const Uuid& projectId, Timestamp now,
                           bool extendProjectHistory, const ImportOptions& options) {
  const ImportProgress& progress = options.progress;
  Database& db = store.db();
  Transaction transaction(db);
  auto project = rows::find<Project>(db, projectId);
  if (!project) throw MissingRecordError("That project no longer exists.");
  project->nextTicketNumber = rules::nextFreeTicketNumber(db, *project);

  ImportReport report;
  report.issues = parsed.issues;

  const auto columns = rows::select<BoardColumn>(db, "WHERE project_id = ?1 ORDER BY position, rowid", projectId);
  // Columns, epics and people are found by name as names are told apart:
  // lower-cased, so two that the store keeps apart are never confused.
  std::unordered_map<std::string, const BoardColumn*> columnsByName;
  std::unordered_map<Uuid, std::int64_t> activeInColumn;
  const BoardColumn* firstBacklog = nullptr;
  const BoardColumn* firstInProgress = nullptr;
  for (const auto& column : columns) {
    columnsByName.emplace(text::lowered(column.name), &column);
    activeInColumn[column.id] = rules::activeCount(db, column.id);
    if (!firstBacklog && column.effectiveType() == ColumnType::backlog) firstBacklog = &column;
    if (!firstInProgress && column.effectiveType() == ColumnType::inProgress) firstInProgress = &column;
  }
  std::unordered_map<std::string, Uuid> epicsByName;
  for (const auto& epic : rows::select<Epic>(db, "WHERE project_id = ?1", projectId)) {
    epicsByName.emplace(text::lowered(epic.name), epic.id);
  }
  std::unordered_map<std::string, Uuid> peopleByName;
  for (const auto& person : rows::select<Person>(db, "")) peopleByName.emplace(text::lowered(person.name), person.id);

  std::optional<Timestamp> earliestCreated;
  const auto total = static_cast<std::int64_t>(parsed.rows.size());
  std::int64_t done = 0;
  for (const ImportedRow& row : parsed.rows) {
    if (progress) progress(done, total);
    ++done;

    const BoardColumn* column = firstBacklog;
    if (!row.columnName.empty()) {
      const auto found = columnsByName.find(text::lowered(row.columnName));
      column = found == columnsByName.end() ? nullptr : found->second;
    }
    if (!column) {
      report.issues.push_back({row.rowNumber, "Unknown column \"" + row.columnName + "\". Row skipped.", true});
      continue;
    }
    Dates dates;
    if (!reconcile(row, column->effectiveType(), now, dates, report.issues)) continue;

    Ticket ticket;
    ticket.id = Uuid::random();
    ticket.number = project->nextTicketNumber++;
    ticket.title = row.title;
    ticket.details = row.details;
    ticket.priorityRaw = static_cast<std::int64_t>(row.priority.value_or(TicketPriority::medium));
    ticket.createdAt = dates.created;
    ticket.dueDate = row.dueDate;
    ticket.tags = row.tags;
    ticket.blocked = row.blocked;
    ticket.projectId = projectId;
    ticket.columnId = column->id;
    if (!row.epicName.empty()) {
      const auto key = text::lowered(row.epicName);
      auto found = epicsByName.find(key);
      if (found == epicsByName.end()) {
        const Epic epic{Uuid::random(), row.epicName, std::nullopt, std::nullopt, std::nullopt, "", projectId};
        rows::insert(db, epic);
        found = epicsByName.emplace(key, epic.id).first;
        ++report.createdEpics;
      }
      ticket.epicId = found->second;
    }
    if (!row.assigneeName.empty()) {
      const auto key = text::lowered(row.assigneeName);
      auto found = peopleByName.find(key);
      if (found == peopleByName.end()) {
        const Person person{Uuid::random(), row.assigneeName, std::nullopt, "", ""};
        rows::insert(db, person);
        found = peopleByName.emplace(key, person.id).first;
        ++report.createdPeople;
      }
      ticket.assigneeId = found->second;
    }

    // Replay the ticket's moves; the file's own started date wins over the
    // one a move would stamp (a Done ticket that skipped In Progress).
    std::vector<TicketEvent> events;
    const BoardColumn* from = nullptr;
    for (const Step& step : history(*column, dates, firstBacklog, firstInProgress)) {
      ticket.setFlow(FlowRules::apply(ticket.flow(), step.column->effectiveType(), step.at));
      events.push_back(FlowRules::moveEvent(ticket, from, *step.column, step.at));
      from = step.column;
    }
    if (dates.started) ticket.startedAt = dates.started;
    if (dates.completed) ticket.completedAt = dates.completed;

    auto& active = activeInColumn[column->id];
    ticket.position = active;
    if (dates.archived) {
      ticket.archivedAt = dates.archived;
    } else {
      ++active;
    }
    rows::insert(db, ticket);
    for (const auto& event : events) rows::insert(db, event);

    ++report.imported;
    if (!earliestCreated || dates.created < *earliestCreated) earliestCreated = dates.created;
  }
  if (progress) progress(total, total);

  if (extendProjectHistory && earliestCreated && *earliestCreated < project->createdAt) {
    project->createdAt = *earliestCreated;
    report.projectHistoryExtendedTo = earliestCreated;
  }
  rows::update(db, *project);
  if (!options.dryRun) transaction.commit();
  return report;
}

}  // namespace orvane
