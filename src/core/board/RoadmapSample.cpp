#include "core/board/RoadmapSample.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "engine/CivilDate.h"

namespace orvane {
namespace {

constexpr double secondsPerDay = 86400;

constexpr std::array<const char*, 10> areas{"Accounts",  "Billing",   "Catalogue", "Checkout",   "Delivery",
                                            "Inventory", "Reporting", "Search",    "Onboarding", "Support"};
constexpr std::array<const char*, 4> phases{"discovery", "build", "rollout", "hardening"};

// Areas whose phases are due a week after the next phase is planned to
// start, so the plan shows overlapping dependencies.
bool overlaps(int area) { return area % 3 == 0; }

}  // namespace

Project createRoadmapSample(BoardService& board, Store& store, Timestamp now, int epicCount) {
  Transaction transaction(store.db());
  const CivilDate today = CivilDate::fromUtc(now);
  const auto noon = [&](std::int64_t days) {
    return Timestamp{today.addingDays(days).utcMidnight().secondsSince1970 + secondsPerDay / 2};
  };
  const auto instant = [&](double daysAgo) { return Timestamp{now.secondsSince1970 - daysAgo * secondsPerDay}; };

  // A second sample in the same store is numbered, as the demo project is.
  const std::string base = "Plan of " + std::to_string(epicCount) + " epics";
  std::string projectName = base;
  const std::vector<Project> projects = board.projects();
  for (int n = 2;
       std::any_of(projects.begin(), projects.end(), [&](const Project& p) { return p.name == projectName; }); ++n)
    projectName = base + " " + std::to_string(n);
  const Project project = board.createProject(projectName, std::string_view("PLAN"), instant(100));
  const ProjectSnapshot fresh = *board.snapshot(project.id);
  const BoardColumn* doneColumn = nullptr;
  const BoardColumn* workColumn = nullptr;
  for (const BoardColumn& column : fresh.columns) {
    if (column.effectiveType() == ColumnType::done) doneColumn = &column;
    if (column.effectiveType() == ColumnType::inProgress && workColumn == nullptr) workColumn = &column;
  }

  const int areaCount = static_cast<int>(areas.size());
  std::vector<Uuid> epics;
  int ticketNumber = 0;
  for (int k = 0; k < epicCount; ++k) {
    const int area = k % areaCount;
    const int phase = k / areaCount;
    const std::string name = std::string(areas[static_cast<std::size_t>(area)]) + " " +
                             phases[static_cast<std::size_t>(phase) % phases.size()] +
                             (phase >= static_cast<int>(phases.size()) ? " " + std::to_string(phase + 1) : "");
    const bool lastArea = area == areaCount - 1;
    // Every third area has no dates at all; the last area's first phase is
    // already done and has no planned start.
    std::optional<Timestamp> start;
    std::optional<Timestamp> due;
    if (area % 3 != 2 && !(lastArea && phase == 0)) {
      const std::int64_t startDay = 21 * phase - 14 + area;
      start = noon(startDay);
      due = noon(startDay + (overlaps(area) ? 28 : 18));
    }
    const std::optional<std::string> colour = area % 2 == 0
                                                  ? std::optional<std::string>()
                                                  : std::optional<std::string>(phase % 2 == 0 ? "#3A7BD5" : "#8E44AD");
    const Epic epic = board.createEpic(project.id, name, colour, due);
    board.updateEpic(epic.id, name, "", start, due, colour);
    epics.push_back(epic.id);
    if (phase > 0) board.addEpicDependency(epic.id, epics[static_cast<std::size_t>(k - areaCount)], instant(90));
    // A cross-area wait on an earlier phase keeps the graph free of loops.
    if (phase > 0 && area % 4 == 1)
      board.addEpicDependency(
          epic.id, epics[static_cast<std::size_t>((k - areaCount) / areaCount * areaCount + (area + 3) % areaCount)],
          instant(90));

    // Finished work in the first phase, spread over the last twelve weeks;
    // open work everywhere but in the done area.
    const int finished = phase == 0 ? 5 + area % 4 : 0;
    const int open = lastArea && phase == 0 ? 0 : 5 + (k * 7) % 11;
    for (int n = 0; n < finished + open; ++n) {
      NewTicket ticket;
      ticket.title = name + " task " + std::to_string(n + 1);
      ticket.epic = epic.id;
      const double createdAgo = 95 - (ticketNumber++ % 11);
      const Uuid id = board.createTicket(project.id, ticket, instant(createdAgo)).id;
      if (n < finished && doneColumn != nullptr) {
        board.moveTicket(id, doneColumn->id, std::nullopt, instant(2 + (n * 13 + area * 5) % 82));
      } else if (n == finished && workColumn != nullptr && phase == 0) {
        board.moveTicket(id, workColumn->id, std::nullopt, instant(3));
      }
    }
  }
  // Six milestones on later phases, one of them already reached.
  for (int m = 0; m < 6 && areaCount + m * 5 < epicCount; ++m) {
    const std::size_t epic = static_cast<std::size_t>(areaCount + m * 5);
    const Milestone milestone =
        board.createMilestone(project.id, "Milestone " + std::to_string(m + 1), noon(20 + 15 * m), epics[epic], "");
    if (m == 0) board.setMilestone(milestone.id, true, instant(1));
  }
  transaction.commit();
  return project;
}

}  // namespace orvane
