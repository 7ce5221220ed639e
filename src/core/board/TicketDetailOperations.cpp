// What hangs off a ticket: its flags, comments, checklist, links to other
// tickets and links to files.
#include <unordered_map>

#include "core/board/BoardService.h"
#include "core/board/ServiceRules.h"
#include "core/store/Rows.h"
#include "core/text/Text.h"

namespace orvane {
namespace {

std::vector<ChecklistItem> checklistOf(Database& db, const Uuid& ticket) {
  return rows::select<ChecklistItem>(db, "WHERE ticket_id = ?1 ORDER BY position, rowid", ticket);
}

// Whether `from` already waits on `goal` through a chain of the project's
// blocked_by links.
bool waitsOn(Database& db, const Uuid& project, const Uuid& from, const Uuid& goal) {
  std::unordered_map<Uuid, std::vector<Uuid>> blockersOf;
  for (const TicketLink& link : rows::select<TicketLink>(
           db, "WHERE kind_raw = ?2 AND source_id IN (SELECT id FROM tickets WHERE project_id = ?1)", project,
           rawValue(LinkKind::blockedBy))) {
    blockersOf[link.sourceId].push_back(link.targetId);
  }
  return rules::reaches(blockersOf, from, goal);
}

// The last component of a path, trailing separators ignored; a path of
// separators only names itself.
std::string lastPathComponent(const std::string& path) {
  const std::size_t end = path.find_last_not_of('/');
  if (end == std::string::npos) return path;
  const std::size_t slash = path.rfind('/', end);
  const std::size_t begin = slash == std::string::npos ? 0 : slash + 1;
  return path.substr(begin, end + 1 - begin);
}

}  // namespace

void BoardService::setBlocked(const Uuid& ticket, bool blocked) {
  inTransaction([&] {
    Ticket row = requireTicket(ticket);
    if (row.blocked == blocked) return;
    row.blocked = blocked;
    rows::update(db_, row);
  });
}

void BoardService::setThisWeek(const Uuid& ticket, bool thisWeek) {
  inTransaction([&] {
    Ticket row = requireTicket(ticket);
    if (row.thisWeek == thisWeek) return;
    row.thisWeek = thisWeek;
    rows::update(db_, row);
  });
}

void BoardService::clearThisWeek(const Uuid& project) {
  inTransaction([&] {
    requireProject(project);
    // Archived tickets too: a flag left on one would reappear on restore.
    db_.cached("UPDATE tickets SET this_week = 0 WHERE project_id = ?1 AND this_week != 0").bindAll(project).run();
  });
}

TicketComment BoardService::addComment(const Uuid& ticket, std::string_view body, Timestamp now) {
  return inTransaction([&] {
    requireTicket(ticket);
    TicketComment comment{Uuid::random(), text::trimmed(body), now, ticket};
    if (comment.body.empty()) throw BoardError::emptyText();
    rows::insert(db_, comment);
    return comment;
  });
}

ChecklistItem BoardService::addChecklistItem(const Uuid& ticket, std::string_view title) {
  return inTransaction([&] {
    requireTicket(ticket);
    ChecklistItem item{Uuid::random(), rules::requireText(title, PMError(PMError::Case::emptyText)), false, 0, ticket};
    item.position = static_cast<std::int64_t>(checklistOf(db_, ticket).size());
    rows::insert(db_, item);
    return item;
  });
}

void BoardService::setChecklistItem(const Uuid& item, bool done) {
  inTransaction([&] {
    ChecklistItem row = rules::requireRow<ChecklistItem>(db_, item, "checklist item");
    row.isDone = done;
    rows::update(db_, row);
  });
}

void BoardService::renameChecklistItem(const Uuid& item, std::string_view title) {
  inTransaction([&] {
    ChecklistItem row = rules::requireRow<ChecklistItem>(db_, item, "checklist item");
    row.title = rules::requireText(title, PMError(PMError::Case::emptyText));
    rows::update(db_, row);
  });
}

void BoardService::deleteChecklistItem(const Uuid& item) {
  inTransaction([&] {
    const ChecklistItem row = rules::requireRow<ChecklistItem>(db_, item, "checklist item");
    rows::remove<ChecklistItem>(db_, row.id);
    Statement& renumber = db_.cached("UPDATE checklist_items SET position = ?2 WHERE id = ?1 AND position != ?2");
    const std::vector<ChecklistItem> remaining = checklistOf(db_, row.ticketId);
    for (std::size_t i = 0; i < remaining.size(); ++i) {
      renumber.reset();
      renumber.bindAll(remaining[i].id, static_cast<std::int64_t>(i)).run();
    }
  });
}

TicketLink BoardService::addLink(const Uuid& source, const Uuid& target, LinkKind kind, Timestamp now) {
  return inTransaction([&] {
    const Ticket from = requireTicket(source);
    const Ticket to = requireTicket(target);
    if (from.id == to.id) throw PMError(PMError::Case::linkToSelf);
    if (from.projectId != to.projectId) throw PMError(PMError::Case::differentProject);
    const std::string kindRaw(rawValue(kind));
    // A related_to link says the same thing in both directions, so either
    // one already there makes the new link a duplicate.
    const char* sameDirection = "WHERE kind_raw = ?1 AND source_id = ?2 AND target_id = ?3";
    const char* eitherDirection =
        "WHERE kind_raw = ?1 AND ((source_id = ?2 AND target_id = ?3) OR (source_id = ?3 AND target_id = ?2))";
    if (!rows::select<TicketLink>(db_, kind == LinkKind::relatedTo ? eitherDirection : sameDirection, kindRaw, from.id,
                                  to.id)
             .empty()) {
      throw PMError(PMError::Case::duplicateLink);
    }
    if (kind == LinkKind::blockedBy && waitsOn(db_, from.projectId, to.id, from.id)) {
      throw PMError(PMError::Case::blockingCycle);
    }
    const TicketLink link{Uuid::random(), kindRaw, now, from.id, to.id};
    rows::insert(db_, link);
    return link;
  });
}

void BoardService::removeLink(const Uuid& link) {
  inTransaction([&] {
    rules::requireRow<TicketLink>(db_, link, "link");
    rows::remove<TicketLink>(db_, link);
  });
}

TicketFileLink BoardService::addFileLink(const Uuid& ticket, std::string_view path, Timestamp now) {
  return inTransaction([&] {
    requireTicket(ticket);
    TicketFileLink link;
    link.path = rules::requireText(path, PMError(PMError::Case::emptyText));
    link.id = Uuid::random();
    link.name = lastPathComponent(link.path);
    // Linux has no bookmark that follows a moved file; the path is reopened
    // as it is.
    link.addedAt = now;
    link.ticketId = ticket;
    rows::insert(db_, link);
    return link;
  });
}

void BoardService::removeFileLink(const Uuid& fileLink) {
  inTransaction([&] {
    rules::requireRow<TicketFileLink>(db_, fileLink, "file link");
    // The record only; the file on disk is never touched.
    rows::remove<TicketFileLink>(db_, fileLink);
  });
}

}  // namespace orvane
