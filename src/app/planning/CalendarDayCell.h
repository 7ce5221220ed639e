#pragma once

#include <QFrame>

#include "core/model/Uuid.h"
#include "engine/CivilDate.h"

class QLabel;
class QListWidget;

namespace orvane::app {

// One day of the calendar grid: its number and what falls on it.
class CalendarDayCell : public QFrame {
  Q_OBJECT

 public:
  explicit CalendarDayCell(QWidget* parent);

  void setDay(const CivilDate& day, bool inMonth, bool today);
  void clearEntries();
  void addTicket(const Uuid& ticket, const QString& text, bool overdue);
  void addEpic(const QString& text, const QColor& color);
  const CivilDate& day() const { return day_; }
  QStringList entries() const;

 signals:
  void openTicketRequested(const orvane::Uuid& ticket);

 private:
  CivilDate day_;
  QLabel* number_;
  QListWidget* list_;
};

}  // namespace orvane::app
