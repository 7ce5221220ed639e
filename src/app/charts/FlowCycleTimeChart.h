#pragma once

#include <QChartView>
#include <optional>
#include <vector>

#include "core/metrics/FlowMetrics.h"

namespace orvane::app {

// One point per finished ticket: its cycle time in days against its finish
// date, with horizontal lines at the 50%, 85% and 95% cycle times, each
// labelled with its days. Hovering a point names the ticket; clicking it
// asks for the ticket's window.
class FlowCycleTimeChart : public QChartView {
  Q_OBJECT

 public:
  explicit FlowCycleTimeChart(QWidget* parent);

  // `from` and `to` are the first and last day of the range shown.
  void showPoints(const std::vector<CycleTimePoint>& points, const std::optional<CycleTimeSummary>& summary,
                  CivilDate from, CivilDate to);

  // The point drawn at `at` (its finish in axis milliseconds and its days);
  // absent when no point is there.
  std::optional<CycleTimePoint> pointAt(const QPointF& at) const;

 signals:
  void ticketClicked(const orvane::Uuid& ticket);

 private:
  std::vector<CycleTimePoint> points_;
};

}  // namespace orvane::app
