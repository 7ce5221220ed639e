#include "app/charts/FlowXmRChart.h"

#include <QCategoryAxis>
#include <QChart>
#include <QChartView>
#include <QLabel>
#include <QLineSeries>
#include <QScatterSeries>
#include <QVBoxLayout>
#include <QValueAxis>
#include <algorithm>
#include <set>

#include "app/charts/FlowChartParts.h"

namespace orvane::app {
namespace {

const QColor valueColour(0x1f, 0x4e, 0x8c);
const QColor signalColour(0xb3, 0x26, 0x1e);
const QColor limitColour(0x6b, 0x6b, 0x6b);

// An x axis over value indexes first...last with at most about six of the
// labels, the last one always.
QCategoryAxis* indexAxis(const QStringList& labels, int first, int count) {
  auto* axis = new QCategoryAxis;
  axis->setLabelsPosition(QCategoryAxis::AxisLabelsPositionOnValue);
  const int every = std::max(1, (count + 5) / 6);
  for (int i = (count - 1) % every; i < count; i += every) {
    // Category labels must differ; a repeated reference or day keeps its
    // place with a trailing space.
    QString text = labels.value(first + i);
    while (axis->categoriesLabels().contains(text)) text += QLatin1Char(' ');
    axis->append(text, static_cast<qreal>(first + i));
  }
  axis->setStartValue(first - 0.5);
  axis->setRange(first - 0.5, first + count - 0.5);
  axis->setGridLineVisible(false);
  return axis;
}

QLineSeries* level(const QString& name, double y, qreal from, qreal to, const QPen& pen) {
  auto* line = new QLineSeries;
  line->setName(name);
  line->setPen(pen);
  line->append(from, y);
  line->append(to, y);
  return line;
}

// Draws `points` against indexes first...first+n-1 with horizontal levels
// and the indexes in `marked` as red dots.
void draw(QChartView* view, const std::vector<double>& points, int first, const QStringList& labels,
          const std::vector<std::pair<QString, double>>& levels, const std::vector<QPen>& pens,
          const std::set<std::size_t>& marked, const QString& valueName, const QString& axisTitle) {
  QChart* c = freshChart(view);
  c->legend()->setVisible(false);
  const int n = static_cast<int>(points.size());
  auto* series = new QLineSeries;
  series->setName(valueName);
  series->setPen(QPen(valueColour, 1.5));
  series->setPointsVisible(n <= 60);
  auto* marks = new QScatterSeries;
  marks->setName(QStringLiteral("Signal"));
  marks->setColor(signalColour);
  marks->setBorderColor(signalColour);
  marks->setMarkerSize(n <= 60 ? 8 : 5);
  double lowest = 0, highest = 1;
  for (int i = 0; i < n; ++i) {
    const double y = points[static_cast<std::size_t>(i)];
    series->append(first + i, y);
    if (marked.count(static_cast<std::size_t>(first + i)) != 0) marks->append(first + i, y);
    lowest = std::min(lowest, y);
    highest = std::max(highest, y);
  }
  QCategoryAxis* x = indexAxis(labels, first, n);
  auto* y = new QValueAxis;
  y->setTitleText(axisTitle);
  c->addAxis(x, Qt::AlignBottom);
  c->addAxis(y, Qt::AlignLeft);
  std::vector<QAbstractSeries*> all{series};
  for (std::size_t i = 0; i < levels.size(); ++i) {
    all.push_back(level(levels[i].first, levels[i].second, first - 0.5, first + n - 0.5, pens[i]));
    // A lower limit below zero stays off the plot: no value can reach it.
    if (levels[i].second >= 0) lowest = std::min(lowest, levels[i].second);
    highest = std::max(highest, levels[i].second);
  }
  all.push_back(marks);
  for (QAbstractSeries* s : all) {
    c->addSeries(s);
    s->attachAxis(x);
    s->attachAxis(y);
  }
  y->setRange(lowest, highest * 1.08);
  y->applyNiceNumbers();
}

}  // namespace

FlowXmRChart::FlowXmRChart(const QString& name, QWidget* parent) : QWidget(parent) {
  setObjectName(name);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(2);
  values_ = new QChartView(this);
  values_->setObjectName(name + QStringLiteral("Values"));
  prepareFlowChart(values_, 230);
  ranges_ = new QChartView(this);
  ranges_->setObjectName(name + QStringLiteral("Ranges"));
  prepareFlowChart(ranges_, 150);
  sentences_ = new QLabel(this);
  sentences_->setObjectName(name + QStringLiteral("Sentences"));
  sentences_->setWordWrap(true);
  sentences_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  column->addWidget(values_, 3);
  column->addWidget(ranges_, 2);
  column->addWidget(sentences_);
}

void FlowXmRChart::showMeasure(const BehaviourMeasure& measure, const QStringList& axisLabels, const QString& unit) {
  QStringList lines;
  for (const std::string& sentence : measure.sentences) lines << qtext(sentence);
  sentences_->setText(lines.join(QLatin1Char('\n')));
  if (!measure.chart) {
    freshChart(values_);
    freshChart(ranges_);
    return;
  }
  const XmRChart& chart = *measure.chart;
  std::set<std::size_t> marked, rangesMarked;
  for (const XmRSignal& s : chart.detected) {
    if (s.kind == XmRSignal::Kind::movingRangeBeyondLimit) {
      rangesMarked.insert(s.last);
    } else {
      for (std::size_t i = s.first; i <= s.last; ++i) marked.insert(i);
    }
  }
  const QPen limitPen(limitColour, 1.2, Qt::DashLine);
  const QPen meanPen(QColor(0x1b, 0x7f, 0x3b), 1.2);
  draw(values_, chart.values, 0, axisLabels,
       {{QStringLiteral("Upper %1").arg(chart.upperLimit, 0, 'f', 1), chart.upperLimit},
        {QStringLiteral("Mean %1").arg(chart.mean, 0, 'f', 1), chart.mean},
        {QStringLiteral("Lower %1").arg(chart.lowerLimit, 0, 'f', 1), chart.lowerLimit}},
       {limitPen, meanPen, limitPen}, marked, QStringLiteral("Value"), unit);
  // Moving range i stands under the later of its two values.
  draw(ranges_, chart.movingRanges, 1, axisLabels,
       {{QStringLiteral("Moving-range limit %1").arg(chart.movingRangeLimit, 0, 'f', 1), chart.movingRangeLimit},
        {QStringLiteral("Average moving range %1").arg(chart.averageMovingRange, 0, 'f', 1), chart.averageMovingRange}},
       {limitPen, meanPen}, rangesMarked, QStringLiteral("Moving range"), QStringLiteral("Moving range"));
  // The values' legend names the lines; the ranges' would repeat it.
  values_->chart()->legend()->setVisible(true);
}

}  // namespace orvane::app
