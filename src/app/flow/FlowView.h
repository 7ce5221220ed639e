#pragma once

#include <cstdint>
#include <vector>

#include "app/shell/ProjectViewBase.h"
#include "app/widgets/LatestRun.h"
#include "core/accuracy/FlowHealth.h"
#include "core/metrics/FlowAnalysis.h"
#include "core/metrics/FlowScreen.h"

class QComboBox;
class QLabel;

namespace orvane::app {

class ChartCard;
class FlowAgeChart;
class FlowArrivalsChart;
class FlowWipRunChart;
class FlowXmRChart;
class FlowCumulativeChart;
class FlowCycleTimeChart;
class FlowHealthPanel;
class FlowThroughputChart;
class FlowTiles;

// How work flows through the project over the last W weeks (UTC weeks
// ending today): four tiles, the flow-health verdict beside them, and the
// throughput, cycle time, work item age and cumulative flow charts; below
// them started against finished, work in progress over time, process
// behaviour charts of four measures, Little's law and the predictability of
// cycle time. A range dragged on the cumulative flow is summed up under it
// and Little's law is checked over it. Everything is
// recomputed from the snapshot on each reload, so a change in the store
// redraws the screen.
class FlowView : public ProjectViewBase {
  Q_OBJECT

 public:
  FlowView(AppContext& context, QWidget* parent);

  // The weeks shown: one of FlowScreen::weekChoices.
  std::int64_t weeks() const;
  void setWeeks(std::int64_t weeks);
  // True while a redraw's figures are being computed and not yet shown.
  bool isComputing() const;

 signals:
  void openTicketRequested(const orvane::Uuid& ticket);
  // The screen shows the store as of the newest reload (or says why not).
  void redrawn();

 protected:
  void reload() override;

 private:
  // Reads the snapshot here and computes every figure in the thread pool;
  // only the newest run is shown.
  void redraw();
  void showRun(const std::vector<FlowTicket>& tickets, const FlowHealth& health, const FlowScreen::Figures& figures,
               const FlowAnalysis& analysis, const QString& error);
  void showRange(int first, int last);
  QWidget* buildAnalyses(QWidget* page);

  QComboBox* weeks_ = nullptr;
  FlowTiles* tiles_ = nullptr;
  FlowHealthPanel* health_ = nullptr;
  ChartCard* throughputCard_ = nullptr;
  ChartCard* cycleCard_ = nullptr;
  ChartCard* ageCard_ = nullptr;
  ChartCard* cumulativeCard_ = nullptr;
  FlowThroughputChart* throughput_ = nullptr;
  FlowCycleTimeChart* cycle_ = nullptr;
  FlowAgeChart* age_ = nullptr;
  FlowCumulativeChart* cumulative_ = nullptr;
  QLabel* range_ = nullptr;
  QLabel* problem_ = nullptr;
  FlowArrivalsChart* arrivals_ = nullptr;
  FlowWipRunChart* wipRun_ = nullptr;
  FlowXmRChart* throughputXmR_ = nullptr;
  FlowXmRChart* arrivalsXmR_ = nullptr;
  FlowXmRChart* wipXmR_ = nullptr;
  FlowXmRChart* cycleXmR_ = nullptr;
  QLabel* littlesLaw_ = nullptr;
  QLabel* predictability_ = nullptr;

  std::vector<FlowTicket> tickets_;
  FlowScreen::Figures figures_;
  FlowAnalysis analysis_;
  LatestRun runs_;
};

}  // namespace orvane::app
