#pragma once

#include <QDialog>
#include <optional>

#include "core/forecast/Backtest.h"

class QDateEdit;
class QGridLayout;
class QLabel;

namespace orvane::app {

class AppContext;

// "How would this forecast have done?": the user picks a past day, and the
// dialog shows the "When" forecast the project would have had then (from the
// tickets created by that day and the completions before it) next to the day
// that work was really finished, level by level. A refused day shows the
// sentence beside the field and no numbers.
class BacktestDialog : public QDialog {
  Q_OBJECT

 public:
  BacktestDialog(AppContext& context, const Uuid& project, QWidget* parent);

  // Forecasts as of `day` and shows it; the field follows.
  void backtest(CivilDate day);
  const std::optional<Backtest>& shown() const { return shown_; }

 private:
  void run();
  void showBacktest(const Backtest& backtest);

  AppContext& context_;
  Uuid project_;
  QDateEdit* day_ = nullptr;
  QLabel* problem_ = nullptr;
  QWidget* results_ = nullptr;
  QLabel* backlog_ = nullptr;
  QGridLayout* levels_ = nullptr;
  QLabel* actual_ = nullptr;
  std::optional<Backtest> shown_;
};

}  // namespace orvane::app
