#include "app/shell/ProjectViewMode.h"

namespace orvane::app {

QString title(ProjectViewMode mode) {
  switch (mode) {
    case ProjectViewMode::board:
      return QStringLiteral("Board");
    case ProjectViewMode::list:
      return QStringLiteral("List");
    case ProjectViewMode::calendar:
      return QStringLiteral("Calendar");
    case ProjectViewMode::roadmap:
      return QStringLiteral("Roadmap");
    case ProjectViewMode::epics:
      return QStringLiteral("Epics");
    case ProjectViewMode::iterations:
      return QStringLiteral("Iterations");
    case ProjectViewMode::forecast:
      return QStringLiteral("Forecast");
    case ProjectViewMode::flow:
      return QStringLiteral("Flow");
    case ProjectViewMode::archived:
      return QStringLiteral("Archived");
  }
  return {};
}

std::optional<ProjectViewMode> projectViewModeFromRaw(const QString& raw) {
  for (ProjectViewMode mode : allProjectViewModes) {
    if (title(mode) == raw) return mode;
  }
  return std::nullopt;
}

int position(ProjectViewMode mode) { return static_cast<int>(mode); }

}  // namespace orvane::app
