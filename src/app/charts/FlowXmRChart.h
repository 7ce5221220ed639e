#pragma once

#include <QStringList>
#include <QWidget>

#include "core/metrics/FlowAnalysis.h"

class QChartView;
class QLabel;

namespace orvane::app {

// A process behaviour chart of one measure: the values with their mean and
// natural process limits above, the moving ranges with their average and
// limit below, the values that make a signal marked in red, and the
// signals in words under both. Object names: <name>Values, <name>Ranges,
// <name>Sentences.
class FlowXmRChart : public QWidget {
  Q_OBJECT

 public:
  FlowXmRChart(const QString& name, QWidget* parent);

  // `axisLabels` name the values on the x axis ("5 Mar", "SHOP-12"), one
  // per value; a few of them are shown. `unit` titles the values' axis.
  void showMeasure(const BehaviourMeasure& measure, const QStringList& axisLabels, const QString& unit);

 private:
  QChartView* values_ = nullptr;
  QChartView* ranges_ = nullptr;
  QLabel* sentences_ = nullptr;
};

}  // namespace orvane::app
