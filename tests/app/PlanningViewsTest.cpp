#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include "app/AppFixture.h"
#include "app/DayField.h"
#include "app/EpicDialog.h"
#include "app/EpicsView.h"
#include "app/IterationCloseDialog.h"
#include "app/IterationDialog.h"
#include "app/IterationsView.h"
#include "app/UndoHistory.h"
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
  QCOMPARE(row(epics, 0), (QStringList{"Orbit", "1 of 2 done (50%)", "", "1 Apr 2026", "On track", "Launch"}));

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
           (QStringList{"Closed", "4 Mar 2026 – 4 Mar 2026", "1", "1", "0", "3", "1", "3"}));
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

QTEST_MAIN(PlanningViewsTest)
#include "PlanningViewsTest.moc"
