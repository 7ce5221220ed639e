#include <string>

#include "core/board/BoardService.h"
#include "core/board/ServiceRules.h"

namespace orvane {

BoardService::BoardService(Store& store) : store_(store), db_(store.db()) {}

std::vector<Project> BoardService::projects() { return rows::select<Project>(db_, "ORDER BY name COLLATE NOCASE"); }

std::optional<ProjectSnapshot> BoardService::snapshot(const Uuid& project) {
  return ProjectSnapshot::load(db_, project);
}

Project BoardService::requireProject(const Uuid& id) { return rules::requireRow<Project>(db_, id, "project"); }
BoardColumn BoardService::requireColumn(const Uuid& id) { return rules::requireRow<BoardColumn>(db_, id, "column"); }
Ticket BoardService::requireTicket(const Uuid& id) { return rules::requireRow<Ticket>(db_, id, "ticket"); }
Epic BoardService::requireEpic(const Uuid& id) { return rules::requireRow<Epic>(db_, id, "epic"); }
Person BoardService::requirePerson(const Uuid& id) { return rules::requireRow<Person>(db_, id, "person"); }
Iteration BoardService::requireIteration(const Uuid& id) { return rules::requireRow<Iteration>(db_, id, "iteration"); }
Milestone BoardService::requireMilestone(const Uuid& id) { return rules::requireRow<Milestone>(db_, id, "milestone"); }

const std::vector<ColumnTemplate>& ColumnTemplate::standard() {
  static const std::vector<ColumnTemplate> columns{
      {"Backlog", ColumnType::backlog, std::nullopt}, {"To Do", ColumnType::backlog, std::nullopt},
      {"In Progress", ColumnType::inProgress, 5},     {"Review", ColumnType::inProgress, 3},
      {"Done", ColumnType::done, std::nullopt},
  };
  return columns;
}

}  // namespace orvane
