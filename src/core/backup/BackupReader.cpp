// restoreBackup: the import rebuild from a backup document into the store.
#include <unordered_map>
#include <unordered_set>

#include "core/backup/Backup.h"
#include "core/backup/BackupDocument.h"
#include "core/backup/BackupRepair.h"
#include "core/model/ForecastRecord.h"
#include "core/model/Project.h"
#include "core/store/Rows.h"
#include "core/text/Text.h"
#include "engine/ProvenanceTier.h"

namespace orvane::Backup {
namespace {

using IdMap = std::unordered_map<Uuid, Uuid>;  // backup id -> new row's id

std::optional<Uuid> resolve(const IdMap& map, const std::optional<Uuid>& id) {
  if (!id) return std::nullopt;
  const auto it = map.find(*id);
  if (it == map.end()) return std::nullopt;
  return it->second;
}

// A tier the system does not know reads as the system's default, so the
// list keeps one tier per sample.
std::string provenanceRaw(const std::string& text) {
  return std::string(rawValue(provenanceTierFromRaw(text).value_or(ProvenanceTier::systemDefault)));
}

class Restore {
 public:
  Restore(Database& db, const File& file) : db_(db), file_(file) {}

  Report run() {
    restorePeople();
    for (const Project& p : rows::select<Project>(db_, "")) {
      existingProjects_.insert(p.id);
      takenNames_.insert(text::lowered(p.name));
      takenKeys_.insert(text::lowered(p.key));
    }
    for (const ProjectLinks& entry : file_.links) {
      auto& group = linksByProject_[entry.projectID];
      for (const LinkRecord& link : entry.links) group.push_back(&link);
    }
    for (ProjectRecord record : file_.projects) {
      nameFreely(record);
      repairProject(record, report_.warnings);
      restoreProject(record);
    }
    return std::move(report_);
  }

 private:
  // People are merged by name, lower-cased as names are told apart (two
  // people the store keeps apart stay apart), also with each other: the
  // first spelling met (the store's, else the file's) is kept.
  void restorePeople() {
    std::unordered_map<std::string, Uuid> byName;
    for (const Person& p : rows::select<Person>(db_, "")) byName.emplace(text::lowered(p.name), p.id);
    for (const PersonRecord& record : file_.people) {
      const auto [it, isNew] = byName.emplace(text::lowered(record.name), Uuid());
      if (isNew) {
        it->second = Uuid::random();
        rows::insert(db_, Person{it->second, record.name, record.colorHex, record.email.value_or(""),
                                 record.phone.value_or("")});
        ++report_.people;
      }
      people_[record.id] = it->second;
    }
  }

  // A project restored beside its original, or beside another project of
  // its name, is named "<name> (restored)", then "(restored 2)" and so on,
  // so every project can be told by its name. A key in use gets a digit.
  void nameFreely(ProjectRecord& r) {
    const auto nameTaken = [&](const std::string& candidate) { return takenNames_.contains(text::lowered(candidate)); };
    const std::string name = text::trimmed(r.name);
    r.name = name;
    if (existingProjects_.contains(r.id) || nameTaken(r.name)) {
      r.name = name + " (restored)";
      for (int n = 2; nameTaken(r.name); ++n) r.name = name + " (restored " + std::to_string(n) + ")";
    }
    takenNames_.insert(text::lowered(r.name));

    std::string key = text::trimmed(r.key);
    if (key.empty()) {
      key = projectKey(name);
      report_.warnings.push_back(key + ": the project had no key; it was given one made from its name.");
    }
    r.key = key;
    for (int n = 2; takenKeys_.contains(text::lowered(r.key)); ++n) r.key = key + std::to_string(n);
    takenKeys_.insert(text::lowered(r.key));
    if (r.name != name) {
      report_.warnings.push_back(r.key + ": \"" + name + "\" is already in use; restored as \"" + r.name + "\".");
    }
    if (r.key != key) {
      report_.warnings.push_back(r.key + ": the key " + key + " is already in use; the tickets are numbered " +
                                 r.key + "-1, " + r.key + "-2 and so on.");
    }
  }

  void restoreProject(const ProjectRecord& r) {
    Project project;
    project.id = Uuid::random();
    project.name = r.name;
    project.key = r.key;
    project.createdAt = r.createdAt;
    project.nextTicketNumber = r.nextTicketNumber;
    project.committedDate = r.committedDate;
    project.fillerCounts = r.fillerCounts;
    project.fillerTierRaw = r.fillerTierRaw;
    project.fillerLambda = r.fillerLambda;
    project.clientName = r.clientName;
    project.clientCompany = r.clientCompany;
    project.clientEmail = r.clientEmail;
    project.internalName = r.internalName;
    project.internalEmail = r.internalEmail;
    rows::insert(db_, project);
    ++report_.projects;

    // References resolve within the project only.
    IdMap columns, epics, iterations, tickets;
    for (const ColumnRecord& c : r.columns) {
      const Uuid id = Uuid::random();
      rows::insert(db_, BoardColumn{id, c.name, c.position, c.type, c.wipLimit, project.id});
      columns[c.id] = id;
    }
    for (const EpicRecord& e : r.epics) {
      const Uuid id = Uuid::random();
      rows::insert(db_, Epic{id, e.name, e.colorHex, e.startDate, e.dueDate, e.details, project.id});
      epics[e.id] = id;
    }
    for (const EpicDependencyRecord& d : r.epicDependencies) {
      const auto predecessor = resolve(epics, d.predecessorID);
      const auto successor = resolve(epics, d.successorID);
      if (!predecessor || !successor) {
        report_.warnings.push_back(r.key + ": an epic dependency referred to a missing epic and was dropped.");
        continue;
      }
      rows::insert(db_, EpicDependency{Uuid::random(), d.createdAt, *predecessor, *successor});
      ++report_.epicDependencies;
    }
    for (const MilestoneRecord& m : r.milestones) {
      rows::insert(db_, Milestone{Uuid::random(), m.name, m.details, m.date, m.completedAt, project.id,
                                  resolve(epics, m.epicID)});
      ++report_.milestones;
    }
    for (const IterationRecord& i : r.iterations) {
      const Uuid id = Uuid::random();
      rows::insert(db_, Iteration{id, i.name, i.goal, i.startDate, i.endDate, i.startedAt, i.closedAt, i.committedCount,
                                  i.finishedCount, i.carriedOverCount, project.id});
      iterations[i.id] = id;
      ++report_.iterations;
    }
    for (const TicketRecord& t : r.tickets) restoreTicket(r, t, project.id, columns, epics, iterations, tickets);

    const auto links = linksByProject_.find(r.id);
    if (links != linksByProject_.end()) {
      for (const LinkRecord* link : links->second) {
        const auto source = resolve(tickets, link->sourceID);
        const auto target = resolve(tickets, link->targetID);
        if (source && target)
          rows::insert(db_, TicketLink{Uuid::random(), link->kind, link->createdAt, *source, *target});
      }
    }

    for (const ForecastRecordData& f : r.forecasts) {
      ForecastRecord run;
      run.id = Uuid::random();
      run.runAt = f.runAt;
      run.kindRaw = std::string(rawValue(forecastKindFromRaw(f.kind)));
      run.asOfDay = f.asOfDay;
      run.backlog = f.backlog;
      run.targetDay = f.targetDay;
      run.whatIfPercent = f.whatIfPercent;
      run.samples = f.samples;
      run.provenance.reserve(f.provenance.size());
      for (const std::string& tier : f.provenance) run.provenance.push_back(provenanceRaw(tier));
      run.resultDays = f.resultDays;
      run.resultCounts = f.resultCounts;
      run.inconclusive = f.inconclusive;
      run.commitmentDay = f.commitmentDay;
      run.confidencePct = f.confidencePct;
      run.note = f.note;
      run.projectId = project.id;
      rows::insert(db_, run);
      ++report_.forecasts;
    }
  }

  void restoreTicket(const ProjectRecord& project, const TicketRecord& r, const Uuid& projectId, const IdMap& columns,
                     const IdMap& epics, const IdMap& iterations, IdMap& tickets) {
    Ticket t;
    t.id = Uuid::random();
    t.number = r.number;
    t.title = r.title;
    t.details = r.details;
    t.priorityRaw = r.priority;
    t.position = r.position;
    t.createdAt = r.createdAt;
    t.startedAt = r.startedAt;
    t.completedAt = r.completedAt;
    t.archivedAt = r.archivedAt;
    t.dueDate = r.dueDate;
    t.tags = r.tags;
    t.blocked = r.blocked;
    t.thisWeek = r.thisWeek.value_or(false);
    t.projectId = projectId;
    t.columnId = resolve(columns, r.columnID);
    t.epicId = resolve(epics, r.epicID);
    t.assigneeId = resolve(people_, r.assigneeID);
    t.iterationId = resolve(iterations, r.iterationID);
    rows::insert(db_, t);
    tickets[r.id] = t.id;
    ++report_.tickets;

    for (const EventRecord& e : r.events) {
      const auto to = resolve(columns, e.toColumnID);
      if (!to) {
        report_.warnings.push_back(project.key + "-" + std::to_string(r.number) +
                                   ": a column move referred to a missing column and was dropped.");
        continue;
      }
      rows::insert(db_, TicketEvent{Uuid::random(), e.at, resolve(columns, e.fromColumnID), e.fromColumnName, *to,
                                    e.toColumnName, t.id});
    }
    for (const CommentRecord& c : r.comments)
      rows::insert(db_, TicketComment{Uuid::random(), c.body, c.createdAt, t.id});
    for (const ChecklistRecord& i : r.checklist) {
      rows::insert(db_, ChecklistItem{Uuid::random(), i.title, i.isDone, i.position, t.id});
    }
    for (const FileLinkRecord& f : r.fileLinks) {
      rows::insert(db_, TicketFileLink{Uuid::random(), f.name, f.path, f.bookmark, f.addedAt, t.id});
    }
  }

  Database& db_;
  const File& file_;
  Report report_;
  IdMap people_;
  std::unordered_set<Uuid> existingProjects_;
  std::unordered_set<std::string> takenNames_;  // folded
  std::unordered_set<std::string> takenKeys_;   // folded
  std::unordered_map<Uuid, std::vector<const LinkRecord*>> linksByProject_;
};

}  // namespace

Report restoreBackup(Store& store, std::string_view bytes) {
  // The whole file is read and checked before the store is touched; the
  // rebuild is one transaction, so any failure inserts nothing.
  const File file = decode(bytes);
  requireRestorable(file);
  Transaction transaction(store.db());
  Report report = Restore(store.db(), file).run();
  transaction.commit();
  return report;
}

}  // namespace orvane::Backup
