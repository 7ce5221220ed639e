#pragma once

#include <QDate>
#include <QWidget>
#include <cstdint>
#include <optional>

#include "app/widgets/LatestRun.h"
#include "core/forecast/ForecastInput.h"

class QDateEdit;
class QLabel;
class QPushButton;

namespace orvane::app {

// "How many by a date?" for the whole project: the tickets done by the
// chosen day at 50, 70, 85 and 95% confidence and the chance the whole
// backlog is done by then. The owner hands in the project's input (with its
// what-if and backlog change); the target day is this section's own. The
// pure simulation runs in the thread pool and only the newest run is shown.
class ByDateSection : public QWidget {
  Q_OBJECT

 public:
  explicit ByDateSection(QWidget* parent);

  // The day picked; before the first run, four weeks after `today`.
  CivilDate target() const;
  void suggestTarget(CivilDate today);
  // Runs `input` (its target set to the picked day) off this thread.
  void run(ForecastInput input);
  bool isComputing() const { return runs_.busy(); }
  // Drops this section's own run under way: the owner has started one that
  // gives the counts for the same day with its newer inputs. Until they
  // arrive, the counts on screen cannot be logged.
  void cancelRun();
  // The owner's run for `day`: shown only while `day` is still the one
  // picked (a newer pick has its own run).
  void showRun(CivilDate day, const ByDateForecast& forecast);
  void showRefusal(CivilDate day, const QString& sentence);
  // The counts on screen; none while a refusal is shown.
  const std::optional<ByDateForecast>& shownForecast() const { return shown_; }

 signals:
  // The picked day changed: the owner hands in a fresh input.
  void targetChanged();
  // The counts, or the refusal, of the newest run are shown.
  void shown();
  // "Log this forecast…" was pressed while shownForecast() holds counts.
  void logRequested();

 private:
  void showResult(const ByDateForecast& forecast);
  void showProblem(const QString& sentence);

  QDateEdit* day_ = nullptr;
  QLabel* problem_ = nullptr;
  QLabel* weeks_ = nullptr;
  QWidget* results_ = nullptr;
  QLabel* backlogDone_ = nullptr;
  QPushButton* log_ = nullptr;
  std::optional<ByDateForecast> shown_;
  bool suggested_ = false;
  LatestRun runs_;
};

}  // namespace orvane::app
