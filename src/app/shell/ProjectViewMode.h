#pragma once

#include <QString>
#include <array>
#include <optional>

namespace orvane::app {

// The nine ways to look at a project, in picker order. The raw value is the
// title shown in the picker; the shortcut key is the position (1 for board
// ... 9 for archived).
enum class ProjectViewMode { board, list, calendar, roadmap, epics, iterations, forecast, flow, archived };

inline constexpr std::array<ProjectViewMode, 9> allProjectViewModes = {
    ProjectViewMode::board,    ProjectViewMode::list,  ProjectViewMode::calendar,
    ProjectViewMode::roadmap,  ProjectViewMode::epics, ProjectViewMode::iterations,
    ProjectViewMode::forecast, ProjectViewMode::flow,  ProjectViewMode::archived};

QString title(ProjectViewMode mode);  // "Board", "List", ... "Archived"
// A raw value that matches none of the nine titles gives no mode.
std::optional<ProjectViewMode> projectViewModeFromRaw(const QString& raw);
int position(ProjectViewMode mode);  // 0 for board ... 8 for archived

}  // namespace orvane::app
