#include "app/planning/CalendarDayCell.h"

#include <QLabel>
#include <QListWidget>
#include <QVBoxLayout>

namespace orvane::app {

namespace {
constexpr int ticketRole = Qt::UserRole + 1;
}

CalendarDayCell::CalendarDayCell(QWidget* parent) : QFrame(parent) {
  setFrameShape(QFrame::StyledPanel);
  setMinimumSize(64, 72);
  setAutoFillBackground(true);
  number_ = new QLabel(this);
  list_ = new QListWidget(this);
  list_->setFrameShape(QFrame::NoFrame);
  list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  list_->setStyleSheet(QStringLiteral("QListWidget { background: transparent; font-size: 11px; }"));
  connect(list_, &QListWidget::itemDoubleClicked, this, [this](QListWidgetItem* item) {
    if (const auto id = Uuid::parse(item->data(ticketRole).toString().toStdString())) emit openTicketRequested(*id);
  });
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(4, 2, 2, 2);
  layout->setSpacing(0);
  layout->addWidget(number_);
  layout->addWidget(list_, 1);
}

void CalendarDayCell::setDay(const CivilDate& day, bool inMonth, bool today) {
  day_ = day;
  number_->setText(QString::number(day.day));
  QString style = inMonth ? QString() : QStringLiteral("color: palette(placeholder-text);");
  if (today) style = QStringLiteral("color: palette(highlight); font-weight: bold;");
  number_->setStyleSheet(style);
  // Days of the neighbouring months are dimmed.
  QPalette shade = palette();
  shade.setColor(QPalette::Window,
                 inMonth ? shade.color(QPalette::Base) : shade.color(QPalette::AlternateBase).darker(104));
  setPalette(shade);
}

void CalendarDayCell::clearEntries() { list_->clear(); }

void CalendarDayCell::addTicket(const Uuid& ticket, const QString& text, bool overdue) {
  auto* item = new QListWidgetItem(text, list_);
  item->setData(ticketRole, QString::fromStdString(ticket.text()));
  item->setToolTip(text);
  if (overdue) item->setForeground(QColor(0xc6, 0x28, 0x28));
}

void CalendarDayCell::addEpic(const QString& text, const QColor& color) {
  auto* item = new QListWidgetItem(text, list_);
  item->setToolTip(text);
  QFont font = item->font();
  font.setBold(true);
  item->setFont(font);
  if (color.isValid()) item->setForeground(color.darker(130));
}

QStringList CalendarDayCell::entries() const {
  QStringList texts;
  for (int row = 0; row < list_->count(); ++row) texts << list_->item(row)->text();
  return texts;
}

}  // namespace orvane::app
