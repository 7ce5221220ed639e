#include "app/forecast/ForecastView.h"

#include <QAction>
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QToolButton>
#include <QDateEdit>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTabWidget>
#include <QVBoxLayout>
#include <cmath>
#include <exception>
#include <string>

#include "app/charts/FinishWeeksChart.h"
#include "app/charts/ThroughputHistoryChart.h"
#include "app/forecast/BacktestDialog.h"
#include "app/forecast/ByDateSection.h"
#include "app/forecast/ChanceText.h"
#include "app/forecast/ForecastLogPage.h"
#include "app/forecast/LogForecastDialog.h"
#include "app/shell/AppContext.h"
#include "app/widgets/Alert.h"
#include "core/accuracy/ForecastNarrative.h"
#include "core/accuracy/HistoryDepth.h"
#include "core/forecast/ForecastService.h"
#include "core/forecast/ForecastServiceError.h"
#include "core/forecast/ReproductionScript.h"
#include "engine/ColdStart.h"

namespace orvane::app {
namespace {

constexpr int levels[] = {50, 70, 85, 95};

// What a run in the thread pool hands back: the forecast, or the sentence of
// the error that stopped it; and for the whole project the by-date counts
// of the same simulation, or the sentence refusing their target day.
struct WhenRun {
  std::optional<WhenForecast> forecast;
  QString error;
  std::optional<ByDateForecast> byDate;
  QString byDateRefusal;
};

// One simulation for both forecasts when the target day is fine; when it
// is refused, the "When" forecast alone.
WhenRun runForecasts(const ForecastInput& input) {
  WhenRun run;
  try {
    if (input.target) {
      try {
        auto [when, byDate] = input.runWhenAndByDate();
        run.forecast = std::move(when);
        run.byDate = std::move(byDate);
        return run;
      } catch (const ForecastServiceError& refusal) {
        run.byDateRefusal = QString::fromStdString(refusal.what());
      }
    }
    run.forecast = input.runWhen();
  } catch (const std::exception& error) {
    run.error = QString::fromStdString(error.what());
  }
  return run;
}

QString weeksText(double weeks) {
  return weeks == std::floor(weeks) ? QString::number(static_cast<qint64>(weeks)) : QString::number(weeks, 'f', 1);
}

QLabel* gridLabel(const QString& text, const QString& name, Qt::Alignment alignment, QWidget* parent) {
  auto* label = new QLabel(text, parent);
  label->setObjectName(name);
  label->setAlignment(alignment | Qt::AlignVCenter);
  return label;
}

QFont scaled(QFont font, double factor, bool bold) {
  font.setPointSizeF(font.pointSizeF() * factor);
  font.setBold(bold);
  return font;
}

}  // namespace

ForecastView::ForecastView(AppContext& context, QWidget* parent) : ProjectViewBase(context, parent) {
  setObjectName(QStringLiteral("forecastView"));
  pages_ = new QStackedWidget(this);

  empty_ = new QLabel(this);
  empty_->setObjectName(QStringLiteral("forecastEmpty"));
  empty_->setWordWrap(true);
  empty_->setAlignment(Qt::AlignCenter);
  empty_->setMargin(40);
  pages_->addWidget(empty_);

  auto* scroll = new QScrollArea(this);
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setWidget(buildForecastPage());
  pages_->addWidget(scroll);

  // The scope stays above both pages, so an epic with nothing open can be
  // left for another.
  scopeRow_ = new QWidget(this);
  auto* scopeLayout = new QHBoxLayout(scopeRow_);
  scopeLayout->setContentsMargins(24, 12, 24, 0);
  scopeLayout->addWidget(new QLabel(QStringLiteral("Forecast for:"), scopeRow_));
  scope_ = new QComboBox(scopeRow_);
  scope_->setObjectName(QStringLiteral("forecastScope"));
  scope_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  scopeLayout->addWidget(scope_);
  scopeLayout->addSpacing(24);
  shareLabel_ = new QLabel(QStringLiteral("Share of the team's capacity:"), scopeRow_);
  scopeLayout->addWidget(shareLabel_);
  share_ = new QDoubleSpinBox(scopeRow_);
  share_->setObjectName(QStringLiteral("capacityShare"));
  // 0 stays reachable so that the service's refusal is what the user reads.
  share_->setRange(0, 100);
  share_->setDecimals(0);
  share_->setValue(100);
  share_->setSuffix(QStringLiteral("%"));
  scopeLayout->addWidget(share_);
  scopeProblem_ = new QLabel(scopeRow_);
  scopeProblem_->setObjectName(QStringLiteral("scopeProblem"));
  scopeProblem_->setStyleSheet(QStringLiteral("color: #b3261e;"));
  scopeLayout->addWidget(scopeProblem_);
  scopeLayout->addStretch(1);
  connect(scope_, qOverload<int>(&QComboBox::currentIndexChanged), this, [this] { recompute(); });
  connect(share_, qOverload<double>(&QDoubleSpinBox::valueChanged), this, [this] { recompute(); });

  // The weekly estimate that fills the weeks before the project began: the
  // forecast needs it most when nothing is finished yet, so it stays above
  // both pages.
  estimateRow_ = new QWidget(this);
  auto* estimateLayout = new QHBoxLayout(estimateRow_);
  estimateLayout->setContentsMargins(24, 4, 24, 0);
  estimateLayout->addWidget(
      new QLabel(QStringLiteral("Weekly estimate for the weeks before the project began:"), estimateRow_));
  estimate_ = new QLineEdit(estimateRow_);
  estimate_->setObjectName(QStringLiteral("weeklyEstimate"));
  estimate_->setMaximumWidth(90);
  estimateLayout->addWidget(estimate_);
  auto* setEstimateButton = new QPushButton(QStringLiteral("Set estimate"), estimateRow_);
  setEstimateButton->setObjectName(QStringLiteral("setEstimate"));
  estimateLayout->addWidget(setEstimateButton);
  auto* clearEstimateButton = new QPushButton(QStringLiteral("Use the default"), estimateRow_);
  clearEstimateButton->setObjectName(QStringLiteral("clearEstimate"));
  estimateLayout->addWidget(clearEstimateButton);
  estimateProblem_ = new QLabel(estimateRow_);
  estimateProblem_->setObjectName(QStringLiteral("estimateProblem"));
  estimateProblem_->setStyleSheet(QStringLiteral("color: #b3261e;"));
  estimateLayout->addWidget(estimateProblem_);
  estimateLayout->addStretch(1);
  connect(setEstimateButton, &QPushButton::clicked, this, [this] { setEstimate(false); });
  connect(estimate_, &QLineEdit::returnPressed, this, [this] { setEstimate(false); });
  connect(clearEstimateButton, &QPushButton::clicked, this, [this] { setEstimate(true); });

  auto* forecastTab = new QWidget(this);
  auto* layout = new QVBoxLayout(forecastTab);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(scopeRow_);
  layout->addWidget(estimateRow_);
  layout->addWidget(pages_, 1);
  logPage_ = new ForecastLogPage(context_, this);
  tabs_ = new QTabWidget(this);
  tabs_->setObjectName(QStringLiteral("forecastTabs"));
  tabs_->setDocumentMode(true);
  tabs_->addTab(forecastTab, QStringLiteral("Forecast"));
  tabs_->addTab(logPage_, QStringLiteral("Log and accuracy"));
  auto* outer = new QVBoxLayout(this);
  outer->setContentsMargins(0, 0, 0, 0);
  outer->addWidget(tabs_);
  connect(this, &ForecastView::forecastShown, this, &ForecastView::updateLogButton);
  connect(byDate_, &ByDateSection::logRequested, this, [this] {
    if (project() && byDate_->shownForecast()) askToLogForecast(context_, *project(), *byDate_->shownForecast(), this);
  });
}

ForecastView::~ForecastView() = default;

bool ForecastView::isComputing() const { return runs_.busy() || byDate_->isComputing(); }

QWidget* ForecastView::buildForecastPage() {
  auto* page = new QWidget;
  auto* column = new QVBoxLayout(page);
  column->setContentsMargins(24, 16, 24, 16);
  column->setSpacing(10);

  heading_ = new QLabel(QStringLiteral("When will it be done?"), page);
  heading_->setFont(scaled(heading_->font(), 1.5, true));
  column->addWidget(heading_);
  backlog_ = new QLabel(page);
  backlog_->setObjectName(QStringLiteral("forecastBacklog"));
  column->addWidget(backlog_);

  // What-if: the team's weekly throughput changed, tickets added or removed.
  whatIfRow_ = new QWidget(page);
  auto* whatIf = new QHBoxLayout(whatIfRow_);
  whatIf->setContentsMargins(0, 0, 0, 0);
  whatIf->addWidget(new QLabel(QStringLiteral("Throughput change:"), page));
  throughput_ = new QSlider(Qt::Horizontal, page);
  throughput_->setObjectName(QStringLiteral("throughputChange"));
  throughput_->setRange(-50, 100);
  throughput_->setSingleStep(5);
  throughput_->setPageStep(10);
  throughput_->setTickInterval(25);
  throughput_->setTickPosition(QSlider::TicksBelow);
  throughput_->setMinimumWidth(220);
  whatIf->addWidget(throughput_, 1);
  throughputValue_ = new QLabel(QStringLiteral("+100%"), page);
  throughputValue_->setObjectName(QStringLiteral("throughputChangeValue"));
  throughputValue_->setMinimumWidth(throughputValue_->sizeHint().width());
  throughputValue_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  whatIf->addWidget(throughputValue_);
  whatIf->addSpacing(24);
  whatIf->addWidget(new QLabel(QStringLiteral("Backlog change:"), page));
  backlogChange_ = new QSpinBox(page);
  backlogChange_->setObjectName(QStringLiteral("backlogChange"));
  backlogChange_->setRange(-100000, 100000);
  backlogChange_->setSuffix(QStringLiteral(" tickets"));
  whatIf->addWidget(backlogChange_);
  whatIf->addStretch(1);
  column->addWidget(whatIfRow_);
  connect(throughput_, &QSlider::valueChanged, this, [this] { recompute(); });
  connect(backlogChange_, qOverload<int>(&QSpinBox::valueChanged), this, [this] { recompute(); });

  // The levels: one row each, numbers right-aligned in their columns.
  auto* grid = new QWidget(page);
  levels_ = new QGridLayout(grid);
  levels_->setContentsMargins(0, 4, 0, 4);
  levels_->setHorizontalSpacing(28);
  levels_->setVerticalSpacing(4);
  const QFont headerFont = scaled(font(), 1.0, true);
  const QStringList headers{QStringLiteral("Confidence"), QStringLiteral("Weeks from today"),
                            QStringLiteral("Finish date")};
  for (int c = 0; c < headers.size(); ++c) {
    auto* header = gridLabel(headers[c], QString(), c == 2 ? Qt::AlignLeft : Qt::AlignRight, grid);
    header->setFont(headerFont);
    levels_->addWidget(header, 0, c);
  }
  const QFont numberFont = scaled(font(), 1.15, false);
  for (int row = 0; row < 4; ++row) {
    const QString level = QString::number(levels[row]);
    const QString names[] = {QStringLiteral("level%1Name").arg(level), QStringLiteral("level%1Weeks").arg(level),
                             QStringLiteral("level%1Date").arg(level)};
    for (int c = 0; c < 3; ++c) {
      auto* cell = gridLabel(c == 0 ? level + QLatin1Char('%') : QString(), names[c],
                             c == 2 ? Qt::AlignLeft : Qt::AlignRight, grid);
      cell->setFont(numberFont);
      levels_->addWidget(cell, row + 1, c);
    }
  }
  levels_->setColumnStretch(3, 1);
  column->addWidget(grid);

  inconclusive_ = new QLabel(page);
  inconclusive_->setObjectName(QStringLiteral("forecastInconclusive"));
  inconclusive_->setWordWrap(true);
  inconclusive_->setStyleSheet(QStringLiteral("color: #b3261e;"));
  column->addWidget(inconclusive_);

  // The committed date, set and cleared through the forecast service.
  auto* commitmentRow = new QHBoxLayout;
  commitment_ = new QLabel(page);
  commitment_->setObjectName(QStringLiteral("forecastCommitment"));
  commitmentRow->addWidget(commitment_);
  commitmentRow->addSpacing(16);
  commitmentControls_ = new QWidget(page);
  auto* controls = new QHBoxLayout(commitmentControls_);
  controls->setContentsMargins(0, 0, 0, 0);
  commitmentDay_ = new QDateEdit(page);
  commitmentDay_->setObjectName(QStringLiteral("commitmentDay"));
  commitmentDay_->setCalendarPopup(true);
  commitmentDay_->setDisplayFormat(QStringLiteral("d MMM yyyy"));
  controls->addWidget(commitmentDay_);
  auto* setCommitmentButton = new QPushButton(QStringLiteral("Set committed date"), page);
  setCommitmentButton->setObjectName(QStringLiteral("setCommitment"));
  controls->addWidget(setCommitmentButton);
  clearCommitment_ = new QPushButton(QStringLiteral("Clear"), page);
  clearCommitment_->setObjectName(QStringLiteral("clearCommitment"));
  controls->addWidget(clearCommitment_);
  commitmentRow->addWidget(commitmentControls_);
  commitmentRow->addStretch(1);
  column->addLayout(commitmentRow);
  connect(setCommitmentButton, &QPushButton::clicked, this, [this] { setCommitment(false); });
  connect(clearCommitment_, &QPushButton::clicked, this, [this] { setCommitment(true); });

  narrative_ = new QLabel(page);
  narrative_->setObjectName(QStringLiteral("forecastNarrative"));
  narrative_->setWordWrap(true);
  narrative_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  column->addWidget(narrative_);

  // Keep this forecast, rebuild its numbers elsewhere, or see how a
  // forecast of a past day would have done.
  auto* logRow = new QHBoxLayout;
  logWhen_ = new QPushButton(QStringLiteral("Log this forecast…"), page);
  logWhen_->setObjectName(QStringLiteral("logWhen"));
  logWhen_->setEnabled(false);
  logRow->addWidget(logWhen_);
  connect(logWhen_, &QPushButton::clicked, this, [this] {
    if (project() && shownWhen_) askToLogForecast(context_, *project(), *shownWhen_, this);
  });
  logAction_ = new QAction(QStringLiteral("Log this forecast…"), this);
  logAction_->setEnabled(false);
  connect(logAction_, &QAction::triggered, logWhen_, &QPushButton::click);
  copyScript_ = new QAction(QStringLiteral("Copy reproduction script"), this);
  copyScript_->setObjectName(QStringLiteral("copyReproductionScript"));
  copyScript_->setToolTip(
      QStringLiteral("A short Python/NumPy script that rebuilds this forecast and prints the same four levels."));
  copyScript_->setEnabled(false);
  connect(copyScript_, &QAction::triggered, this, [this] { copyReproductionScript(); });
  backtest_ = new QAction(QStringLiteral("How would this forecast have done?…"), this);
  backtest_->setObjectName(QStringLiteral("backtest"));
  backtest_->setEnabled(false);
  connect(backtest_, &QAction::triggered, this, [this] { openBacktest(); });
  for (QAction* action : {copyScript_, backtest_}) {
    auto* button = new QToolButton(page);
    button->setDefaultAction(action);
    button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    logRow->addWidget(button);
  }
  copied_ = new QLabel(page);
  copied_->setObjectName(QStringLiteral("scriptCopied"));
  logRow->addSpacing(8);
  logRow->addWidget(copied_);
  logRow->addStretch(1);
  column->addLayout(logRow);

  chart_ = new FinishWeeksChart(page);
  column->addWidget(chart_, 1);

  byDate_ = new ByDateSection(page);
  column->addWidget(byDate_);
  connect(byDate_, &ByDateSection::targetChanged, this, [this] { runByDate(); });
  connect(byDate_, &ByDateSection::shown, this, [this] { emit forecastShown(); });

  history_ = new ThroughputHistoryChart(page);
  column->addWidget(history_);
  historyCaution_ = new QLabel(page);
  historyCaution_->setObjectName(QStringLiteral("historyCaution"));
  historyCaution_->setWordWrap(true);
  historyCaution_->setStyleSheet(QStringLiteral("color: #a06800;"));
  column->addWidget(historyCaution_);
  return page;
}

void ForecastView::showEmpty(const QString& text) {
  shownWhen_.reset();
  empty_->setText(text);
  pages_->setCurrentIndex(0);
  shownInput_.reset();
  copyScript_->setEnabled(false);
  copied_->clear();
  // A past day may have had work even when nothing is open now.
  backtest_->setEnabled(project().has_value());
}

void ForecastView::reload() {
  const auto snap = snapshot();
  logPage_->showProject(snap.get(), context_.now());
  scopeRow_->setVisible(snap != nullptr);
  estimateRow_->setVisible(snap != nullptr);
  if (!snap) {
    showEmpty(QStringLiteral("Choose a project to see when its work will be done."));
    return;
  }
  open_ = snap->remainingBacklog();
  projectInput_.reset();
  projectName_ = snap->project.name;
  previous_ = latestBefore(forecastHistory(*snap), context_.now());
  fillScopes(*snap);
  estimateProblem_->clear();
  estimate_->setText(snap->project.fillerLambda ? QString::number(*snap->project.fillerLambda) : QString());
  estimate_->setPlaceholderText(QStringLiteral("default %1").arg(ColdStart::defaultLambda));
  if (open_ == 0) {
    runs_.skip();
    showEmpty(
        QStringLiteral("Nothing is open in this project, so there is nothing to forecast.\n"
                       "Add tickets to the board, and this view will say when they will be done."));
    emit forecastShown();
    return;
  }
  recompute();
}

void ForecastView::fillScopes(const ProjectSnapshot& project) {
  const QString chosen = scope_->currentData().toString();
  // Refilling is no choice of the user's: the caller recomputes once after.
  const QSignalBlocker quiet(scope_);
  epics_ = project.epics;
  scope_->clear();
  scope_->addItem(QStringLiteral("The whole project"), QString());
  for (const Epic& epic : epics_)
    scope_->addItem(QStringLiteral("Epic: ") + QString::fromStdString(epic.name),
                    QString::fromStdString(epic.id.text()));
  scope_->setCurrentIndex(std::max(0, scope_->findData(chosen)));
}

void ForecastView::showEpic(const Uuid& epic) {
  const QString id = QString::fromStdString(epic.text());
  // The scope list is as of the last reload: an epic made since is not in it.
  if (scope_->findData(id) < 0) reloadNow();
  if (const int index = scope_->findData(id); index >= 0) scope_->setCurrentIndex(index);
}

const Epic* ForecastView::chosenEpic() const {
  const QString id = scope_->currentData().toString();
  for (const Epic& epic : epics_)
    if (QString::fromStdString(epic.id.text()) == id) return &epic;
  return nullptr;
}

void ForecastView::recompute() {
  if (!project()) return;
  const Epic* epic = chosenEpic();
  shareLabel_->setVisible(epic != nullptr);
  share_->setVisible(epic != nullptr);
  // An epic runs at its share of the team; the what-if and the committed
  // date belong to the whole project.
  whatIfRow_->setVisible(epic == nullptr);
  byDate_->setVisible(epic == nullptr);
  commitmentControls_->setVisible(epic == nullptr);
  scopeProblem_->clear();
  const int percent = throughput_->value();
  throughputValue_->setText((percent > 0 ? QStringLiteral("+") : QString()) + QString::number(percent) +
                            QLatin1Char('%'));
  // The inputs are read here, on this thread, where the store lives; the
  // simulation itself touches nothing shared.
  ForecastInput input;
  try {
    ForecastService forecasts(context_.store());
    const CivilDate today = ForecastService::todayUTC(context_.now());
    input = epic != nullptr ? forecasts.input(*epic, share_->value() / 100, today, context_.calendar())
                            : projectInput(today).withWhatIf(percent, backlogChange_->value());
  } catch (const std::exception& error) {
    // A refused share: the sentence goes beside the field, the last forecast stays.
    runs_.skip();
    scopeProblem_->setText(QString::fromStdString(error.what()));
    emit forecastShown();
    return;
  }
  // How many by a date follows the same what-if and backlog change, from
  // the same simulation.
  if (epic == nullptr) {
    byDate_->suggestTarget(input.asOf);
    byDate_->cancelRun();
    input.target = byDate_->target();
  }
  runs_.start(
      this, [input] { return runForecasts(input); },
      [this, input](const WhenRun& run) {
        const std::optional<CivilDate>& target = input.target;
        if (run.forecast) {
          shownInput_ = input;
          showForecast(*run.forecast);
        } else {
          showEmpty(run.error);
        }
        if (target) {
          if (run.byDate) {
            byDate_->showRun(*target, *run.byDate);
          } else {
            byDate_->showRefusal(*target, run.byDateRefusal.isEmpty() ? run.error : run.byDateRefusal);
          }
        }
        emit forecastShown();
      });
  updateLogButton();
}

void ForecastView::showForecast(const WhenForecast& forecast) {
  const Epic* epic = chosenEpic();
  // Logged runs are of the whole project: an epic has no previous run.
  const std::vector<std::string> sentences =
      ForecastNarrative::lines(forecast, epic != nullptr ? std::nullopt : previous_);
  if (epic != nullptr && forecast.backlog <= 0) {
    showEmpty(QStringLiteral("Nothing is open in the epic “%1”. Choose another epic or the whole project above.")
                  .arg(QString::fromStdString(epic->name)));
    return;
  }
  if (forecast.dates.size() < 4) {
    // No finished work and no estimate: the simulations never finish.
    showEmpty(QString::fromStdString(sentences.front()) +
              QStringLiteral("\nFinish tickets on the board, or give the team's weekly estimate "
                             "above, and the dates appear here."));
    return;
  }
  pages_->setCurrentIndex(1);
  copyScript_->setEnabled(shownInput_.has_value());
  backtest_->setEnabled(true);
  copied_->clear();
  // Logged runs belong to the project: an epic's forecast is not logged.
  shownWhen_ = epic != nullptr ? std::nullopt : std::optional(forecast);
  heading_->setText(epic != nullptr
                        ? QStringLiteral("When will the epic “%1” be done?").arg(QString::fromStdString(epic->name))
                        : QStringLiteral("When will it be done?"));
  const std::int64_t change = epic != nullptr ? 0 : backlogChange_->value();
  // The backlog as the command line words it: the open tickets, or the
  // scenario's total with its change.
  const auto tickets = [](std::int64_t n, const char* noun) {
    return QStringLiteral("%1 %2%3").arg(n).arg(QLatin1String(noun)).arg(n == 1 ? "" : "s");
  };
  QString backlog = QStringLiteral("Backlog: ");
  if (epic != nullptr) {
    backlog += tickets(forecast.backlog, "open ticket") +
               QStringLiteral(", at %1% of the team's throughput").arg(share_->value());
  } else if (change == 0) {
    backlog += tickets(open_, "open ticket");
  } else {
    backlog += tickets(forecast.backlog, "ticket") +
               QStringLiteral(" (%1 open, %2%3 in this scenario)").arg(open_).arg(change > 0 ? "+" : "").arg(change);
  }
  backlog += QStringLiteral(", as of %1.").arg(QString::fromStdString(forecast.asOf.displayText()));
  backlog_->setText(backlog);

  for (const int level : levels) {
    const QString name = QString::number(level);
    findChild<QLabel*>(QStringLiteral("level%1Weeks").arg(name))->setText(weeksText(forecast.periods.at(level)));
    findChild<QLabel*>(QStringLiteral("level%1Date").arg(name))
        ->setText(QString::fromStdString(forecast.dates.at(level).displayText()));
  }
  inconclusive_->setVisible(forecast.inconclusive);
  inconclusive_->setText(QStringLiteral("Inconclusive: some simulations did not finish within %1 weeks; levels at "
                                        "or near that limit are only lower bounds.")
                             .arg(ForecastSettings::maxPeriods));

  if (forecast.commitment && forecast.commitmentConfidencePct) {
    const double pct = *forecast.commitmentConfidencePct;
    commitment_->setText(
        QStringLiteral("%1 %2%3<span style=\"color:%4; font-weight:bold\">%5</span> "
                       "chance of finishing by then.")
            .arg(epic != nullptr ? QStringLiteral("Due date") : QStringLiteral("Committed date"),
                 QString::fromStdString(forecast.commitment->displayText()),
                 *forecast.commitment < forecast.asOf ? QStringLiteral(" has passed: ") : QStringLiteral(": "),
                 chanceColour(pct).name(), chanceText(pct)));
    const CivilDate& day = *forecast.commitment;
    commitmentDay_->setDate(QDate(static_cast<int>(day.year), static_cast<int>(day.month), static_cast<int>(day.day)));
  } else {
    commitment_->setText(epic != nullptr ? QStringLiteral("The epic has no due date.")
                                         : QStringLiteral("No committed date."));
    const CivilDate& p85 = forecast.dates.at(85);
    commitmentDay_->setDate(QDate(static_cast<int>(p85.year), static_cast<int>(p85.month), static_cast<int>(p85.day)));
  }
  clearCommitment_->setEnabled(forecast.commitment.has_value());

  QStringList lines;
  for (const std::string& sentence : sentences) lines << QString::fromStdString(sentence);
  narrative_->setText(lines.join(QLatin1Char('\n')));
  // Only the project's committed date: an epic's due date has its own
  // sentence and would crowd the weeks.
  chart_->showHistogram(forecast.histogram, forecast.periods, epic == nullptr ? forecast.commitment : std::nullopt);

  history_->showHistory(forecast.history);
  const std::int64_t realWeeks = HistoryDepth::realWeeks(forecast.history);
  historyCaution_->setVisible(realWeeks < HistoryDepth::cautionBelowWeeks);
  historyCaution_->setText(QStringLiteral("Only %1 week%2 of real history exist, so read the trends with caution.")
                               .arg(realWeeks)
                               .arg(realWeeks == 1 ? "" : "s"));
}

void ForecastView::setCommitment(bool clear) {
  if (!project()) return;
  std::optional<Timestamp> day;
  if (!clear) {
    const QDate date = commitmentDay_->date();
    day = CivilDate(date.year(), date.month(), date.day()).utcMidnight();
  }
  // One step of Undo, like every other change of the project.
  context_.perform(clear ? QStringLiteral("Clear committed date") : QStringLiteral("Set committed date"),
                   [&](BoardService&) { ForecastService(context_.store()).setCommitment(*project(), day); }, this);
}

void ForecastView::copyReproductionScript() {
  if (!shownInput_) return;
  try {
    QGuiApplication::clipboard()->setText(QString::fromStdString(reproductionScript(*shownInput_)));
  } catch (const std::exception& error) {
    showAlert(this, QString::fromStdString(error.what()));
    return;
  }
  copied_->setText(
      QStringLiteral("Copied. Save it as a .py file and run it with Python 3 and NumPy: it prints these four levels."));
}

QDialog* ForecastView::openBacktest() {
  if (!project()) return nullptr;
  auto* dialog = new BacktestDialog(context_, *project(), this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->open();
  return dialog;
}

}  // namespace orvane::app

namespace orvane::app {

ForecastInput ForecastView::projectInput(CivilDate today) {
  if (!projectInput_ || projectInputOf_ != *project() || projectInput_->asOf != today) {
    projectInput_ = ForecastService(context_.store()).input(*project(), today);
    projectInputOf_ = *project();
  }
  return *projectInput_;
}

void ForecastView::runByDate() {
  if (!project() || chosenEpic() != nullptr) return;
  ForecastInput input;
  try {
    input = projectInput(ForecastService::todayUTC(context_.now()))
                .withWhatIf(throughput_->value(), backlogChange_->value());
  } catch (const std::exception& error) {
    showAlert(this, QString::fromStdString(error.what()));
    return;
  }
  byDate_->run(input);
}

void ForecastView::setEstimate(bool clear) {
  if (!project()) return;
  estimateProblem_->clear();
  std::optional<double> weekly;
  try {
    if (!clear) {
      bool ok = false;
      const double value = estimate_->text().trimmed().toDouble(&ok);
      if (!ok) throw ForecastServiceError(ForecastServiceError::Case::invalidEstimate);
      weekly = value;
    }
    ForecastService::checkEstimate(weekly);
  } catch (const std::exception& error) {
    // The refusal stays beside the field; nothing was stored.
    estimateProblem_->setText(QString::fromStdString(error.what()));
    return;
  }
  context_.perform(clear ? QStringLiteral("Use the default weekly estimate") : QStringLiteral("Set weekly estimate"),
                   [&](BoardService&) { ForecastService(context_.store()).setColdStartEstimate(*project(), weekly); },
                   this);
}

void ForecastView::updateLogButton() {
  logWhen_->setVisible(chosenEpic() == nullptr);
  logWhen_->setEnabled(shownWhen_.has_value() && !runs_.busy());
  logAction_->setEnabled(logWhen_->isEnabled() && chosenEpic() == nullptr);
}

}  // namespace orvane::app
