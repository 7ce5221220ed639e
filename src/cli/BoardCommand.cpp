#include "cli/BoardCommand.h"

#include <nlohmann/json.hpp>

#include "cli/CliError.h"
#include "cli/OptionParser.h"
#include "cli/ProjectLookup.h"
#include "cli/StoreAccess.h"

namespace orvane::cli {
namespace {

constexpr std::string_view boardUsage =
    "Usage: orvane-cli board PROJECT [--json]\n"
    "\n"
    "Shows the board of PROJECT (its name or its ticket key): every column with\n"
    "its type, tickets and WIP limit, and the tickets on it, top to bottom.\n"
    "\n"
    "  --json   print one JSON object: {project, columns: [{name, type, position,\n"
    "           count, wipLimit, overWipLimit, tickets: [{ref, number, title,\n"
    "           priority, assignee, blocked}]}]}\n"
    "  --help   print this text\n";

constexpr OptionSpec boardSpecs[] = {{"--json", false}, {"--help", false}};

std::string_view typeLabel(const BoardColumn& column) {
  if (!column.type()) return column.typeRaw;
  switch (*column.type()) {
    case ColumnType::backlog: return "backlog";
    case ColumnType::inProgress: return "in progress";
    case ColumnType::done: return "done";
  }
  return column.typeRaw;
}

// Shown and sorted as medium when the stored value is unknown.
TicketPriority priorityOf(const Ticket& ticket) { return ticket.priority().value_or(TicketPriority::medium); }

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
  return lower;
}

bool overLimit(const BoardColumn& column, std::size_t count) {
  return column.wipLimit && static_cast<std::int64_t>(count) > *column.wipLimit;
}

nlohmann::json boardJson(const ProjectSnapshot& s) {
  nlohmann::json columns = nlohmann::json::array();
  for (const BoardColumn& column : s.columns) {
    const auto active = s.activeTickets(column);
    nlohmann::json tickets = nlohmann::json::array();
    for (const Ticket* t : active) {
      const Person* assignee = t->assigneeId ? s.person(*t->assigneeId) : nullptr;
      tickets.push_back({{"ref", s.referenceCode(*t)},
                         {"number", t->number},
                         {"title", t->title},
                         {"priority", lowerCase(displayLabel(priorityOf(*t)))},
                         {"assignee", assignee ? nlohmann::json(assignee->name) : nlohmann::json(nullptr)},
                         {"blocked", s.isBlocked(*t)}});
    }
    columns.push_back({{"name", column.name},
                       {"type", column.typeRaw},
                       {"position", column.position},
                       {"count", active.size()},
                       {"wipLimit", column.wipLimit ? nlohmann::json(*column.wipLimit) : nlohmann::json(nullptr)},
                       {"overWipLimit", overLimit(column, active.size())},
                       {"tickets", std::move(tickets)}});
  }
  return {{"project", {{"id", s.project.id.text()}, {"name", s.project.name}, {"key", s.project.key}}},
          {"columns", std::move(columns)}};
}

void writeBoard(const ProjectSnapshot& s, std::ostream& out) {
  out << s.project.name << " (" << s.project.key << ")\n";
  for (const BoardColumn& column : s.columns) {
    const auto active = s.activeTickets(column);
    out << '\n' << column.name << " [" << typeLabel(column) << "] " << active.size()
        << (active.size() == 1 ? " ticket" : " tickets");
    if (column.wipLimit) out << ", WIP limit " << *column.wipLimit;
    if (overLimit(column, active.size())) out << " - Over the WIP limit";
    out << '\n';
    for (const Ticket* t : active) {
      out << "  " << s.referenceCode(*t) << "  " << t->title << "  [" << displayLabel(priorityOf(*t)) << ']';
      if (const Person* assignee = t->assigneeId ? s.person(*t->assigneeId) : nullptr) out << " @" << assignee->name;
      if (s.isBlocked(*t)) out << " [Blocked]";
      out << '\n';
    }
  }
}

}  // namespace

int runBoard(std::span<const std::string> args, const CommandContext& context) {
  const ParsedOptions parsed = parseArguments(args, boardSpecs, "board");
  if (parsed.has("--help")) {
    context.out << boardUsage;
    return exitOk;
  }
  expectPositionals(parsed, {"PROJECT"}, "board");
  const ProjectSnapshot snapshot = loadProject(context.store.service(), parsed.positionals()[0]);
  if (parsed.has("--json")) {
    context.out << boardJson(snapshot).dump(2) << '\n';
  } else {
    writeBoard(snapshot, context.out);
  }
  return exitOk;
}

}  // namespace orvane::cli
