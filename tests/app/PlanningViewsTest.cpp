#include <QAction>
#include <QComboBox>
#include <QDateEdit>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTreeWidget>

#include "app/AppFixture.h"
#include "app/CommandLine.h"
#include "app/forecast/ForecastView.h"
#include "app/planning/EpicDialog.h"
#include "app/planning/EpicsView.h"
#include "app/planning/IterationCloseDialog.h"
#include "app/planning/IterationDialog.h"
#include "app/planning/IterationsView.h"
#include "app/shell/MainWindow.h"
#include "app/shell/ProjectPane.h"
#include "app/shell/UndoHistory.h"
#include "app/widgets/DayField.h"
#include "app/widgets/ItemIds.h"
#include "core/support/StoreDump.h"

using namespace orvane;
using namespace orvane::app;
using orvane::testing::AppFixture;
using orvane::testing::dumpStore;

namespace {

QStringList alerts(QWidget& parent) {
  QStringList texts;
  for (auto* box : parent.findChildren<QMessageBox*>(QStringLiteral("alert"))) texts << box->text();
  return texts;
}

bool enabled(QWidget& view, const char* button) {
  auto* found = view.findChild<QPushButton*>(QLatin1String(button));
  if (found == nullptr) qFatal("no button %s", button);
  return found->isEnabled();
}

QStringList row(QTreeWidget* tree, int index) {
  QStringList texts;
  for (int c = 0; c < tree->columnCount(); ++c) texts << tree->topLevelItem(index)->text(c);
  return texts;
}

// Waits until a view shows its newest forecast run (it runs in the thread pool).
template <typename View>
void settle(View& view) {
  orvane::testing::awaitNewest(view, &View::forecastShown);
}

// What `orvane-cli forecast arguments --json` answers on the fixture's
// store and day.
struct CliAnswer {
  int exitCode = 0;
  QJsonObject json;
  QString error;
};

CliAnswer cli(AppFixture& f, const QStringList& arguments) {
  const auto answer = orvane::testing::runCli(f, QStringList{"forecast"} + arguments + QStringList{"--json"});
  return {answer.exitCode, answer.json().object(), answer.error};
}

QString dayText(const QJsonValue& iso) {
  return QString::fromStdString(CivilDate::fromIso(iso.toString().toStdString()).value().displayText());
}

// The colour of the narrative's word for a chance: high, moderate, low.
QColor expectedColour(double pct) {
  if (pct >= 85) return QColor("#1b7f3b");
  return pct >= 50 ? QColor("#a06800") : QColor("#b3261e");
}

QTreeWidgetItem* itemNamed(QTreeWidget* tree, const QString& name) {
  const QList<QTreeWidgetItem*> found = tree->findItems(name, Qt::MatchExactly, 0);
  if (found.size() != 1) qFatal("no single row %s", qPrintable(name));
  return found.front();
}

// A project with twelve weeks of uneven finished work, epics in a chain
// (Search, then Billing, then Reports) beside one that is done and one with
// no tickets, and iterations in every state, one of them running on too far
// away to forecast and one whose last day has passed.
Uuid generatedProject(AppFixture& f) {
  BoardService& board = f.board();
  const double day = 86400;
  const double start = f.clock.secondsSince1970 - 84 * day;
  // Made before its first ticket, so all twelve weeks of history are real
  // (no filler) and the outlooks below are the same on every run.
  const Project project = board.createProject("Generated", std::string_view("GEN"), Timestamp{start - day});
  const Epic search = board.createEpic(project.id, "Search", std::nullopt, testing::at(2026, 3, 25));
  const Epic billing = board.createEpic(project.id, "Billing", std::nullopt, testing::at(2026, 5, 1));
  const Epic reports = board.createEpic(project.id, "Reports", std::nullopt, std::nullopt);
  const Epic legacy = board.createEpic(project.id, "Legacy", std::nullopt, testing::at(2026, 3, 20));
  board.createEpic(project.id, "Someday", std::nullopt, std::nullopt);
  board.addEpicDependency(billing.id, search.id, f.clock);
  board.addEpicDependency(reports.id, billing.id, f.clock);
  const ProjectSnapshot fresh = f.snapshot(project.id);
  const auto done = std::find_if(fresh.columns.begin(), fresh.columns.end(),
                                 [](const BoardColumn& c) { return c.effectiveType() == ColumnType::done; });
  std::vector<Uuid> open;
  const Uuid chain[] = {search.id, billing.id, reports.id};
  for (int n = 0; n < 150; ++n) {
    const Timestamp created{start + n * (82 * day / 150)};
    NewTicket ticket;
    ticket.title = "Generated ticket " + std::to_string(n);
    ticket.epic = n < 6 ? legacy.id : chain[n % 3];
    const Uuid id = board.createTicket(project.id, ticket, created).id;
    if (n < 6 || n % 4 != 0) {
      board.moveTicket(id, done->id, std::nullopt, Timestamp{created.secondsSince1970 + (n % 5 + 1) * day / 3});
    } else {
      open.push_back(id);
    }
  }
  const Iteration closed =
      board.createIteration(project.id, "Closed", "", testing::at(2026, 2, 2), testing::at(2026, 2, 13));
  board.startIteration(closed.id, testing::at(2026, 2, 2));
  board.closeIteration(closed.id, IterationCarryOver::backlog(), testing::at(2026, 2, 13));
  const Iteration now =
      board.createIteration(project.id, "Now", "", testing::at(2026, 2, 25), testing::at(2026, 3, 13));
  const Iteration next =
      board.createIteration(project.id, "Next", "", testing::at(2026, 3, 16), testing::at(2026, 3, 27));
  const Iteration far = board.createIteration(project.id, "Far", "", testing::at(2026, 3, 9), testing::at(2036, 6, 1));
  const Iteration past =
      board.createIteration(project.id, "Past", "", testing::at(2026, 2, 16), testing::at(2026, 3, 3));
  board.createIteration(project.id, "Empty", "", testing::at(2026, 4, 6), testing::at(2026, 4, 17));
  const std::pair<Uuid, int> planned[] = {{now.id, 12}, {next.id, 6}, {far.id, 1}, {past.id, 2}};
  std::size_t nextOpen = 0;
  for (const auto& [iteration, count] : planned)
    for (int k = 0; k < count; ++k) board.setIteration(open.at(nextOpen++), iteration);
  board.startIteration(now.id, testing::at(2026, 2, 25));
  return project.id;
}

// Every epic's row against `orvane-cli forecast roadmap --json`: the 50% and
// 85% dates, or that nothing is open; the chance by the due day in its colour.
void expectRoadmapOfTheCommandLine(AppFixture& f, const Uuid& project, const QString& key) {
  EpicsView view(*f.context, nullptr);
  view.showProject(project);
  view.reloadNow();
  // The window is never held up: the cells wait for the run.
  QVERIFY(view.isComputing());
  QVERIFY(view.epics()->findItems("Forecasting…", Qt::MatchExactly, 5).size() >= 2);
  settle(view);

  const CliAnswer answer = cli(f, {"roadmap", key});
  QCOMPARE(answer.exitCode, 0);
  const QJsonObject epics = answer.json["epics"].toObject();
  QCOMPARE(epics.size(), view.epics()->topLevelItemCount());
  int dated = 0;
  int chances = 0;
  for (const Epic& epic : f.snapshot(project).epics) {
    const QJsonObject schedule = epics[QString::fromStdString(epic.id.text())].toObject();
    QTreeWidgetItem* item = itemNamed(view.epics(), QString::fromStdString(epic.name));
    const QString name = QString::fromStdString(epic.name);
    if (schedule["p50"].isNull()) {
      QCOMPARE(schedule["open"].toInt(), 0);
      QVERIFY2(item->text(5) == "Done" || item->text(5) == "Nothing open", qPrintable(name));
      QCOMPARE(item->text(6), QString());
    } else {
      QCOMPARE(item->text(5), dayText(schedule["p50"]));
      QCOMPARE(item->text(6), dayText(schedule["p85"]));
      ++dated;
    }
    if (schedule["chanceByDue"].isNull()) {
      QCOMPARE(item->text(7), QString());
    } else {
      const double chance = schedule["chanceByDue"].toDouble();
      QCOMPARE(item->text(7), QString::number(chance, 'f', 1) + '%');
      QCOMPARE(item->foreground(7).color(), expectedColour(chance));
      ++chances;
    }
  }
  QVERIFY(dated >= 3);
  QVERIFY(chances >= 3);
}

// Every planned and active iteration against `orvane-cli forecast iteration
// --json`: chance, days left, tickets likely done at 85% and outlook; a
// refusal as the command line's sentence; nothing for a closed iteration.
void expectIterationsOfTheCommandLine(AppFixture& f, const Uuid& project, const QString& key) {
  IterationsView view(*f.context, nullptr);
  view.showProject(project);
  view.reloadNow();
  QVERIFY(view.isComputing());
  settle(view);
  const QMap<QString, QString> outlooks{
      {"done", "Nothing open"}, {"onTrack", "On track"}, {"atRisk", "At risk"}, {"offTrack", "Unlikely"}};
  QSet<QString> seen;
  for (const Iteration& iteration : f.snapshot(project).iterations) {
    const QString name = QString::fromStdString(iteration.name);
    const QStringList cells =
        row(view.iterations(), view.iterations()->indexOfTopLevelItem(itemNamed(view.iterations(), name))).mid(9);
    // The selected iteration's forecast is also written out under the table.
    view.selectIteration(iteration.id);
    const QString note = view.findChild<QLabel*>("iterationForecast")->text();
    if (iteration.state() == IterationState::closed) {
      QCOMPARE(cells, (QStringList{"", "", "", ""}));
      QCOMPARE(note, QString());
      seen << "closed";
      continue;
    }
    const CliAnswer answer = cli(f, {"iteration", key, name});
    if (answer.exitCode != 0) {
      QVERIFY2(answer.error.contains(cells.at(3)) && !cells.at(3).isEmpty(), qPrintable(answer.error));
      QCOMPARE(cells.mid(0, 3), (QStringList{"", "", ""}));
      QCOMPARE(note, cells.at(3));
      seen << "refused";
      continue;
    }
    const QJsonObject forecast = answer.json;
    const QJsonObject counts = forecast["counts"].toObject();
    const qint64 open = forecast["open"].toInteger();
    const qint64 done = counts["85"].toInteger();
    const QString likely = !counts.contains("85") ? QString()
                           : done >= open         ? QStringLiteral("All %1").arg(open)
                                                  : QStringLiteral("%1 of %2").arg(done).arg(open);
    QCOMPARE(cells, (QStringList{QString::number(forecast["probabilityPct"].toDouble(), 'f', 1) + '%',
                                 QString::number(forecast["daysLeft"].toInteger()), likely,
                                 outlooks.value(forecast["outlook"].toString())}));
    QVERIFY2(note.startsWith(cells.at(3) + ": "), qPrintable(note));
    QVERIFY2(
        forecast["open"].toInteger() == 0 || forecast["daysLeft"].toInteger() == 0 ||
            note.contains(
                QStringLiteral("%1 chance that the %2 open ticket").arg(cells.at(0)).arg(forecast["open"].toInteger())),
        qPrintable(note));
    seen << forecast["outlook"].toString();
  }
  // The generated project has an iteration of every kind.
  if (key == "GEN")
    QVERIFY2(seen.contains(QSet<QString>{"closed", "refused", "done", "offTrack"}) &&
                 (seen.contains("onTrack") || seen.contains("atRisk")),
             qPrintable(QStringList(seen.values()).join(' ')));
}

}  // namespace

class PlanningViewsTest : public QObject {
  Q_OBJECT

 private slots:
  void epicsShowProgressAndRefuseDependencyLoops();
  void closingAnIterationCarriesOpenTicketsOverAndCounts();
  void noticesBelongToTheProjectShownAndTheStoreAsItIs();
  void buttonsThatNeedASelectionWaitForOne();
  void epicFormSaysWhatWouldBeRefusedWhileItIsTyped();
  void iterationFormSaysWhatWouldBeRefusedWhileItIsTyped();
  // The forecasts on screen against the real orvane-cli.
  void epicsShowTheRoadmapOfTheCommandLine();
  void iterationsShowTheForecastOfTheCommandLine();
  void forecastThisEpicOpensTheForecastViewScopedToIt();
};

void PlanningViewsTest::epicsShowProgressAndRefuseDependencyLoops() {
  AppFixture f;
  const Project project = f.board().createProject("Apollo", "AP", f.clock);
  const Epic orbit = f.board().createEpic(project.id, "Orbit", std::nullopt, testing::at(2026, 4, 1));
  const Epic launch = f.board().createEpic(project.id, "Launch", std::nullopt, std::nullopt);
  f.board().addEpicDependency(orbit.id, launch.id, f.clock);
  const Uuid done = f.snapshot(project.id).columns.back().id;
  for (const char* title : {"Engine", "Fuel"}) {
    const Ticket t = f.board().createTicket(project.id, {.title = title, .epic = orbit.id}, f.clock);
    if (std::string(title) == "Engine") f.board().moveTicket(t.id, done, std::nullopt, f.clock);
  }

  EpicsView view(*f.context, nullptr);
  view.showProject(project.id);
  view.show();
  QTreeWidget* epics = view.epics();
  QCOMPARE(epics->topLevelItemCount(), 2);
  QCOMPARE(row(epics, 0),
           (QStringList{"Orbit", "1 of 2 done (50%)", "", "1 Apr 2026", "On track", "Forecasting…", "", "", "Launch"}));

  const std::string before = dumpStore(f.t.store.db());
  view.selectEpic(launch.id);
  auto* predecessor = view.findChild<QComboBox*>("predecessor");
  predecessor->setCurrentIndex(predecessor->findText("Orbit"));
  view.addDependency();
  view.selectEpic(orbit.id);
  predecessor->setCurrentIndex(predecessor->findText("Launch"));
  view.addDependency();
  QCOMPARE(alerts(view), (QStringList{"That would make the epics wait on each other in a loop.",
                                      "That epic already waits for the other one."}));
  QVERIFY(dumpStore(f.t.store.db()) == before);

  view.deleteEpic();
  auto* confirm = view.findChild<QMessageBox*>("confirmDeleteEpic");
  QCOMPARE(confirm->text(), QString("Delete this epic?"));
  QCOMPARE(confirm->informativeText(), QString("Its tickets stay on the board without an epic."));
  confirm->findChild<QPushButton*>("confirm")->click();
  QCOMPARE(epics->topLevelItemCount(), 1);
  QCOMPARE(f.snapshot(project.id).tickets.size(), std::size_t(2));
}

void PlanningViewsTest::closingAnIterationCarriesOpenTicketsOverAndCounts() {
  AppFixture f;
  const Project project = f.board().createProject("Apollo", "AP", f.clock);
  const Iteration sprint = f.board().createIteration(project.id, "Sprint 1", "Lift off", f.clock, f.clock);
  f.board().createIteration(project.id, "Sprint 2", "", testing::at(2026, 3, 18), testing::at(2026, 3, 31));
  const Uuid done = f.snapshot(project.id).columns.back().id;
  std::vector<Uuid> tickets;
  for (const char* title : {"Engine", "Fuel", "Crew", "Suits"}) {
    tickets.push_back(f.board().createTicket(project.id, {.title = title}, f.clock).id);
    f.board().setIteration(tickets.back(), sprint.id);
  }
  f.board().moveTicket(tickets[0], done, std::nullopt, f.clock);
  f.board().archive(tickets[3], f.clock);
  f.board().createTicket(project.id, {.title = "Boots"}, f.clock);

  IterationsView view(*f.context, nullptr);
  view.showProject(project.id);
  view.show();
  view.selectIteration(sprint.id);
  view.startIteration();
  QCOMPARE(view.notice()->text(), QString("Started “Sprint 1” with 3 committed."));
  // Joining an active iteration leaves its commitment as it was.
  auto* candidates = view.findChild<QComboBox*>("candidates");
  QCOMPARE(candidates->count(), 1);
  QCOMPARE(candidates->itemText(0), QString("AP-5 Boots"));
  view.addTicket();
  QCOMPARE(f.snapshot(project.id).iteration(sprint.id)->committedCount, 3);

  const std::string started = dumpStore(f.t.store.db());
  view.closeIteration();
  auto* dialog = view.findChild<IterationCloseDialog*>();
  QVERIFY(dialog != nullptr);
  dialog->target()->setCurrentIndex(dialog->target()->findText("Into “Sprint 2”"));
  dialog->submit();
  QCOMPARE(view.notice()->text(), QString("Closed “Sprint 1”: 1 finished, 3 carried over."));
  QCOMPARE(row(view.iterations(), 0).mid(1),
           (QStringList{"Closed", "4 Mar 2026 – 4 Mar 2026", "1", "1", "0", "3", "1", "3", "", "", "", ""}));
  QCOMPARE(f.snapshot(project.id).iteration(sprint.id)->carriedOverCount, 3);

  f.context->undo(&view);
  QVERIFY(dumpStore(f.t.store.db()) == started);
  QCOMPARE(row(view.iterations(), 0).at(1), QString("Active"));
  QVERIFY(alerts(view).isEmpty());
}

void PlanningViewsTest::noticesBelongToTheProjectShownAndTheStoreAsItIs() {
  AppFixture f;
  const Project apollo = f.board().createProject("Apollo", "AP", f.clock);
  const Project gemini = f.board().createProject("Gemini", "GE", f.clock);
  f.board().createIteration(gemini.id, "Orbit 1", "", f.clock, f.clock);
  const QString none = "No iterations yet. Plan one with New iteration.";

  IterationsView view(*f.context, nullptr);
  view.showProject(apollo.id);
  view.show();
  QCOMPARE(view.notice()->text(), none);

  // The first iteration, planned through the view's own form.
  view.newIteration();
  auto* form = view.findChild<IterationDialog*>();
  QVERIFY(form != nullptr);
  form->findChild<QLineEdit*>("name")->setText("Sprint 1");
  form->submit();
  QCOMPARE(view.iterations()->topLevelItemCount(), 1);
  QCOMPARE(view.notice()->text(), QString());

  view.startIteration();
  QCOMPARE(view.notice()->text(), QString("Started “Sprint 1” with 0 committed."));
  // Another project: the report was about Apollo.
  view.showProject(gemini.id);
  QCOMPARE(view.notice()->text(), QString());
  view.showProject(apollo.id);
  QCOMPARE(view.notice()->text(), QString());

  // Any change to the store ends the report.
  view.startIteration();
  QCOMPARE(view.notice()->text(), QString());  // refused, and the alert says why
  QCOMPARE(alerts(view), QStringList{"This iteration has already been started."});
  f.context->undo(&view);
  view.startIteration();
  QVERIFY(!view.notice()->text().isEmpty());
  f.context->notifyStoreChanged();
  QCOMPARE(view.notice()->text(), QString());
  // A project without iterations says so, whatever was shown before.
  view.showProject(f.board().createProject("Mercury", "ME", f.clock).id);
  QCOMPARE(view.notice()->text(), none);
}

void PlanningViewsTest::buttonsThatNeedASelectionWaitForOne() {
  AppFixture f;
  const Project project = f.board().createProject("Apollo", "AP", f.clock);

  EpicsView epics(*f.context, nullptr);
  epics.showProject(project.id);
  epics.show();
  QVERIFY(enabled(epics, "newEpic"));
  QVERIFY(enabled(epics, "newMilestone"));
  for (const char* button :
       {"editEpic", "deleteEpic", "addDependency", "removeDependency", "editMilestone", "deleteMilestone"})
    QVERIFY2(!enabled(epics, button), button);

  const Epic launch = f.board().createEpic(project.id, "Launch", std::nullopt, std::nullopt);
  f.board().createMilestone(project.id, "Lift-off", f.clock, launch.id, "");
  f.context->notifyStoreChanged();
  QVERIFY(enabled(epics, "editEpic"));  // the first epic is chosen for the user
  QVERIFY(enabled(epics, "deleteEpic"));
  QVERIFY(!enabled(epics, "addDependency"));  // no other epic to wait for
  QVERIFY(!enabled(epics, "editMilestone"));
  epics.milestones()->setCurrentItem(epics.milestones()->topLevelItem(0));
  QVERIFY(enabled(epics, "editMilestone"));
  QVERIFY(enabled(epics, "deleteMilestone"));
  f.board().createEpic(project.id, "Orbit", std::nullopt, std::nullopt);
  f.context->notifyStoreChanged();
  QVERIFY(enabled(epics, "addDependency"));
  QVERIFY(!enabled(epics, "removeDependency"));
  epics.addDependency();
  auto* dependencies = epics.findChild<QTreeWidget*>("dependencies");
  dependencies->setCurrentItem(dependencies->topLevelItem(0));
  QVERIFY(enabled(epics, "removeDependency"));

  IterationsView iterations(*f.context, nullptr);
  iterations.showProject(project.id);
  iterations.show();
  for (const char* button :
       {"editIteration", "startIteration", "closeIteration", "deleteIteration", "addTicket", "takeTicketOut"})
    QVERIFY2(!enabled(iterations, button), button);
  const Iteration sprint = f.board().createIteration(project.id, "Sprint 1", "", f.clock, f.clock);
  const Ticket engine = f.board().createTicket(project.id, {.title = "Engine"}, f.clock);
  f.board().setIteration(engine.id, sprint.id);
  f.context->notifyStoreChanged();
  QVERIFY(enabled(iterations, "startIteration"));
  QVERIFY(!enabled(iterations, "takeTicketOut"));
  iterations.tickets()->setCurrentItem(iterations.tickets()->topLevelItem(0));
  QVERIFY(enabled(iterations, "takeTicketOut"));
  QVERIFY(alerts(epics).isEmpty() && alerts(iterations).isEmpty());
}

void PlanningViewsTest::epicFormSaysWhatWouldBeRefusedWhileItIsTyped() {
  AppFixture f;
  const Project project = f.board().createProject("Apollo", "AP", f.clock);
  f.board().createEpic(project.id, "Launch", std::nullopt, std::nullopt);
  int saves = 0;
  EpicDialog form(
      f.context->calendar(), f.snapshot(project.id).epics, std::nullopt,
      [&](const EpicDialog::Values&, QWidget*) { return ++saves > 0; }, nullptr);
  auto* name = form.findChild<QLineEdit*>("name");
  auto* color = form.findChild<QLineEdit*>("color");
  QVERIFY(!form.saveButton()->isEnabled());  // nothing typed yet, nothing said
  QVERIFY(form.problems().isEmpty());

  const QString badColor = "A colour is # followed by six hexadecimal digits (0-9, A-F), for example #3A7BD5.";
  const struct {
    const char* name;
    const char* color;
    QStringList problems;
  } cases[] = {
      {" launch ", "", {"\"launch\" is already in use."}},
      {"   ", "", {"A name, title or path cannot be empty."}},
      {"Orbit", "#zz12", {badColor}},
      {"Orbit", "#3a7bd", {badColor}},
      {"Orbit", "3a7bd5", {badColor}},
      {"Orbit", " #3a7bd5 ", {}},
      {"Orbit", "", {}},
  };
  for (const auto& c : cases) {
    name->setText(c.name);
    color->setText(c.color);
    QCOMPARE(form.problems(), c.problems);
    QCOMPARE(form.saveButton()->isEnabled(), c.problems.isEmpty());
  }

  // A refused form is never handed to the service, not even by Return.
  color->setText("#zz12");
  form.submit();
  QCOMPARE(saves, 0);
  color->setText("#3A7BD5");
  const QImage swatch = form.findChild<QLabel*>("swatch")->pixmap().toImage();
  QCOMPARE(swatch.pixelColor(4, 4), QColor("#3A7BD5"));

  // A due day before the start day is said under the due day.
  auto* start = form.findChild<DayField*>("start");
  auto* due = form.findChild<DayField*>("due");
  start->setInstant(testing::at(2026, 5, 10));
  due->setInstant(testing::at(2026, 5, 1));
  emit due->edited();
  QCOMPARE(form.problems(), QStringList{"The due date cannot be before the start date."});
  QVERIFY(!form.saveButton()->isEnabled());
  due->setInstant(testing::at(2026, 5, 20));
  emit due->edited();
  QVERIFY(form.saveButton()->isEnabled());
  form.submit();
  QCOMPARE(saves, 1);
}

void PlanningViewsTest::iterationFormSaysWhatWouldBeRefusedWhileItIsTyped() {
  AppFixture f;
  const Project project = f.board().createProject("Apollo", "AP", f.clock);
  const Iteration sprint = f.board().createIteration(project.id, "Sprint 1", "", f.clock, f.clock);
  const std::vector<Iteration> iterations = f.snapshot(project.id).iterations;
  const auto accept = [](const IterationDialog::Values&, QWidget*) { return true; };

  IterationDialog fresh(f.context->calendar(), iterations, std::nullopt, f.clock, accept, nullptr);
  auto* name = fresh.findChild<QLineEdit*>("name");
  name->setText("SPRINT 1");
  QCOMPARE(fresh.problems(), QStringList{"\"SPRINT 1\" is already in use."});
  QVERIFY(!fresh.saveButton()->isEnabled());
  name->setText("Sprint 2");
  QVERIFY(fresh.problems().isEmpty());
  auto* end = fresh.findChild<DayField*>("end");
  end->setInstant(testing::at(2026, 3, 1));
  emit end->edited();
  QCOMPARE(fresh.problems(), QStringList{"The end date cannot be before the start date."});
  QVERIFY(!fresh.saveButton()->isEnabled());

  // The iteration itself does not take its own name: a change of case is fine.
  IterationDialog editing(f.context->calendar(), iterations, sprint, sprint.startDate, accept, nullptr);
  editing.findChild<QLineEdit*>("name")->setText("SPRINT 1");
  QVERIFY(editing.problems().isEmpty());
  QVERIFY(editing.saveButton()->isEnabled());
}

void PlanningViewsTest::epicsShowTheRoadmapOfTheCommandLine() {
  AppFixture f;
  expectRoadmapOfTheCommandLine(f, f.board().loadDemoProject(f.clock).id, "SHOP");
  if (QTest::currentTestFailed()) return;
  expectRoadmapOfTheCommandLine(f, generatedProject(f), "GEN");
}

void PlanningViewsTest::iterationsShowTheForecastOfTheCommandLine() {
  AppFixture f;
  expectIterationsOfTheCommandLine(f, f.board().loadDemoProject(f.clock).id, "SHOP");
  if (QTest::currentTestFailed()) return;
  expectIterationsOfTheCommandLine(f, generatedProject(f), "GEN");
}

void PlanningViewsTest::forecastThisEpicOpensTheForecastViewScopedToIt() {
  AppFixture f;
  const Uuid demo = f.board().loadDemoProject(f.clock).id;
  MainWindow window(*f.context);
  window.show();
  window.selectProject(demo);
  auto* epics = qobject_cast<EpicsView*>(window.pane()->view(ProjectViewMode::epics));
  auto* forecast = window.pane()->forecastView();
  auto* scope = forecast->findChild<QComboBox*>("forecastScope");

  // By the button, by the row's menu, and for an epic made since the
  // Forecast view last read the project; each time the view says whose
  // forecast it shows.
  const auto shows = [&](const QString& text) {
    for (QLabel* label : forecast->findChildren<QLabel*>())
      if (label->isVisibleTo(forecast) && label->text().startsWith(text)) return true;
    return false;
  };
  const struct {
    const char* epic;
    bool byMenu;
    const char* said;
  } cases[] = {{"Checkout & payments", false, "When will the epic “%1” be done?"},
               {"Customer accounts", true, "When will the epic “%1” be done?"},
               {"Late addition", false, "Nothing is open in the epic “%1”."}};
  for (const auto& c : cases) {
    window.setViewMode(ProjectViewMode::epics);
    if (std::string(c.epic) == "Late addition") {
      f.board().createEpic(demo, c.epic, std::nullopt, std::nullopt);
      f.context->notifyStoreChanged();
    }
    epics->epics()->setCurrentItem(itemNamed(epics->epics(), c.epic));
    if (c.byMenu) {
      epics->epics()->findChild<QAction*>("forecastEpicAction")->trigger();
    } else {
      QTest::mouseClick(epics->findChild<QPushButton*>("forecastEpic"), Qt::LeftButton);
    }
    QCOMPARE(window.viewMode(), ProjectViewMode::forecast);
    QVERIFY(window.viewAction(ProjectViewMode::forecast)->isChecked());
    QCOMPARE(scope->currentText(), QStringLiteral("Epic: %1").arg(c.epic));
    settle(*forecast);
    QVERIFY2(shows(QString(c.said).arg(c.epic)), c.epic);
  }
}

QTEST_MAIN(PlanningViewsTest)
#include "PlanningViewsTest.moc"
