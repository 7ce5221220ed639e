#pragma once

#include <QChartView>
#include <QDateTimeAxis>
#include <vector>

#include "core/accuracy/ForecastAccuracy.h"

namespace orvane::app {

// The logged "When" forecasts over time: for each run (x, the moment it was
// logged) its 50%, 85% and 95% finish dates (y), one line per level, and the
// committed date of the runs that had one as a line of its own, so a date
// that slips, or drifts away from the promise, shows as a rising line.
class ForecastHistoryChart : public QChartView {
  Q_OBJECT

 public:
  explicit ForecastHistoryChart(QWidget* parent);

  // Replaces the lines with `history` (by run time); none clears the chart.
  void showHistory(const std::vector<ForecastHistoryPoint>& history);

  // The y value a finish day is drawn at: noon of that day in the local
  // time zone, so the axis labels it as that day wherever the user is.
  static qreal dayValue(const CivilDate& day);

 private:
  // Made once and kept: only the lines are replaced.
  QDateTimeAxis* runAxis_ = nullptr;
  QDateTimeAxis* finishAxis_ = nullptr;
};

}  // namespace orvane::app
