#include "cli/ProjectCommands.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "cli/CliError.h"
#include "cli/OptionParser.h"
#include "cli/StoreAccess.h"
#include "cli/TextLayout.h"

namespace orvane::cli {
namespace {

constexpr std::string_view projectsUsage =
    "Usage: orvane-cli projects [--json]\n"
    "\n"
    "Lists the projects with their ticket key, open tickets and all tickets on\n"
    "the board (archived tickets are not counted).\n"
    "\n"
    "  --json   print a JSON array of {id, name, key, openTickets, tickets}\n"
    "  --help   print this text\n";

constexpr std::string_view demoUsage =
    "Usage: orvane-cli demo\n"
    "\n"
    "Adds the demo project, a web shop team's last fourteen weeks, dated up to\n"
    "now (or --now), and prints its name.\n";

constexpr std::string_view projectUsage =
    "Usage: orvane-cli project create NAME [--key PREFIX]\n"
    "\n"
    "Creates a project with the standard board: Backlog, To Do, In Progress,\n"
    "Review and Done.\n"
    "\n"
    "  --key PREFIX   the ticket prefix, e.g. SHOP for SHOP-1, SHOP-2, ...\n"
    "                 (default: made from the name)\n"
    "  --help         print this text\n";

constexpr OptionSpec projectsSpecs[] = {{"--json", false}, {"--help", false}};
constexpr OptionSpec helpOnly[] = {{"--help", false}};
constexpr OptionSpec projectCreateSpecs[] = {{"--key", true}, {"--help", false}};

struct ProjectLine {
  const Project* project;
  std::int64_t open = 0;
  std::int64_t tickets = 0;
};

}  // namespace

int runProjects(std::span<const std::string> args, const CommandContext& context) {
  const ParsedOptions parsed = parseArguments(args, projectsSpecs, "projects");
  if (parsed.has("--help")) {
    context.out << projectsUsage;
    return exitOk;
  }
  expectPositionals(parsed, {}, "projects");

  BoardService& service = context.store.service();
  const std::vector<Project> projects = service.projects();
  std::vector<ProjectLine> lines;
  for (const Project& project : projects) {
    const std::optional<ProjectSnapshot> snapshot = service.snapshot(project.id);
    if (!snapshot) continue;  // deleted meanwhile
    ProjectLine line{&project, snapshot->remainingBacklog(), 0};
    for (const Ticket& ticket : snapshot->tickets) line.tickets += ticket.isArchived() ? 0 : 1;
    lines.push_back(line);
  }

  if (parsed.has("--json")) {
    nlohmann::json list = nlohmann::json::array();
    for (const ProjectLine& line : lines) {
      list.push_back({{"id", line.project->id.text()},
                      {"name", line.project->name},
                      {"key", line.project->key},
                      {"openTickets", line.open},
                      {"tickets", line.tickets}});
    }
    context.out << list.dump(2) << '\n';
    return exitOk;
  }
  if (lines.empty()) {
    context.out << "No projects yet. Create one with \"orvane-cli project create NAME\", or load the demo with "
                   "\"orvane-cli demo\".\n";
    return exitOk;
  }
  std::size_t nameWidth = widthOf("PROJECT");
  std::size_t keyWidth = widthOf("KEY");
  for (const ProjectLine& line : lines) {
    nameWidth = std::max(nameWidth, widthOf(line.project->name));
    keyWidth = std::max(keyWidth, widthOf(line.project->key));
  }
  context.out << padRight("PROJECT", nameWidth) << "  " << padRight("KEY", keyWidth) << "  OPEN  TICKETS\n";
  for (const ProjectLine& line : lines) {
    const std::string open = std::to_string(line.open);
    const std::string tickets = std::to_string(line.tickets);
    context.out << padRight(line.project->name, nameWidth) << "  " << padRight(line.project->key, keyWidth) << "  "
                << std::string(open.size() < 4 ? 4 - open.size() : 0, ' ') << open << "  "
                << std::string(tickets.size() < 7 ? 7 - tickets.size() : 0, ' ') << tickets << '\n';
  }
  return exitOk;
}

int runDemo(std::span<const std::string> args, const CommandContext& context) {
  const ParsedOptions parsed = parseArguments(args, helpOnly, "demo");
  if (parsed.has("--help")) {
    context.out << demoUsage;
    return exitOk;
  }
  expectPositionals(parsed, {}, "demo");
  context.out << context.store.service().loadDemoProject(context.now).name << '\n';
  return exitOk;
}

int runProject(std::span<const std::string> args, const CommandContext& context) {
  if (args.empty() || args.front() == "--help") {
    (args.empty() ? context.err : context.out) << projectUsage;
    return args.empty() ? exitUsage : exitOk;
  }
  if (args.front() != "create") {
    throw CliError("Unknown project command \"" + args.front() + "\"; the one there is: project create NAME.");
  }
  const ParsedOptions parsed = parseArguments(args.subspan(1), projectCreateSpecs, "project create");
  if (parsed.has("--help")) {
    context.out << projectUsage;
    return exitOk;
  }
  expectPositionals(parsed, {"NAME"}, "project create");
  const std::optional<std::string_view> key = parsed.value("--key");
  const Project project = context.store.service().createProject(parsed.positionals()[0], key, context.now);
  context.out << "Created project \"" << project.name << "\" with key " << project.key << ".\n";
  return exitOk;
}

}  // namespace orvane::cli
