#pragma once

#include <cstdint>
#include <QList>
#include <optional>
#include <string>
#include <vector>

#include "app/shell/ProjectViewBase.h"
#include "app/widgets/LatestRun.h"
#include "core/accuracy/ForecastAccuracy.h"
#include "core/forecast/ForecastInput.h"
#include "core/model/Epic.h"

class QAction;
class QComboBox;
class QDialog;
class QDateEdit;
class QDoubleSpinBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QSlider;
class QSpinBox;
class QStackedWidget;
class QTabWidget;

namespace orvane::app {

class ByDateSection;
class FinishWeeksChart;
class ForecastLogPage;
class ThroughputHistoryChart;

// "When will it be done?" for the whole project or one epic (at a share of
// the team's capacity): the dates and weeks at 50,
// 70, 85 and 95% confidence, the committed date's chance, the forecast in
// sentences and the histogram of finish weeks. A what-if slider and a backlog
// change re-run the forecast; inputs are read on this thread, the pure
// simulation runs in the thread pool, and only the newest run is shown.
// The forecast on screen can be logged; a second tab holds the log, the
// history of the logged dates and their accuracy.
class ForecastView : public ProjectViewBase {
  Q_OBJECT

 public:
  ForecastView(AppContext& context, QWidget* parent);
  ~ForecastView() override;

  // True while a run has been started and its result not yet shown.
  bool isComputing() const;
  // Scopes the forecast to `epic` (at the share already set), as when the
  // user picks it in the scope list; an epic not in the project changes
  // nothing.
  void showEpic(const Uuid& epic);

  // The view's commands, for its buttons and the window's Forecast menu;
  // each is enabled only while it can act.
  QAction* logAction() const { return logAction_; }
  QAction* copyScriptAction() const { return copyScript_; }
  QAction* backtestAction() const { return backtest_; }
  QList<QAction*> commands() const { return {logAction_, copyScript_, backtest_}; }
  // Puts the script that rebuilds the forecast on screen on the clipboard.
  void copyReproductionScript();
  // Opens "How would this forecast have done?" for the project; returns it
  // (tests and the tour pick a day in it).
  QDialog* openBacktest();

 signals:
  // The labels and the chart now show the newest run.
  void forecastShown();

 protected:
  void reload() override;

 private:
  void recompute();
  void showForecast(const WhenForecast& forecast);
  void showEmpty(const QString& text);
  void setCommitment(bool clear);
  // Stores the weekly estimate typed beside the history, or clears it.
  void setEstimate(bool clear);
  void runByDate();
  // The whole project's input without what-if, read from the store once per
  // reload (and again when the day turns), so moving the slider reads
  // nothing. Throws what the service throws.
  ForecastInput projectInput(CivilDate today);
  void fillScopes(const ProjectSnapshot& project);
  // The epic chosen as the scope; none for the whole project.
  const Epic* chosenEpic() const;
  QWidget* buildForecastPage();
  // Logging takes the forecast on screen, once no newer run is under way.
  void updateLogButton();

  QWidget* scopeRow_ = nullptr;
  QComboBox* scope_ = nullptr;
  QLabel* shareLabel_ = nullptr;
  QDoubleSpinBox* share_ = nullptr;
  QLabel* scopeProblem_ = nullptr;
  QStackedWidget* pages_ = nullptr;
  QWidget* whatIfRow_ = nullptr;
  QWidget* commitmentControls_ = nullptr;
  QLabel* empty_ = nullptr;
  QLabel* heading_ = nullptr;
  QLabel* backlog_ = nullptr;
  QSlider* throughput_ = nullptr;
  QLabel* throughputValue_ = nullptr;
  QSpinBox* backlogChange_ = nullptr;
  QGridLayout* levels_ = nullptr;
  QLabel* inconclusive_ = nullptr;
  QLabel* commitment_ = nullptr;
  QDateEdit* commitmentDay_ = nullptr;
  QPushButton* clearCommitment_ = nullptr;
  QLabel* narrative_ = nullptr;
  FinishWeeksChart* chart_ = nullptr;
  ByDateSection* byDate_ = nullptr;
  QWidget* estimateRow_ = nullptr;
  QLineEdit* estimate_ = nullptr;
  QLabel* estimateProblem_ = nullptr;
  ThroughputHistoryChart* history_ = nullptr;
  QLabel* historyCaution_ = nullptr;
  QAction* logAction_ = nullptr;
  QAction* copyScript_ = nullptr;
  QAction* backtest_ = nullptr;
  QLabel* copied_ = nullptr;

  std::vector<Epic> epics_;
  std::string projectName_;
  std::optional<ForecastHistoryPoint> previous_;
  std::int64_t open_ = 0;
  std::optional<ForecastInput> projectInput_;
  // What the forecast on screen was run from, for its reproduction script.
  std::optional<ForecastInput> shownInput_;
  Uuid projectInputOf_;
  LatestRun runs_;

  QTabWidget* tabs_ = nullptr;
  ForecastLogPage* logPage_ = nullptr;
  QPushButton* logWhen_ = nullptr;
  // The whole project's forecast on screen; none for an epic or no dates.
  std::optional<WhenForecast> shownWhen_;
};

}  // namespace orvane::app
