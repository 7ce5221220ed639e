// Tickets on the board: creating, moving, archiving, editing, deleting.
#include <algorithm>

#include "core/board/BoardService.h"
#include "core/board/FlowRules.h"
#include "core/board/ServiceRules.h"
#include "core/store/Rows.h"
#include "core/text/Text.h"

namespace orvane {
namespace {

// The ids of the column's active tickets in position order: all a renumbering
// needs, read without the rest of each row since a move runs on every drag.
std::vector<Uuid> activeIdsIn(Database& db, const Uuid& column) {
  Statement& select =
      db.cached("SELECT id FROM tickets WHERE column_id = ?1 AND archived_at IS NULL ORDER BY position, number");
  select.bindAll(column);
  std::vector<Uuid> ids;
  while (select.step()) ids.push_back(select.uuid(0));
  select.reset();
  return ids;
}

// Writes position 0..n-1 in list order, touching only rows that change.
void renumber(Database& db, const std::vector<Uuid>& ordered) {
  Statement& update = db.cached("UPDATE tickets SET position = ?2 WHERE id = ?1 AND position != ?2");
  for (std::size_t i = 0; i < ordered.size(); ++i) {
    update.reset();
    update.bindAll(ordered[i], static_cast<std::int64_t>(i)).run();
  }
}

// Trimmed tags, the empty ones dropped.
std::vector<std::string> cleanTags(const std::vector<std::string>& tags) {
  std::vector<std::string> clean;
  for (const std::string& tag : tags) {
    if (std::string trimmed = text::trimmed(tag); !trimmed.empty()) clean.push_back(std::move(trimmed));
  }
  return clean;
}

}  // namespace

Ticket BoardService::createTicket(const Uuid& project, const NewTicket& fields, Timestamp now) {
  return inTransaction([&] {
    Ticket ticket;
    ticket.title = text::trimmed(fields.title);
    if (ticket.title.empty()) throw BoardError::emptyText();

    Project owner = requireProject(project);
    BoardColumn column;
    if (fields.column) {
      column = requireColumn(*fields.column);
      if (column.projectId != owner.id) throw BoardError::columnNotInProject();
    } else {
      // A board without a backlog column breaks the same invariant as one
      // without columns, so both are refused alike.
      const auto columns = rows::select<BoardColumn>(db_, "WHERE project_id = ?1 ORDER BY position, rowid", owner.id);
      const auto backlog = std::find_if(columns.begin(), columns.end(),
                                        [](const BoardColumn& c) { return c.effectiveType() == ColumnType::backlog; });
      if (backlog == columns.end()) throw BoardError::noColumns();
      column = *backlog;
    }
    if (fields.epic && requireEpic(*fields.epic).projectId != owner.id) throw BoardError::epicNotInProject();

    ticket.id = Uuid::random();
    owner.nextTicketNumber = rules::nextFreeTicketNumber(db_, owner);
    ticket.number = owner.nextTicketNumber++;
    ticket.details = text::trimmed(fields.details);
    ticket.priorityRaw = static_cast<std::int64_t>(fields.priority);
    ticket.position = rules::activeCount(db_, column.id);
    ticket.createdAt = now;
    ticket.dueDate = fields.dueDate;
    ticket.tags = cleanTags(fields.tags);
    ticket.projectId = owner.id;
    ticket.columnId = column.id;
    ticket.epicId = fields.epic;
    ticket.setFlow(FlowRules::apply(ticket.flow(), column.effectiveType(), now));
    rows::update(db_, owner);
    rows::insert(db_, ticket);
    rows::insert(db_, FlowRules::moveEvent(ticket, nullptr, column, now));
    return ticket;
  });
}

MoveResult BoardService::moveTicket(const Uuid& ticket, const Uuid& column, std::optional<std::int64_t> index,
                                    Timestamp now) {
  return inTransaction([&] {
    Ticket moving = requireTicket(ticket);
    const BoardColumn target = requireColumn(column);
    if (moving.isArchived()) throw BoardError::archivedTicket();
    if (moving.projectId != target.projectId) throw BoardError::columnNotInProject();

    const bool changesColumn = moving.columnId != target.id;
    std::vector<Uuid> ordered = activeIdsIn(db_, target.id);
    std::erase(ordered, moving.id);
    const auto size = static_cast<std::int64_t>(ordered.size());
    moving.position = std::clamp<std::int64_t>(index.value_or(size), 0, size);
    ordered.insert(ordered.begin() + moving.position, moving.id);

    if (changesColumn) {
      std::optional<BoardColumn> source;
      if (moving.columnId) {
        source = rows::find<BoardColumn>(db_, *moving.columnId);
        std::vector<Uuid> left = activeIdsIn(db_, *moving.columnId);
        std::erase(left, moving.id);
        renumber(db_, left);
      }
      moving.columnId = target.id;
      moving.setFlow(FlowRules::apply(moving.flow(), target.effectiveType(), now));
      rows::update(db_, moving);
      rows::insert(db_, FlowRules::moveEvent(moving, source ? &*source : nullptr, target, now));
    }
    // A ticket that changed column already has its position; renumber skips it.
    renumber(db_, ordered);

    return MoveResult{changesColumn, target.wipLimit && static_cast<std::int64_t>(ordered.size()) > *target.wipLimit};
  });
}

void BoardService::archive(const Uuid& ticket, Timestamp now) {
  inTransaction([&] {
    Ticket row = requireTicket(ticket);
    if (row.isArchived()) return;
    row.archivedAt = now;
    rows::update(db_, row);
    if (row.columnId) renumber(db_, activeIdsIn(db_, *row.columnId));
  });
}

void BoardService::unarchive(const Uuid& ticket) {
  inTransaction([&] {
    Ticket row = requireTicket(ticket);
    if (!row.isArchived()) return;
    row.position = row.columnId ? rules::activeCount(db_, *row.columnId) : 0;
    row.archivedAt.reset();
    rows::update(db_, row);
  });
}

void BoardService::deleteTicket(const Uuid& ticket) {
  inTransaction([&] {
    const Ticket row = requireTicket(ticket);
    rows::remove<Ticket>(db_, row.id);
    if (row.columnId) renumber(db_, activeIdsIn(db_, *row.columnId));
  });
}

void BoardService::updateTicket(const Uuid& ticket, const TicketFields& fields) {
  inTransaction([&] {
    Ticket row = requireTicket(ticket);
    row.title = text::trimmed(fields.title);
    if (row.title.empty()) throw BoardError::emptyText();
    row.details = text::trimmed(fields.details);
    row.priorityRaw = static_cast<std::int64_t>(fields.priority);
    row.dueDate = fields.dueDate;
    row.tags = cleanTags(fields.tags);
    rows::update(db_, row);
  });
}

void BoardService::assign(const Uuid& ticket, std::optional<Uuid> epic) {
  inTransaction([&] {
    Ticket row = requireTicket(ticket);
    if (epic && requireEpic(*epic).projectId != row.projectId) throw BoardError::epicNotInProject();
    row.epicId = epic;
    rows::update(db_, row);
  });
}

}  // namespace orvane
