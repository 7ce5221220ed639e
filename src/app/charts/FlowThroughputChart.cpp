#include "app/charts/FlowThroughputChart.h"

#include <QBarSeries>
#include <QBarSet>
#include <QCategoryAxis>
#include <QChart>
#include <QLineSeries>
#include <QToolTip>
#include <QValueAxis>
#include <algorithm>

#include "app/charts/FlowChartParts.h"

namespace orvane::app {

FlowThroughputChart::FlowThroughputChart(QWidget* parent) : QChartView(parent) {
  setObjectName(QStringLiteral("flowThroughputChart"));
  prepareFlowChart(this, 260);
}

QString FlowThroughputChart::hoverText(int index) const {
  if (index < 0 || index >= static_cast<int>(weeks_.size())) return {};
  const WeekThroughput& week = weeks_[static_cast<std::size_t>(index)];
  return QStringLiteral("Week %1 \u2013 %2: %3 ticket%4 finished.")
      .arg(qtext(week.start.displayShort()), qtext(week.end.displayText()))
      .arg(week.count)
      .arg(week.count == 1 ? "" : "s");
}

void FlowThroughputChart::showWeeks(const std::vector<WeekThroughput>& weeks, double average) {
  weeks_ = weeks;
  QChart* c = freshChart(this);
  if (weeks.empty()) return;

  auto* bars = new QBarSeries;
  auto* finished = new QBarSet(QStringLiteral("Tickets finished"));
  finished->setColor(QColor(0x1f, 0x4e, 0x8c));
  finished->setBorderColor(QColor(0x1f, 0x4e, 0x8c));
  QStringList labels;
  std::int64_t highest = 0;
  for (const WeekThroughput& week : weeks) {
    *finished << static_cast<qreal>(week.count);
    highest = std::max(highest, week.count);
    labels << qtext(week.end.displayShort());
  }
  bars->append(finished);
  bars->setBarWidth(0.75);
  connect(finished, &QBarSet::hovered, this, [this](bool entered, int index) {
    if (entered) {
      QToolTip::showText(QCursor::pos(), hoverText(index), this);
    } else {
      QToolTip::hideText();
    }
  });
  c->addSeries(bars);

  // Bars stand at 0...n-1 on a value axis, so the average line can span the
  // whole plot and a year of weeks can label only every few weeks.
  auto* averageLine = new QLineSeries;
  averageLine->setName(QStringLiteral("Average %1 a week").arg(QString::number(average, 'f', 1)));
  averageLine->setPen(QPen(QColor(0xd0, 0x8a, 0x1e), 2, Qt::DashLine));
  const auto n = static_cast<qreal>(weeks.size());
  averageLine->append(-0.5, average);
  averageLine->append(n - 0.5, average);
  c->addSeries(averageLine);

  auto* weeksAxis = new QCategoryAxis;
  weeksAxis->setLabelsPosition(QCategoryAxis::AxisLabelsPositionOnValue);
  const std::size_t every = (weeks.size() + 12) / 13;  // at most 13 labels, the last week always
  // Labels go in ascending order; counted back from the last week.
  for (std::size_t i = (weeks.size() - 1) % every; i < weeks.size(); i += every)
    weeksAxis->append(labels[static_cast<int>(i)], static_cast<qreal>(i));
  weeksAxis->setStartValue(-0.5);
  weeksAxis->setRange(-0.5, n - 0.5);
  weeksAxis->setTitleText(QStringLiteral("Week ending"));
  if (weeks.size() > 8) weeksAxis->setLabelsAngle(-90);
  weeksAxis->setGridLineVisible(false);
  auto* countAxis = new QValueAxis;
  countAxis->setRange(0, static_cast<qreal>(std::max<std::int64_t>(highest, 1)) * 1.1);
  countAxis->setLabelFormat(QStringLiteral("%d"));
  countAxis->applyNiceNumbers();
  countAxis->setTitleText(QStringLiteral("Tickets finished"));
  c->addAxis(weeksAxis, Qt::AlignBottom);
  c->addAxis(countAxis, Qt::AlignLeft);
  bars->attachAxis(weeksAxis);
  bars->attachAxis(countAxis);
  averageLine->attachAxis(weeksAxis);
  averageLine->attachAxis(countAxis);
}

}  // namespace orvane::app
