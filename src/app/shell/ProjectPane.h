#pragma once

#include <QWidget>
#include <array>
#include <functional>
#include <optional>

#include "app/shell/ProjectViewMode.h"
#include "core/model/Uuid.h"

class QStackedWidget;

namespace orvane::app {

class AppContext;
class ArchivedView;
class BoardView;
class CalendarView;
class FilterBar;
class ForecastView;
class SnapshotCache;
class TicketListView;

// The right side of the window while a project is selected: the filter bar
// (for the ticket views) over the nine views. Only the visible view is told
// about a new project at once; the others hear of it when they are shown, so
// switching projects costs one view's reload.
class ProjectPane : public QWidget {
  Q_OBJECT

 public:
  ProjectPane(AppContext& context, QWidget* parent);

  void setProject(const std::optional<Uuid>& project);
  void setMode(ProjectViewMode mode);
  ProjectViewMode mode() const { return mode_; }
  QWidget* view(ProjectViewMode mode) const;
  FilterBar* filterBar() const { return filterBar_; }
  BoardView* boardView() const { return board_; }
  TicketListView* listView() const { return list_; }
  CalendarView* calendarView() const { return calendar_; }
  ArchivedView* archivedView() const { return archived_; }
  ForecastView* forecastView() const { return forecast_; }

 signals:
  void openTicketRequested(const orvane::Uuid& ticket);
  // The Epics view asks for the Forecast view scoped to `epic`; the window
  // switches the view mode (ForecastView::showEpic does the scoping).
  void epicForecastRequested(const orvane::Uuid& epic);

 private:
  struct Slot {
    QWidget* widget = nullptr;
    std::function<void(const std::optional<Uuid>&)> show;
    std::optional<std::optional<Uuid>> shown;  // the project this view was last given
  };
  template <typename View>
  void install(ProjectViewMode mode, View* view);
  void bringCurrentUpToDate();
  void applyFilter();

  AppContext& context_;
  SnapshotCache* cache_;
  FilterBar* filterBar_;
  QStackedWidget* stack_;
  std::array<Slot, 9> slots_;
  BoardView* board_;
  TicketListView* list_;
  CalendarView* calendar_;
  ArchivedView* archived_;
  ForecastView* forecast_;
  std::optional<Uuid> project_;
  ProjectViewMode mode_ = ProjectViewMode::board;
};

}  // namespace orvane::app
