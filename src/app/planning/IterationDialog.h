#pragma once

#include <unicode/utypes.h>

#include <QDialog>
#include <QStringList>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/model/Iteration.h"

U_NAMESPACE_BEGIN
class Calendar;
U_NAMESPACE_END

class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace orvane::app {

class DayField;
class FieldProblem;

// The form of a new or an existing iteration: name, goal and its two days.
// Closes when `save` succeeds; stays open over its refusal otherwise. An
// empty or taken name (among `iterations`, the project's) and an end before
// the start are said beside the field as they are typed, and Save waits.
class IterationDialog : public QDialog {
  Q_OBJECT

 public:
  struct Values {
    std::string name;
    std::string goal;
    Timestamp startDate;
    Timestamp endDate;
  };
  using Save = std::function<bool(const Values&, QWidget* alertParent)>;

  // A new iteration starts on `defaultStart` and lasts two weeks.
  IterationDialog(const icu::Calendar& calendar, const std::vector<Iteration>& iterations,
                  const std::optional<Iteration>& iteration, Timestamp defaultStart, Save save, QWidget* parent);

  Values values() const;
  // Saves, unless the form still shows a problem.
  void submit();
  QPushButton* saveButton() const { return saveButton_; }
  QStringList problems() const;

 private:
  void check();

  Save save_;
  std::vector<Iteration> others_;
  std::optional<Uuid> self_;
  QLineEdit* name_ = nullptr;
  QPlainTextEdit* goal_ = nullptr;
  DayField* start_ = nullptr;
  DayField* end_ = nullptr;
  FieldProblem* nameProblem_ = nullptr;
  FieldProblem* dateProblem_ = nullptr;
  QPushButton* saveButton_ = nullptr;
};

}  // namespace orvane::app
