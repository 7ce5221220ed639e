#pragma once

#include <QChartView>
#include <optional>
#include <vector>

#include "engine/ThroughputHistory.h"

namespace orvane::app {

// The weekly throughput a forecast draws from, one bar per period, oldest
// first, each bar coloured by where its count comes from: the team's own
// finished work, the user's estimate, the default estimate, or a count
// carried forward. The legend names the four.
class ThroughputHistoryChart : public QChartView {
  Q_OBJECT

 public:
  explicit ThroughputHistoryChart(QWidget* parent);

  // Replaces the bars with `history`; an empty history clears the chart.
  void showHistory(const std::vector<PeriodCount>& history);

  // The colour a period of `tier` is drawn in.
  static QColor colourOf(ProvenanceTier tier);

 private:
  std::optional<std::vector<PeriodCount>> shown_;
};

}  // namespace orvane::app
