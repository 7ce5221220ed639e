#pragma once

#include <QChartView>
#include <vector>

#include "core/metrics/FlowMetrics.h"

namespace orvane::app {

// Tickets finished per week, one bar per week oldest first, with the
// average weekly count as a horizontal line. Hovering a bar names its week
// and count.
class FlowThroughputChart : public QChartView {
  Q_OBJECT

 public:
  explicit FlowThroughputChart(QWidget* parent);

  void showWeeks(const std::vector<WeekThroughput>& weeks, double average);

  // "Week 26 Feb – 4 Mar 2026: 3 tickets finished."; empty outside the weeks.
  QString hoverText(int index) const;

 private:
  std::vector<WeekThroughput> weeks_;
};

}  // namespace orvane::app
