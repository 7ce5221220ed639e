#include "core/backup/BackupRepair.h"

#include <algorithm>
#include <functional>
#include <map>
#include <numeric>
#include <optional>
#include <set>
#include <unordered_map>

#include "core/model/ColumnType.h"
#include "core/model/SupportedDates.h"
#include "core/text/Text.h"

namespace orvane::Backup {
namespace {

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

std::string counted(std::int64_t n, const std::string& noun) {
  return std::to_string(n) + " " + noun + (n == 1 ? "" : "s");
}

bool blank(const std::string& text) { return text::trimmed(text).empty(); }

// The checks of one project; every refusal names it.
class ProjectCheck {
 public:
  explicit ProjectCheck(const ProjectRecord& p) : p_(p) {}

  void run() const {
    date(p_.createdAt, "a createdAt");
    date(p_.committedDate, "a committedDate");
    for (const ColumnRecord& c : p_.columns) {
      if (blank(c.name)) refuse("has a column without a name");
    }
    for (const EpicRecord& e : p_.epics) {
      if (blank(e.name)) refuse("has an epic without a name");
      date(e.startDate, "a startDate of epic " + quoted(e.name));
      date(e.dueDate, "a dueDate of epic " + quoted(e.name));
    }
    for (const EpicDependencyRecord& d : p_.epicDependencies) date(d.createdAt, "an epic dependency dated");
    for (const MilestoneRecord& m : p_.milestones) {
      if (blank(m.name)) refuse("has a milestone without a name");
      date(m.date, "a date of milestone " + quoted(m.name));
      date(m.completedAt, "a completedAt of milestone " + quoted(m.name));
    }
    for (const IterationRecord& i : p_.iterations) {
      if (blank(i.name)) refuse("has an iteration without a name");
      const std::string of = " of iteration " + quoted(i.name);
      date(i.startDate, "a startDate" + of);
      date(i.endDate, "an endDate" + of);
      date(i.startedAt, "a startedAt" + of);
      date(i.closedAt, "a closedAt" + of);
    }
    std::set<std::int64_t> numbers;
    for (const TicketRecord& t : p_.tickets) {
      if (t.number < 1 || t.number > maxTicketNumber) {
        refuse("has a ticket numbered " + std::to_string(t.number) + "; ticket numbers run from 1 to " +
               std::to_string(maxTicketNumber));
      }
      if (!numbers.insert(t.number).second) refuse("has two tickets numbered " + std::to_string(t.number));
      if (blank(t.title)) refuse("has a ticket without a title (number " + std::to_string(t.number) + ")");
      const std::string of = " of ticket " + std::to_string(t.number);
      date(t.createdAt, "a createdAt" + of);
      date(t.startedAt, "a startedAt" + of);
      date(t.completedAt, "a completedAt" + of);
      date(t.archivedAt, "an archivedAt" + of);
      date(t.dueDate, "a dueDate" + of);
      for (const EventRecord& e : t.events) date(e.at, "a column move" + of + " dated");
      for (const CommentRecord& c : t.comments) date(c.createdAt, "a comment" + of + " dated");
      for (const FileLinkRecord& f : t.fileLinks) date(f.addedAt, "a file link" + of + " dated");
    }
    for (const ForecastRecordData& f : p_.forecasts) date(f.runAt, "a saved forecast dated");
  }

  void links(const std::vector<LinkRecord>& links) const {
    for (const LinkRecord& l : links) date(l.createdAt, "a ticket link dated");
  }

 private:
  [[noreturn]] void refuse(const std::string& what) const {
    throw BackupError::unsupportedValue("project " + quoted(p_.name) + " " + what + ".");
  }
  void date(Timestamp at, const std::string& field) const {
    if (!isSupportedDate(at)) refuse("has " + field + " outside the years 0000 to 9999");
  }
  void date(const std::optional<Timestamp>& at, const std::string& field) const {
    if (at) date(*at, field);
  }

  const ProjectRecord& p_;
};

// Renumbers `items` (their positions read and written through `position`)
// 0..n-1 in position order, ties kept in file order. Returns how many
// positions changed.
template <typename Item>
std::int64_t renumber(std::vector<Item*>& items, const std::function<std::int64_t&(Item&)>& position) {
  std::stable_sort(items.begin(), items.end(), [&](Item* a, Item* b) { return position(*a) < position(*b); });
  std::int64_t changed = 0;
  for (std::size_t i = 0; i < items.size(); ++i) {
    std::int64_t& p = position(*items[i]);
    if (p != static_cast<std::int64_t>(i)) {
      p = static_cast<std::int64_t>(i);
      ++changed;
    }
  }
  return changed;
}

}  // namespace

void requireRestorable(const File& file) {
  for (const PersonRecord& person : file.people) {
    if (blank(person.name)) throw BackupError::unsupportedValue("a person has no name.");
  }
  std::unordered_map<Uuid, const ProjectRecord*> byId;
  for (const ProjectRecord& project : file.projects) {
    if (blank(project.name)) {
      throw BackupError::unsupportedValue("a project" + (project.key.empty() ? "" : " (key " + project.key + ")") +
                                          " has no name.");
    }
    ProjectCheck(project).run();
    byId.emplace(project.id, &project);
  }
  for (const ProjectLinks& entry : file.links) {
    const auto project = byId.find(entry.projectID);
    if (project != byId.end()) ProjectCheck(*project->second).links(entry.links);
  }
}

void repairProject(ProjectRecord& p, std::vector<std::string>& warnings) {
  const auto warn = [&](const std::string& what) { warnings.push_back(p.key + ": " + what + "."); };

  std::int64_t unknownTypes = 0;
  std::int64_t limitsRemoved = 0;
  std::vector<ColumnRecord*> columns;
  for (ColumnRecord& c : p.columns) {
    if (!columnTypeFromRaw(c.type)) {
      c.type = std::string(rawValue(ColumnType::backlog));
      ++unknownTypes;
    }
    if (c.wipLimit && *c.wipLimit < 1) {
      c.wipLimit.reset();
      ++limitsRemoved;
    }
    columns.push_back(&c);
  }
  if (unknownTypes > 0) {
    warn("unknown column types were read as Backlog (" + counted(unknownTypes, "column") + ")");
  }
  if (limitsRemoved > 0) {
    warn("WIP limits below 1 were removed, leaving no limit (" + counted(limitsRemoved, "column") + ")");
  }
  const auto columnPosition = [](ColumnRecord& c) -> std::int64_t& { return c.position; };
  if (const auto n = renumber<ColumnRecord>(columns, columnPosition); n > 0) {
    warn("column positions were out of order and were renumbered (" + counted(n, "column") + ")");
  }

  // Active tickets per column; archived ones keep their positions.
  std::map<std::optional<Uuid>, std::vector<TicketRecord*>> byColumn;
  std::int64_t checklistChanged = 0;
  const auto ticketPosition = [](TicketRecord& t) -> std::int64_t& { return t.position; };
  const auto itemPosition = [](ChecklistRecord& i) -> std::int64_t& { return i.position; };
  for (TicketRecord& t : p.tickets) {
    if (!t.archivedAt && t.columnID) byColumn[t.columnID].push_back(&t);
    std::vector<ChecklistRecord*> items;
    for (ChecklistRecord& item : t.checklist) items.push_back(&item);
    checklistChanged += renumber<ChecklistRecord>(items, itemPosition);
  }
  std::int64_t ticketsChanged = 0;
  for (auto& [column, tickets] : byColumn) ticketsChanged += renumber<TicketRecord>(tickets, ticketPosition);
  if (ticketsChanged > 0) {
    warn("ticket positions were out of order and were renumbered (" + counted(ticketsChanged, "ticket") + ")");
  }
  if (checklistChanged > 0) {
    warn("checklist positions were out of order and were renumbered (" + counted(checklistChanged, "item") + ")");
  }

  std::int64_t highest = 0;
  for (const TicketRecord& t : p.tickets) highest = std::max(highest, t.number);
  if (p.nextTicketNumber <= highest || p.nextTicketNumber < 1) {
    p.nextTicketNumber = highest + 1;
    warn("the next ticket number was not above the highest ticket number and was raised to " +
         std::to_string(p.nextTicketNumber));
  } else if (p.nextTicketNumber > maxTicketNumber + 1) {
    p.nextTicketNumber = highest + 1;
    warn("the next ticket number was beyond " + std::to_string(maxTicketNumber) + " and was lowered to " +
         std::to_string(p.nextTicketNumber));
  }
}

}  // namespace orvane::Backup
