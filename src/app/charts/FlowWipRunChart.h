#pragma once

#include <QChartView>
#include <cstdint>
#include <optional>
#include <vector>

#include "core/metrics/FlowMetrics.h"

namespace orvane::app {

// Work in progress at the end of each day as a run chart, with the sum of
// the in-progress columns' WIP limits as a horizontal line when any is set.
class FlowWipRunChart : public QChartView {
  Q_OBJECT

 public:
  explicit FlowWipRunChart(QWidget* parent);

  void showDays(const std::vector<FlowDay>& days, std::optional<std::int64_t> limitSum);
};

}  // namespace orvane::app
