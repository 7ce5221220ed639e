#pragma once

#include <optional>

#include "app/shell/ProjectViewBase.h"
#include "app/widgets/LatestRun.h"

class QComboBox;
class QLabel;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace orvane::app {

// The project's epics with their progress, dates and status, what each one
// waits for, and the milestones. Progress and status come from the report
// rules (the same numbers the reports print); every change goes through the
// service as one undoable step, its refusals shown as they stand. A button
// that needs a selection is offered only while there is one.
//
// Each epic with open work also shows its 50% and 85% finish dates and the
// chance of meeting its due date, from the roadmap forecast, so the epics it
// waits for count. The roadmap's input is read on reload and simulated in the
// thread pool; the cells say "Forecasting…" until the newest run arrives.
class EpicsView : public ProjectViewBase {
  Q_OBJECT

 public:
  EpicsView(AppContext& context, QWidget* parent);

  QTreeWidget* epics() const { return epics_; }
  QTreeWidget* milestones() const { return milestones_; }
  std::optional<Uuid> selectedEpic() const;
  void selectEpic(const Uuid& epic);

  void newEpic();
  void editEpic();
  void deleteEpic();
  // The selected epic waits for the one chosen beside "Waits for".
  void addDependency();
  void removeDependency();
  void newMilestone();
  void editMilestone();
  void deleteMilestone();
  // Asks for the Forecast view scoped to the selected epic.
  void forecastEpic();

  // True while a roadmap run has been started and its result not yet shown.
  bool isComputing() const { return roadmapRuns_.busy(); }

 signals:
  void forecastRequested(const orvane::Uuid& epic);
  // The forecast cells now show the newest roadmap run (or why there is none).
  void forecastShown();

 protected:
  void reload() override;

 private:
  void fillDependencies();
  void updateButtons();
  std::optional<Uuid> selectedMilestone() const;
  void forecastRoadmap();
  QTreeWidgetItem* epicItem(const Uuid& epic) const;

  std::shared_ptr<const ProjectSnapshot> shown_;
  QTreeWidget* epics_ = nullptr;
  QTreeWidget* dependencies_ = nullptr;
  QComboBox* predecessor_ = nullptr;
  QTreeWidget* milestones_ = nullptr;
  QLabel* empty_ = nullptr;
  QPushButton* editEpic_ = nullptr;
  QPushButton* forecastEpic_ = nullptr;
  QPushButton* deleteEpic_ = nullptr;
  QPushButton* addDependency_ = nullptr;
  QPushButton* removeDependency_ = nullptr;
  QPushButton* editMilestone_ = nullptr;
  QPushButton* deleteMilestone_ = nullptr;
  LatestRun roadmapRuns_;
};

}  // namespace orvane::app
