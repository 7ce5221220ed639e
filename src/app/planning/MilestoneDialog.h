#pragma once

#include <unicode/utypes.h>

#include <QDialog>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/model/Epic.h"

U_NAMESPACE_BEGIN
class Calendar;
U_NAMESPACE_END

class QComboBox;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace orvane::app {

class DayField;
class FieldProblem;

// The form of a new or an existing milestone, tied to one of `epics` or to
// none. Closes when `save` succeeds; stays open over its refusal otherwise.
// Save waits while the name is empty.
class MilestoneDialog : public QDialog {
  Q_OBJECT

 public:
  struct Values {
    std::string name;
    Timestamp date;
    std::optional<Uuid> epic;
    std::string details;
  };
  using Save = std::function<bool(const Values&, QWidget* alertParent)>;

  MilestoneDialog(const icu::Calendar& calendar, const std::vector<Epic>& epics,
                  const std::optional<Milestone>& milestone, Timestamp defaultDate, Save save, QWidget* parent);

  Values values() const;
  // Saves, unless the form still shows a problem.
  void submit();
  QPushButton* saveButton() const { return saveButton_; }

 private:
  void check();

  Save save_;
  QLineEdit* name_ = nullptr;
  DayField* date_ = nullptr;
  QComboBox* epic_ = nullptr;
  QPlainTextEdit* details_ = nullptr;
  FieldProblem* nameProblem_ = nullptr;
  QPushButton* saveButton_ = nullptr;
};

}  // namespace orvane::app
