#pragma once

#include <unicode/utypes.h>

#include <QDialog>
#include <functional>
#include <optional>
#include <string>

#include "core/model/Iteration.h"

U_NAMESPACE_BEGIN
class Calendar;
U_NAMESPACE_END

class QLineEdit;
class QPlainTextEdit;

namespace orvane::app {

class DayField;

// The form of a new or an existing iteration: name, goal and its two days.
// Closes when `save` succeeds; stays open over its refusal otherwise.
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
  IterationDialog(const icu::Calendar& calendar, const std::optional<Iteration>& iteration, Timestamp defaultStart,
                  Save save, QWidget* parent);

  Values values() const;
  void submit();

 private:
  Save save_;
  QLineEdit* name_ = nullptr;
  QPlainTextEdit* goal_ = nullptr;
  DayField* start_ = nullptr;
  DayField* end_ = nullptr;
};

}  // namespace orvane::app
