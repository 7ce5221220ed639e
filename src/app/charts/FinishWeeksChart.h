#pragma once

#include <QChartView>
#include <map>
#include <optional>
#include <vector>

#include "engine/Histogram.h"

namespace orvane::app {

// The finish weeks of a forecast's simulations as bars, one per week, each
// coloured by the confidence band it falls in (up to 50%, 70%, 85%, 95%, and
// the tail); the week of each level carries the level under its number.
class FinishWeeksChart : public QChartView {
  Q_OBJECT

 public:
  explicit FinishWeeksChart(QWidget* parent);

  // Replaces the bars with `bins`; none clears the chart. Each level of
  // `levelWeeks` (confidence -> weeks) is written under the week it falls in,
  // and so is `committed` ("committed"), the first week ending on or after it.
  void showHistogram(const std::vector<HistogramBin>& bins, const std::map<int, double>& levelWeeks,
                     const std::optional<CivilDate>& committed);
  // What hovering the bar of bins[index] says: its finish day and the share
  // of simulations finished by then.
  QString hoverText(int index) const;

 private:
  std::vector<HistogramBin> bins_;
};

}  // namespace orvane::app
