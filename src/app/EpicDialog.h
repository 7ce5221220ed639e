#pragma once

#include <unicode/utypes.h>

#include <QDialog>
#include <functional>
#include <optional>
#include <string>

#include "core/model/Epic.h"

U_NAMESPACE_BEGIN
class Calendar;
U_NAMESPACE_END

class QLineEdit;
class QPlainTextEdit;

namespace orvane::app {

class DayField;

// The form of a new or an existing epic. Save hands the values to `save`,
// which runs the change; the form closes when it succeeds and stays open,
// with the refusal shown over it, when it does not.
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

  EpicDialog(const icu::Calendar& calendar, const std::optional<Epic>& epic, Save save, QWidget* parent);

  Values values() const;
  void submit();

 private:
  Save save_;
  QLineEdit* name_ = nullptr;
  QPlainTextEdit* details_ = nullptr;
  DayField* start_ = nullptr;
  DayField* due_ = nullptr;
  QLineEdit* color_ = nullptr;
};

}  // namespace orvane::app
