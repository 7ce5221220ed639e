#pragma once

#include <QWidget>

#include "core/accuracy/ForecastAccuracy.h"

class QLabel;
class QTableWidget;

namespace orvane::app {

// The logged forecasts judged against what happened: each "When" forecast
// with its verdict, each "How many by a date?" forecast whose day has
// passed with the levels it reached, and for both kinds the calibration
// table, where a level is well calibrated when its hit rate is close to it.
class AccuracySection : public QWidget {
  Q_OBJECT

 public:
  explicit AccuracySection(QWidget* parent);

  void showReport(const AccuracyReport& report);

 private:
  void showWhen(const AccuracyReport& report);
  void showByDate(const AccuracyReport& report);

  QLabel* whenEmpty_ = nullptr;
  QTableWidget* when_ = nullptr;
  QTableWidget* whenCalibration_ = nullptr;
  QLabel* byDateEmpty_ = nullptr;
  QTableWidget* byDate_ = nullptr;
  QTableWidget* byDateCalibration_ = nullptr;
};

}  // namespace orvane::app
