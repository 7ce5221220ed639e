#include "app/charts/FlowWipRunChart.h"

#include <QCategoryAxis>
#include <QChart>
#include <QLineSeries>
#include <QValueAxis>
#include <algorithm>

#include "app/charts/FlowChartParts.h"

namespace orvane::app {

FlowWipRunChart::FlowWipRunChart(QWidget* parent) : QChartView(parent) {
  setObjectName(QStringLiteral("flowWipRunChart"));
  prepareFlowChart(this, 260);
}

void FlowWipRunChart::showDays(const std::vector<FlowDay>& days, std::optional<std::int64_t> limitSum) {
  QChart* c = freshChart(this);
  if (days.empty()) return;
  auto* wip = new QLineSeries;
  wip->setName(QStringLiteral("In progress"));
  wip->setPen(QPen(QColor(0x1f, 0x4e, 0x8c), 2));
  std::int64_t highest = std::max<std::int64_t>(limitSum.value_or(1), 1);
  for (const FlowDay& day : days) {
    wip->append(axisDays(day.date), static_cast<qreal>(day.inProgress));
    highest = std::max(highest, day.inProgress);
  }
  c->addSeries(wip);
  QCategoryAxis* time = dayAxis(days.front().date, days.back().date, QStringLiteral("Day"));
  auto* count = new QValueAxis;
  count->setRange(0, static_cast<qreal>(highest) * 1.1);
  count->setLabelFormat(QStringLiteral("%d"));
  count->applyNiceNumbers();
  count->setTitleText(QStringLiteral("Tickets in progress"));
  c->addAxis(time, Qt::AlignBottom);
  c->addAxis(count, Qt::AlignLeft);
  wip->attachAxis(time);
  wip->attachAxis(count);
  if (limitSum) {
    auto* limit = new QLineSeries;
    limit->setName(QStringLiteral("Sum of the WIP limits: %1").arg(*limitSum));
    limit->setPen(QPen(QColor(0xb3, 0x26, 0x1e), 1.5, Qt::DashLine));
    limit->append(axisDays(days.front().date), static_cast<qreal>(*limitSum));
    limit->append(axisDays(days.back().date), static_cast<qreal>(*limitSum));
    c->addSeries(limit);
    limit->attachAxis(time);
    limit->attachAxis(count);
  }
}

}  // namespace orvane::app
