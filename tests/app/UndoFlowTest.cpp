#include <QMessageBox>
#include <QSignalSpy>
#include <QTest>

#include "app/AppFixture.h"
#include "app/shell/UndoHistory.h"
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

}  // namespace

class UndoFlowTest : public QObject {
  Q_OBJECT

 private slots:
  void stepsUndoAndRedoInOrderAndANewStepDropsRedo();
  void refusedOrEmptyStepsLeaveTheHistoryAlone();
  void failingStepTakesBackItsEarlierOperations();
  void changeFromAnotherConnectionRefusesUndoAndClearsTheHistory();
};

void UndoFlowTest::stepsUndoAndRedoInOrderAndANewStepDropsRedo() {
  AppFixture f;
  QWidget parent;
  UndoHistory& history = f.context->undoHistory();
  QSignalSpy reloads(f.context.get(), &AppContext::storeChanged);
  const std::string empty = dumpStore(f.t.store.db());
  Uuid project;
  QVERIFY(f.context->perform(
      "New project", [&](BoardService& s) { project = s.createProject("Apollo", "AP", f.clock).id; }, &parent));
  const std::string withProject = dumpStore(f.t.store.db());
  QVERIFY(f.context->perform(
      "New ticket", [&](BoardService& s) { s.createTicket(project, {.title = "Engine"}, f.clock); }, &parent));
  const std::string withTicket = dumpStore(f.t.store.db());

  QCOMPARE(history.undoLabel(), QString("New ticket"));
  f.context->undo(&parent);
  QVERIFY(dumpStore(f.t.store.db()) == withProject);
  QCOMPARE(history.undoLabel(), QString("New project"));
  QCOMPARE(history.redoLabel(), QString("New ticket"));
  f.context->undo(&parent);
  QVERIFY(dumpStore(f.t.store.db()) == empty);
  QVERIFY(!history.canUndo());
  f.context->redo(&parent);
  f.context->redo(&parent);
  QVERIFY(dumpStore(f.t.store.db()) == withTicket);
  QCOMPARE(reloads.count(), 6);

  f.context->undo(&parent);
  QVERIFY(f.context->perform(
      "Rename project", [&](BoardService& s) { s.renameProject(project, "Artemis"); }, &parent));
  QVERIFY(!history.canRedo());
  QVERIFY(alerts(parent).isEmpty());
}

void UndoFlowTest::refusedOrEmptyStepsLeaveTheHistoryAlone() {
  AppFixture f;
  QWidget parent;
  const Uuid project = f.board().createProject("Apollo", "AP", f.clock).id;
  QVERIFY(!f.context->perform(
      "New project", [&](BoardService& s) { s.createProject("apollo", std::nullopt, f.clock); }, &parent));
  QCOMPARE(alerts(parent).size(), 1);
  // Setting a flag to what it is changes no row.
  QVERIFY(f.context->perform(
      "Clear this week", [&](BoardService& s) { s.clearThisWeek(project); }, &parent));
  QVERIFY(!f.context->undoHistory().canUndo());
}

void UndoFlowTest::failingStepTakesBackItsEarlierOperations() {
  AppFixture f;
  QWidget parent;
  const Uuid project = f.board().createProject("Apollo", "AP", f.clock).id;
  const std::string before = dumpStore(f.t.store.db());
  QVERIFY(!f.context->perform(
      "New epics",
      [&](BoardService& s) {
        s.createEpic(project, "Orbit", std::nullopt, std::nullopt);
        s.createEpic(project, "ORBIT", std::nullopt, std::nullopt);
      },
      &parent));
  QCOMPARE(alerts(parent), QStringList{"\"ORBIT\" is already in use."});
  QVERIFY(dumpStore(f.t.store.db()) == before);
}

void UndoFlowTest::changeFromAnotherConnectionRefusesUndoAndClearsTheHistory() {
  AppFixture f;
  QWidget parent;
  const Uuid project = f.board().createProject("Apollo", "AP", f.clock).id;
  const Uuid ticket = f.board().createTicket(project, {.title = "Engine"}, f.clock).id;
  QVERIFY(f.context->perform(
      "Edit title", [&](BoardService& s) { s.updateTicket(ticket, {.title = "Engine v2"}); }, &parent));

  // Another program (the command line, a second window) changes the same row.
  {
    Store other = Store::open(f.t.store.path());
    BoardService(other).updateTicket(ticket, {.title = "Engine v3"});
  }
  const std::string changedElsewhere = dumpStore(f.t.store.db());
  f.context->undo(&parent);
  QCOMPARE(alerts(parent),
           QStringList{"This change can no longer be undone because the project was changed elsewhere."});
  QVERIFY(dumpStore(f.t.store.db()) == changedElsewhere);
  QVERIFY(!f.context->undoHistory().canUndo());
  QVERIFY(!f.context->undoHistory().canRedo());
}

QTEST_MAIN(UndoFlowTest)
#include "UndoFlowTest.moc"
