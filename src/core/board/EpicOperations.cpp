// Epics, the dependencies between them, and milestones.
#include <algorithm>
#include <unordered_map>

#include "core/board/BoardService.h"
#include "core/board/ServiceRules.h"
#include "core/store/Rows.h"
#include "core/text/Text.h"

namespace orvane {
namespace {

std::vector<Epic> epicsOf(Database& db, const Uuid& project) {
  return rows::select<Epic>(db, "WHERE project_id = ?1", project);
}

// Whether `from` already waits for `goal`, directly or through a chain of
// the project's dependencies.
bool waitsFor(Database& db, const Uuid& project, const Uuid& from, const Uuid& goal) {
  std::unordered_map<Uuid, std::vector<Uuid>> predecessorsOf;
  for (const EpicDependency& dependency : rows::select<EpicDependency>(
           db, "WHERE successor_id IN (SELECT id FROM epics WHERE project_id = ?1)", project)) {
    predecessorsOf[dependency.successorId].push_back(dependency.predecessorId);
  }
  return rules::reaches(predecessorsOf, from, goal);
}

}  // namespace

Epic BoardService::createEpic(const Uuid& project, std::string_view name, std::optional<std::string> colorHex,
                              std::optional<Timestamp> dueDate) {
  return inTransaction([&] {
    requireProject(project);
    Epic epic;
    epic.name = rules::requireUniqueName(name, epicsOf(db_, project));
    epic.id = Uuid::random();
    epic.colorHex = rules::trimmedColor(colorHex);
    epic.dueDate = dueDate;
    epic.projectId = project;
    rows::insert(db_, epic);
    return epic;
  });
}

void BoardService::updateEpic(const Uuid& epic, std::string_view name, std::string_view details,
                              std::optional<Timestamp> startDate, std::optional<Timestamp> dueDate,
                              std::optional<std::string> colorHex) {
  inTransaction([&] {
    Epic row = requireEpic(epic);
    row.name = rules::requireUniqueName(name, epicsOf(db_, row.projectId), row.id);
    if (startDate && dueDate && *dueDate < *startDate) throw PMError(PMError::Case::invalidDateRange);
    row.details = text::trimmed(details);
    row.startDate = startDate;
    row.dueDate = dueDate;
    row.colorHex = rules::trimmedColor(colorHex);
    rows::update(db_, row);
  });
}

void BoardService::deleteEpic(const Uuid& epic) {
  inTransaction([&] {
    requireEpic(epic);
    // The schema leaves the tickets without epic and deletes the epic's
    // dependencies and milestones.
    rows::remove<Epic>(db_, epic);
  });
}

EpicDependency BoardService::addEpicDependency(const Uuid& successor, const Uuid& waitsForEpic, Timestamp now) {
  return inTransaction([&] {
    const Epic a = requireEpic(successor);
    const Epic b = requireEpic(waitsForEpic);
    if (a.id == b.id) throw PMError(PMError::Case::epicDependencyOnSelf);
    if (a.projectId != b.projectId) throw PMError(PMError::Case::epicsInDifferentProjects);
    if (!rows::select<EpicDependency>(db_, "WHERE successor_id = ?1 AND predecessor_id = ?2", a.id, b.id).empty()) {
      throw PMError(PMError::Case::duplicateEpicDependency);
    }
    if (waitsFor(db_, a.projectId, b.id, a.id)) throw PMError(PMError::Case::epicDependencyCycle);
    const EpicDependency dependency{Uuid::random(), now, b.id, a.id};
    rows::insert(db_, dependency);
    return dependency;
  });
}

void BoardService::removeEpicDependency(const Uuid& dependency) {
  inTransaction([&] {
    if (!rows::find<EpicDependency>(db_, dependency)) throw MissingRecordError("That dependency no longer exists.");
    rows::remove<EpicDependency>(db_, dependency);
  });
}

Milestone BoardService::createMilestone(const Uuid& project, std::string_view name, Timestamp date,
                                        std::optional<Uuid> epic, std::string_view details) {
  return inTransaction([&] {
    requireProject(project);
    Milestone milestone;
    milestone.name = rules::requireText(name, PMError(PMError::Case::emptyText));
    if (epic && requireEpic(*epic).projectId != project) throw BoardError::epicNotInProject();
    milestone.id = Uuid::random();
    milestone.details = text::trimmed(details);
    milestone.date = date;
    milestone.projectId = project;
    milestone.epicId = epic;
    rows::insert(db_, milestone);
    return milestone;
  });
}

void BoardService::updateMilestone(const Uuid& milestone, std::string_view name, Timestamp date,
                                   std::optional<Uuid> epic, std::string_view details) {
  inTransaction([&] {
    Milestone row = requireMilestone(milestone);
    row.name = rules::requireText(name, PMError(PMError::Case::emptyText));
    if (epic && requireEpic(*epic).projectId != row.projectId) throw BoardError::epicNotInProject();
    row.details = text::trimmed(details);
    row.date = date;
    row.epicId = epic;
    rows::update(db_, row);
  });
}

void BoardService::setMilestone(const Uuid& milestone, bool done, Timestamp now) {
  inTransaction([&] {
    Milestone row = requireMilestone(milestone);
    row.completedAt = done ? std::optional<Timestamp>(now) : std::nullopt;
    rows::update(db_, row);
  });
}

void BoardService::deleteMilestone(const Uuid& milestone) {
  inTransaction([&] {
    requireMilestone(milestone);
    rows::remove<Milestone>(db_, milestone);
  });
}

}  // namespace orvane
