#pragma once

#include <QChartView>
#include <array>
#include <map>
#include <optional>
#include <vector>

#include "engine/Histogram.h"

class QBarCategoryAxis;
class QBarSet;
class QStackedBarSeries;
class QValueAxis;

namespace orvane::app {

// The finish weeks of a forecast's simulations as bars, one per week, each
// coloured by the confidence band it falls in (up to 50%, 70%, 85%, 95%, and
// the tail); the week of each level carries the level under its number.
//
// The series and axes are made once and their values replaced, so a live
// what-if redraws the bars without rebuilding the chart.
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
  QStackedBarSeries* series_ = nullptr;
  std::array<QBarSet*, 5> bands_{};  // from the likely to the unlikely
  QBarCategoryAxis* weeksAxis_ = nullptr;
  QValueAxis* countAxis_ = nullptr;
};

}  // namespace orvane::app
