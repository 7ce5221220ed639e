#pragma once

#include <vector>

#include "app/shell/ProjectViewBase.h"
#include "core/filter/TicketFilter.h"
#include "engine/CivilDate.h"

class QGridLayout;
class QLabel;
class QListWidget;

namespace orvane::app {

class CalendarDayCell;

// One month as whole weeks, days of the neighbouring months dimmed. Tickets
// sit on their due day, epics on their start and due days. The month moves
// with Previous and Next; Today comes back to the current month.
class CalendarView : public ProjectViewBase {
  Q_OBJECT

 public:
  CalendarView(AppContext& context, QWidget* parent);

  void setFilter(const TicketFilter& filter);
  void showMonth(std::int64_t year, std::int64_t month);
  void previousMonth();
  void nextMonth();
  void currentMonth();
  QString monthTitle() const;
  const std::vector<CalendarDayCell*>& cells() const { return cells_; }

 signals:
  void openTicketRequested(const orvane::Uuid& ticket);

 protected:
  void reload() override;

 private:
  TicketFilter filter_;
  CivilDate month_;  // day 1 of the month shown, in the user's calendar
  QLabel* title_;
  QGridLayout* grid_;
  std::vector<QLabel*> weekdays_;
  std::vector<CalendarDayCell*> cells_;
};

}  // namespace orvane::app
