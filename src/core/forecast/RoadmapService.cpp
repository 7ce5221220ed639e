// The roadmap's side of the forecast service: the roadmap input of a project
// and the dependencies whose planned dates overlap.
#include <unordered_map>

#include "core/board/BoardError.h"
#include "core/forecast/ForecastService.h"
#include "core/model/ProjectSnapshot.h"
#include "engine/LocalCivilDate.h"

namespace orvane {
namespace {

ProjectSnapshot requireSnapshot(Database& db, const Uuid& project) {
  auto snapshot = ProjectSnapshot::load(db, project);
  if (!snapshot) throw MissingRecordError("That project no longer exists.");
  return std::move(*snapshot);
}

std::optional<CivilDate> localDay(const std::optional<Timestamp>& instant, const icu::Calendar& calendar) {
  if (!instant) return std::nullopt;
  return civilDateFromLocal(*instant, calendar);
}

}  // namespace

RoadmapForecastInput ForecastService::roadmapInput(const Uuid& project, CivilDate asOf, const icu::Calendar& calendar) {
  RoadmapForecastInput input;
  input.asOf = asOf;
  // First, since it may regenerate and save the project's filler.
  input.history = history(project, asOf);
  const ProjectSnapshot snapshot = requireSnapshot(db_, project);

  std::unordered_map<Uuid, std::size_t> nodeOf;
  input.epics.reserve(snapshot.epics.size());
  for (const Epic& epic : snapshot.epics) {  // by name: the order decides each epic's stream
    RoadmapEpicNode node;
    node.id = epic.id;
    node.name = epic.name;
    if (const auto start = localDay(epic.startDate, calendar)) node.startOffsetDays = start->daysSince(asOf);
    node.dueDay = localDay(epic.dueDate, calendar);
    nodeOf.emplace(epic.id, input.epics.size());
    input.epics.push_back(std::move(node));
  }
  for (const Ticket& ticket : snapshot.tickets) {
    if (!ticket.epicId || !snapshot.isOpen(ticket)) continue;
    if (const auto it = nodeOf.find(*ticket.epicId); it != nodeOf.end()) ++input.epics[it->second].open;
  }
  for (const EpicDependency& dependency : snapshot.epicDependencies) {
    const auto successor = nodeOf.find(dependency.successorId);
    if (successor != nodeOf.end()) input.epics[successor->second].predecessors.push_back(dependency.predecessorId);
  }
  input.milestones.reserve(snapshot.milestones.size());
  for (const Milestone& milestone : snapshot.milestones) {
    input.milestones.push_back(RoadmapMilestoneNode{milestone.id, civilDateFromLocal(milestone.date, calendar),
                                                    milestone.epicId, milestone.isDone()});
  }
  return input;
}

std::vector<EpicScheduleConflict> ForecastService::scheduleConflicts(const Uuid& project,
                                                                     const icu::Calendar& calendar) {
  const ProjectSnapshot snapshot = requireSnapshot(db_, project);
  std::vector<EpicScheduleConflict> conflicts;
  for (const EpicDependency& dependency : snapshot.epicDependencies) {
    const Epic* predecessor = snapshot.epic(dependency.predecessorId);
    const Epic* successor = snapshot.epic(dependency.successorId);
    if (!predecessor || !successor || !predecessor->dueDate || !successor->startDate) continue;
    // Calendar days by which the successor's planned start comes before the
    // predecessor's due day; starting on the due day itself is no conflict.
    const std::int64_t overlapDays = civilDateFromLocal(*predecessor->dueDate, calendar)
                                         .daysSince(civilDateFromLocal(*successor->startDate, calendar));
    if (overlapDays > 0) conflicts.push_back(EpicScheduleConflict{*predecessor, *successor, overlapDays});
  }
  return conflicts;
}

}  // namespace orvane
