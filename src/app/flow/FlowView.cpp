#include "app/flow/FlowView.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <exception>

#include "app/AppContext.h"
#include "app/charts/FlowAgeChart.h"
#include "app/charts/FlowChartParts.h"
#include "app/charts/FlowCumulativeChart.h"
#include "app/charts/FlowCycleTimeChart.h"
#include "app/charts/FlowThroughputChart.h"
#include "app/flow/ChartCard.h"
#include "app/flow/FlowHealthPanel.h"
#include "app/flow/FlowTiles.h"
#include "core/accuracy/FlowHealth.h"
#include "core/metrics/FlowRange.h"

namespace orvane::app {

FlowView::FlowView(AppContext& context, QWidget* parent) : ProjectViewBase(context, parent) {
  setObjectName(QStringLiteral("flowView"));
  auto* page = new QWidget;
  auto* column = new QVBoxLayout(page);
  column->setContentsMargins(24, 12, 24, 16);
  column->setSpacing(10);

  auto* settings = new QHBoxLayout;
  settings->addWidget(new QLabel(QStringLiteral("Weeks:"), page));
  weeks_ = new QComboBox(page);
  weeks_->setObjectName(QStringLiteral("flowWeeks"));
  for (const std::int64_t choice : FlowScreen::weekChoices)
    weeks_->addItem(QString::number(choice), QVariant::fromValue(static_cast<qlonglong>(choice)));
  weeks_->setCurrentText(QString::number(FlowScreen::defaultWeeks));
  settings->addWidget(weeks_);
  problem_ = new QLabel(page);
  problem_->setObjectName(QStringLiteral("flowProblem"));
  problem_->setStyleSheet(QStringLiteral("color: #b3261e;"));
  problem_->setWordWrap(true);
  settings->addSpacing(16);
  settings->addWidget(problem_, 1);
  column->addLayout(settings);
  connect(weeks_, qOverload<int>(&QComboBox::currentIndexChanged), this, [this] { redraw(); });

  auto* top = new QHBoxLayout;
  top->setSpacing(10);
  tiles_ = new FlowTiles(page);
  top->addWidget(tiles_, 3);
  health_ = new FlowHealthPanel(page);
  top->addWidget(health_, 2);
  column->addLayout(top);

  auto* note = new QLabel(qtext(std::string(FlowScreen::note)), page);
  note->setObjectName(QStringLiteral("flowNote"));
  note->setWordWrap(true);
  note->setStyleSheet(QStringLiteral("color: palette(mid);"));
  column->addWidget(note);

  throughput_ = new FlowThroughputChart(page);
  cycle_ = new FlowCycleTimeChart(page);
  age_ = new FlowAgeChart(page);
  cumulative_ = new FlowCumulativeChart(page);
  throughputCard_ =
      new ChartCard(QStringLiteral("throughputCard"), QStringLiteral("Throughput"), throughput_, QString(), page);
  cycleCard_ = new ChartCard(QStringLiteral("cycleTimeCard"), QStringLiteral("Cycle time"), cycle_,
                             QStringLiteral("No tickets finished in this range."), page);
  ageCard_ = new ChartCard(QStringLiteral("workItemAgeCard"), QStringLiteral("Work item age"), age_,
                           QStringLiteral("Nothing is in progress."), page);
  cumulativeCard_ = new ChartCard(QStringLiteral("cumulativeFlowCard"), QStringLiteral("Cumulative flow"), cumulative_,
                                  QString(), page);
  range_ = new QLabel(page);
  range_->setObjectName(QStringLiteral("flowRange"));
  range_->setWordWrap(true);
  cumulativeCard_->addBelow(range_);
  auto* cards = new QGridLayout;
  cards->setSpacing(10);
  cards->addWidget(throughputCard_, 0, 0);
  cards->addWidget(cycleCard_, 0, 1);
  cards->addWidget(ageCard_, 1, 0);
  cards->addWidget(cumulativeCard_, 1, 1);
  cards->setColumnStretch(0, 1);
  cards->setColumnStretch(1, 1);
  column->addLayout(cards);
  column->addStretch(1);

  connect(cycle_, &FlowCycleTimeChart::ticketClicked, this, &FlowView::openTicketRequested);
  connect(age_, &FlowAgeChart::ticketClicked, this, &FlowView::openTicketRequested);
  connect(cumulative_, &FlowCumulativeChart::rangeChosen, this, &FlowView::showRange);

  auto* scroll = new QScrollArea(this);
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setWidget(page);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(scroll);
}

std::int64_t FlowView::weeks() const { return weeks_->currentData().toLongLong(); }

void FlowView::setWeeks(std::int64_t weeks) {
  const int index = weeks_->findData(QVariant::fromValue(static_cast<qlonglong>(weeks)));
  if (index >= 0) weeks_->setCurrentIndex(index);
}

void FlowView::reload() { redraw(); }

void FlowView::redraw() {
  const std::shared_ptr<const ProjectSnapshot> project = snapshot();
  if (!project) return;
  const Timestamp now = context_.now();
  FlowHealth health;
  try {
    tickets_ = flowTickets(*project);
    health = flowHealth(*project, now);
  } catch (const std::exception& error) {
    // A date outside the supported range: say so and keep the last drawing.
    problem_->setText(QString::fromStdString(error.what()));
    return;
  }
  problem_->clear();
  figures_ = FlowScreen::figures(tickets_, now, weeks());
  tiles_->showFigures(figures_);
  health_->showHealth(health);

  throughput_->showWeeks(figures_.throughput, figures_.averageWeeklyThroughput());
  const CivilDate firstDay = figures_.today.addingDays(-(7 * figures_.weeks - 1));
  cycle_->showPoints(figures_.cyclePoints, figures_.summary, firstDay, figures_.today);
  cycleCard_->showEmpty(figures_.cyclePoints.empty());
  age_->showAges(figures_.ages, figures_.summary ? std::optional<double>(figures_.summary->p85) : std::nullopt);
  ageCard_->showEmpty(figures_.ages.empty());
  cumulative_->showDays(figures_.cumulative);
  showRange(0, static_cast<int>(figures_.cumulative.size()) - 1);
  emit redrawn();
}

void FlowView::showRange(int first, int last) {
  const std::vector<FlowDay>& days = figures_.cumulative;
  if (first < 0 || last < first || last >= static_cast<int>(days.size())) {
    range_->clear();
    return;
  }
  const std::optional<FlowRange> range =
      flowRange(tickets_, days[static_cast<std::size_t>(first)].date, days[static_cast<std::size_t>(last)].date);
  QString text = range ? qtext(flowRangeSentence(*range)) : QString();
  if (!cumulative_->chosenRange()) text += QStringLiteral(" Drag across the chart to choose other days.");
  range_->setText(text);
}

}  // namespace orvane::app
