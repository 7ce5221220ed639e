#pragma once

#include <QWidget>
#include <optional>

#include "core/model/ProjectSnapshot.h"
#include "engine/Timestamp.h"

class QLabel;
class QPushButton;
class QTableWidget;
class QTableWidgetItem;

namespace orvane::app {

class AccuracySection;
class AppContext;
class ForecastHistoryChart;

// The second page of the Forecast view: the project's forecast log (a note
// editable in place, a run deleted after a confirmation, both undoable), the
// dates of the logged "When" runs over time, and how the logged forecasts
// turned out. Shows what it is handed; the owning view hands it a fresh
// snapshot whenever the store changes.
class ForecastLogPage : public QWidget {
  Q_OBJECT

 public:
  ForecastLogPage(AppContext& context, QWidget* parent);

  // Shows `project`'s log judged as of `now`; null clears the page.
  void showProject(const ProjectSnapshot* project, Timestamp now);

  // Asks to delete the selected run; deletes it once confirmed.
  void deleteSelected();

 private:
  void showLog(const ProjectSnapshot& project);
  void noteEdited(QTableWidgetItem* item);
  std::optional<Uuid> selectedRecord() const;
  void updateButtons();

  AppContext& context_;
  QLabel* logEmpty_ = nullptr;
  QTableWidget* log_ = nullptr;
  QPushButton* editNote_ = nullptr;
  QPushButton* delete_ = nullptr;
  QLabel* historyEmpty_ = nullptr;
  ForecastHistoryChart* history_ = nullptr;
  AccuracySection* accuracy_ = nullptr;
  // Set while the table is refilled, when its changes are not the user's.
  bool filling_ = false;
};

}  // namespace orvane::app
