#include "cli/TicketsCommand.h"

#include <nlohmann/json.hpp>

#include "cli/CliError.h"
#include "cli/OptionParser.h"
#include "cli/ProjectLookup.h"
#include "cli/StoreAccess.h"
#include "core/filter/TicketFilter.h"
#include "core/text/Text.h"
#include "engine/LocalCivilDate.h"

namespace orvane::cli {
namespace {

using nlohmann::json;

constexpr std::string_view ticketsUsage =
    "Usage: orvane-cli tickets PROJECT [filters] [--json]\n"
    "\n"
    "Lists the tickets of PROJECT (its name or its ticket key) by number. Without\n"
    "filters every ticket that is not archived is listed; each filter narrows it.\n"
    "Names are matched ignoring case.\n"
    "\n"
    "  --text WORDS        every word in the title, details, reference, epic,\n"
    "                      assignee, tags, comments or checklist (ignoring case\n"
    "                      and accents: emile finds Émile)\n"
    "  --epic NAME         tickets of this epic\n"
    "  --assignee NAME     tickets assigned to this person\n"
    "  --unassigned        tickets without an assignee\n"
    "  --priority P        low, medium, high or urgent\n"
    "  --tag TAG           tickets carrying this tag\n"
    "  --status S          not-started, in-progress, done or any\n"
    "  --blocked           blocked tickets: flagged, or waiting on an open ticket\n"
    "  --this-week         tickets flagged for this week\n"
    "  --iteration NAME    tickets of this iteration; \"active\" for the active\n"
    "                      iteration, \"none\" for tickets in no iteration\n"
    "  --archived          only archived tickets\n"
    "  --include-archived  archived tickets too\n"
    "  --json              print one JSON object: {project, count, tickets: [{ref,\n"
    "                      number, title, column, status, priority, epic, assignee,\n"
    "                      iteration, tags, blocked, thisWeek, archived, due}]}\n"
    "  --help              print this text\n";

constexpr OptionSpec ticketsSpecs[] = {{"--text", true},        {"--epic", true},      {"--assignee", true},
                                       {"--unassigned", false}, {"--priority", true},  {"--tag", true},
                                       {"--status", true},      {"--blocked", false},  {"--this-week", false},
                                       {"--iteration", true},   {"--archived", false}, {"--include-archived", false},
                                       {"--json", false},       {"--help", false}};

std::string inQuotes(std::string_view text) { return "\"" + std::string(text) + "\""; }

const Person& findPerson(const ProjectSnapshot& project, std::string_view name) {
  const std::string wanted = text::trimmed(name);
  for (const Person& person : project.people) {
    if (text::sameName(person.name, wanted)) return person;
  }
  throw CliError("There is no person " + inQuotes(wanted) + "; assignees are named as in the people list.");
}

StatusFilter statusOption(std::string_view text) {
  const std::string wanted = text::folded(text::trimmed(text));
  if (wanted == "any") return StatusFilter::any;
  if (wanted == "not-started" || wanted == "notstarted") return StatusFilter::notStarted;
  if (wanted == "in-progress" || wanted == "inprogress") return StatusFilter::inProgress;
  if (wanted == "done") return StatusFilter::done;
  throw CliError("--status must be not-started, in-progress, done or any, not " + inQuotes(text) + ".");
}

// The words "active" and "none" name the two special choices, so an
// iteration called "Active" cannot be picked by name here.
IterationFilter iterationOption(const ProjectSnapshot& project, std::string_view text) {
  const std::string wanted = text::trimmed(text);
  if (text::equalIgnoringCase(wanted, "active")) return IterationFilter::active();
  if (text::equalIgnoringCase(wanted, "none")) return IterationFilter::none();
  return IterationFilter::specific(findIteration(project, wanted).id);
}

TicketFilter filterFrom(const ParsedOptions& parsed, const ProjectSnapshot& project) {
  TicketFilter filter;
  if (const auto text = parsed.value("--text")) filter.text = *text;
  if (const auto epic = parsed.value("--epic")) filter.epicId = findEpic(project, *epic).id;
  if (const auto person = parsed.value("--assignee")) filter.assigneeId = findPerson(project, *person).id;
  filter.unassignedOnly = parsed.has("--unassigned");
  if (const auto priority = parsed.value("--priority")) {
    filter.priority = ticketPriorityFromText(*priority);
    if (!filter.priority) {
      throw CliError("--priority must be low, medium, high or urgent, not " + inQuotes(*priority) + ".");
    }
  }
  if (const auto tag = parsed.value("--tag")) filter.tag = text::trimmed(*tag);
  if (const auto status = parsed.value("--status")) filter.status = statusOption(*status);
  filter.blockedOnly = parsed.has("--blocked");
  filter.thisWeekOnly = parsed.has("--this-week");
  if (const auto iteration = parsed.value("--iteration")) filter.iteration = iterationOption(project, *iteration);
  filter.archivedOnly = parsed.has("--archived");
  filter.includeArchived = parsed.has("--include-archived");
  return filter;
}

// The status a ticket stands in, by its column's type.
std::string_view statusText(const Ticket& t, const ProjectSnapshot& s) {
  const BoardColumn* column = t.columnId ? s.column(*t.columnId) : nullptr;
  if (column == nullptr) return "none";
  return rawValue(column->effectiveType());
}

template <typename Row>
json nameOrNull(const Row* row) {
  return row ? json(row->name) : json(nullptr);
}

// Due days are days of the user's calendar, as the calendar view shows them.
json ticketsJson(const ProjectSnapshot& s, const std::vector<const Ticket*>& tickets, const icu::Calendar& calendar) {
  json rows = json::array();
  for (const Ticket* t : tickets) {
    rows.push_back(
        {{"ref", s.referenceCode(*t)},
         {"number", t->number},
         {"title", t->title},
         {"column", nameOrNull(t->columnId ? s.column(*t->columnId) : nullptr)},
         {"status", statusText(*t, s)},
         {"priority", text::folded(displayLabel(t->effectivePriority()))},
         {"epic", nameOrNull(t->epicId ? s.epic(*t->epicId) : nullptr)},
         {"assignee", nameOrNull(t->assigneeId ? s.person(*t->assigneeId) : nullptr)},
         {"iteration", nameOrNull(t->iterationId ? s.iteration(*t->iterationId) : nullptr)},
         {"tags", t->tags},
         {"blocked", s.isBlocked(*t)},
         {"thisWeek", t->thisWeek},
         {"archived", t->isArchived()},
         {"due", t->dueDate ? json(civilDateFromLocal(*t->dueDate, calendar).description()) : json(nullptr)}});
  }
  return {{"project", {{"id", s.project.id.text()}, {"name", s.project.name}, {"key", s.project.key}}},
          {"count", tickets.size()},
          {"tickets", std::move(rows)}};
}

void writeTickets(const ProjectSnapshot& s, const std::vector<const Ticket*>& tickets, bool filtered,
                  std::ostream& out) {
  for (const Ticket* t : tickets) {
    const BoardColumn* column = t->columnId ? s.column(*t->columnId) : nullptr;
    out << s.referenceCode(*t) << "  " << t->title << "  [" << (column ? column->name : "no column") << ", "
        << displayLabel(t->effectivePriority()) << ']';
    if (const Person* assignee = t->assigneeId ? s.person(*t->assigneeId) : nullptr) out << " @" << assignee->name;
    if (s.isBlocked(*t)) out << " [Blocked]";
    if (t->isArchived()) out << " [Archived]";
    out << '\n';
  }
  if (tickets.empty()) {
    out << (filtered ? "No tickets match.\n" : "No tickets.\n");
  } else {
    out << tickets.size() << (tickets.size() == 1 ? " ticket" : " tickets") << (filtered ? " match.\n" : ".\n");
  }
}

}  // namespace

int runTickets(std::span<const std::string> args, const CommandContext& context) {
  const ParsedOptions parsed = parseArguments(args, ticketsSpecs, "tickets");
  if (parsed.has("--help")) {
    context.out << ticketsUsage;
    return exitOk;
  }
  expectPositionals(parsed, {"PROJECT"}, "tickets");
  const ProjectSnapshot snapshot = loadProject(context.store.service(), parsed.positionals()[0]);
  const TicketFilter filter = filterFrom(parsed, snapshot);
  const std::vector<const Ticket*> found = filter.apply(std::span<const Ticket>(snapshot.tickets), snapshot);
  if (parsed.has("--json")) {
    context.out << ticketsJson(snapshot, found, context.calendar).dump(2) << '\n';
  } else {
    writeTickets(snapshot, found, filter.isActive(), context.out);
  }
  return exitOk;
}

}  // namespace orvane::cli
