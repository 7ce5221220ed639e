#include "app/charts/FlowCumulativeChart.h"

#include <QAreaSeries>
#include <QCategoryAxis>
#include <QChart>
#include <QGraphicsRectItem>
#include <QLineSeries>
#include <QMouseEvent>
#include <QToolTip>
#include <QValueAxis>
#include <algorithm>
#include <cmath>

#include "app/charts/FlowChartParts.h"

namespace orvane::app {
FlowCumulativeChart::FlowCumulativeChart(QWidget* parent) : QChartView(parent) {
  setObjectName(QStringLiteral("flowCumulativeChart"));
  prepareFlowChart(this, 260);
  setToolTip(QStringLiteral("Drag across the chart to see the flow over a range of days."));
  band_ = new QGraphicsRectItem;
  band_->setBrush(QColor(0, 0, 0, 40));
  band_->setPen(Qt::NoPen);
  band_->setZValue(20);
  band_->hide();
  scene()->addItem(band_);
}

QString FlowCumulativeChart::hoverText(int index) const {
  if (index < 0 || index >= static_cast<int>(days_.size())) return {};
  const FlowDay& day = days_[static_cast<std::size_t>(index)];
  return QStringLiteral("%1: %2 done, %3 in progress, %4 in the backlog")
      .arg(qtext(day.date.displayText()))
      .arg(day.done)
      .arg(day.inProgress)
      .arg(day.backlog);
}

void FlowCumulativeChart::showDays(const std::vector<FlowDay>& days) {
  days_ = days;
  chosen_.reset();
  dragFrom_.reset();
  band_->hide();
  QChart* c = freshChart(this);
  if (days.empty()) return;

  // Each band's lower edge is the one below's upper edge.
  struct Layer {
    const char* name;
    QColor colour;
    std::int64_t (*height)(const FlowDay&);
  };
  const Layer layers[] = {
      {"Done", QColor(0x1b, 0x7f, 0x3b), [](const FlowDay& d) { return d.done; }},
      {"In progress", QColor(0x1f, 0x4e, 0x8c), [](const FlowDay& d) { return d.inProgress; }},
      {"Backlog", QColor(0xa8, 0xb0, 0xbc), [](const FlowDay& d) { return d.backlog; }},
  };
  QCategoryAxis* time = dayAxis(days.front().date, days.back().date, QStringLiteral("Day"));
  auto* count = new QValueAxis;
  count->setTitleText(QStringLiteral("Tickets"));
  count->setLabelFormat(QStringLiteral("%d"));
  c->addAxis(time, Qt::AlignBottom);
  c->addAxis(count, Qt::AlignLeft);

  std::vector<std::int64_t> below(days.size(), 0);
  std::int64_t highest = 1;
  for (const Layer& layer : layers) {
    auto* lower = new QLineSeries;
    auto* upper = new QLineSeries;
    for (std::size_t i = 0; i < days.size(); ++i) {
      const qreal x = axisDays(days[i].date);
      lower->append(x, static_cast<qreal>(below[i]));
      below[i] += layer.height(days[i]);
      upper->append(x, static_cast<qreal>(below[i]));
      highest = std::max(highest, below[i]);
    }
    auto* area = new QAreaSeries(upper, lower);
    area->setName(QString::fromLatin1(layer.name));
    area->setColor(layer.colour);
    area->setBorderColor(layer.colour.darker(120));
    connect(area, &QAreaSeries::hovered, this, [this](const QPointF& at, bool entered) {
      if (!entered || days_.empty()) {
        QToolTip::hideText();
        return;
      }
      const auto index = static_cast<int>(std::lround((at.x() - axisDays(days_.front().date))));
      QToolTip::showText(QCursor::pos(), hoverText(index), this);
    });
    c->addSeries(area);
    area->attachAxis(time);
    area->attachAxis(count);
  }
  count->setRange(0, static_cast<qreal>(highest) * 1.05);
  count->applyNiceNumbers();
}

int FlowCumulativeChart::dayIndexAt(const QPoint& at) const {
  if (days_.empty()) return 0;
  const QPointF value = chart()->mapToValue(chart()->mapFromScene(mapToScene(at)));
  const auto index = std::lround((value.x() - axisDays(days_.front().date)));
  return static_cast<int>(std::clamp<long>(index, 0, static_cast<long>(days_.size()) - 1));
}

void FlowCumulativeChart::shade(int first, int last) {
  if (days_.empty()) return;
  const auto x = [this](int index) {
    return chart()->mapToScene(
        chart()->mapToPosition(QPointF(axisDays(days_[static_cast<std::size_t>(index)].date), 0)));
  };
  const QRectF plot = chart()->mapToScene(chart()->plotArea()).boundingRect();
  const qreal left = x(std::min(first, last)).x();
  const qreal right = x(std::max(first, last)).x();
  band_->setRect(QRectF(left, plot.top(), std::max<qreal>(right - left, 2), plot.height()));
  band_->show();
}

void FlowCumulativeChart::chooseRange(int first, int last) {
  const int n = static_cast<int>(days_.size());
  if (first < 0 || last < 0 || first >= n || last >= n) return;
  chosen_ = std::make_pair(std::min(first, last), std::max(first, last));
  shade(chosen_->first, chosen_->second);
  emit rangeChosen(chosen_->first, chosen_->second);
}

void FlowCumulativeChart::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && !days_.empty() &&
      chart()->plotArea().contains(chart()->mapFromScene(mapToScene(event->pos())))) {
    dragFrom_ = dayIndexAt(event->pos());
    shade(*dragFrom_, *dragFrom_);
  }
  QChartView::mousePressEvent(event);
}

void FlowCumulativeChart::mouseMoveEvent(QMouseEvent* event) {
  if (dragFrom_) shade(*dragFrom_, dayIndexAt(event->pos()));
  QChartView::mouseMoveEvent(event);
}

void FlowCumulativeChart::mouseReleaseEvent(QMouseEvent* event) {
  if (dragFrom_ && event->button() == Qt::LeftButton) {
    const int from = *dragFrom_;
    dragFrom_.reset();
    chooseRange(from, dayIndexAt(event->pos()));
  }
  QChartView::mouseReleaseEvent(event);
}

void FlowCumulativeChart::resizeEvent(QResizeEvent* event) {
  QChartView::resizeEvent(event);
  if (chosen_) shade(chosen_->first, chosen_->second);
}

}  // namespace orvane::app
