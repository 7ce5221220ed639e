#pragma once

#include <QChartView>
#include <optional>
#include <vector>

#include "core/metrics/FlowMetrics.h"

namespace orvane::app {

// One bar per item in progress, oldest first, with the 85% cycle time as a
// reference line. A bar's colour says how far past that line it is: within
// it, past it, or past twice it. Hovering a bar names the ticket; clicking
// it asks for the ticket's window.
class FlowAgeChart : public QChartView {
  Q_OBJECT

 public:
  // How far an age is past the 85% cycle time; within when there is none.
  enum class Band { within, past, pastTwice };
  static Band bandOf(double ageDays, std::optional<double> p85);

  explicit FlowAgeChart(QWidget* parent);

  void showAges(const std::vector<AgePoint>& ages, std::optional<double> p85);

  QString hoverText(int index) const;

 signals:
  void ticketClicked(const orvane::Uuid& ticket);

 private:
  std::vector<AgePoint> ages_;
};

}  // namespace orvane::app
