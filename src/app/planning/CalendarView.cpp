#include "app/planning/CalendarView.h"

#include <unicode/calendar.h>

#include <QDate>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>
#include <map>
#include <memory>

#include "app/board/TicketCard.h"
#include "app/planning/CalendarDayCell.h"
#include "app/shell/AppContext.h"
#include "core/calendar/MonthGrid.h"
#include "engine/LocalCivilDate.h"

namespace orvane::app {

CalendarView::CalendarView(AppContext& context, QWidget* parent) : ProjectViewBase(context, parent) {
  setObjectName(QStringLiteral("calendarView"));
  auto* previous = new QPushButton(QStringLiteral("‹ Previous"), this);
  auto* next = new QPushButton(QStringLiteral("Next ›"), this);
  auto* today = new QPushButton(QStringLiteral("Today"), this);
  previous->setObjectName(QStringLiteral("previousMonth"));
  next->setObjectName(QStringLiteral("nextMonth"));
  connect(previous, &QPushButton::clicked, this, &CalendarView::previousMonth);
  connect(next, &QPushButton::clicked, this, &CalendarView::nextMonth);
  connect(today, &QPushButton::clicked, this, &CalendarView::currentMonth);
  title_ = new QLabel(this);
  title_->setObjectName(QStringLiteral("monthTitle"));
  QFont font = title_->font();
  font.setPointSizeF(font.pointSizeF() * 1.3);
  font.setBold(true);
  title_->setFont(font);

  auto* bar = new QHBoxLayout;
  bar->addWidget(previous);
  bar->addWidget(next);
  bar->addWidget(today);
  bar->addSpacing(12);
  bar->addWidget(title_);
  bar->addStretch();

  grid_ = new QGridLayout;
  grid_->setSpacing(2);
  for (int column = 0; column < 7; ++column) {
    auto* weekday = new QLabel(this);
    weekday->setAlignment(Qt::AlignCenter);
    grid_->addWidget(weekday, 0, column);
    weekdays_.push_back(weekday);
  }

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(8, 8, 8, 8);
  layout->addLayout(bar);
  layout->addLayout(grid_, 1);

  const CivilDate todayDate = civilDateFromLocal(context_.now(), context_.calendar());
  month_ = CivilDate(todayDate.year, todayDate.month, 1);
}

void CalendarView::setFilter(const TicketFilter& filter) {
  filter_ = filter;
  showProject(project());
}

void CalendarView::showMonth(std::int64_t year, std::int64_t month) {
  // Normalise month arithmetic across year ends.
  const std::int64_t index = year * 12 + (month - 1);
  month_ = CivilDate(index >= 0 ? index / 12 : (index - 11) / 12, ((index % 12) + 12) % 12 + 1, 1);
  reloadNow();
}

void CalendarView::previousMonth() { showMonth(month_.year, month_.month - 1); }
void CalendarView::nextMonth() { showMonth(month_.year, month_.month + 1); }

void CalendarView::currentMonth() {
  const CivilDate today = civilDateFromLocal(context_.now(), context_.calendar());
  showMonth(today.year, today.month);
}

QString CalendarView::monthTitle() const { return title_->text(); }

void CalendarView::reload() {
  const icu::Calendar& calendar = context_.calendar();
  const QLocale locale;
  title_->setText(locale.standaloneMonthName(static_cast<int>(month_.month)) + QStringLiteral(" ") +
                  QString::number(month_.year));

  const std::vector<CalendarDay> days = MonthGrid::days(localNoon(month_.addingDays(14), calendar), calendar);
  while (cells_.size() < days.size()) {
    auto* cell = new CalendarDayCell(this);
    const int index = static_cast<int>(cells_.size());
    grid_->addWidget(cell, 1 + index / 7, index % 7);
    connect(cell, &CalendarDayCell::openTicketRequested, this, &CalendarView::openTicketRequested);
    cells_.push_back(cell);
  }
  while (cells_.size() > days.size()) {
    delete cells_.back();
    cells_.pop_back();
  }
  for (int row = 1; row <= 6; ++row) grid_->setRowStretch(row, row <= static_cast<int>(days.size() / 7) ? 1 : 0);

  const CivilDate today = civilDateFromLocal(context_.now(), calendar);
  std::map<CivilDate, CalendarDayCell*> byDay;
  for (std::size_t i = 0; i < days.size(); ++i) {
    const CivilDate day = civilDateFromLocal(days[i].date, calendar);
    cells_[i]->setDay(day, days[i].isInMonth, day == today);
    cells_[i]->clearEntries();
    byDay[day] = cells_[i];
    if (i < 7) {
      const int weekday =
          QDate(static_cast<int>(day.year), static_cast<int>(day.month), static_cast<int>(day.day)).dayOfWeek();
      weekdays_[i]->setText(locale.dayName(weekday, QLocale::ShortFormat));
    }
  }
  const std::shared_ptr<const ProjectSnapshot> snapshot = this->snapshot();
  if (!snapshot) return;

  // Epics first, so a day reads "what starts or ends" before "what is due".
  for (const Epic& epic : snapshot->epics) {
    const QColor color = epic.colorHex ? QColor(QString::fromStdString(*epic.colorHex)) : QColor();
    const QString name = QString::fromStdString(epic.name);
    if (epic.startDate) {
      if (auto cell = byDay.find(civilDateFromLocal(*epic.startDate, calendar)); cell != byDay.end())
        cell->second->addEpic(QStringLiteral("▶ ") + name + QStringLiteral(" starts"), color);
    }
    if (epic.dueDate) {
      if (auto cell = byDay.find(civilDateFromLocal(*epic.dueDate, calendar)); cell != byDay.end())
        cell->second->addEpic(QStringLiteral("◆ ") + name + QStringLiteral(" due"), color);
    }
  }
  const TicketCardFactory factory(*snapshot, calendar, context_.now());
  for (const Ticket* ticket : filter_.apply(snapshot->tickets, *snapshot)) {
    if (!ticket->dueDate) continue;
    const auto cell = byDay.find(civilDateFromLocal(*ticket->dueDate, calendar));
    if (cell == byDay.end()) continue;
    const TicketCard card = factory.card(*ticket);
    cell->second->addTicket(ticket->id, card.reference + QStringLiteral(" ") + card.title, card.overdue);
  }
}

}  // namespace orvane::app
