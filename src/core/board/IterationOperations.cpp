// The iteration lifecycle: planned -> started (commitment frozen) -> closed
// (finished work recorded, open work carried on). There is no way back.

#include <unordered_set>

#include "core/board/BoardService.h"
#include "core/board/ServiceRules.h"
#include "core/store/Rows.h"
#include "core/text/Text.h"

namespace orvane {
namespace {

void checkIterationRange(Timestamp startDate, Timestamp endDate) {
  if (endDate < startDate) throw PMError(PMError::Case::invalidIterationRange);
}

// The iteration's tickets that are not archived, by number.
std::vector<Ticket> activeTicketsOf(Database& db, const Uuid& iteration) {
  return rows::select<Ticket>(db, "WHERE iteration_id = ?1 AND archived_at IS NULL ORDER BY number", iteration);
}

// The project's done-type columns: a ticket in one of them is finished; any
// other ticket that is not archived is open (as ProjectSnapshot::isOpen).
std::unordered_set<Uuid> doneColumnsOf(Database& db, const Uuid& project) {
  std::unordered_set<Uuid> done;
  for (const BoardColumn& column : rows::select<BoardColumn>(db, "WHERE project_id = ?1", project)) {
    if (column.effectiveType() == ColumnType::done) done.insert(column.id);
  }
  return done;
}

}  // namespace

Iteration BoardService::createIteration(const Uuid& project, std::string_view name, std::string_view goal,
                                        Timestamp startDate, Timestamp endDate) {
  return inTransaction([&] {
    requireProject(project);
    Iteration iteration;
    iteration.name = rules::requireUniqueName(name, rows::select<Iteration>(db_, "WHERE project_id = ?1", project));
    checkIterationRange(startDate, endDate);
    iteration.id = Uuid::random();
    iteration.goal = text::trimmed(goal);
    iteration.startDate = startDate;
    iteration.endDate = endDate;
    iteration.projectId = project;
    rows::insert(db_, iteration);
    return iteration;
  });
}

void BoardService::updateIteration(const Uuid& iteration, std::string_view name, std::string_view goal,
                                   Timestamp startDate, Timestamp endDate) {
  inTransaction([&] {
    Iteration row = requireIteration(iteration);
    // A closed iteration is a record of what happened; only planned and
    // active ones (dates included) may still change.
    if (row.state() == IterationState::closed) throw PMError(PMError::Case::iterationClosed);
    row.name =
        rules::requireUniqueName(name, rows::select<Iteration>(db_, "WHERE project_id = ?1", row.projectId), row.id);
    checkIterationRange(startDate, endDate);
    row.goal = text::trimmed(goal);
    row.startDate = startDate;
    row.endDate = endDate;
    rows::update(db_, row);
  });
}

void BoardService::setIteration(const Uuid& ticket, std::optional<Uuid> iteration) {
  inTransaction([&] {
    Ticket row = requireTicket(ticket);
    if (iteration) {
      const Iteration target = requireIteration(*iteration);
      if (target.state() == IterationState::closed) throw PMError(PMError::Case::iterationClosed);
      if (target.projectId != row.projectId) throw PMError(PMError::Case::differentProject);
      if (row.isArchived()) throw PMError(PMError::Case::archivedTicketInIteration);
    }
    if (row.iterationId == iteration) return;
    row.iterationId = iteration;
    rows::update(db_, row);
  });
}

void BoardService::startIteration(const Uuid& iteration, Timestamp now) {
  inTransaction([&] {
    Iteration row = requireIteration(iteration);
    if (row.state() == IterationState::active) throw PMError(PMError::Case::iterationAlreadyStarted);
    if (row.state() == IterationState::closed) throw PMError(PMError::Case::iterationClosed);
    const auto active = rows::select<Iteration>(
        db_, "WHERE project_id = ?1 AND started_at IS NOT NULL AND closed_at IS NULL ORDER BY start_date, name",
        row.projectId);
    if (!active.empty()) throw PMError(PMError::Case::iterationAlreadyActive, active.front().name);
    row.startedAt = now;
    row.committedCount = static_cast<std::int64_t>(activeTicketsOf(db_, row.id).size());
    rows::update(db_, row);
  });
}

IterationCloseResult BoardService::closeIteration(const Uuid& iteration, const IterationCarryOver& carryOver,
                                                  Timestamp now) {
  return inTransaction([&] {
    Iteration row = requireIteration(iteration);
    if (row.state() == IterationState::planned) throw PMError(PMError::Case::iterationNotActive);
    if (row.state() == IterationState::closed) throw PMError(PMError::Case::iterationClosed);
    if (carryOver.iteration) {
      if (*carryOver.iteration == row.id) throw PMError(PMError::Case::invalidCarryOver);
      const Iteration target = requireIteration(*carryOver.iteration);
      if (target.projectId != row.projectId) throw PMError(PMError::Case::invalidCarryOver);
      if (target.state() == IterationState::closed) throw PMError(PMError::Case::iterationClosed);
    }

    const std::unordered_set<Uuid> doneColumns = doneColumnsOf(db_, row.projectId);
    IterationCloseResult result;
    // Done tickets stay behind as the iteration's record; archived ones are
    // not among the active tickets, so they stay and are not counted.
    for (Ticket& ticket : activeTicketsOf(db_, row.id)) {
      if (ticket.columnId && doneColumns.contains(*ticket.columnId)) {
        ++result.finished;
        continue;
      }
      ticket.iterationId = carryOver.iteration;
      rows::update(db_, ticket);
      ++result.carriedOver;
    }
    row.finishedCount = result.finished;
    row.carriedOverCount = result.carriedOver;
    row.closedAt = now;
    rows::update(db_, row);
    return result;
  });
}

void BoardService::deleteIteration(const Uuid& iteration) {
  inTransaction([&] {
    requireIteration(iteration);
    // The schema nullifies the tickets' iteration.
    rows::remove<Iteration>(db_, iteration);
  });
}

}  // namespace orvane
