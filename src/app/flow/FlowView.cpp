#include "app/flow/FlowView.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <exception>

#include "app/charts/FlowAgeChart.h"
#include "app/charts/FlowArrivalsChart.h"
#include "app/charts/FlowChartParts.h"
#include "app/charts/FlowCumulativeChart.h"
#include "app/charts/FlowCycleTimeChart.h"
#include "app/charts/FlowThroughputChart.h"
#include "app/charts/FlowWipRunChart.h"
#include "app/charts/FlowXmRChart.h"
#include "app/flow/ChartCard.h"
#include "app/flow/FlowHealthPanel.h"
#include "app/flow/FlowTiles.h"
#include "app/shell/AppContext.h"
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
  column->addWidget(buildAnalyses(page));
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

QWidget* FlowView::buildAnalyses(QWidget* page) {
  auto* section = new QWidget(page);
  auto* column = new QVBoxLayout(section);
  column->setContentsMargins(0, 6, 0, 0);
  column->setSpacing(10);

  arrivals_ = new FlowArrivalsChart(section);
  wipRun_ = new FlowWipRunChart(section);
  auto* overTime = new QHBoxLayout;
  overTime->setSpacing(10);
  overTime->addWidget(new ChartCard(QStringLiteral("arrivalsCard"), QStringLiteral("Started against finished"),
                                    arrivals_, QString(), section),
                      1);
  overTime->addWidget(
      new ChartCard(QStringLiteral("wipRunCard"), QStringLiteral("Work in progress"), wipRun_, QString(), section), 1);
  column->addLayout(overTime);

  auto* heading = new QLabel(QStringLiteral("Process behaviour"), section);
  QFont bold = heading->font();
  bold.setBold(true);
  bold.setPointSizeF(bold.pointSizeF() * 1.2);
  heading->setFont(bold);
  column->addWidget(heading);
  auto* explanation = new QLabel(
      QStringLiteral("A real change, not noise, shows as a signal (in red): a value beyond a natural process limit "
                     "(the mean ± 2.66 × the average moving range), eight values in a row on one side of "
                     "the mean, or three of four in a row nearer a limit than the mean. Without a signal, read no "
                     "trend into the ups and downs."),
      section);
  explanation->setWordWrap(true);
  column->addWidget(explanation);
  throughputXmR_ = new FlowXmRChart(QStringLiteral("throughputXmR"), section);
  arrivalsXmR_ = new FlowXmRChart(QStringLiteral("arrivalsXmR"), section);
  wipXmR_ = new FlowXmRChart(QStringLiteral("wipXmR"), section);
  cycleXmR_ = new FlowXmRChart(QStringLiteral("cycleTimeXmR"), section);
  auto* grid = new QGridLayout;
  grid->setSpacing(10);
  const std::pair<FlowXmRChart*, QString> charts[] = {{throughputXmR_, QStringLiteral("Weekly throughput")},
                                                      {arrivalsXmR_, QStringLiteral("Weekly arrivals")},
                                                      {wipXmR_, QStringLiteral("Daily work in progress")},
                                                      {cycleXmR_, QStringLiteral("Cycle time")}};
  for (int i = 0; i < 4; ++i) {
    grid->addWidget(new ChartCard(charts[i].first->objectName() + QStringLiteral("Card"), charts[i].second,
                                  charts[i].first, QString(), section),
                    i / 2, i % 2);
  }
  grid->setColumnStretch(0, 1);
  grid->setColumnStretch(1, 1);
  column->addLayout(grid);

  auto* stability = new QFrame(section);
  stability->setObjectName(QStringLiteral("stabilityCard"));
  stability->setFrameShape(QFrame::StyledPanel);
  auto* stabilityColumn = new QVBoxLayout(stability);
  stabilityColumn->setContentsMargins(12, 8, 12, 8);
  auto* stabilityHeading = new QLabel(QStringLiteral("Stability and predictability"), stability);
  QFont cardFont = stabilityHeading->font();
  cardFont.setBold(true);
  stabilityHeading->setFont(cardFont);
  stabilityColumn->addWidget(stabilityHeading);
  for (QLabel** label : {&littlesLaw_, &predictability_}) {
    *label = new QLabel(stability);
    (*label)->setWordWrap(true);
    (*label)->setTextInteractionFlags(Qt::TextSelectableByMouse);
    stabilityColumn->addWidget(*label);
  }
  littlesLaw_->setObjectName(QStringLiteral("littlesLaw"));
  predictability_->setObjectName(QStringLiteral("predictability"));
  column->addWidget(stability);
  return section;
}

std::int64_t FlowView::weeks() const { return weeks_->currentData().toLongLong(); }

void FlowView::setWeeks(std::int64_t weeks) {
  const int index = weeks_->findData(QVariant::fromValue(static_cast<qlonglong>(weeks)));
  if (index >= 0) weeks_->setCurrentIndex(index);
}

void FlowView::reload() { redraw(); }

namespace {

// What one redraw needs, computed in the thread pool from the snapshot
// (which nobody changes once read), or the sentence of the error that
// stopped it.
struct FlowRun {
  std::vector<FlowTicket> tickets;
  FlowHealth health;
  FlowScreen::Figures figures;
  FlowAnalysis analysis;
  QString error;
};

}  // namespace

bool FlowView::isComputing() const { return runs_.busy(); }

void FlowView::redraw() {
  std::shared_ptr<const ProjectSnapshot> project = snapshot();
  if (!project) {
    runs_.skip();
    return;
  }
  const Timestamp now = context_.now();
  const std::int64_t weeks = this->weeks();
  runs_.start(
      this,
      [project = std::move(project), now, weeks] {
        FlowRun run;
        try {
          run.tickets = flowTickets(*project);
          run.health = flowHealth(*project, now);
          run.figures = FlowScreen::figures(run.tickets, now, weeks);
          run.analysis = FlowAnalyses::analyse(run.tickets, run.figures, FlowAnalyses::wipLimitSum(*project),
                                               CivilDate::fromUtc(project->project.createdAt));
        } catch (const std::exception& error) {
          run.error = QString::fromStdString(error.what());
        }
        return run;
      },
      [this](const FlowRun& run) { showRun(run.tickets, run.health, run.figures, run.analysis, run.error); });
}

void FlowView::showRun(const std::vector<FlowTicket>& tickets, const FlowHealth& health,
                       const FlowScreen::Figures& figures, const FlowAnalysis& analysis, const QString& error) {
  if (!error.isEmpty()) {
    // A date outside the supported range: say so and keep the last drawing.
    problem_->setText(error);
    emit redrawn();
    return;
  }
  problem_->clear();
  tickets_ = tickets;
  figures_ = figures;
  analysis_ = analysis;
  tiles_->showFigures(figures_);
  health_->showHealth(health);

  throughput_->showWeeks(figures_.throughput, figures_.averageWeeklyThroughput());
  const CivilDate firstDay = figures_.today.addingDays(-(7 * figures_.weeks - 1));
  cycle_->showPoints(figures_.cyclePoints, figures_.summary, firstDay, figures_.today);
  cycleCard_->showEmpty(figures_.cyclePoints.empty());
  age_->showAges(figures_.ages, figures_.summary ? std::optional<double>(figures_.summary->p85) : std::nullopt);
  ageCard_->showEmpty(figures_.ages.empty());
  cumulative_->showDays(figures_.cumulative);

  arrivals_->showWeeks(analysis_.weeks);
  wipRun_->showDays(figures_.cumulative, analysis_.wipLimitSum);
  QStringList weekLabels, dayLabels, references;
  for (const WeekFlow& week : analysis_.weeks) weekLabels << qtext(week.end.displayShort());
  for (const FlowDay& day : figures_.cumulative) dayLabels << qtext(day.date.displayShort());
  for (const CycleTimePoint& point : figures_.cyclePoints) references << qtext(point.reference);
  throughputXmR_->showMeasure(analysis_.throughput, weekLabels, QStringLiteral("Tickets finished"));
  arrivalsXmR_->showMeasure(analysis_.arrivals, weekLabels, QStringLiteral("Tickets started"));
  wipXmR_->showMeasure(analysis_.wip, dayLabels, QStringLiteral("Tickets in progress"));
  cycleXmR_->showMeasure(analysis_.cycleTime, references, QStringLiteral("Days"));
  predictability_->setText(qtext(analysis_.predictabilitySentence));
  // Until days are chosen on the cumulative flow, the range is all of them.
  range_->setText(qtext(flowRangeSentence(analysis_.littlesLaw.range)) +
                  QStringLiteral(" Drag across the chart to choose other days."));
  littlesLaw_->setText(qtext(analysis_.littlesLawSentence));
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
  range_->setText(range ? qtext(flowRangeSentence(*range)) : QString());
  // Little's law over the same days.
  littlesLaw_->setText(range ? qtext(FlowAnalyses::littlesLawSentence(FlowAnalyses::littlesLaw(tickets_, *range)))
                             : QString());
}

}  // namespace orvane::app
