#include <QApplication>
#include <QBarCategoryAxis>
#include <QClipboard>
#include <QTemporaryDir>
#include <QBarSet>
#include <QChart>
#include <QComboBox>
#include <QDateEdit>
#include <QDateTime>
#include <QDateTimeAxis>
#include <QDoubleSpinBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QLineSeries>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QSpinBox>
#include <QStackedBarSeries>
#include <QTableWidget>
#include <QTest>

#include "app/AppFixture.h"
#include "app/CommandLine.h"
#include "app/charts/FinishWeeksChart.h"
#include "app/charts/ForecastHistoryChart.h"
#include "app/charts/ThroughputHistoryChart.h"
#include "app/forecast/BacktestDialog.h"
#include "app/forecast/ForecastView.h"
#include "app/forecast/LogForecastDialog.h"
#include "app/shell/UndoHistory.h"
#include "core/accuracy/ForecastNarrative.h"
#include "core/forecast/ForecastService.h"
#include "core/model/Project.h"
#include "engine/ForecastResult.h"

using namespace orvane;
using namespace orvane::app;
using orvane::testing::AppFixture;
using orvane::testing::cliJson;

namespace {

// Waits until the view shows its newest run (the simulation runs in the
// thread pool).
void settle(ForecastView& view) { orvane::testing::awaitNewest(view, &ForecastView::forecastShown); }

// Shows `project` in `view` with its first run in.
void open(ForecastView& view, const Uuid& project) {
  view.showProject(project);
  view.reloadNow();
  settle(view);
}

QString label(ForecastView& view, const QString& name) { return orvane::testing::labelText(view, name); }

QString weeks(double w) {
  return w == std::floor(w) ? QString::number(static_cast<qint64>(w)) : QString::number(w, 'f', 1);
}

// The four levels as the view must show them: the forecast service's
// numbers, the same `orvane-cli forecast when` prints for that day.
void expectLevels(ForecastView& view, const WhenForecast& expected) {
  for (const int level : {50, 70, 85, 95}) {
    QCOMPARE(label(view, QStringLiteral("level%1Weeks").arg(level)), weeks(expected.periods.at(level)));
    QCOMPARE(label(view, QStringLiteral("level%1Date").arg(level)),
             QString::fromStdString(expected.dates.at(level).displayText()));
  }
}

}  // namespace

class ForecastViewTest : public QObject {
  Q_OBJECT

 private slots:
  void showsTheServiceForecastAndFollowsTheWhatIf();
  void committedDateIsSetAndClearedThroughTheService();
  void epicScopeRunsAtTheShareAndRefusesABadOne();
  void saysWhatToDoWhenNothingIsOpen();
  // Every number of the view against the real orvane-cli.
  void everyNumberEqualsTheCommandLineOnTheDemo();
  void everyNumberEqualsTheCommandLineOnAGeneratedProject();
  void byDateShowsTheServiceCountsAndItsRefusals();
  void historyIsColouredByProvenanceAndTheEstimateIsStored();
  // The copied script, run by the system's NumPy, prints the view's levels.
  void copiedScriptRebuildsTheForecastOnScreen();
  void backtestEqualsTheCommandLineAndRefusesFutureDays();
  // The log and accuracy page.
  void logsTheForecastOnScreenAsOneUndoableStep();
  void logPageEqualsTheCommandLine();
  void notesAreEditedInPlaceAndRunsDeletedAfterConfirmation();
};

void ForecastViewTest::showsTheServiceForecastAndFollowsTheWhatIf() {
  AppFixture f;
  const Uuid demo = f.board().loadDemoProject(f.clock).id;
  ForecastService service(f.t.store);
  const CivilDate today = ForecastService::todayUTC(f.clock);
  // A run logged a week ago: the narrative compares against it.
  const Timestamp weekAgo = orvane::testing::at(2026, 2, 25, 10);
  service.log(service.input(demo, ForecastService::todayUTC(weekAgo)).runWhen(), demo, "", weekAgo);

  ForecastView view(*f.context, nullptr);
  view.resize(1200, 900);
  open(view, demo);

  const WhenForecast base = service.input(demo, today).runWhen();
  expectLevels(view, base);
  const auto previous = latestBefore(forecastHistory(f.snapshot(demo)), f.clock);
  QVERIFY(previous.has_value());
  QStringList sentences;
  for (const std::string& line : ForecastNarrative::lines(base, previous)) sentences << QString::fromStdString(line);
  QCOMPARE(label(view, "forecastNarrative"), sentences.join('\n'));
  QVERIFY(label(view, "forecastNarrative").contains("Since the forecast of"));

  // The chart holds every simulation once, a bar per week of the histogram,
  // and writes each level under the week it is reached in.
  QChart* chart = view.findChild<FinishWeeksChart*>()->chart();
  auto* series = qobject_cast<QStackedBarSeries*>(chart->series().value(0));
  QVERIFY(series != nullptr);
  qreal simulations = 0;
  for (QBarSet* set : series->barSets()) simulations += set->sum();
  QCOMPARE(simulations, static_cast<qreal>(base.iterations));
  auto* weeksAxis = qobject_cast<QBarCategoryAxis*>(chart->axes(Qt::Horizontal).value(0));
  QCOMPARE(weeksAxis->count(), static_cast<int>(base.histogram.size()));
  for (const int level : {50, 70, 85, 95}) {
    const QString week = QString::number(static_cast<qint64>(std::ceil(base.periods.at(level))));
    bool marked = false;
    for (const QString& category : weeksAxis->categories())
      marked |= category.startsWith(week + "<br>") && category.contains(QString::number(level) + '%');
    QVERIFY2(marked, qPrintable(week));
  }

  // Table: slider and backlog change against the service's what-if run.
  struct Case {
    int percent;
    int change;
  };
  for (const Case c : {Case{30, 0}, Case{-30, 0}, Case{100, 5}, Case{-50, -3}}) {
    view.findChild<QSlider*>("throughputChange")->setValue(c.percent);
    view.findChild<QSpinBox*>("backlogChange")->setValue(c.change);
    settle(view);
    const WhenForecast whatIf = service.input(demo, today, c.percent, std::nullopt, c.change).runWhen();
    QVERIFY(whatIf.dates != base.dates);
    expectLevels(view, whatIf);
    const QString backlog = c.change == 0 ? QStringLiteral("Backlog: %1 open tickets,").arg(whatIf.backlog)
                                          : QStringLiteral("Backlog: %1 tickets (%2 open, %3%4 in this scenario),")
                                                .arg(whatIf.backlog)
                                                .arg(base.backlog)
                                                .arg(c.change > 0 ? "+" : "")
                                                .arg(c.change);
    QVERIFY2(label(view, "forecastBacklog").startsWith(backlog), qPrintable(label(view, "forecastBacklog")));
  }
}

void ForecastViewTest::committedDateIsSetAndClearedThroughTheService() {
  AppFixture f;
  const Uuid demo = f.board().loadDemoProject(f.clock).id;
  ForecastView view(*f.context, nullptr);
  open(view, demo);

  // Two days before the second week of the histogram ends: that week is
  // the first to end after it.
  ForecastService service(f.t.store);
  const CivilDate today = ForecastService::todayUTC(f.clock);
  const CivilDate secondWeek = service.input(demo, today).runWhen().histogram.at(1).date;
  const CivilDate committed = CivilDate::fromDaysSinceEpoch(secondWeek.daysSinceEpoch() - 2);
  view.findChild<QDateEdit*>("commitmentDay")
      ->setDate(
          QDate(static_cast<int>(committed.year), static_cast<int>(committed.month), static_cast<int>(committed.day)));
  view.findChild<QPushButton*>("setCommitment")->click();
  view.reloadNow();
  settle(view);
  QCOMPARE(f.snapshot(demo).project.committedDate, std::optional(committed.utcMidnight()));
  const WhenForecast expected = service.input(demo, today).runWhen();
  QVERIFY(expected.commitmentConfidencePct.has_value());
  const QString chance = QString::number(*expected.commitmentConfidencePct, 'f', 1) + '%';
  QVERIFY2(label(view, "forecastCommitment").contains(QString::fromStdString(committed.displayText())),
           qPrintable(label(view, "forecastCommitment")));
  QVERIFY2(label(view, "forecastCommitment").contains(chance), qPrintable(chance));

  // The chart marks the first week ending on or after the committed date,
  // and hovering a bar gives its day and the share finished by then.
  auto* chart = view.findChild<FinishWeeksChart*>();
  auto* weeksAxis = qobject_cast<QBarCategoryAxis*>(chart->chart()->axes(Qt::Horizontal).value(0));
  QStringList marked;
  for (const QString& category : weeksAxis->categories())
    if (category.contains("committed")) marked << category;
  const auto committedBin = std::find_if(expected.histogram.begin(), expected.histogram.end(),
                                         [&](const HistogramBin& bin) { return !(bin.date < committed); });
  QCOMPARE(committedBin - expected.histogram.begin(), 1);
  QCOMPARE(marked.size(), 1);
  QVERIFY(marked.front().startsWith(QString::number(committedBin->period) + "<br>"));
  const HistogramBin& first = expected.histogram.front();
  QCOMPARE(chart->hoverText(0), QStringLiteral("Week %1, by %2: %3% of the simulations are finished.")
                                    .arg(first.period)
                                    .arg(QString::fromStdString(first.date.displayText()))
                                    .arg(first.cumulativePct, 0, 'f', 2));

  view.findChild<QPushButton*>("clearCommitment")->click();
  view.reloadNow();
  settle(view);
  QCOMPARE(f.snapshot(demo).project.committedDate, std::nullopt);
  QCOMPARE(label(view, "forecastCommitment"), QString("No committed date."));
  QVERIFY(!view.findChild<QPushButton*>("clearCommitment")->isEnabled());

  // Setting and clearing are steps of Undo like any other change.
  QCOMPARE(f.context->undoHistory().undoLabel(), QString("Clear committed date"));
  f.context->undo(nullptr);
  QCOMPARE(f.snapshot(demo).project.committedDate, std::optional(committed.utcMidnight()));
  f.context->undo(nullptr);
  QCOMPARE(f.snapshot(demo).project.committedDate, std::nullopt);
}

void ForecastViewTest::epicScopeRunsAtTheShareAndRefusesABadOne() {
  AppFixture f;
  const Uuid demo = f.board().loadDemoProject(f.clock).id;
  ForecastService service(f.t.store);
  const CivilDate today = ForecastService::todayUTC(f.clock);
  std::optional<Epic> busy;
  for (const Epic& epic : f.snapshot(demo).epics)
    if (!busy && service.input(epic, 1, today, f.context->calendar()).backlog > 0) busy = epic;
  QVERIFY(busy.has_value());

  ForecastView view(*f.context, nullptr);
  open(view, demo);
  auto* scope = view.findChild<QComboBox*>("forecastScope");
  scope->setCurrentIndex(scope->findText(QString::fromStdString("Epic: " + busy->name)));
  auto* share = view.findChild<QDoubleSpinBox*>("capacityShare");
  share->setValue(40);
  settle(view);
  const WhenForecast expected = service.input(*busy, 0.4, today, f.context->calendar()).runWhen();
  expectLevels(view, expected);
  QVERIFY(label(view, "forecastBacklog").contains("at 40% of the team's throughput"));

  // Outside 0 < share <= 100 the service refuses, in its words; the last
  // forecast stays on screen.
  share->setValue(0);
  settle(view);
  QCOMPARE(label(view, "scopeProblem"), QString("The share of capacity must be above 0 and at most 100 per cent."));
  expectLevels(view, expected);
  share->setValue(100);
  settle(view);
  QCOMPARE(label(view, "scopeProblem"), QString());
  expectLevels(view, service.input(*busy, 1, today, f.context->calendar()).runWhen());
}

void ForecastViewTest::saysWhatToDoWhenNothingIsOpen() {
  AppFixture f;
  const Uuid empty = f.board().createProject("Quiet", std::nullopt, f.clock).id;
  ForecastView view(*f.context, nullptr);
  open(view, empty);
  QVERIFY(label(view, "forecastEmpty").contains("Add tickets to the board"));
}

// ---- The view against `orvane-cli forecast when|epic --json` -------------

namespace {

QJsonObject cliForecast(AppFixture& f, const QStringList& arguments) {
  return cliJson(f, QStringList{"forecast"} + arguments).object();
}

QString dayText(const QJsonValue& iso) {
  return QString::fromStdString(CivilDate::fromIso(iso.toString().toStdString()).value().displayText());
}

// Levels, backlog, committed date and chance, and the chart's bars (count,
// day and cumulative chance of each week) as the command line gives them.
void expectCommandLineNumbers(ForecastView& view, const QJsonObject& cli) {
  QCOMPARE(cli["iterations"].toInt(), 10000);
  const QJsonObject periods = cli["periods"].toObject();
  const QJsonObject dates = cli["dates"].toObject();
  for (const QString level : {"50", "70", "85", "95"}) {
    QCOMPARE(label(view, "level" + level + "Weeks"), weeks(periods[level].toDouble()));
    QCOMPARE(label(view, "level" + level + "Date"), dayText(dates[level]));
  }
  const QString backlog = label(view, "forecastBacklog");
  QVERIFY2(backlog.startsWith(QStringLiteral("Backlog: %1 ").arg(cli["backlog"].toInteger())), qPrintable(backlog));
  QVERIFY2(backlog.endsWith(QStringLiteral("as of %1.").arg(dayText(cli["asOf"]))), qPrintable(backlog));
  QCOMPARE(view.findChild<QLabel*>("forecastInconclusive")->isVisibleTo(&view), cli["inconclusive"].toBool());
  const QString commitment = label(view, "forecastCommitment");
  if (cli["commitmentConfidencePct"].isDouble()) {
    QVERIFY2(commitment.contains(dayText(cli["commitment"])), qPrintable(commitment));
    QVERIFY2(commitment.contains(QString::number(cli["commitmentConfidencePct"].toDouble(), 'f', 1) + '%'),
             qPrintable(commitment));
  } else {
    QVERIFY2(commitment.startsWith("No committed date") || commitment.startsWith("The epic has no due date"),
             qPrintable(commitment));
  }

  auto* chart = view.findChild<FinishWeeksChart*>();
  auto* series = qobject_cast<QStackedBarSeries*>(chart->chart()->series().value(0));
  QVERIFY(series != nullptr);
  auto* weeksAxis = qobject_cast<QBarCategoryAxis*>(chart->chart()->axes(Qt::Horizontal).value(0));
  const QJsonArray bins = cli["histogram"].toArray();
  QCOMPARE(weeksAxis->count(), static_cast<int>(bins.size()));
  for (int i = 0; i < bins.size(); ++i) {
    const QJsonObject bin = bins[i].toObject();
    qreal count = 0;
    for (QBarSet* set : series->barSets()) count += set->at(i);
    QCOMPARE(count, static_cast<qreal>(bin["count"].toInteger()));
    const QString week = QString::number(bin["period"].toInteger());
    QVERIFY(weeksAxis->at(i) == week || weeksAxis->at(i).startsWith(week + "<br>"));
    QCOMPARE(chart->hoverText(i), QStringLiteral("Week %1, by %2: %3% of the simulations are finished.")
                                      .arg(week, dayText(bin["date"]))
                                      .arg(bin["cumulativePct"].toDouble(), 0, 'f', 2));
  }
}

// The whole project at several what-ifs, then each epic with open work at a
// share of the team: the view and `orvane-cli` must agree on every number.
void compareWithCommandLine(AppFixture& f, const Uuid& project, const QString& key) {
  ForecastView view(*f.context, nullptr);
  view.resize(1200, 900);
  open(view, project);
  struct WhatIf {
    int percent;
    int change;
  };
  for (const WhatIf w : {WhatIf{0, 0}, WhatIf{30, 0}, WhatIf{-30, 0}, WhatIf{50, 7}, WhatIf{-20, -4}}) {
    view.findChild<QSlider*>("throughputChange")->setValue(w.percent);
    view.findChild<QSpinBox*>("backlogChange")->setValue(w.change);
    settle(view);
    const QJsonObject cli = cliForecast(
        f, {"when", key, "--what-if", QString::number(w.percent), "--backlog-change", QString::number(w.change)});
    QCOMPARE(cli["whatIfPercent"].toDouble(), static_cast<double>(w.percent));
    expectCommandLineNumbers(view, cli);

    // How many by the day picked, from the same simulation on screen.
    const QString target = view.findChild<QDateEdit*>("byDateDay")->date().toString(Qt::ISODate);
    const QJsonObject byDate =
        cliForecast(f, {"by-date", key, target, "--what-if", QString::number(w.percent), "--backlog-change",
                        QString::number(w.change)});
    const QJsonObject counts = byDate["counts"].toObject();
    for (const QString level : {"50", "70", "85", "95"})
      QCOMPARE(label(view, "byDate" + level + "Count"), QString::number(counts[level].toInteger()));
    QCOMPARE(label(view, "byDateBacklogDone"), QStringLiteral("Chance that all %1 tickets are done by then: %2%.")
                                                   .arg(byDate["backlog"].toInteger())
                                                   .arg(QString::number(byDate["backlogDonePct"].toDouble(), 'f', 1)));
  }
  view.findChild<QSlider*>("throughputChange")->setValue(0);
  view.findChild<QSpinBox*>("backlogChange")->setValue(0);
  settle(view);

  auto* scope = view.findChild<QComboBox*>("forecastScope");
  auto* share = view.findChild<QDoubleSpinBox*>("capacityShare");
  int epicsCompared = 0;
  for (const Epic& epic : f.snapshot(project).epics) {
    scope->setCurrentIndex(scope->findText(QString::fromStdString("Epic: " + epic.name)));
    share->setValue(40);
    settle(view);
    const QJsonObject cli = cliForecast(f, {"epic", key, QString::fromStdString(epic.name), "--share", "40"});
    if (cli["backlog"].toInteger() == 0) continue;
    expectCommandLineNumbers(view, cli);
    ++epicsCompared;
  }
  QVERIFY(epicsCompared >= 2);
}

}  // namespace

void ForecastViewTest::everyNumberEqualsTheCommandLineOnTheDemo() {
  AppFixture f;
  const Uuid demo = f.board().loadDemoProject(f.clock).id;
  // A committed date, so its chance is compared too.
  ForecastService(f.t.store).setCommitment(demo, orvane::testing::at(2026, 4, 20, 0));
  compareWithCommandLine(f, demo, "SHOP");
}

void ForecastViewTest::everyNumberEqualsTheCommandLineOnAGeneratedProject() {
  AppFixture f;
  BoardService& board = f.board();
  const Project project = board.createProject("Generated", std::string_view("GEN"), f.clock);
  std::vector<Uuid> epics;
  for (const char* name : {"Search", "Billing", "Reports"})
    epics.push_back(board.createEpic(project.id, name, std::nullopt, std::nullopt).id);
  const ProjectSnapshot fresh = f.snapshot(project.id);
  const auto done = std::find_if(fresh.columns.begin(), fresh.columns.end(),
                                 [](const BoardColumn& c) { return c.effectiveType() == ColumnType::done; });
  QVERIFY(done != fresh.columns.end());
  // 360 tickets created over the last twelve weeks; two in three finished
  // a day or two later, at an uneven weekly pace.
  const double day = 86400;
  const double start = f.clock.secondsSince1970 - 84 * day;
  for (int n = 0; n < 360; ++n) {
    const Timestamp created{start + n * (82 * day / 360)};
    NewTicket ticket;
    ticket.title = "Generated ticket " + std::to_string(n);
    ticket.epic = epics[static_cast<std::size_t>(n / 3 % 3)];
    const Uuid id = board.createTicket(project.id, ticket, created).id;
    if (n % 3 != 0)
      board.moveTicket(id, done->id, std::nullopt, Timestamp{created.secondsSince1970 + (n % 7 + 1) * day / 4});
  }
  ForecastService(f.t.store).setCommitment(project.id, orvane::testing::at(2026, 4, 1, 0));
  compareWithCommandLine(f, project.id, "GEN");
}

void ForecastViewTest::byDateShowsTheServiceCountsAndItsRefusals() {
  AppFixture f;
  const Uuid demo = f.board().loadDemoProject(f.clock).id;
  ForecastService service(f.t.store);
  const CivilDate today = ForecastService::todayUTC(f.clock);
  ForecastView view(*f.context, nullptr);
  open(view, demo);

  // Each row: days after today, what-if, backlog change, and the refusal
  // expected instead of counts (empty: counts).
  struct Case {
    std::int64_t days;
    int whatIf;
    int change;
    QString refusal;
  };
  const Case cases[] = {
      {28, 0, 0, {}},
      {91, -30, 6, {}},
      {0, 0, 0, "Choose a date after today."},
      {-5, 20, 0, "Choose a date after today."},
      {ForecastSettings::maxTargetDays, 0, 0, {}},
      {ForecastSettings::maxTargetDays + 1, 0, 0, "That date is more than ten years away."},
  };
  auto* day = view.findChild<QDateEdit*>("byDateDay");
  for (const Case& c : cases) {
    view.findChild<QSlider*>("throughputChange")->setValue(c.whatIf);
    view.findChild<QSpinBox*>("backlogChange")->setValue(c.change);
    const CivilDate target = CivilDate::fromDaysSinceEpoch(today.daysSinceEpoch() + c.days);
    day->setDate(QDate(static_cast<int>(target.year), static_cast<int>(target.month), static_cast<int>(target.day)));
    settle(view);
    const QString row = QString::number(c.days);
    if (!c.refusal.isEmpty()) {
      QCOMPARE(label(view, "byDateProblem"), c.refusal);
      continue;
    }
    const ByDateForecast expected = service.input(demo, today, c.whatIf, target, c.change).runByDate();
    QVERIFY2(label(view, "byDateProblem").isEmpty(), qPrintable(row));
    for (const int level : {50, 70, 85, 95})
      QCOMPARE(label(view, QStringLiteral("byDate%1Count").arg(level)), QString::number(expected.counts.at(level)));
    // A higher confidence never promises more tickets.
    QVERIFY(expected.counts.at(95) <= expected.counts.at(50));
    QCOMPARE(label(view, "byDateBacklogDone"), QStringLiteral("Chance that all %1 tickets are done by then: %2%.")
                                                   .arg(expected.backlog)
                                                   .arg(QString::number(expected.backlogDonePct, 'f', 1)));
    QVERIFY2(label(view, "byDateWeeks").startsWith("By " + QString::fromStdString(target.displayText())),
             qPrintable(label(view, "byDateWeeks")));
  }
}

void ForecastViewTest::historyIsColouredByProvenanceAndTheEstimateIsStored() {
  AppFixture f;
  // Created today: every week of the history lies before the project began.
  const Uuid fresh = f.board().createProject("Fresh", std::nullopt, f.clock).id;
  for (const char* title : {"One", "Two", "Three"}) f.board().createTicket(fresh, NewTicket{.title = title}, f.clock);
  ForecastService service(f.t.store);
  const CivilDate today = ForecastService::todayUTC(f.clock);
  ForecastView view(*f.context, nullptr);
  open(view, fresh);

  // Each bar sits in the set of the provenance the service reports for its
  // week, in that provenance's colour, and in no other set.
  const auto expectHistory = [&](ProvenanceTier tier) {
    const std::vector<PeriodCount> history = service.history(fresh, today);
    QCOMPARE(history.size(), std::size_t{12});
    QChart* chart = view.findChild<ThroughputHistoryChart*>()->chart();
    auto* series = qobject_cast<QStackedBarSeries*>(chart->series().value(0));
    QVERIFY(series != nullptr);
    QCOMPARE(series->barSets().size(), 4);
    for (QBarSet* set : series->barSets()) {
      QCOMPARE(set->count(), 12);
      for (int k = 0; k < 12; ++k) {
        const PeriodCount& period = history[static_cast<std::size_t>(k)];
        QCOMPARE(period.provenance, tier);
        const bool own = set->label() == QString::fromUtf8(displayLabel(period.provenance).data());
        QCOMPARE(set->at(k), own ? static_cast<qreal>(period.count) : 0.0);
        if (own) QCOMPARE(set->color(), ThroughputHistoryChart::colourOf(period.provenance));
      }
    }
    QCOMPARE(chart->axes(Qt::Horizontal).value(0)->titleText(), QString("Week ending"));
    // No week of the team's own: the caution in the health report's words.
    QCOMPARE(label(view, "historyCaution"),
             QString("Only 0 weeks of real history exist, so read the trends with caution."));
  };
  expectHistory(ProvenanceTier::systemDefault);

  // A refused estimate says why and stores nothing.
  auto* estimate = view.findChild<QLineEdit*>("weeklyEstimate");
  for (const char* bad : {"1200", "-1", "lots"}) {
    estimate->setText(bad);
    view.findChild<QPushButton*>("setEstimate")->click();
    QCOMPARE(label(view, "estimateProblem"), QString("The weekly estimate must be a number from 0 to 1000."));
    QCOMPARE(f.snapshot(fresh).project.fillerLambda, std::nullopt);
  }
  estimate->setText("7.5");
  view.findChild<QPushButton*>("setEstimate")->click();
  view.reloadNow();
  settle(view);
  QCOMPARE(f.snapshot(fresh).project.fillerLambda, std::optional(7.5));
  QCOMPARE(label(view, "estimateProblem"), QString());
  expectLevels(view, service.input(fresh, today).runWhen());
  expectHistory(ProvenanceTier::userEstimated);

  // 0 is a valid estimate: nothing finished and nothing estimated, so the
  // simulations run out of weeks and the view says so.
  estimate->setText("0");
  view.findChild<QPushButton*>("setEstimate")->click();
  view.reloadNow();
  settle(view);
  QCOMPARE(f.snapshot(fresh).project.fillerLambda, std::optional(0.0));
  QVERIFY(!view.findChild<QLabel*>("forecastInconclusive")->isHidden());

  view.findChild<QPushButton*>("clearEstimate")->click();
  view.reloadNow();
  settle(view);
  QCOMPARE(f.snapshot(fresh).project.fillerLambda, std::nullopt);
  expectHistory(ProvenanceTier::systemDefault);

  // Each change of the estimate is a step of Undo; refusals are none.
  QCOMPARE(f.context->undoHistory().undoLabel(), QString("Use the default weekly estimate"));
  f.context->undo(nullptr);
  QCOMPARE(f.snapshot(fresh).project.fillerLambda, std::optional(0.0));
  f.context->undo(nullptr);
  f.context->undo(nullptr);
  QCOMPARE(f.snapshot(fresh).project.fillerLambda, std::nullopt);
  QVERIFY(!f.context->undoHistory().canUndo());
}

// ---- Log and accuracy --------------------------------------------------------

namespace {

QTableWidget* table(ForecastView& view, const char* name) {
  auto* found = view.findChild<QTableWidget*>(name);
  if (found == nullptr) qFatal("no table %s", name);
  return found;
}

QString cell(QTableWidget* table, int row, const QString& header) {
  for (int c = 0; c < table->columnCount(); ++c) {
    if (table->horizontalHeaderItem(c)->text() != header) continue;
    const QTableWidgetItem* item = table->item(row, c);
    return item != nullptr ? item->text() : QString();
  }
  qFatal("no column %s in %s", qPrintable(header), qPrintable(table->objectName()));
}

bool shown(ForecastView& view, const char* name) { return !view.findChild<QWidget*>(name)->isHidden(); }

QDate qDate(const CivilDate& day) {
  return {static_cast<int>(day.year), static_cast<int>(day.month), static_cast<int>(day.day)};
}

// Presses the log button `button`, types `note` in the sheet and logs.
void logFromView(ForecastView& view, const char* button, const QString& note) {
  settle(view);
  auto* press = view.findChild<QPushButton*>(button);
  QVERIFY2(press->isEnabled() && !press->isHidden(), button);
  press->click();
  auto* sheet = view.findChild<LogForecastDialog*>();
  QVERIFY(sheet != nullptr);
  sheet->noteField()->setText(note);
  sheet->findChild<QPushButton*>("log")->click();
  QTRY_VERIFY(view.findChild<LogForecastDialog*>() == nullptr);
}

// The points of the history chart's line `name`, as (run instant, finish day).
std::vector<std::pair<qint64, QDate>> line(ForecastView& view, const QString& name) {
  std::vector<std::pair<qint64, QDate>> points;
  for (QAbstractSeries* series : view.findChild<ForecastHistoryChart*>()->chart()->series()) {
    if (series->name() != name) continue;
    for (const QPointF& p : qobject_cast<QLineSeries*>(series)->points())
      points.emplace_back(static_cast<qint64>(p.x()),
                          QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(p.y())).date());
  }
  return points;
}

}  // namespace

void ForecastViewTest::logsTheForecastOnScreenAsOneUndoableStep() {
  AppFixture f;
  const Uuid demo = f.board().loadDemoProject(f.clock).id;
  ForecastService service(f.t.store);
  const CivilDate today = ForecastService::todayUTC(f.clock);
  ForecastView view(*f.context, nullptr);
  open(view, demo);
  QVERIFY(shown(view, "forecastLogEmpty") && !shown(view, "forecastLog"));
  QVERIFY(shown(view, "forecastHistoryEmpty") && !shown(view, "forecastHistoryChart"));

  // A run under way has no numbers to log yet.
  auto* logWhen = view.findChild<QPushButton*>("logWhen");
  view.findChild<QSlider*>("throughputChange")->setValue(30);
  view.findChild<QSpinBox*>("backlogChange")->setValue(4);
  QVERIFY(view.isComputing());
  QVERIFY(!logWhen->isEnabled());
  settle(view);

  // Cancel logs nothing.
  logWhen->click();
  view.findChild<LogForecastDialog*>()->reject();
  QTRY_VERIFY(view.findChild<LogForecastDialog*>() == nullptr);
  QVERIFY(f.snapshot(demo).forecasts.empty());

  // The numbers on screen are logged: the what-if and backlog change applied.
  logFromView(view, "logWhen", "  After the scope review \n");
  const WhenForecast when = service.input(demo, today, 30, std::nullopt, 4).runWhen();
  std::vector<ForecastRecord> logged = f.snapshot(demo).forecasts;
  QCOMPARE(logged.size(), std::size_t{1});
  QCOMPARE(logged[0].kind(), ForecastKind::when);
  QCOMPARE(logged[0].note, std::string("After the scope review"));
  QCOMPARE(logged[0].whatIfPercent, 30.0);
  QCOMPARE(logged[0].backlog, when.backlog);
  QCOMPARE(logged[0].runAt, f.clock);
  for (std::size_t i = 0; i < 4; ++i)
    QCOMPARE(logged[0].resultDays.at(i), when.dates.at(confidenceLevels[i]).description());
  QCOMPARE(f.context->undoHistory().undoLabel(), QString("Log forecast"));

  // How many by a date, for the day picked, with the same what-if.
  const CivilDate target = CivilDate::fromDaysSinceEpoch(today.daysSinceEpoch() + 35);
  view.findChild<QDateEdit*>("byDateDay")->setDate(qDate(target));
  QVERIFY(!view.findChild<QPushButton*>("logByDate")->isEnabled());
  logFromView(view, "logByDate", "");
  const ByDateForecast byDate = service.input(demo, today, 30, target, 4).runByDate();
  logged = f.snapshot(demo).forecasts;
  QCOMPARE(logged.size(), std::size_t{2});
  QCOMPARE(logged[1].kind(), ForecastKind::byDate);
  QCOMPARE(logged[1].targetDay, std::optional(target.description()));
  for (std::size_t i = 0; i < 4; ++i) QCOMPARE(logged[1].resultCounts.at(i), byDate.counts.at(confidenceLevels[i]));
  QCOMPARE(logged[1].confidencePct, std::optional(byDate.backlogDonePct));

  view.reloadNow();
  settle(view);
  QCOMPARE(table(view, "forecastLog")->rowCount(), 2);
  QCOMPARE(cell(table(view, "forecastLog"), 0, "Kind"), QString("When"));
  QCOMPARE(cell(table(view, "forecastLog"), 1, "Kind"), QString("By date"));
  QCOMPARE(line(view, "85% date").size(), std::size_t{1});

  // A refused day and an epic's scope have nothing to log.
  view.findChild<QDateEdit*>("byDateDay")->setDate(qDate(today));
  settle(view);
  QVERIFY(!view.findChild<QPushButton*>("logByDate")->isEnabled());
  auto* scope = view.findChild<QComboBox*>("forecastScope");
  scope->setCurrentIndex(1);
  settle(view);
  QVERIFY(logWhen->isHidden());
  scope->setCurrentIndex(0);
  settle(view);
  QVERIFY(!logWhen->isHidden() && logWhen->isEnabled());

  // Each log is one step back.
  f.context->undo(nullptr);
  QCOMPARE(f.snapshot(demo).forecasts.size(), std::size_t{1});
  f.context->undo(nullptr);
  QVERIFY(f.snapshot(demo).forecasts.empty());
  view.reloadNow();
  settle(view);
  QVERIFY(shown(view, "forecastLogEmpty") && !shown(view, "forecastLog"));
}

void ForecastViewTest::logPageEqualsTheCommandLine() {
  AppFixture f;
  const Timestamp now = f.clock;
  const auto daysAgo = [&](double days) { return Timestamp{now.secondsSince1970 - days * 86400}; };
  BoardService& board = f.board();
  const Uuid project = board.createProject("Judged", std::string_view("JDG"), daysAgo(70)).id;
  const ProjectSnapshot fresh = f.snapshot(project);
  const auto done = std::find_if(fresh.columns.begin(), fresh.columns.end(),
                                 [](const BoardColumn& c) { return c.effectiveType() == ColumnType::done; });
  std::vector<Uuid> tickets;
  for (int n = 0; n < 10; ++n)
    tickets.push_back(board.createTicket(project, NewTicket{.title = "Ticket " + std::to_string(n)}, daysAgo(70)).id);
  const double finishedBefore[] = {63, 60, 56, 52, 49, 45};
  for (std::size_t n = 0; n < 6; ++n) board.moveTicket(tickets[n], done->id, std::nullopt, daysAgo(finishedBefore[n]));
  ForecastService(f.t.store).setCommitment(project, daysAgo(20));

  ForecastView view(*f.context, nullptr);
  view.showProject(project);
  auto* day = view.findChild<QDateEdit*>("byDateDay");
  // Six weeks ago: a "When" and a two-week "By date" run over the four open.
  f.clock = daysAgo(42);
  view.reloadNow();
  logFromView(view, "logWhen", "First look");
  day->setDate(qDate(CivilDate::fromDaysSinceEpoch(ForecastService::todayUTC(f.clock).daysSinceEpoch() + 14)));
  logFromView(view, "logByDate", "Two weeks out");
  // The four are finished, two more come in; two weeks ago, at +20% and
  // without a committed date, two more runs.
  const double finishedAfter[] = {38, 36, 33, 31};
  for (std::size_t n = 0; n < 4; ++n)
    board.moveTicket(tickets[6 + n], done->id, std::nullopt, daysAgo(finishedAfter[n]));
  for (const char* title : {"Late one", "Late two"})
    board.createTicket(project, NewTicket{.title = title}, daysAgo(20));
  ForecastService(f.t.store).setCommitment(project, std::nullopt);
  f.clock = daysAgo(14);
  view.reloadNow();
  view.findChild<QSlider*>("throughputChange")->setValue(20);
  logFromView(view, "logWhen", "");
  day->setDate(qDate(CivilDate::fromDaysSinceEpoch(ForecastService::todayUTC(now).daysSinceEpoch() + 7)));
  logFromView(view, "logByDate", "");
  f.clock = now;
  view.reloadNow();
  settle(view);

  // The log, row for row, as `orvane-cli forecast log --json` lists it.
  const QJsonArray records = cliJson(f, {"forecast", "log", "JDG"}).array();
  QCOMPARE(records.size(), 4);
  QTableWidget* log = table(view, "forecastLog");
  QCOMPARE(log->rowCount(), 4);
  for (int r = 0; r < records.size(); ++r) {
    const QJsonObject record = records[r].toObject();
    const bool byDate = record["kind"].toString() == "by_date";
    QCOMPARE(cell(log, r, "Run on"), dayText(record["asOfDay"]));
    QCOMPARE(cell(log, r, "Kind"), byDate ? QString("By date") : QString("When"));
    QCOMPARE(cell(log, r, "Backlog"), QString::number(record["backlog"].toInteger()));
    const double whatIf = record["whatIfPercent"].toDouble();
    QCOMPARE(cell(log, r, "What-if"), (whatIf > 0 ? "+" : "") + QString::number(whatIf) + '%');
    const QJsonArray results = record[byDate ? "resultCounts" : "resultDays"].toArray();
    QCOMPARE(results.size(), 4);
    for (int i = 0; i < 4; ++i) {
      const QString level = QString::number(confidenceLevels[static_cast<std::size_t>(i)]) + '%';
      QCOMPARE(cell(log, r, level), byDate ? QString::number(results[i].toInteger()) : dayText(results[i]));
    }
    QCOMPARE(cell(log, r, "Target"), byDate ? dayText(record["targetDay"]) : QString());
    QCOMPARE(cell(log, r, "Commitment"),
             record["commitmentDay"].isString() ? dayText(record["commitmentDay"]) : QString());
    QCOMPARE(cell(log, r, "Chance"), record["confidencePct"].isDouble()
                                         ? QString::number(record["confidencePct"].toDouble(), 'f', 1) + '%'
                                         : QString());
    QCOMPARE(cell(log, r, "Note"), record["note"].toString());
  }

  // The accuracy tables as `orvane-cli accuracy --json` judges them today.
  const QJsonObject accuracy = cliJson(f, {"accuracy", "JDG"}).object();
  const QJsonArray whenOutcomes = accuracy["whenOutcomes"].toArray();
  QTableWidget* when = table(view, "whenOutcomes");
  QCOMPARE(when->rowCount(), whenOutcomes.size());
  QCOMPARE(whenOutcomes.size(), 2);
  // The first is judged, the second still open: both kinds of row are shown.
  QVERIFY(whenOutcomes[0].toObject()["verdict"].toObject()["isFinished"].toBool());
  QVERIFY(!whenOutcomes[1].toObject()["verdict"].toObject()["isFinished"].toBool());
  for (int r = 0; r < whenOutcomes.size(); ++r) {
    const QJsonObject o = whenOutcomes[r].toObject();
    QCOMPARE(cell(when, r, "Run on"), dayText(o["asOf"]));
    const QJsonArray dates = o["dates"].toArray();
    for (int i = 0; i < 4; ++i)
      QCOMPARE(cell(when, r, QString::number(confidenceLevels[static_cast<std::size_t>(i)]) + '%'), dayText(dates[i]));
    QCOMPARE(cell(when, r, "Backlog then"), QString::number(o["backlogThen"].toInteger()));
    QCOMPARE(cell(when, r, "Added since"), QString::number(o["addedSince"].toInteger()));
    QCOMPARE(cell(when, r, "Finished on"), o["finishedOn"].isString() ? dayText(o["finishedOn"]) : QString());
    QCOMPARE(cell(when, r, "Verdict"), o["verdict"].toObject()["label"].toString());
  }
  const QJsonArray byDateOutcomes = accuracy["byDateOutcomes"].toArray();
  QTableWidget* byDate = table(view, "byDateOutcomes");
  // Only the run whose day has passed is judged.
  QCOMPARE(byDateOutcomes.size(), 1);
  QCOMPARE(byDate->rowCount(), 1);
  const QJsonObject judged = byDateOutcomes[0].toObject();
  QCOMPARE(cell(byDate, 0, "Target"), dayText(judged["target"]));
  QCOMPARE(cell(byDate, 0, "Weeks"), QString::number(judged["wholeWeeks"].toInteger()));
  for (int i = 0; i < 4; ++i)
    QCOMPARE(cell(byDate, 0, QString::number(confidenceLevels[static_cast<std::size_t>(i)]) + '%'),
             QString::number(judged["counts"].toArray()[i].toInteger()));
  QCOMPARE(cell(byDate, 0, "Done"), QString::number(judged["actual"].toInteger()));
  QStringList reached;
  for (const QJsonValue level : judged["levelsReached"].toArray()) reached << QString::number(level.toInt()) + '%';
  QCOMPARE(cell(byDate, 0, "Levels reached"), reached.isEmpty() ? QString("no level") : reached.join(", "));
  for (const char* kind : {"whenCalibration", "byDateCalibration"}) {
    const QJsonArray rows = accuracy[kind].toArray();
    QTableWidget* calibration = table(view, kind);
    QCOMPARE(calibration->rowCount(), rows.size());
    for (int r = 0; r < rows.size(); ++r) {
      const QJsonObject row = rows[r].toObject();
      const qint64 total = row["total"].toInteger();
      QVERIFY(total > 0);
      QCOMPARE(cell(calibration, r, "Level"), QString::number(row["level"].toInt()) + '%');
      QCOMPARE(cell(calibration, r, "Hits"), QString::number(row["hits"].toInteger()));
      QCOMPARE(cell(calibration, r, "Judged"), QString::number(total));
      QCOMPARE(cell(calibration, r, "Hit rate"), QString::number(row["hitPct"].toDouble(), 'f', 1) + '%');
      const double off = row["hitPct"].toDouble() - row["level"].toDouble();
      QCOMPARE(cell(calibration, r, "Against the level"),
               off == 0 ? QString("on the level")
                        : QString::number(std::fabs(off), 'f', 1) + (off > 0 ? " points above" : " points below"));
    }
  }

  // The chart: one point per logged "When" run on each level's line, the
  // committed date only for the run that had one.
  const std::vector<ForecastHistoryPoint> history = forecastHistory(f.snapshot(project));
  const QJsonArray cliHistory = accuracy["history"].toArray();
  QCOMPARE(history.size(), std::size_t{2});
  QCOMPARE(cliHistory.size(), 2);
  struct Level {
    QString line;
    CivilDate ForecastHistoryPoint::*date;
    const char* key;
  };
  for (const Level& level :
       {Level{"50% date", &ForecastHistoryPoint::p50, "p50"}, Level{"85% date", &ForecastHistoryPoint::p85, "p85"},
        Level{"95% date", &ForecastHistoryPoint::p95, "p95"}}) {
    const auto points = line(view, level.line);
    QCOMPARE(points.size(), history.size());
    for (std::size_t i = 0; i < history.size(); ++i) {
      QCOMPARE(points[i].first, static_cast<qint64>(history[i].runAt.secondsSince1970 * 1000));
      QCOMPARE(points[i].second, qDate(history[i].*level.date));
      QCOMPARE(
          points[i].second,
          qDate(*CivilDate::fromIso(cliHistory[static_cast<int>(i)].toObject()[level.key].toString().toStdString())));
    }
  }
  const auto committed = line(view, "Committed date");
  QCOMPARE(committed.size(), std::size_t{1});
  QCOMPARE(committed[0].second, qDate(*history[0].commitment));
  QVERIFY(!history[1].commitment.has_value());
  auto* axes = view.findChild<ForecastHistoryChart*>()->chart();
  QCOMPARE(axes->axes(Qt::Horizontal).value(0)->titleText(), QString("Forecast run on"));
  QCOMPARE(axes->axes(Qt::Vertical).value(0)->titleText(), QString("Finish date"));
}

void ForecastViewTest::notesAreEditedInPlaceAndRunsDeletedAfterConfirmation() {
  AppFixture f;
  const Uuid demo = f.board().loadDemoProject(f.clock).id;
  ForecastService service(f.t.store);
  const Timestamp weekAgo = orvane::testing::at(2026, 2, 25, 10);
  const ForecastRecord older =
      service.log(service.input(demo, ForecastService::todayUTC(weekAgo)).runWhen(), demo, "", weekAgo);
  const ForecastRecord newer =
      service.log(service.input(demo, ForecastService::todayUTC(f.clock)).runWhen(), demo, "Kick-off", f.clock);
  ForecastView view(*f.context, nullptr);
  open(view, demo);
  QTableWidget* log = table(view, "forecastLog");
  auto* editNote = view.findChild<QPushButton*>("editForecastNote");
  auto* remove = view.findChild<QPushButton*>("deleteForecast");
  QVERIFY(!editNote->isEnabled() && !remove->isEnabled());
  const auto noteOf = [&](const Uuid& id) {
    for (const ForecastRecord& r : f.snapshot(demo).forecasts)
      if (r.id == id) return r.note;
    return std::string("(deleted)");
  };

  // Edited in place, stored trimmed, one step back.
  log->selectRow(0);
  QVERIFY(editNote->isEnabled() && remove->isEnabled());
  int noteColumn = 0;
  while (log->horizontalHeaderItem(noteColumn)->text() != "Note") ++noteColumn;
  QVERIFY(log->item(0, noteColumn)->flags().testFlag(Qt::ItemIsEditable));
  QVERIFY(!log->item(0, 0)->flags().testFlag(Qt::ItemIsEditable));
  log->item(0, noteColumn)->setText("  Scope cut agreed ");
  QTRY_COMPARE(noteOf(older.id), std::string("Scope cut agreed"));
  QCOMPARE(f.context->undoHistory().undoLabel(), QString("Edit forecast note"));
  f.context->undo(nullptr);
  QCOMPARE(noteOf(older.id), std::string());

  // Delete asks first; Cancel keeps the run, Delete removes it, undo
  // brings it back.
  view.reloadNow();
  log->selectRow(1);
  const auto pressDelete = [&](bool confirmIt) {
    remove->click();
    auto* box = view.findChild<QMessageBox*>("confirmDeleteForecast");
    QVERIFY(box != nullptr);
    if (confirmIt) {
      box->findChild<QPushButton*>("confirm")->click();
    } else {
      box->button(QMessageBox::Cancel)->click();
    }
    QTRY_VERIFY(view.findChild<QMessageBox*>("confirmDeleteForecast") == nullptr);
  };
  pressDelete(false);
  QCOMPARE(f.snapshot(demo).forecasts.size(), std::size_t{2});
  pressDelete(true);
  QCOMPARE(noteOf(newer.id), std::string("(deleted)"));
  QCOMPARE(noteOf(older.id), std::string());
  f.context->undo(nullptr);
  QCOMPARE(noteOf(newer.id), std::string("Kick-off"));
  view.reloadNow();
  QCOMPARE(log->rowCount(), 2);
  QCOMPARE(cell(log, 1, "Note"), QString("Kick-off"));
}

QTEST_MAIN(ForecastViewTest)
namespace {

// Runs `script` with the system's Python and NumPy; its standard output.
QString runPython(const QString& script) {
  QTemporaryDir dir;
  const QString path = dir.filePath("reproduce.py");
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly)) qFatal("cannot write %s", qPrintable(path));
  file.write(script.toUtf8());
  file.close();
  QProcess python;
  python.start("/usr/bin/python3", {path});
  if (!python.waitForFinished(60000) || python.exitCode() != 0)
    qFatal("the script failed: %s", python.readAllStandardError().constData());
  return QString::fromUtf8(python.readAllStandardOutput());
}

}  // namespace

void ForecastViewTest::copiedScriptRebuildsTheForecastOnScreen() {
  AppFixture f;
  const Uuid demo = f.board().loadDemoProject(f.clock).id;
  ForecastView view(*f.context, nullptr);
  view.resize(1200, 900);
  open(view, demo);
  QVERIFY(view.copyScriptAction()->isEnabled());

  // The whole project at three what-ifs, and one epic at a share of the team.
  struct Case {
    int percent;
    int change;
    const char* epic;
  };
  for (const Case c : {Case{0, 0, nullptr}, Case{-30, 4, nullptr}, Case{45, 0, nullptr}, Case{0, 0, "Checkout"}}) {
    if (c.epic != nullptr) {
      auto* scope = view.findChild<QComboBox*>("forecastScope");
      scope->setCurrentIndex(scope->findText(QStringLiteral("Epic: ") + c.epic, Qt::MatchStartsWith));
      QVERIFY(scope->currentIndex() > 0);
      view.findChild<QDoubleSpinBox*>("capacityShare")->setValue(60);
    } else {
      view.findChild<QSlider*>("throughputChange")->setValue(c.percent);
      view.findChild<QSpinBox*>("backlogChange")->setValue(c.change);
    }
    settle(view);
    QApplication::clipboard()->clear();
    view.copyScriptAction()->trigger();
    const QString script = QApplication::clipboard()->text();
    QVERIFY(script.contains("numpy"));
    QStringList expected;
    for (const int level : {50, 70, 85, 95}) {
      const double weeksOnScreen = label(view, QStringLiteral("level%1Weeks").arg(level)).toDouble();
      expected << QStringLiteral("%1% %2 weeks").arg(level).arg(QString::number(weeksOnScreen, 'f', 1));
    }
    QCOMPARE(runPython(script).trimmed().split('\n'), expected);
  }
}

void ForecastViewTest::backtestEqualsTheCommandLineAndRefusesFutureDays() {
  AppFixture f;
  const Uuid demo = f.board().loadDemoProject(f.clock).id;
  ForecastView view(*f.context, nullptr);
  open(view, demo);
  QVERIFY(view.backtestAction()->isEnabled());
  auto* dialog = qobject_cast<BacktestDialog*>(view.openBacktest());
  QVERIFY(dialog != nullptr);
  auto findLabel = [dialog](const QString& name) { return dialog->findChild<QLabel*>(name)->text(); };

  const CivilDate today = ForecastService::todayUTC(f.clock);
  for (const std::int64_t daysBack : {84, 35, 10}) {
    const CivilDate day = today.addingDays(-daysBack);
    dialog->backtest(day);
    QVERIFY(dialog->shown().has_value());
    const QJsonObject cli =
        cliForecast(f, {"backtest", "SHOP", "--as-of", QString::fromStdString(day.description())});
    const QJsonObject periods = cli["periods"].toObject();
    const QJsonObject dates = cli["dates"].toObject();
    for (const QString level : {"50", "70", "85", "95"}) {
      QCOMPARE(findLabel("backtest" + level + "Weeks"), weeks(periods[level].toDouble()));
      QCOMPARE(findLabel("backtest" + level + "Date"), dayText(dates[level]));
    }
    QVERIFY(findLabel("backtestBacklog").startsWith(QStringLiteral("Backlog then: %1 ticket").arg(cli["backlog"].toInteger())));
    const QJsonObject actual = cli["actual"].toObject();
    if (actual["finishedOn"].isNull()) {
      QCOMPARE(findLabel("backtestActual"), QStringLiteral("Actual: the work is still open, %1 of %2 tickets still open.")
                                                .arg(actual["stillOpen"].toInteger())
                                                .arg(cli["backlog"].toInteger()));
    } else {
      QVERIFY(findLabel("backtestActual").startsWith("Actual: finished on " + dayText(actual["finishedOn"])));
      const QJsonObject met = actual["levelsMet"].toObject();
      for (const QString level : {"50", "70", "85", "95"})
        QCOMPARE(findLabel("backtest" + level + "Met"),
                 met[level].toBool() ? QString("finished in time") : QString("missed"));
    }
  }

  // A day after today is refused with the backtest's sentence, and no numbers stay.
  dialog->backtest(today.addingDays(3));
  QVERIFY(!dialog->shown().has_value());
  QVERIFY(!findLabel("backtestProblem").isEmpty());
  QVERIFY(!dialog->findChild<QLabel*>("backtestBacklog")->isVisibleTo(dialog));
}

#include "ForecastViewTest.moc"
