#pragma once

#include <unicode/utypes.h>

#include <QWidget>
#include <optional>

#include "engine/CivilDate.h"
#include "engine/Timestamp.h"

U_NAMESPACE_BEGIN
class Calendar;
U_NAMESPACE_END

class QCheckBox;
class QDateEdit;

namespace orvane::app {

// A day that may be absent (a due date, an epic's start), picked in the
// user's calendar. It keeps the instant it was given: a day left as it was
// returns that instant unchanged, so saving a form never shifts a stored time
// of day; a day picked anew is stored as its local noon (localNoon). The
// editor shows Gregorian days, as civil days are.
class DayField : public QWidget {
  Q_OBJECT

 public:
  // `optional` false: the day is always there (an iteration's dates).
  DayField(const icu::Calendar& calendar, bool optional, QWidget* parent);

  void setInstant(const std::optional<Timestamp>& instant);
  std::optional<Timestamp> instant() const;

  QCheckBox* presence() const { return presence_; }
  QDateEdit* editor() const { return editor_; }

 signals:
  // The user changed the day or its presence.
  void edited();

 private:
  std::optional<CivilDate> day() const;

  const icu::Calendar& calendar_;
  QCheckBox* presence_ = nullptr;
  QDateEdit* editor_ = nullptr;
  std::optional<Timestamp> original_;
};

}  // namespace orvane::app
