#include "app/charts/FlowChartParts.h"

#include <QAbstractAxis>
#include <QCategoryAxis>
#include <QChart>
#include <QChartView>
#include <QGraphicsLayout>
#include <QLegend>
#include <algorithm>
#include <vector>

namespace orvane::app {

QChart* freshChart(QChartView* view) {
  QChart* old = view->chart();
  auto* chart = new QChart;
  // The legend below the plot, little margin around it (the cards are
  // small), a little more on the right for the last date label.
  chart->legend()->setAlignment(Qt::AlignBottom);
  chart->setMargins(QMargins(2, 2, 24, 2));
  chart->layout()->setContentsMargins(0, 0, 0, 0);
  chart->setBackgroundRoundness(0);
  view->setChart(chart);
  if (old != nullptr) old->deleteLater();
  return chart;
}

qreal axisDays(Timestamp instant) { return instant.secondsSince1970 / 86400.0; }

qreal axisDays(CivilDate day) { return static_cast<qreal>(day.daysSinceEpoch()); }

QCategoryAxis* dayAxis(CivilDate from, CivilDate to, const QString& title) {
  auto* axis = new QCategoryAxis;
  axis->setLabelsPosition(QCategoryAxis::AxisLabelsPositionOnValue);
  const std::int64_t span = std::max<std::int64_t>(to.daysSince(from), 1);
  // Whole weeks between labels, so they fall on the same weekday as today.
  const std::int64_t step = std::max<std::int64_t>(1, (span + 7 * 6 - 1) / (7 * 6)) * 7;
  std::vector<CivilDate> marks;
  for (CivilDate day = to; !(day < from); day = day.addingDays(-step)) marks.push_back(day);
  for (auto mark = marks.rbegin(); mark != marks.rend(); ++mark)
    axis->append(qtext(mark->displayShort()), axisDays(*mark));
  axis->setRange(axisDays(from), axisDays(to));
  axis->setStartValue(axisDays(from));
  axis->setTitleText(title);
  return axis;
}

QString qtext(const std::string& text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

void prepareFlowChart(QChartView* view, int minimumHeight) {
  view->setRenderHint(QPainter::Antialiasing);
  view->setMinimumHeight(minimumHeight);
  freshChart(view);
}

}  // namespace orvane::app
