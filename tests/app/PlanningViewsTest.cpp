#include <QComboBox>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include "app/AppFixture.h"
#include "app/EpicsView.h"
#include "app/IterationCloseDialog.h"
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

QTEST_MAIN(PlanningViewsTest)
#include "PlanningViewsTest.moc"
