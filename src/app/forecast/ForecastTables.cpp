#include "app/forecast/ForecastTables.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QTableWidget>

namespace orvane::app {

QTableWidget* forecastTable(const QString& name, const QStringList& headers, QWidget* parent) {
  auto* table = new QTableWidget(0, static_cast<int>(headers.size()), parent);
  table->setObjectName(name);
  table->setHorizontalHeaderLabels(headers);
  table->setSelectionBehavior(QAbstractItemView::SelectRows);
  table->setSelectionMode(QAbstractItemView::SingleSelection);
  table->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  table->setSizeAdjustPolicy(QAbstractScrollArea::AdjustIgnored);
  table->verticalHeader()->setVisible(false);
  table->horizontalHeader()->setStretchLastSection(true);
  table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  table->setWordWrap(false);
  return table;
}

QTableWidgetItem* textCell(const QString& text) {
  auto* item = new QTableWidgetItem(text);
  item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
  return item;
}

QTableWidgetItem* numberCell(const QString& text) {
  QTableWidgetItem* item = textCell(text);
  item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
  return item;
}

void fitRows(QTableWidget* table, int rows) {
  table->clearContents();
  table->setRowCount(rows);
  const int rowHeight = table->verticalHeader()->defaultSectionSize();
  const int scrollBar = table->horizontalScrollBar()->sizeHint().height();
  // Room for a horizontal scroll bar, which a narrow window may need.
  table->setFixedHeight(table->horizontalHeader()->sizeHint().height() + rows * rowHeight + 2 * table->frameWidth() +
                        scrollBar);
}

QString dayText(const std::optional<CivilDate>& day) {
  return day ? QString::fromStdString(day->displayText()) : QString();
}

QString dayText(const std::string& iso) {
  const std::optional<CivilDate> day = CivilDate::fromIso(iso);
  return day ? dayText(day) : QString::fromStdString(iso);
}

QString percentText(double pct) { return QString::number(pct, 'f', 1) + QLatin1Char('%'); }

}  // namespace orvane::app
