#include "cli/TicketCommands.h"

#include "cli/CliError.h"
#include "cli/NumberParsing.h"
#include "cli/OptionParser.h"
#include "cli/ProjectLookup.h"
#include "cli/StoreAccess.h"

namespace orvane::cli {
namespace {

constexpr std::string_view ticketUsage =
    "Usage: orvane-cli ticket add PROJECT TITLE [--column NAME] [--epic NAME] [--priority P]\n"
    "       orvane-cli ticket move PROJECT REF COLUMN [--index N]\n"
    "       orvane-cli ticket archive PROJECT REF\n"
    "       orvane-cli ticket restore PROJECT REF\n"
    "\n"
    "PROJECT is a project's name or ticket key, REF a ticket reference such as\n"
    "SHOP-12; column and epic names are matched ignoring case.\n"
    "\n"
    "  add       creates the ticket and prints its reference\n"
    "    --column NAME   its column (default: the first backlog column)\n"
    "    --epic NAME     the epic it belongs to\n"
    "    --priority P    low, medium (default), high or urgent\n"
    "  move      moves the ticket to COLUMN; going over a WIP limit only warns\n"
    "    --index N       its place in the column, 0 for the top (default: the bottom)\n"
    "  archive   takes the ticket off the board\n"
    "  restore   puts an archived ticket back, at the bottom of its column\n";

constexpr OptionSpec addSpecs[] = {{"--column", true}, {"--epic", true}, {"--priority", true}, {"--help", false}};
constexpr OptionSpec moveSpecs[] = {{"--index", true}, {"--help", false}};
constexpr OptionSpec helpOnly[] = {{"--help", false}};

int add(const ParsedOptions& parsed, const CommandContext& context) {
  expectPositionals(parsed, {"PROJECT", "TITLE"}, "ticket add");
  BoardService& service = context.store.service();
  const ProjectSnapshot project = loadProject(service, parsed.positionals()[0]);
  NewTicket ticket{parsed.positionals()[1]};
  if (const auto column = parsed.value("--column")) ticket.column = findColumn(project, *column).id;
  if (const auto epic = parsed.value("--epic")) ticket.epic = findEpic(project, *epic).id;
  if (const auto priority = parsed.value("--priority")) {
    const auto known = ticketPriorityFromText(*priority);
    if (!known) {
      throw CliError("--priority must be low, medium, high or urgent, not \"" + std::string(*priority) + "\".");
    }
    ticket.priority = *known;
  }
  const Ticket created = service.createTicket(project.project.id, ticket, context.now);
  context.out << project.referenceCode(created) << '\n';
  return exitOk;
}

int move(const ParsedOptions& parsed, const CommandContext& context) {
  expectPositionals(parsed, {"PROJECT", "REF", "COLUMN"}, "ticket move");
  std::optional<std::int64_t> index;
  if (const auto text = parsed.value("--index")) {
    const ParsedNumber<std::int64_t> number = parseInt64(*text);
    if (!number.ok()) throw CliError("--index needs a whole number, such as --index 0 for the top.");
    index = number.value;
  }
  BoardService& service = context.store.service();
  const ProjectSnapshot project = loadProject(service, parsed.positionals()[0]);
  const Ticket& ticket = findTicket(project, parsed.positionals()[1]);
  const BoardColumn& target = findColumn(project, parsed.positionals()[2]);
  const BoardColumn* from = ticket.columnId ? project.column(*ticket.columnId) : nullptr;

  const MoveResult result = service.moveTicket(ticket.id, target.id, index, context.now);
  const std::string reference = project.referenceCode(ticket);
  if (!result.changedColumn) {
    context.out << "Reordered " << reference << " within " << target.name << ".\n";
  } else if (from) {
    context.out << "Moved " << reference << " from " << from->name << " to " << target.name << ".\n";
  } else {
    context.out << "Moved " << reference << " to " << target.name << ".\n";
  }
  if (result.wipLimitExceeded) {
    const std::size_t count = project.activeTickets(target).size() + (result.changedColumn ? 1 : 0);
    context.out << "Over the WIP limit: " << target.name << " holds " << count << " tickets, its limit is "
                << target.wipLimit.value_or(0) << ".\n";
  }
  return exitOk;
}

int archiveOrRestore(const ParsedOptions& parsed, const CommandContext& context, bool archive) {
  expectPositionals(parsed, {"PROJECT", "REF"}, archive ? "ticket archive" : "ticket restore");
  BoardService& service = context.store.service();
  const ProjectSnapshot project = loadProject(service, parsed.positionals()[0]);
  const Ticket& ticket = findTicket(project, parsed.positionals()[1]);
  const std::string reference = project.referenceCode(ticket);
  if (archive == ticket.isArchived()) {
    context.out << reference << (archive ? " is already archived.\n" : " is not archived.\n");
    return exitOk;
  }
  if (archive) {
    service.archive(ticket.id, context.now);
    context.out << "Archived " << reference << ".\n";
  } else {
    service.unarchive(ticket.id);
    const BoardColumn* column = ticket.columnId ? project.column(*ticket.columnId) : nullptr;
    context.out << "Restored " << reference << (column ? " to " + column->name : std::string()) << ".\n";
  }
  return exitOk;
}

}  // namespace

int runTicket(std::span<const std::string> args, const CommandContext& context) {
  if (args.empty() || args.front() == "--help") {
    (args.empty() ? context.err : context.out) << ticketUsage;
    return args.empty() ? exitUsage : exitOk;
  }
  const std::string& action = args.front();
  const std::string command = "ticket " + action;
  std::span<const OptionSpec> specs;
  if (action == "add") {
    specs = addSpecs;
  } else if (action == "move") {
    specs = moveSpecs;
  } else if (action == "archive" || action == "restore") {
    specs = helpOnly;
  } else {
    throw CliError("Unknown ticket command \"" + action + "\"; use add, move, archive or restore.");
  }
  const ParsedOptions parsed = parseArguments(args.subspan(1), specs, command);
  if (parsed.has("--help")) {
    context.out << ticketUsage;
    return exitOk;
  }
  if (action == "add") return add(parsed, context);
  if (action == "move") return move(parsed, context);
  return archiveOrRestore(parsed, context, action == "archive");
}

}  // namespace orvane::cli
