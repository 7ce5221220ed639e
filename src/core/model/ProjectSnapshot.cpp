#include "core/model/ProjectSnapshot.h"

#include <algorithm>

#include "core/model/LinkKind.h"
#include "core/store/Rows.h"

namespace orvane {
namespace {

template <typename T>
const T* lookup(const std::vector<T>& rows, const std::unordered_map<Uuid, std::size_t>& index, const Uuid& id) {
  const auto it = index.find(id);
  return it == index.end() ? nullptr : &rows[it->second];
}

template <typename T>
void indexRows(const std::vector<T>& rows, std::unordered_map<Uuid, std::size_t>& index) {
  index.clear();
  index.reserve(rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) index.emplace(rows[i].id, i);
}

// The rows that hang off the project's tickets, found ticket by ticket
// through the index on the project's tickets.
std::string ofProjectTickets(std::string_view table, std::string_view ticketColumn = "ticket_id") {
  return std::string("JOIN tickets ON tickets.id = ")
      .append(table)
      .append(".")
      .append(ticketColumn)
      .append(" WHERE tickets.project_id = ?1");
}

// Rows come back in the order they were written, which is almost always the
// order wanted; sorting here, only when needed, is far cheaper than letting
// SQLite sort whole rows.
template <typename T, typename Key>
void sortBy(std::vector<T>& rows, Key key) {
  const auto less = [&](const T& a, const T& b) { return key(a) < key(b); };
  if (!std::is_sorted(rows.begin(), rows.end(), less)) std::stable_sort(rows.begin(), rows.end(), less);
}

}  // namespace

std::optional<ProjectSnapshot> ProjectSnapshot::load(Database& db, const Uuid& projectId) {
  // Inside a caller's transaction the rows are consistent already.
  const bool ownTransaction = sqlite3_get_autocommit(db.handle()) != 0;
  if (ownTransaction) db.exec("BEGIN");
  try {
    auto project = rows::find<Project>(db, projectId);
    if (!project) {
      if (ownTransaction) db.exec("COMMIT");
      return std::nullopt;
    }
    ProjectSnapshot s;
    s.project = std::move(*project);
    s.columns = rows::select<BoardColumn>(db, "WHERE project_id = ?1 ORDER BY position", projectId);
    s.tickets = rows::select<Ticket>(db, "WHERE project_id = ?1", projectId);
    sortBy(s.tickets, [](const Ticket& t) { return t.number; });
    s.epics = rows::select<Epic>(db, "WHERE project_id = ?1 ORDER BY name", projectId);
    s.epicDependencies = rows::select<EpicDependency>(
        db, "WHERE successor_id IN (SELECT id FROM epics WHERE project_id = ?1) ORDER BY created_at", projectId);
    s.milestones = rows::select<Milestone>(db, "WHERE project_id = ?1 ORDER BY date", projectId);
    s.iterations = rows::select<Iteration>(db, "WHERE project_id = ?1 ORDER BY start_date, name", projectId);
    s.people = rows::select<Person>(db, "ORDER BY name");
    s.events = rows::select<TicketEvent>(db, ofProjectTickets("ticket_events"), projectId);
    sortBy(s.events, [](const TicketEvent& e) { return e.at; });
    s.comments = rows::select<TicketComment>(db, ofProjectTickets("ticket_comments"), projectId);
    sortBy(s.comments, [](const TicketComment& c) { return c.createdAt; });
    s.checklistItems = rows::select<ChecklistItem>(db, ofProjectTickets("checklist_items"), projectId);
    sortBy(s.checklistItems, [](const ChecklistItem& i) { return std::tie(i.ticketId, i.position); });
    s.links =
        rows::select<TicketLink>(db, ofProjectTickets("ticket_links", "source_id") + " ORDER BY ticket_links.created_at", projectId);
    s.fileLinks =
        rows::select<TicketFileLink>(db, ofProjectTickets("ticket_file_links") + " ORDER BY ticket_file_links.added_at", projectId);
    s.forecasts = rows::select<ForecastRecord>(db, "WHERE project_id = ?1 ORDER BY run_at", projectId);
    if (ownTransaction) db.exec("COMMIT");
    s.buildIndexes();
    return s;
  } catch (...) {
    if (ownTransaction) db.exec("ROLLBACK");
    throw;
  }
}

void ProjectSnapshot::buildIndexes() {
  indexRows(tickets, ticketIndex_);
  indexRows(columns, columnIndex_);
  indexRows(epics, epicIndex_);
  indexRows(iterations, iterationIndex_);
  indexRows(people, personIndex_);
}

const Ticket* ProjectSnapshot::ticket(const Uuid& id) const { return lookup(tickets, ticketIndex_, id); }
const BoardColumn* ProjectSnapshot::column(const Uuid& id) const { return lookup(columns, columnIndex_, id); }
const Epic* ProjectSnapshot::epic(const Uuid& id) const { return lookup(epics, epicIndex_, id); }
const Iteration* ProjectSnapshot::iteration(const Uuid& id) const { return lookup(iterations, iterationIndex_, id); }
const Person* ProjectSnapshot::person(const Uuid& id) const { return lookup(people, personIndex_, id); }

bool ProjectSnapshot::isOpen(const Ticket& t) const {
  if (t.isArchived()) return false;
  if (!t.columnId) return true;
  const BoardColumn* c = column(*t.columnId);
  return c == nullptr || c->effectiveType() != ColumnType::done;
}

std::string ProjectSnapshot::referenceCode(const Ticket& t) const {
  return project.key + "-" + std::to_string(t.number);
}

std::vector<const Ticket*> ProjectSnapshot::openBlockers(const Ticket& t) const {
  std::vector<const Ticket*> blockers;
  for (const TicketLink& link : links) {
    if (link.sourceId != t.id || linkKindFromRaw(link.kindRaw) != LinkKind::blockedBy) continue;
    const Ticket* target = ticket(link.targetId);
    if (target != nullptr && isOpen(*target)) blockers.push_back(target);
  }
  return blockers;
}

bool ProjectSnapshot::isBlocked(const Ticket& t) const { return t.blocked || !openBlockers(t).empty(); }

std::vector<const Ticket*> ProjectSnapshot::activeTickets(const BoardColumn& c) const {
  std::vector<const Ticket*> found;
  for (const Ticket& t : tickets) {
    if (!t.isArchived() && t.columnId == c.id) found.push_back(&t);
  }
  std::stable_sort(found.begin(), found.end(),
                   [](const Ticket* a, const Ticket* b) { return a->position < b->position; });
  return found;
}

std::int64_t ProjectSnapshot::remainingBacklog() const {
  return std::count_if(tickets.begin(), tickets.end(), [this](const Ticket& t) { return isOpen(t); });
}

std::vector<CivilDate> ProjectSnapshot::completionDatesUTC() const {
  std::vector<CivilDate> days;
  for (const Ticket& t : tickets) {
    if (!t.isArchived() && t.completedAt) days.push_back(CivilDate::fromUtc(*t.completedAt));
  }
  return days;
}

std::vector<const Ticket*> ProjectSnapshot::blockedTickets() const {
  std::vector<const Ticket*> found;
  for (const Ticket& t : tickets) {
    if (isOpen(t) && isBlocked(t)) found.push_back(&t);
  }
  return found;
}

std::vector<const Ticket*> ProjectSnapshot::overdueTickets(Timestamp now) const {
  std::vector<const Ticket*> found;
  for (const Ticket& t : tickets) {
    if (isOpen(t) && t.dueDate && *t.dueDate < now) found.push_back(&t);
  }
  return found;
}

const Iteration* ProjectSnapshot::activeIteration() const {
  for (const Iteration& i : iterations) {
    if (i.state() == IterationState::active) return &i;
  }
  return nullptr;
}

std::vector<const Ticket*> ProjectSnapshot::activeTickets(const Iteration& i) const {
  std::vector<const Ticket*> found;
  for (const Ticket& t : tickets) {
    if (!t.isArchived() && t.iterationId == i.id) found.push_back(&t);
  }
  return found;
}

std::vector<const Ticket*> ProjectSnapshot::doneTickets(const Iteration& i) const {
  std::vector<const Ticket*> found;
  for (const Ticket* t : activeTickets(i)) {
    if (!isOpen(*t)) found.push_back(t);
  }
  return found;
}

std::vector<const Ticket*> ProjectSnapshot::openTickets(const Iteration& i) const {
  std::vector<const Ticket*> found;
  for (const Ticket* t : activeTickets(i)) {
    if (isOpen(*t)) found.push_back(t);
  }
  return found;
}

}  // namespace orvane
