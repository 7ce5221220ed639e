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
  // A window too narrow for the columns adds a scroll bar under the rows:
  // the table grows by its height rather than hide the last row.
  QObject::connect(table->horizontalScrollBar(), &QScrollBar::rangeChanged, table, [table] { fitHeight(table); });
  return table;
}

void fitHeight(QTableWidget* table) {
  const int scrollBar =
      table->horizontalScrollBar()->maximum() > 0 ? table->horizontalScrollBar()->sizeHint().height() : 0;
  table->setFixedHeight(table->horizontalHeader()->sizeHint().height() +
                        table->rowCount() * table->verticalHeader()->defaultSectionSize() + 2 * table->frameWidth() +
                        scrollBar);
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
  fitHeight(table);
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
