#include "core/filter/TicketFilter.h"

#include <unordered_map>

#include "core/filter/SearchText.h"
#include "core/text/Text.h"

namespace orvane {
namespace {

// The searchable texts that do not belong to one ticket's own fields, in
// search form: comment bodies and checklist titles by ticket, and the names
// of epics and people. Gathered once per apply (or for one ticket).
struct SearchTexts {
  std::unordered_map<Uuid, std::vector<std::string>> byTicket;
  std::unordered_map<Uuid, std::string> names;  // epics and people

  SearchTexts(const ProjectSnapshot& project, const Uuid* only) {
    for (const TicketComment& comment : project.comments) {
      if (only == nullptr || comment.ticketId == *only) byTicket[comment.ticketId].push_back(search::key(comment.body));
    }
    for (const ChecklistItem& item : project.checklistItems) {
      if (only == nullptr || item.ticketId == *only) byTicket[item.ticketId].push_back(search::key(item.title));
    }
    for (const Epic& epic : project.epics) names.emplace(epic.id, search::key(epic.name));
    for (const Person& person : project.people) names.emplace(person.id, search::key(person.name));
  }

  std::string_view name(const std::optional<Uuid>& id) const {
    const auto it = id ? names.find(*id) : names.end();
    return it == names.end() ? std::string_view() : std::string_view(it->second);
  }
};

// Every searchable piece of a ticket in search form, one per line, so no word
// can match across two pieces. Pieces are keyed one by one: the search form
// of a joined text is the join of the pieces' forms.
std::string searchableKey(const Ticket& t, const ProjectSnapshot& project, const SearchTexts& texts) {
  std::string joined = search::key(t.title);
  const auto add = [&joined](std::string_view keyed) {
    joined += '\n';
    joined += keyed;
  };
  add(search::key(t.details));
  add(search::key(project.referenceCode(t)));
  // A ticket whose epic or assignee is gone has none, as the other tests see it.
  add(t.epicId && project.epic(*t.epicId) ? texts.name(t.epicId) : std::string_view());
  add(t.assigneeId && project.person(*t.assigneeId) ? texts.name(t.assigneeId) : std::string_view());
  for (const std::string& tag : t.tags) add(search::key(tag));
  if (const auto it = texts.byTicket.find(t.id); it != texts.byTicket.end()) {
    for (const std::string& text : it->second) add(text);
  }
  return joined;
}

std::optional<ColumnType> columnTypeOf(const Ticket& t, const ProjectSnapshot& project) {
  const BoardColumn* column = t.columnId ? project.column(*t.columnId) : nullptr;
  if (column == nullptr) return std::nullopt;
  return column->effectiveType();
}

bool passesStatus(StatusFilter status, const Ticket& t, const ProjectSnapshot& project) {
  if (status == StatusFilter::any) return true;
  const auto type = columnTypeOf(t, project);
  if (!type) return false;
  switch (status) {
    case StatusFilter::notStarted:
      return *type == ColumnType::backlog;
    case StatusFilter::inProgress:
      return *type == ColumnType::inProgress;
    case StatusFilter::done:
      return *type == ColumnType::done;
    case StatusFilter::any:
      return true;
  }
  return false;
}

bool passesIteration(const IterationFilter& filter, const Ticket& t, const ProjectSnapshot& project) {
  switch (filter.kind) {
    case IterationFilter::Kind::any:
      return true;
    case IterationFilter::Kind::none:
      return !t.iterationId.has_value();
    case IterationFilter::Kind::specific: {
      const Iteration* iteration = t.iterationId ? project.iteration(*t.iterationId) : nullptr;
      return iteration != nullptr && filter.id && iteration->id == *filter.id;
    }
    case IterationFilter::Kind::active: {
      const Iteration* iteration = t.iterationId ? project.iteration(*t.iterationId) : nullptr;
      return iteration != nullptr && iteration->state() == IterationState::active;
    }
  }
  return false;
}

// Every test but the text one, in their fixed order.
bool passesFields(const TicketFilter& f, const Ticket& t, const ProjectSnapshot& project) {
  if (f.archivedOnly ? !t.isArchived() : (!f.includeArchived && t.isArchived())) return false;
  if (f.epicId) {
    const Epic* epic = t.epicId ? project.epic(*t.epicId) : nullptr;
    if (epic == nullptr || epic->id != *f.epicId) return false;
  }
  if (f.assigneeId) {
    const Person* person = t.assigneeId ? project.person(*t.assigneeId) : nullptr;
    if (person == nullptr || person->id != *f.assigneeId) return false;
  }
  if (f.unassignedOnly && t.assigneeId.has_value()) return false;
  // An unknown stored priority is shown as medium, so it filters as medium.
  if (f.priority && t.effectivePriority() != *f.priority) return false;
  if (f.tag) {
    const std::string wanted = text::folded(*f.tag);
    bool found = false;
    for (const std::string& tag : t.tags) found = found || text::folded(tag) == wanted;
    if (!found) return false;
  }
  if (f.blockedOnly && !project.isBlocked(t)) return false;
  if (f.thisWeekOnly && !t.thisWeek) return false;
  if (!passesIteration(f.iteration, t, project)) return false;
  return passesStatus(f.status, t, project);
}

}  // namespace

std::string_view rawValue(StatusFilter status) {
  switch (status) {
    case StatusFilter::any:
      return "any";
    case StatusFilter::notStarted:
      return "notStarted";
    case StatusFilter::inProgress:
      return "inProgress";
    case StatusFilter::done:
      return "done";
  }
  return "any";
}

std::string_view displayLabel(StatusFilter status) {
  switch (status) {
    case StatusFilter::any:
      return "Any status";
    case StatusFilter::notStarted:
      return "Not started";
    case StatusFilter::inProgress:
      return "In progress";
    case StatusFilter::done:
      return "Done";
  }
  return "Any status";
}

std::optional<StatusFilter> statusFilterFromRaw(std::string_view raw) {
  for (StatusFilter status : allStatusFilters) {
    if (rawValue(status) == raw) return status;
  }
  return std::nullopt;
}

bool TicketFilter::matches(const Ticket& ticket, const ProjectSnapshot& project) const {
  if (!passesFields(*this, ticket, project)) return false;
  const std::vector<std::string> wanted = search::words(text);
  if (wanted.empty()) return true;
  const SearchTexts texts(project, &ticket.id);
  return search::containsAll(searchableKey(ticket, project, texts), wanted);
}

std::vector<const Ticket*> TicketFilter::apply(std::span<const Ticket* const> tickets,
                                               const ProjectSnapshot& project) const {
  const std::vector<std::string> wanted = search::words(text);
  std::optional<SearchTexts> texts;
  if (!wanted.empty()) texts.emplace(project, nullptr);
  std::vector<const Ticket*> found;
  for (const Ticket* ticket : tickets) {
    if (!passesFields(*this, *ticket, project)) continue;
    if (texts && !search::containsAll(searchableKey(*ticket, project, *texts), wanted)) continue;
    found.push_back(ticket);
  }
  return found;
}

std::vector<const Ticket*> TicketFilter::apply(std::span<const Ticket> tickets, const ProjectSnapshot& project) const {
  std::vector<const Ticket*> pointers;
  pointers.reserve(tickets.size());
  for (const Ticket& ticket : tickets) pointers.push_back(&ticket);
  return apply(std::span<const Ticket* const>(pointers), project);
}

}  // namespace orvane
