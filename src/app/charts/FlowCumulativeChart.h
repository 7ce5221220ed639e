#pragma once

#include <QChartView>
#include <optional>
#include <utility>
#include <vector>

#include "core/metrics/FlowMetrics.h"

class QGraphicsRectItem;

namespace orvane::app {

// The cumulative flow: per day, stacked areas of done (bottom), in progress
// and backlog (top). Hovering names the day and its counts. Dragging across
// the plot chooses a range of days, shaded until the next redraw or choice.
class FlowCumulativeChart : public QChartView {
  Q_OBJECT

 public:
  explicit FlowCumulativeChart(QWidget* parent);

  void showDays(const std::vector<FlowDay>& days);

  // Shades the days first...last (indexes into the days shown, in either
  // order) and announces them; ignored when either is out of range.
  void chooseRange(int first, int last);
  // The chosen indexes, first <= last; absent when none is chosen.
  std::optional<std::pair<int, int>> chosenRange() const { return chosen_; }

  QString hoverText(int index) const;

 signals:
  void rangeChosen(int first, int last);

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  // The index of the day under a point of the view, clamped to the days.
  int dayIndexAt(const QPoint& at) const;
  void shade(int first, int last);

  std::vector<FlowDay> days_;
  std::optional<std::pair<int, int>> chosen_;
  std::optional<int> dragFrom_;
  QGraphicsRectItem* band_ = nullptr;
};

}  // namespace orvane::app
