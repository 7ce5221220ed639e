#include <QMessageBox>
#include <QTest>
#include <fstream>

#include "app/AppFixture.h"
#include "app/MainWindow.h"
#include "app/ProjectSidebar.h"
#include "app/StoreCommands.h"
#include "app/UndoHistory.h"

using namespace orvane;
using namespace orvane::app;
using orvane::testing::AppFixture;

class StoreCommandsTest : public QObject {
  Q_OBJECT

 private slots:
  void backupNameCarriesTheDay();
  void restoreAddsProjectsAndChangesNone();
  void refusedRestoreShowsTheReasonAndAddsNothing();
  void restoreMessageListsTheWarnings();
};

void StoreCommandsTest::backupNameCarriesTheDay() {
  AppFixture f;
  StoreCommands commands(*f.context, nullptr);
  QCOMPARE(commands.defaultBackupName(), QString("orvane-backup-2026-03-04.json"));
}

void StoreCommandsTest::restoreAddsProjectsAndChangesNone() {
  // A backup made by another store holding two projects, one of them with
  // the same name as a project already here.
  AppFixture source;
  source.board().loadDemoProject(source.clock);
  const Uuid shop = source.board().createProject("Shop", std::nullopt, source.clock).id;
  source.board().createTicket(shop, NewTicket{.title = "From the backup"}, source.clock);
  const std::filesystem::path file = source.t.dir.path() / "backup.json";
  QWidget parent;
  QVERIFY(StoreCommands(*source.context, &parent).writeBackup(file));

  AppFixture f;
  const Uuid mine = f.board().createProject("Shop", std::nullopt, f.clock).id;
  f.board().createTicket(mine, NewTicket{.title = "Mine"}, f.clock);
  const ProjectSnapshot before = f.snapshot(mine);
  MainWindow window(*f.context);
  window.selectProject(mine);

  const std::optional<QString> message = window.commands()->restoreFile(file);
  // The restored "Shop" gets a name of its own, and both keys are free ones.
  QCOMPARE(message, std::optional<QString>(
                        "Restored 2 project(s) with 0 saved forecasts. Nothing existing was changed. 3 warning(s):\n"
                        "SHOP2: the key SHOP is already in use; the tickets are numbered SHOP2-1, SHOP2-2 and so on.\n"
                        "SHOP3: \"Shop\" is already in use; restored as \"Shop (restored)\".\n"
                        "SHOP3: the key SHOP is already in use; the tickets are numbered SHOP3-1, SHOP3-2 and so on."));
  QCOMPARE(f.board().projects().size(), std::size_t(3));
  QCOMPARE(f.board().projects()[2].name, std::string("Shop (restored)"));
  QCOMPARE(window.sidebar()->count(), 3);
  QCOMPARE(window.selectedProject(), std::optional<Uuid>(mine));
  const ProjectSnapshot after = f.snapshot(mine);
  QVERIFY(after.project == before.project);
  QVERIFY(after.tickets == before.tickets);
  QVERIFY(after.columns == before.columns);
  QVERIFY(after.events == before.events);
}

void StoreCommandsTest::refusedRestoreShowsTheReasonAndAddsNothing() {
  AppFixture f;
  f.board().createProject("Shop", std::nullopt, f.clock);
  MainWindow window(*f.context);
  const std::filesystem::path file = f.t.dir.path() / "notes.json";
  std::ofstream(file) << R"({"format": "something-else", "version": 1})";

  QVERIFY(!window.commands()->restoreFile(file));
  auto* alert = window.findChild<QMessageBox*>("alert");
  QVERIFY(alert != nullptr);
  QVERIFY(!alert->text().isEmpty());
  QCOMPARE(f.board().projects().size(), std::size_t(1));
  QVERIFY(!f.context->undoHistory().canUndo());

  QVERIFY(!window.commands()->restoreFile(f.t.dir.path() / "missing.json"));
  QCOMPARE(f.board().projects().size(), std::size_t(1));
}

void StoreCommandsTest::restoreMessageListsTheWarnings() {
  Backup::Report report;
  report.projects = 1;
  report.forecasts = 4;
  report.warnings = {"a", "b", "c"};
  QCOMPARE(StoreCommands::restoreMessage(report),
           QString("Restored 1 project(s) with 4 saved forecasts. Nothing existing was changed. "
                   "3 warning(s):\na\nb\nc"));
}

QTEST_MAIN(StoreCommandsTest)
#include "StoreCommandsTest.moc"
