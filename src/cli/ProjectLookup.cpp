#include "cli/ProjectLookup.h"

#include <algorithm>
#include <iterator>

#include "cli/CliError.h"
#include "cli/NumberParsing.h"
#include "core/text/Text.h"

namespace orvane::cli {
namespace {

std::string inQuotes(std::string_view text) { return "\"" + std::string(text) + "\""; }

template <typename Row>
std::string namesOf(const std::vector<Row>& rows) {
  std::string names;
  for (const Row& row : rows) names += (names.empty() ? "" : ", ") + row.name;
  return names;
}

}  // namespace

ProjectSnapshot loadProject(BoardService& service, std::string_view nameOrKey) {
  const std::string wanted = text::trimmed(nameOrKey);
  const std::vector<Project> projects = service.projects();
  const auto named = [&](const Project& p) { return text::sameName(p.name, wanted); };
  auto found = std::find_if(projects.begin(), projects.end(), named);
  if (found != projects.end() && std::count_if(projects.begin(), projects.end(), named) > 1) {
    // Acting on one of them would be a guess; the keys tell them apart.
    std::vector<Project> matching;
    std::copy_if(projects.begin(), projects.end(), std::back_inserter(matching), named);
    std::sort(matching.begin(), matching.end(), [](const Project& a, const Project& b) { return a.key < b.key; });
    std::string candidates;
    for (const Project& p : matching) {
      candidates += (candidates.empty() ? "" : ", ") + inQuotes(p.name) + " (key " + p.key + ")";
    }
    throw CliError("Several projects are named " + inQuotes(wanted) + ": " + candidates +
                   "; name the one you mean by its key.");
  }
  if (found == projects.end()) {
    const auto keyed = [&](const Project& p) { return text::equalIgnoringCase(p.key, wanted); };
    found = std::find_if(projects.begin(), projects.end(), keyed);
    if (found != projects.end() && std::count_if(projects.begin(), projects.end(), keyed) > 1) {
      throw CliError("Several projects have the key " + found->key + "; name the project instead.");
    }
  }
  std::optional<ProjectSnapshot> snapshot;
  if (found != projects.end()) snapshot = service.snapshot(found->id);
  if (!snapshot) {
    throw CliError("There is no project " + inQuotes(wanted) + "; run \"orvane-cli projects\" to list them.");
  }
  return std::move(*snapshot);
}

const Ticket& findTicket(const ProjectSnapshot& project, std::string_view reference) {
  const std::string wanted = text::trimmed(reference);
  const std::size_t dash = wanted.rfind('-');
  const std::string_view number =
      dash == std::string::npos ? std::string_view(wanted) : std::string_view(wanted).substr(dash + 1);
  const ParsedNumber<std::int64_t> parsed = parseInt64(number);
  if (!parsed.ok() || number.starts_with('+') || (dash != std::string::npos && dash == 0)) {
    throw CliError(inQuotes(wanted) + " is not a ticket reference like " + project.project.key + "-12.");
  }
  const bool keyMatches =
      dash == std::string::npos || text::equalIgnoringCase(wanted.substr(0, dash), project.project.key);
  const auto ticket = std::find_if(project.tickets.begin(), project.tickets.end(),
                                   [&](const Ticket& t) { return t.number == parsed.value; });
  if (!keyMatches || ticket == project.tickets.end()) {
    throw CliError("There is no ticket " + wanted + " in " + inQuotes(project.project.name) + ".");
  }
  return *ticket;
}

const BoardColumn& findColumn(const ProjectSnapshot& project, std::string_view name) {
  const std::string wanted = text::trimmed(name);
  for (const BoardColumn& column : project.columns) {
    if (text::sameName(column.name, wanted)) return column;
  }
  throw CliError("There is no column " + inQuotes(wanted) + " in " + inQuotes(project.project.name) +
                 "; its columns are " + namesOf(project.columns) + ".");
}

const Epic& findEpic(const ProjectSnapshot& project, std::string_view name) {
  const std::string wanted = text::trimmed(name);
  for (const Epic& epic : project.epics) {
    if (text::sameName(epic.name, wanted)) return epic;
  }
  throw CliError(
      "There is no epic " + inQuotes(wanted) + " in " + inQuotes(project.project.name) +
      (project.epics.empty() ? std::string("; it has no epics.") : "; its epics are " + namesOf(project.epics) + "."));
}

const Iteration& findIteration(const ProjectSnapshot& project, std::string_view name) {
  const std::string wanted = text::trimmed(name);
  for (const Iteration& iteration : project.iterations) {
    if (text::sameName(iteration.name, wanted)) return iteration;
  }
  throw CliError("There is no iteration " + inQuotes(wanted) + " in " + inQuotes(project.project.name) +
                 (project.iterations.empty() ? std::string("; it has no iterations.")
                                             : "; its iterations are " + namesOf(project.iterations) + "."));
}

}  // namespace orvane::cli
