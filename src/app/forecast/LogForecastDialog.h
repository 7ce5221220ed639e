#pragma once

#include <QDialog>
#include <variant>

#include "core/forecast/ForecastInput.h"
#include "core/model/Uuid.h"

class QLineEdit;

namespace orvane::app {

class AppContext;

// A forecast as it is shown on screen, what-if and backlog change applied.
using ShownForecast = std::variant<WhenForecast, ByDateForecast>;

// Asks for an optional note and logs `forecast` in `project`'s forecast log
// with it, as one undoable step, at the clock's time. Cancel logs nothing; a
// refusal is shown in an alert and the sheet stays open.
class LogForecastDialog : public QDialog {
  Q_OBJECT

 public:
  LogForecastDialog(AppContext& context, const Uuid& project, ShownForecast forecast, QWidget* parent);

  QLineEdit* noteField() const { return note_; }
  void log();

 private:
  AppContext& context_;
  Uuid project_;
  ShownForecast forecast_;
  QLineEdit* note_ = nullptr;
};

// Opens the sheet over `parent`, window-modal; it deletes itself when closed.
void askToLogForecast(AppContext& context, const Uuid& project, ShownForecast forecast, QWidget* parent);

}  // namespace orvane::app
