#include "app/shell/ProjectPane.h"

#include <QStackedWidget>
#include <QVBoxLayout>

#include "app/board/BoardView.h"
#include "app/board/FilterBar.h"
#include "app/flow/FlowView.h"
#include "app/forecast/ForecastView.h"
#include "app/planning/CalendarView.h"
#include "app/planning/EpicsView.h"
#include "app/planning/IterationsView.h"
#include "app/roadmap/RoadmapView.h"
#include "app/shell/AppContext.h"
#include "app/shell/SnapshotCache.h"
#include "app/ticket/ArchivedView.h"
#include "app/ticket/TicketListView.h"

namespace orvane::app {

ProjectPane::ProjectPane(AppContext& context, QWidget* parent) : QWidget(parent), context_(context) {
  setObjectName(QStringLiteral("projectPane"));
  // First, so that it forgets before any screen reloads.
  cache_ = new SnapshotCache(context_, this);
  filterBar_ = new FilterBar(context_, this);
  filterBar_->useSnapshotCache(cache_);
  stack_ = new QStackedWidget(this);

  board_ = new BoardView(context_, stack_);
  list_ = new TicketListView(context_, stack_);
  calendar_ = new CalendarView(context_, stack_);
  archived_ = new ArchivedView(context_, stack_);
  for (ProjectViewBase* view : std::initializer_list<ProjectViewBase*>{board_, list_, calendar_, archived_})
    view->useSnapshotCache(cache_);
  install(ProjectViewMode::board, board_);
  install(ProjectViewMode::list, list_);
  install(ProjectViewMode::calendar, calendar_);
  install(ProjectViewMode::roadmap, new RoadmapView(context_, stack_));
  auto* epics = new EpicsView(context_, stack_);
  auto* iterations = new IterationsView(context_, stack_);
  install(ProjectViewMode::epics, epics);
  install(ProjectViewMode::iterations, iterations);
  forecast_ = new ForecastView(context_, stack_);
  install(ProjectViewMode::forecast, forecast_);
  auto* flow = new FlowView(context_, stack_);
  install(ProjectViewMode::flow, flow);
  install(ProjectViewMode::archived, archived_);

  connect(filterBar_, &FilterBar::filterChanged, this, &ProjectPane::applyFilter);
  connect(board_, &BoardView::openTicketRequested, this, &ProjectPane::openTicketRequested);
  connect(list_, &TicketListView::openTicketRequested, this, &ProjectPane::openTicketRequested);
  connect(calendar_, &CalendarView::openTicketRequested, this, &ProjectPane::openTicketRequested);
  connect(archived_, &ArchivedView::openTicketRequested, this, &ProjectPane::openTicketRequested);
  connect(iterations, &IterationsView::openTicketRequested, this, &ProjectPane::openTicketRequested);
  connect(epics, &EpicsView::forecastRequested, this, &ProjectPane::epicForecastRequested);
  connect(flow, &FlowView::openTicketRequested, this, &ProjectPane::openTicketRequested);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(filterBar_);
  layout->addWidget(stack_, 1);
  setMode(ProjectViewMode::board);
}

template <typename View>
void ProjectPane::install(ProjectViewMode mode, View* view) {
  Slot& slot = slots_[static_cast<std::size_t>(position(mode))];
  slot.widget = view;
  slot.show = [view](const std::optional<Uuid>& project) { view->showProject(project); };
  stack_->addWidget(view);
}

QWidget* ProjectPane::view(ProjectViewMode mode) const {
  return slots_[static_cast<std::size_t>(position(mode))].widget;
}

void ProjectPane::setProject(const std::optional<Uuid>& project) {
  project_ = project;
  filterBar_->setProject(project);
  bringCurrentUpToDate();
}

void ProjectPane::setMode(ProjectViewMode mode) {
  mode_ = mode;
  // The filter bar belongs to the views that list tickets.
  const bool ticketView = mode == ProjectViewMode::board || mode == ProjectViewMode::list ||
                          mode == ProjectViewMode::calendar || mode == ProjectViewMode::archived;
  filterBar_->setVisible(ticketView);
  bringCurrentUpToDate();
  stack_->setCurrentWidget(view(mode));
}

void ProjectPane::bringCurrentUpToDate() {
  Slot& slot = slots_[static_cast<std::size_t>(position(mode_))];
  if (slot.shown && *slot.shown == project_) return;
  slot.shown = project_;
  slot.show(project_);
}

void ProjectPane::applyFilter() {
  const TicketFilter filter = filterBar_->filter();
  board_->setFilter(filter);
  list_->setFilter(filter);
  calendar_->setFilter(filter);
  archived_->setFilter(filter);
}

}  // namespace orvane::app
