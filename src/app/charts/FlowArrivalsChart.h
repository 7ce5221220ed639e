#pragma once

#include <QChartView>
#include <vector>

#include "core/metrics/FlowAnalysis.h"

namespace orvane::app {

// Tickets started against tickets finished, two bars per week oldest first,
// with the running gap (started minus finished, summed) as a line on its
// own axis: a line that keeps rising is work in progress growing.
class FlowArrivalsChart : public QChartView {
  Q_OBJECT

 public:
  explicit FlowArrivalsChart(QWidget* parent);

  void showWeeks(const std::vector<WeekFlow>& weeks);

  // "Week ending 4 Mar 2026: 3 started, 2 finished; running gap 1."
  QString hoverText(int index) const;

 private:
  std::vector<WeekFlow> weeks_;
};

}  // namespace orvane::app
