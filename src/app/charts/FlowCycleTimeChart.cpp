#include "app/charts/FlowCycleTimeChart.h"

#include <QCategoryAxis>
#include <QChart>
#include <QLegend>
#include <QLegendMarker>
#include <QLineSeries>
#include <QScatterSeries>
#include <QToolTip>
#include <QValueAxis>
#include <algorithm>
#include <cmath>

#include "app/charts/FlowChartParts.h"
#include "core/metrics/FlowScreen.h"

namespace orvane::app {
namespace {

struct Level {
  int pct;
  double CycleTimeSummary::*days;
  QColor colour;
  double labelAt;  // where the label stands, as a share of the days shown
};

// Labels at staggered places, so close levels do not write over each other.
const Level levels[] = {{50, &CycleTimeSummary::p50, QColor(0x1b, 0x7f, 0x3b), 0.62},
                        {85, &CycleTimeSummary::p85, QColor(0xd0, 0x8a, 0x1e), 0.76},
                        {95, &CycleTimeSummary::p95, QColor(0xb3, 0x26, 0x1e), 0.90}};

}  // namespace

FlowCycleTimeChart::FlowCycleTimeChart(QWidget* parent) : QChartView(parent) {
  setObjectName(QStringLiteral("flowCycleTimeChart"));
  prepareFlowChart(this, 260);
}

std::optional<CycleTimePoint> FlowCycleTimeChart::pointAt(const QPointF& at) const {
  for (const CycleTimePoint& point : points_) {
    if (std::abs(axisDays(point.completedAt) - at.x()) < 1e-6 && std::abs(point.days - at.y()) < 1e-9) return point;
  }
  return std::nullopt;
}

void FlowCycleTimeChart::showPoints(const std::vector<CycleTimePoint>& points,
                                    const std::optional<CycleTimeSummary>& summary, CivilDate from, CivilDate to) {
  points_ = points;
  QChart* c = freshChart(this);
  if (points.empty()) return;

  auto* tickets = new QScatterSeries;
  tickets->setName(QStringLiteral("Finished ticket"));
  tickets->setMarkerSize(8);
  tickets->setColor(QColor(0x1f, 0x4e, 0x8c));
  tickets->setBorderColor(QColor(0x1f, 0x4e, 0x8c));
  double highest = 1;
  for (const CycleTimePoint& point : points) {
    tickets->append(axisDays(point.completedAt), point.days);
    highest = std::max(highest, point.days);
  }
  connect(tickets, &QScatterSeries::hovered, this, [this](const QPointF& at, bool entered) {
    const std::optional<CycleTimePoint> point = entered ? pointAt(at) : std::nullopt;
    if (!point) {
      QToolTip::hideText();
      return;
    }
    QToolTip::showText(QCursor::pos(),
                       QStringLiteral("%1 %2\n%3 from start to finish, finished %4")
                           .arg(qtext(point->reference), qtext(point->title), qtext(FlowScreen::dayFigure(point->days)),
                                qtext(CivilDate::fromUtc(point->completedAt).displayText())),
                       this);
  });
  connect(tickets, &QScatterSeries::clicked, this, [this](const QPointF& at) {
    if (const std::optional<CycleTimePoint> point = pointAt(at)) emit ticketClicked(point->id);
  });
  c->addSeries(tickets);

  QCategoryAxis* time = dayAxis(from, to.addingDays(1), QStringLiteral("Finish date"));
  auto* days = new QValueAxis;
  days->setTitleText(QStringLiteral("Days from start to finish"));
  c->addAxis(time, Qt::AlignBottom);
  c->addAxis(days, Qt::AlignLeft);
  tickets->attachAxis(time);
  tickets->attachAxis(days);

  // The percentile lines, each written with its days.
  if (summary) {
    for (const Level& level : levels) {
      const double value = *summary.*level.days;
      highest = std::max(highest, value);
      const QString name = QStringLiteral("%1%: %2").arg(level.pct).arg(qtext(FlowScreen::dayFigure(value)));
      auto* line = new QLineSeries;
      line->setName(name);
      line->setPen(QPen(level.colour, 1.5, Qt::DashLine));
      line->append(axisDays(from), value);
      line->append(axisDays(to.addingDays(1)), value);
      auto* label = new QScatterSeries;
      label->setMarkerSize(1);
      label->setColor(level.colour);
      label->setBorderColor(level.colour);
      const double span = static_cast<double>(to.addingDays(1).daysSince(from));
      label->append(axisDays(from) + span * level.labelAt, value);
      label->setPointLabelsVisible(true);
      label->setPointLabelsColor(level.colour);
      label->setPointLabelsClipping(false);
      label->setPointLabelsFormat(name);
      for (QAbstractSeries* series : {static_cast<QAbstractSeries*>(line), static_cast<QAbstractSeries*>(label)}) {
        c->addSeries(series);
        series->attachAxis(time);
        series->attachAxis(days);
      }
      c->legend()->markers(label).value(0)->setVisible(false);
    }
  }
  days->setRange(0, highest * 1.1);
  days->applyNiceNumbers();
}

}  // namespace orvane::app
