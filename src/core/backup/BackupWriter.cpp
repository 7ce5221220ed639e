// makeBackup: the export walk from the store to a backup document.
#include <algorithm>
#include <tuple>
#include <unordered_map>

#include "core/backup/Backup.h"
#include "core/backup/BackupDocument.h"
#include "core/backup/NaturalOrder.h"
#include "core/model/ProjectSnapshot.h"
#include "core/store/Rows.h"

namespace orvane::Backup {
namespace {

// Rows of one kind grouped by the ticket they belong to, keeping their order.
template <typename Row, typename Owner>
std::unordered_map<Uuid, std::vector<const Row*>> byTicket(const std::vector<Row>& rows, Owner owner) {
  std::unordered_map<Uuid, std::vector<const Row*>> groups;
  for (const Row& row : rows) groups[owner(row)].push_back(&row);
  return groups;
}

template <typename Row>
const std::vector<const Row*>& group(const std::unordered_map<Uuid, std::vector<const Row*>>& groups, const Uuid& id) {
  static const std::vector<const Row*> none;
  const auto it = groups.find(id);
  return it == groups.end() ? none : it->second;
}

TicketRecord ticketRecord(const Ticket& t) {
  TicketRecord r;
  r.id = t.id;
  r.number = t.number;
  r.title = t.title;
  r.details = t.details;
  r.priority = t.priorityRaw;
  r.position = t.position;
  r.createdAt = t.createdAt;
  r.startedAt = t.startedAt;
  r.completedAt = t.completedAt;
  r.archivedAt = t.archivedAt;
  r.dueDate = t.dueDate;
  r.tags = t.tags;
  r.blocked = t.blocked;
  r.thisWeek = t.thisWeek;
  r.columnID = t.columnId;
  r.epicID = t.epicId;
  r.assigneeID = t.assigneeId;
  r.iterationID = t.iterationId;
  return r;
}

ForecastRecordData forecastRecord(const ForecastRecord& f) {
  return ForecastRecordData{f.runAt,         std::string(rawValue(f.kind())),
                            f.asOfDay,       f.backlog,
                            f.targetDay,     f.whatIfPercent,
                            f.samples,       f.provenance,
                            f.resultDays,    f.resultCounts,
                            f.inconclusive,  f.commitmentDay,
                            f.confidencePct, f.note};
}

// One project with all it owns, and its ticket links.
std::pair<ProjectRecord, ProjectLinks> projectRecord(const ProjectSnapshot& s) {
  const Project& p = s.project;
  ProjectRecord r;
  r.id = p.id;
  r.name = p.name;
  r.key = p.key;
  r.createdAt = p.createdAt;
  r.nextTicketNumber = p.nextTicketNumber;
  r.committedDate = p.committedDate;
  r.fillerCounts = p.fillerCounts;
  r.fillerTierRaw = p.fillerTierRaw;
  r.fillerLambda = p.fillerLambda;
  r.clientName = p.clientName;
  r.clientCompany = p.clientCompany;
  r.clientEmail = p.clientEmail;
  r.internalName = p.internalName;
  r.internalEmail = p.internalEmail;

  for (const BoardColumn& c : s.columns) r.columns.push_back({c.id, c.name, c.position, c.typeRaw, c.wipLimit});
  // Epics in plain byte order of their names (the snapshot's order).
  for (const Epic& e : s.epics) r.epics.push_back({e.id, e.name, e.colorHex, e.startDate, e.dueDate, e.details});

  // The snapshot keeps events by instant, comments by creation, checklist
  // items by position and file links by the day they were added.
  const auto events = byTicket(s.events, [](const TicketEvent& e) { return e.ticketId; });
  const auto comments = byTicket(s.comments, [](const TicketComment& c) { return c.ticketId; });
  const auto checklist = byTicket(s.checklistItems, [](const ChecklistItem& i) { return i.ticketId; });
  const auto fileLinks = byTicket(s.fileLinks, [](const TicketFileLink& f) { return f.ticketId; });
  const auto links = byTicket(s.links, [](const TicketLink& l) { return l.sourceId; });

  const auto number = [&](const Uuid& ticket) {
    const Ticket* found = s.ticket(ticket);
    return found ? found->number : std::int64_t{0};
  };
  ProjectLinks projectLinks{p.id, {}};
  r.tickets.reserve(s.tickets.size());
  for (const Ticket& t : s.tickets) {  // by number, archived included
    TicketRecord& ticket = r.tickets.emplace_back(ticketRecord(t));
    for (const TicketEvent* e : group(events, t.id)) {
      ticket.events.push_back({e->at, e->fromColumnId, e->fromColumnName, e->toColumnId, e->toColumnName});
    }
    for (const TicketComment* c : group(comments, t.id)) ticket.comments.push_back({c->body, c->createdAt});
    for (const ChecklistItem* i : group(checklist, t.id))
      ticket.checklist.push_back({i->title, i->isDone, i->position});
    auto files = group(fileLinks, t.id);
    std::stable_sort(files.begin(), files.end(), [](const TicketFileLink* a, const TicketFileLink* b) {
      return std::tie(a->addedAt, a->name, a->path) < std::tie(b->addedAt, b->name, b->path);
    });
    for (const TicketFileLink* f : files) {
      ticket.fileLinks.push_back({f->name, f->path, f->bookmark, f->addedAt});
    }
    // A ticket's links by creation, then by the linked ticket's number.
    auto outgoing = group(links, t.id);
    std::stable_sort(outgoing.begin(), outgoing.end(), [&](const TicketLink* a, const TicketLink* b) {
      return std::tuple(a->createdAt, number(a->targetId)) < std::tuple(b->createdAt, number(b->targetId));
    });
    for (const TicketLink* l : outgoing) {
      projectLinks.links.push_back({l->kindRaw, l->createdAt, l->sourceId, l->targetId});
    }
  }

  for (const ForecastRecord& f : s.forecasts) r.forecasts.push_back(forecastRecord(f));  // by run time
  for (const Iteration& i : s.iterations) {
    r.iterations.push_back({i.id, i.name, i.goal, i.startDate, i.endDate, i.startedAt, i.closedAt, i.committedCount,
                            i.finishedCount, i.carriedOverCount});
  }
  // Dependencies epic by epic (in name order), each epic's by creation and
  // then by the name of what it waits for: an order that follows from the
  // content alone, so a restored copy writes the same list.
  std::unordered_map<Uuid, std::size_t> epicRank;
  for (std::size_t i = 0; i < s.epics.size(); ++i) epicRank[s.epics[i].id] = i;
  const auto rank = [&](const Uuid& id) {
    const auto it = epicRank.find(id);
    return it == epicRank.end() ? s.epics.size() : it->second;
  };
  std::vector<const EpicDependency*> dependencies;
  for (const EpicDependency& d : s.epicDependencies) dependencies.push_back(&d);
  std::stable_sort(dependencies.begin(), dependencies.end(), [&](const EpicDependency* a, const EpicDependency* b) {
    return std::tuple(rank(a->successorId), a->createdAt, rank(a->predecessorId)) <
           std::tuple(rank(b->successorId), b->createdAt, rank(b->predecessorId));
  });
  for (const EpicDependency* d : dependencies) {
    r.epicDependencies.push_back({d->predecessorId, d->successorId, d->createdAt});
  }
  for (const Milestone& m : s.milestones) {
    r.milestones.push_back({m.id, m.name, m.details, m.date, m.completedAt, m.epicId});
  }
  return {std::move(r), std::move(projectLinks)};
}

File readStore(Database& db, Timestamp now) {
  File file;
  file.createdAt = now;
  const NaturalOrder natural;

  auto people = rows::select<Person>(db, "");
  std::stable_sort(people.begin(), people.end(),
                   [&](const Person& a, const Person& b) { return natural(a.name, b.name); });
  for (const Person& p : people) file.people.push_back({p.id, p.name, p.colorHex, p.email, p.phone});

  auto projects = rows::select<Project>(db, "");
  std::stable_sort(projects.begin(), projects.end(),
                   [&](const Project& a, const Project& b) { return natural(a.name, b.name); });
  for (const Project& project : projects) {
    const auto snapshot = ProjectSnapshot::load(db, project.id);
    if (!snapshot) continue;
    auto [record, links] = projectRecord(*snapshot);
    file.projects.push_back(std::move(record));
    file.links.push_back(std::move(links));
  }
  return file;
}

}  // namespace

std::string makeBackup(Store& store, Timestamp now) {
  Database& db = store.db();
  // One read transaction (unless the caller has one open), so every project
  // and person is seen as of the same moment.
  const bool ownTransaction = sqlite3_get_autocommit(db.handle()) != 0;
  if (ownTransaction) db.exec("BEGIN");
  File file;
  try {
    file = readStore(db, now);
  } catch (...) {
    if (ownTransaction) db.exec("ROLLBACK");
    throw;
  }
  if (ownTransaction) db.exec("COMMIT");
  return encode(file);
}

}  // namespace orvane::Backup
