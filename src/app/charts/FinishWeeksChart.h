#pragma once

#include <QChartView>
#include <vector>

#include "engine/Histogram.h"

namespace orvane::app {

// The finish weeks of a forecast's simulations as bars, one per week, each
// coloured by the confidence band it falls in (up to 50%, 70%, 85%, 95%, and
// the tail), so the four levels read off where the colour changes.
class FinishWeeksChart : public QChartView {
  Q_OBJECT

 public:
  explicit FinishWeeksChart(QWidget* parent);

  // Replaces the bars with `bins`; none clears the chart.
  void showHistogram(const std::vector<HistogramBin>& bins);
};

}  // namespace orvane::app
