#include "app/charts/FlowArrivalsChart.h"

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

FlowArrivalsChart::FlowArrivalsChart(QWidget* parent) : QChartView(parent) {
  setObjectName(QStringLiteral("flowArrivalsChart"));
  prepareFlowChart(this, 260);
}

QString FlowArrivalsChart::hoverText(int index) const {
  if (index < 0 || index >= static_cast<int>(weeks_.size())) return {};
  const WeekFlow& week = weeks_[static_cast<std::size_t>(index)];
  return QStringLiteral("Week ending %1: %2 started, %3 finished; running gap %4.")
      .arg(qtext(week.end.displayText()))
      .arg(week.arrivals)
      .arg(week.departures)
      .arg(week.gap);
}

void FlowArrivalsChart::showWeeks(const std::vector<WeekFlow>& weeks) {
  weeks_ = weeks;
  QChart* c = freshChart(this);
  if (weeks.empty()) return;

  auto* bars = new QBarSeries;
  auto* started = new QBarSet(QStringLiteral("Started"));
  auto* finished = new QBarSet(QStringLiteral("Finished"));
  started->setColor(QColor(0xd0, 0x8a, 0x1e));
  finished->setColor(QColor(0x1f, 0x4e, 0x8c));
  auto* gap = new QLineSeries;
  gap->setName(QStringLiteral("Running gap"));
  gap->setPen(QPen(QColor(0xb3, 0x26, 0x1e), 2));
  std::int64_t highest = 1, lowestGap = 0, highestGap = 1;
  for (std::size_t i = 0; i < weeks.size(); ++i) {
    *started << static_cast<qreal>(weeks[i].arrivals);
    *finished << static_cast<qreal>(weeks[i].departures);
    gap->append(static_cast<qreal>(i), static_cast<qreal>(weeks[i].gap));
    highest = std::max({highest, weeks[i].arrivals, weeks[i].departures});
    lowestGap = std::min(lowestGap, weeks[i].gap);
    highestGap = std::max(highestGap, weeks[i].gap);
  }
  for (QBarSet* set : {started, finished}) {
    set->setBorderColor(set->color());
    connect(set, &QBarSet::hovered, this, [this](bool entered, int index) {
      if (entered) {
        QToolTip::showText(QCursor::pos(), hoverText(index), this);
      } else {
        QToolTip::hideText();
      }
    });
    bars->append(set);
  }
  bars->setBarWidth(0.8);
  c->addSeries(bars);
  c->addSeries(gap);

  auto* weeksAxis = new QCategoryAxis;
  weeksAxis->setLabelsPosition(QCategoryAxis::AxisLabelsPositionOnValue);
  const std::size_t every = (weeks.size() + 12) / 13;
  for (std::size_t i = (weeks.size() - 1) % every; i < weeks.size(); i += every)
    weeksAxis->append(qtext(weeks[i].end.displayShort()), static_cast<qreal>(i));
  const auto n = static_cast<qreal>(weeks.size());
  weeksAxis->setStartValue(-0.5);
  weeksAxis->setRange(-0.5, n - 0.5);
  weeksAxis->setGridLineVisible(false);
  if (weeks.size() > 8) weeksAxis->setLabelsAngle(-90);
  weeksAxis->setTitleText(QStringLiteral("Week ending"));
  auto* counts = new QValueAxis;
  counts->setRange(0, static_cast<qreal>(highest) * 1.1);
  counts->setLabelFormat(QStringLiteral("%d"));
  counts->applyNiceNumbers();
  counts->setTitleText(QStringLiteral("Tickets"));
  auto* gapAxis = new QValueAxis;
  gapAxis->setRange(static_cast<qreal>(lowestGap), static_cast<qreal>(highestGap));
  gapAxis->setLabelFormat(QStringLiteral("%d"));
  gapAxis->applyNiceNumbers();
  gapAxis->setTitleText(QStringLiteral("Running gap"));
  c->addAxis(weeksAxis, Qt::AlignBottom);
  c->addAxis(counts, Qt::AlignLeft);
  c->addAxis(gapAxis, Qt::AlignRight);
  bars->attachAxis(weeksAxis);
  bars->attachAxis(counts);
  gap->attachAxis(weeksAxis);
  gap->attachAxis(gapAxis);
}

}  // namespace orvane::app
