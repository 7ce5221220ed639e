#include "app/widgets/DayField.h"

#include <unicode/calendar.h>

#include <QCalendarWidget>
#include <QCheckBox>
#include <QDateEdit>
#include <QHBoxLayout>
#include <memory>

#include "engine/LocalCivilDate.h"

namespace orvane::app {

DayField::DayField(const icu::Calendar& calendar, bool optional, QWidget* parent)
    : QWidget(parent), calendar_(calendar) {
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  if (optional) {
    presence_ = new QCheckBox(this);
    presence_->setToolTip(QStringLiteral("Set a day"));
    layout->addWidget(presence_);
    connect(presence_, &QCheckBox::toggled, this, [this](bool on) { editor_->setEnabled(on); });
    connect(presence_, &QCheckBox::clicked, this, &DayField::edited);
  }
  editor_ = new QDateEdit(this);
  editor_->setCalendarPopup(true);
  editor_->setDisplayFormat(QStringLiteral("d MMM yyyy"));
  layout->addWidget(editor_, 1);
  // editingFinished rather than dateChanged: scrolling through the days of
  // the popup is one edit, not one per day passed.
  const auto finished = [this] {
    if (instant() != original_) emit edited();
  };
  connect(editor_, &QDateEdit::editingFinished, this, finished);
  // A day picked in the popup; queued, so the editor holds it by then.
  connect(editor_->calendarWidget(), &QCalendarWidget::clicked, this, finished, Qt::QueuedConnection);
  connect(editor_->calendarWidget(), &QCalendarWidget::activated, this, finished, Qt::QueuedConnection);
  setInstant(std::nullopt);
}

void DayField::setInstant(const std::optional<Timestamp>& instant) {
  original_ = instant;
  const QSignalBlocker blockEditor(editor_);
  if (instant) {
    const CivilDate day = civilDateFromLocal(*instant, calendar_);
    editor_->setDate(QDate(static_cast<int>(day.year), static_cast<int>(day.month), static_cast<int>(day.day)));
  } else {
    editor_->setDate(QDate::currentDate());
  }
  if (presence_ != nullptr) {
    const QSignalBlocker blockPresence(presence_);
    presence_->setChecked(instant.has_value());
    editor_->setEnabled(instant.has_value());
  }
}

std::optional<CivilDate> DayField::day() const {
  if (presence_ != nullptr && !presence_->isChecked()) return std::nullopt;
  const QDate date = editor_->date();
  return CivilDate(date.year(), date.month(), date.day());
}

std::optional<Timestamp> DayField::instant() const {
  const std::optional<CivilDate> picked = day();
  if (!picked) return std::nullopt;
  if (original_ && civilDateFromLocal(*original_, calendar_) == *picked) return original_;
  return localNoon(*picked, calendar_);
}

}  // namespace orvane::app
