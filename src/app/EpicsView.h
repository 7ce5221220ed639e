#pragma once

#include <optional>

#include "app/ProjectViewBase.h"

class QComboBox;
class QLabel;
class QTreeWidget;

namespace orvane::app {

// The project's epics with their progress, dates and status, what each one
// waits for, and the milestones. Progress and status come from the report
// rules (the same numbers the reports print); every change goes through the
// service as one undoable step, its refusals shown as they stand.
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

 protected:
  void reload() override;

 private:
  void fillDependencies();
  std::optional<Uuid> selectedMilestone() const;

  std::shared_ptr<const ProjectSnapshot> shown_;
  QTreeWidget* epics_ = nullptr;
  QTreeWidget* dependencies_ = nullptr;
  QComboBox* predecessor_ = nullptr;
  QTreeWidget* milestones_ = nullptr;
  QLabel* empty_ = nullptr;
};

}  // namespace orvane::app
