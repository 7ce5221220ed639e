#include <QAreaSeries>
#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QComboBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineSeries>
#include <QMouseEvent>
#include <QScatterSeries>
#include <QSignalSpy>
#include <QStackedBarSeries>
#include <QTest>

#include "app/AppFixture.h"
#include "app/CommandLine.h"
#include "app/charts/FlowAgeChart.h"
#include "app/charts/FlowArrivalsChart.h"
#include "app/charts/FlowCumulativeChart.h"
#include "app/charts/FlowCycleTimeChart.h"
#include "app/charts/FlowThroughputChart.h"
#include "app/charts/FlowWipRunChart.h"
#include "app/charts/FlowXmRChart.h"
#include "app/flow/ChartCard.h"
#include "app/flow/FlowView.h"
#include "app/shell/ExternalChangeWatcher.h"
#include "core/metrics/FlowAnalysis.h"
#include "core/metrics/FlowRange.h"
#include "core/model/ProjectSnapshot.h"

using namespace orvane;
using namespace orvane::app;
using orvane::testing::AppFixture;

namespace {

// Waits until the view shows its newest redraw (the figures are computed in
// the thread pool).
void settle(FlowView& view) { orvane::testing::awaitNewest(view, &FlowView::redrawn); }

QString label(const QWidget& view, const QString& name) { return orvane::testing::labelText(view, name); }

// The JSON the real command line prints, on the fixture's store and day.
QJsonObject cli(AppFixture& f, const QStringList& arguments) { return orvane::testing::cliJson(f, arguments).object(); }

template <typename Series>
QList<Series*> seriesOf(QChartView* view) {
  QList<Series*> found;
  for (QAbstractSeries* series : view->chart()->series())
    if (auto* typed = qobject_cast<Series*>(series)) found << typed;
  return found;
}

// The ticket points of the cycle-time chart (the percentile labels are
// scatter series of one point each, named nothing).
QScatterSeries* ticketPoints(FlowView& view) {
  for (QScatterSeries* series : seriesOf<QScatterSeries>(view.findChild<FlowCycleTimeChart*>()))
    if (series->name() == QStringLiteral("Finished ticket")) return series;
  return nullptr;
}

// Tiles, health notes and every chart's series against `flow --json` and
// `health --json` for the same store and day.
void expectCommandLine(AppFixture& f, FlowView& view, const Uuid& project, std::int64_t weeks) {
  settle(view);
  const QString key = QString::fromStdString(f.snapshot(project).project.key);
  const QJsonObject flow = cli(f, {"flow", key, "--weeks", QString::number(weeks)});
  const QJsonObject health = cli(f, {"health", key});

  const QJsonObject tiles = flow["tiles"].toObject();
  QCOMPARE(label(view, "throughputTileValue"), tiles["throughput"].toString());
  QCOMPARE(label(view, "medianTileValue"), tiles["medianCycleTime"].toString());
  QCOMPARE(label(view, "p85TileValue"), tiles["p85CycleTime"].toString());
  QCOMPARE(label(view, "inProgressTileValue"), tiles["inProgress"].toString());
  QCOMPARE(label(view, "inProgressTileCaption"), tiles["inProgressCaption"].toString());
  QCOMPARE(label(view, "flowNote"), flow["note"].toString());

  const QJsonArray notes = health["notes"].toArray();
  for (int i = 0; i < notes.size(); ++i)
    QCOMPARE(label(view, QStringLiteral("healthNote%1").arg(i)), notes[i].toString());
  QVERIFY(view.findChild<QLabel*>(QStringLiteral("healthNote%1").arg(notes.size())) == nullptr);
  const QString trend = health["trend"].toString();
  const QString trendLabel = trend == "up" ? "Rising" : trend == "down" ? "Falling" : "Steady";
  QVERIFY2(label(view, "healthTrend").contains(trendLabel), qPrintable(label(view, "healthTrend")));

  // Throughput: a bar per week with the week's count, and the average line.
  const QJsonArray weekly = flow["weeklyThroughput"].toArray();
  QCOMPARE(weekly.size(), static_cast<qsizetype>(weeks));
  const auto bars = seriesOf<QBarSeries>(view.findChild<FlowThroughputChart*>());
  QCOMPARE(bars.size(), 1);
  QBarSet* finished = bars[0]->barSets().value(0);
  QCOMPARE(finished->count(), static_cast<int>(weekly.size()));
  for (int i = 0; i < weekly.size(); ++i) QCOMPARE(finished->at(i), weekly[i]["count"].toDouble());
  const auto average = seriesOf<QLineSeries>(view.findChild<FlowThroughputChart*>());
  QCOMPARE(average.size(), 1);
  QCOMPARE(average[0]->at(0).y(), flow["averageWeeklyThroughput"].toDouble());

  // Cycle time: a point per finished ticket and a line per level, or the
  // empty text.
  const QJsonArray points = flow["cycleTimes"].toArray();
  QCOMPARE(view.findChild<ChartCard*>("cycleTimeCard")->isEmptyShown(), points.isEmpty());
  if (!points.isEmpty()) {
    QScatterSeries* scatter = ticketPoints(view);
    QVERIFY(scatter != nullptr);
    QCOMPARE(scatter->count(), static_cast<int>(points.size()));
    for (int i = 0; i < points.size(); ++i) QCOMPARE(scatter->at(i).y(), points[i]["days"].toDouble());
    QCOMPARE(seriesOf<QLineSeries>(view.findChild<FlowCycleTimeChart*>()).size(), 3);
  }

  // Work item age: a bar per item, its age in exactly one band, and the
  // P85 line when there is a cycle summary.
  const QJsonArray ages = flow["ages"].toArray();
  QCOMPARE(view.findChild<ChartCard*>("workItemAgeCard")->isEmptyShown(), ages.isEmpty());
  if (!ages.isEmpty()) {
    const auto stacked = seriesOf<QStackedBarSeries>(view.findChild<FlowAgeChart*>());
    QCOMPARE(stacked.size(), 1);
    for (int i = 0; i < ages.size(); ++i) {
      qreal sum = 0;
      for (QBarSet* set : stacked[0]->barSets()) sum += set->at(i);
      QCOMPARE(sum, ages[i]["ageDays"].toDouble());
    }
    QCOMPARE(seriesOf<QLineSeries>(view.findChild<FlowAgeChart*>()).size(), flow["summary"].isNull() ? 0 : 1);
  }

  // Cumulative flow: three stacked areas over 7W days; the top edge is the
  // day's total.
  const QJsonArray days = flow["cumulative"].toArray();
  QCOMPARE(days.size(), static_cast<qsizetype>(7 * weeks));
  const auto areas = seriesOf<QAreaSeries>(view.findChild<FlowCumulativeChart*>());
  QCOMPARE(areas.size(), 3);
  QCOMPARE(areas[2]->upperSeries()->count(), static_cast<int>(days.size()));
  for (int i = 0; i < days.size(); ++i) {
    QCOMPARE(areas[0]->upperSeries()->at(i).y(), days[i]["done"].toDouble());
    QCOMPARE(areas[2]->upperSeries()->at(i).y(), days[i]["total"].toDouble());
  }

  // Started against finished: two bars a week and the running gap.
  const QJsonArray flowWeeks = flow["arrivalsDepartures"].toArray();
  const auto pairs = seriesOf<QBarSeries>(view.findChild<FlowArrivalsChart*>());
  QCOMPARE(pairs.size(), 1);
  QCOMPARE(pairs[0]->barSets().size(), 2);
  const auto gap = seriesOf<QLineSeries>(view.findChild<FlowArrivalsChart*>());
  QCOMPARE(gap.size(), 1);
  for (int i = 0; i < flowWeeks.size(); ++i) {
    QCOMPARE(pairs[0]->barSets()[0]->at(i), flowWeeks[i]["arrivals"].toDouble());
    QCOMPARE(pairs[0]->barSets()[1]->at(i), flowWeeks[i]["departures"].toDouble());
    QCOMPARE(gap[0]->at(i).y(), flowWeeks[i]["gap"].toDouble());
  }

  // Work in progress per day, with the limits' sum when there is one.
  const QJsonObject wipRun = flow["wipRun"].toObject();
  const auto wipLines = seriesOf<QLineSeries>(view.findChild<FlowWipRunChart*>());
  QCOMPARE(wipLines.size(), wipRun["limitSum"].isNull() ? 1 : 2);
  QCOMPARE(wipLines[0]->count(), static_cast<int>(wipRun["days"].toArray().size()));
  QCOMPARE(wipLines[0]->at(wipLines[0]->count() - 1).y(), wipRun["days"].toArray().last()["wip"].toDouble());
  if (!wipRun["limitSum"].isNull()) QCOMPARE(wipLines[1]->at(0).y(), wipRun["limitSum"].toDouble());

  // Each process behaviour chart: its values, and its signals in words.
  const QJsonObject behaviour = flow["processBehaviour"].toObject();
  for (const QString name : {"throughput", "arrivals", "wip", "cycleTime"}) {
    const QJsonObject measure = behaviour[name].toObject();
    QStringList sentences;
    for (const QJsonValue& sentence : measure["sentences"].toArray()) sentences << sentence.toString();
    auto* chart = view.findChild<FlowXmRChart*>(name + "XmR");
    QVERIFY2(chart != nullptr, qPrintable(name));
    QCOMPARE(label(*chart, name + "XmRSentences"), sentences.join('\n'));
    const auto lines = seriesOf<QLineSeries>(chart->findChild<QChartView*>(name + "XmRValues"));
    if (measure["chart"].isNull()) {
      QVERIFY(lines.isEmpty());
      continue;
    }
    const QJsonArray values = measure["chart"]["values"].toArray();
    QCOMPARE(lines.value(0)->count(), static_cast<int>(values.size()));
    for (int i = 0; i < values.size(); ++i) QCOMPARE(lines[0]->at(i).y(), values[i].toDouble());
    const auto marks = seriesOf<QScatterSeries>(chart->findChild<QChartView*>(name + "XmRValues"));
    QCOMPARE(marks.size(), 1);
    // Moving-range signals are marked on the chart below; the rest here.
    bool valueSignals = false;
    for (const QJsonValue& signal : measure["chart"]["signals"].toArray())
      valueSignals |= signal["kind"].toString() != "movingRangeBeyondLimit";
    QCOMPARE(marks[0]->count() > 0, valueSignals);
  }
  QCOMPARE(label(view, "littlesLaw"), flow["littlesLaw"]["sentence"].toString());
  QCOMPARE(label(view, "predictability"), flow["predictability"]["sentence"].toString());
}

}  // namespace

class FlowViewTest : public QObject {
  Q_OBJECT

 private slots:
  void everyFigureEqualsTheCommandLineForEachWeekChoice();
  void anEmptyProjectShowsDashesAndEmptyTexts();
  void aStoreChangeRedrawsAndBreachesShowInRed();
  void aMoveByTheCommandLineRedraws();
  void pointsAndBarsOpenTheirTicketAndARangeIsSummedUp();
};

void FlowViewTest::everyFigureEqualsTheCommandLineForEachWeekChoice() {
  AppFixture f;
  const Uuid demo = f.board().loadDemoProject(f.clock).id;
  FlowView view(*f.context, nullptr);
  view.resize(1280, 800);
  view.showProject(demo);
  view.reloadNow();

  auto* weeks = view.findChild<QComboBox*>("flowWeeks");
  QStringList offered;
  for (int i = 0; i < weeks->count(); ++i) offered << weeks->itemText(i);
  QCOMPARE(offered, (QStringList{"4", "8", "12", "26", "52"}));
  QCOMPARE(view.weeks(), 12);
  expectCommandLine(f, view, demo, 12);
  for (const std::int64_t w : {4, 52, 8}) {
    weeks->setCurrentText(QString::number(w));
    QCOMPARE(view.weeks(), w);
    QVERIFY(view.isComputing());
    expectCommandLine(f, view, demo, w);
  }
}

void FlowViewTest::anEmptyProjectShowsDashesAndEmptyTexts() {
  AppFixture f;
  const Uuid empty = f.board().createProject("Empty", std::nullopt, f.clock).id;
  FlowView view(*f.context, nullptr);
  view.showProject(empty);
  view.reloadNow();
  settle(view);
  QCOMPARE(label(view, "medianTileValue"), QStringLiteral("\u2013"));
  QCOMPARE(label(view, "p85TileValue"), QStringLiteral("\u2013"));
  QCOMPARE(label(view, "inProgressTileCaption"), QStringLiteral("nothing started"));
  QCOMPARE(label(view, "cycleTimeCardEmpty"), QStringLiteral("No tickets finished in this range."));
  QCOMPARE(label(view, "workItemAgeCardEmpty"), QStringLiteral("Nothing is in progress."));
  QVERIFY(view.findChild<ChartCard*>("cycleTimeCard")->isEmptyShown());
  QVERIFY(view.findChild<ChartCard*>("workItemAgeCard")->isEmptyShown());
  expectCommandLine(f, view, empty, 12);
}

void FlowViewTest::aStoreChangeRedrawsAndBreachesShowInRed() {
  AppFixture f;
  const Uuid demo = f.board().loadDemoProject(f.clock).id;
  FlowView view(*f.context, nullptr);
  view.showProject(demo);
  view.show();
  QVERIFY(QTest::qWaitForWindowExposed(&view));

  // A limit below the in-progress column's count is a breach: a red note
  // that names the column.
  const ProjectSnapshot before = f.snapshot(demo);
  const BoardColumn* doing = nullptr;
  const BoardColumn* done = nullptr;
  for (const BoardColumn& column : before.columns) {
    if (column.type() == ColumnType::inProgress && doing == nullptr) doing = &column;
    if (column.type() == ColumnType::done) done = &column;
  }
  QVERIFY(doing != nullptr && done != nullptr);
  const auto inColumn = before.activeTickets(*doing);
  QVERIFY(inColumn.size() >= 2);
  settle(view);
  QVERIFY(f.context->perform(
      "Set WIP limit", [&](BoardService& s) { s.setWIPLimit(doing->id, 1); }, nullptr));
  QVERIFY(view.isComputing());
  settle(view);
  QLabel* breach = nullptr;
  for (QLabel* note : view.findChildren<QLabel*>())
    if (note->objectName().startsWith("healthNote") &&
        note->text().startsWith(QString::fromStdString(doing->name) + " holds"))
      breach = note;
  QVERIFY(breach != nullptr);
  QVERIFY(breach->styleSheet().contains("#b3261e"));
  expectCommandLine(f, view, demo, 12);

  // A move on the board: one ticket fewer in progress, one more finished.
  const QString inProgress = label(view, "inProgressTileValue");
  QVERIFY(f.context->perform(
      "Move", [&](BoardService& s) { s.moveTicket(inColumn.front()->id, done->id, std::nullopt, f.clock); }, nullptr));
  settle(view);
  QCOMPARE(label(view, "inProgressTileValue"), QString::number(inProgress.toInt() - 1));
  expectCommandLine(f, view, demo, 12);
}

void FlowViewTest::aMoveByTheCommandLineRedraws() {
  AppFixture f;
  const Uuid demo = f.board().loadDemoProject(f.clock).id;
  FlowView view(*f.context, nullptr);
  view.showProject(demo);
  view.show();
  QVERIFY(QTest::qWaitForWindowExposed(&view));
  ExternalChangeWatcher watcher(*f.context, nullptr);
  QVERIFY(!watcher.check());
  settle(view);

  // The oldest item in progress is finished from the terminal; the next
  // poll of the watcher redraws the view.
  const ProjectSnapshot before = f.snapshot(demo);
  const std::vector<AgePoint> ages = FlowMetrics::ages(flowTickets(before), f.clock);
  QVERIFY(!ages.empty());
  std::string done;
  for (const BoardColumn& column : before.columns)
    if (column.type() == ColumnType::done) done = column.name;
  QCOMPARE(orvane::testing::runCli(f, {"ticket", "move", QString::fromStdString(before.project.key),
                                        QString::fromStdString(ages.front().reference), QString::fromStdString(done)})
               .exitCode,
           0);
  QVERIFY(watcher.check());
  QVERIFY(view.isComputing());
  settle(view);
  QCOMPARE(label(view, "inProgressTileValue"), QString::number(ages.size() - 1));
  expectCommandLine(f, view, demo, 12);
}

void FlowViewTest::pointsAndBarsOpenTheirTicketAndARangeIsSummedUp() {
  AppFixture f;
  const Uuid demo = f.board().loadDemoProject(f.clock).id;
  FlowView view(*f.context, nullptr);
  view.resize(1280, 800);
  view.showProject(demo);
  view.reloadNow();
  settle(view);
  const std::vector<FlowTicket> tickets = flowTickets(f.snapshot(demo));
  std::vector<Uuid> opened;
  QObject::connect(&view, &FlowView::openTicketRequested, &view, [&](const Uuid& id) { opened.push_back(id); });

  // The last point of the cycle-time chart is the last ticket finished.
  QScatterSeries* points = ticketPoints(view);
  QVERIFY(points != nullptr && points->count() > 0);
  emit points->clicked(points->at(points->count() - 1));
  QCOMPARE(opened.size(), 1u);
  const Uuid clicked = opened.front();
  const FlowTicket* finished = nullptr;
  for (const FlowTicket& t : tickets)
    if (t.id == clicked) finished = &t;
  QVERIFY(finished != nullptr && finished->completedAt.has_value());
  for (const FlowTicket& t : tickets)
    if (t.completedAt && t.cycleDays) QVERIFY(!(*finished->completedAt < *t.completedAt));

  // The first age bar is the oldest item in progress.
  auto* ages = view.findChild<FlowAgeChart*>();
  const auto stacked = seriesOf<QStackedBarSeries>(ages);
  emit stacked[0]->barSets()[0]->clicked(0);
  QCOMPARE(opened.size(), 2u);
  const std::vector<AgePoint> oldest = FlowMetrics::ages(tickets, f.clock);
  QVERIFY(opened.back() == oldest.front().id);
  QVERIFY(ages->hoverText(0).startsWith(QString::fromStdString(oldest.front().reference + " " + oldest.front().title)));

  // A drag across the middle half of the cumulative flow chooses its days.
  auto* cumulative = view.findChild<FlowCumulativeChart*>();
  view.show();
  QVERIFY(QTest::qWaitForWindowExposed(&view));
  settle(view);
  const QRectF plot = cumulative->chart()->plotArea();
  const auto at = [&](double share) {
    return cumulative->mapFromScene(
        cumulative->chart()->mapToScene(QPointF(plot.left() + share * plot.width(), plot.center().y())));
  };
  QSignalSpy chosen(cumulative, &FlowCumulativeChart::rangeChosen);
  QTest::mousePress(cumulative->viewport(), Qt::LeftButton, {}, at(0.25));
  QMouseEvent move(QEvent::MouseMove, at(0.75), cumulative->viewport()->mapToGlobal(at(0.75)), Qt::NoButton,
                   Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(cumulative->viewport(), &move);
  QTest::mouseRelease(cumulative->viewport(), Qt::LeftButton, {}, at(0.75));
  QCOMPARE(chosen.count(), 1);
  const auto dragged = cumulative->chosenRange();
  QVERIFY(dragged.has_value());
  QVERIFY2(std::abs(dragged->first - 21) <= 1 && std::abs(dragged->second - 62) <= 1,
           qPrintable(QStringLiteral("%1..%2").arg(dragged->first).arg(dragged->second)));
  QVERIFY(!label(view, "flowRange").contains("Drag across"));

  // Chosen days of the cumulative flow are summed up under it.
  cumulative->chooseRange(70, 50);
  QCOMPARE(cumulative->chosenRange(), std::make_optional(std::make_pair(50, 70)));
  const CivilDate today = CivilDate::fromUtc(f.clock);
  const std::optional<FlowRange> range = flowRange(tickets, today.addingDays(-83 + 50), today.addingDays(-83 + 70));
  QVERIFY(range.has_value());
  QCOMPARE(label(view, "flowRange"), QString::fromStdString(flowRangeSentence(*range)));
  QCOMPARE(label(view, "littlesLaw"),
           QString::fromStdString(FlowAnalyses::littlesLawSentence(FlowAnalyses::littlesLaw(tickets, *range))));
}

QTEST_MAIN(FlowViewTest)
#include "FlowViewTest.moc"
