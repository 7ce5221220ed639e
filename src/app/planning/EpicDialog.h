#pragma once

#include <unicode/utypes.h>

#include <QDialog>
#include <QStringList>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/model/Epic.h"

U_NAMESPACE_BEGIN
class Calendar;
U_NAMESPACE_END

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace orvane::app {

class DayField;
class FieldProblem;

// The form of a new or an existing epic. Save hands the values to `save`,
// which runs the change; the form closes when it succeeds and stays open,
// with the refusal shown over it, when it does not. What the form can tell
// by itself it says beside the field while it is typed, and Save waits: an
// empty or taken name (among `epics`, the project's epics), a due date
// before the start, a colour that is not "#" and six hexadecimal digits.
class EpicDialog : public QDialog {
  Q_OBJECT

 public:
  struct Values {
    std::string name;
    std::string details;
    std::optional<Timestamp> startDate;
    std::optional<Timestamp> dueDate;
    std::optional<std::string> colorHex;  // absent when left empty
  };
  using Save = std::function<bool(const Values&, QWidget* alertParent)>;

  EpicDialog(const icu::Calendar& calendar, const std::vector<Epic>& epics, const std::optional<Epic>& epic, Save save,
             QWidget* parent);

  Values values() const;
  // Saves, unless the form still shows a problem.
  void submit();
  QPushButton* saveButton() const { return saveButton_; }
  // The sentences shown beside the fields, in form order.
  QStringList problems() const;

 private:
  void check();

  Save save_;
  std::vector<Epic> others_;
  std::optional<Uuid> self_;
  QLineEdit* name_ = nullptr;
  QPlainTextEdit* details_ = nullptr;
  DayField* start_ = nullptr;
  DayField* due_ = nullptr;
  QLineEdit* color_ = nullptr;
  QLabel* swatch_ = nullptr;
  FieldProblem* nameProblem_ = nullptr;
  FieldProblem* dateProblem_ = nullptr;
  FieldProblem* colorProblem_ = nullptr;
  QPushButton* saveButton_ = nullptr;
};

}  // namespace orvane::app
