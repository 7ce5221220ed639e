#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <fstream>

#include "app/AppFixture.h"
#include "app/shell/MainWindow.h"
#include "app/shell/NewProjectDialog.h"
#include "app/shell/ProjectSetupDialog.h"
#include "app/shell/ProjectSidebar.h"
#include "app/shell/StoreCommands.h"
#include "app/shell/UndoHistory.h"

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
  void newProjectSheetShowsThePrefixAsItWillBeStored();
  void recipientAddressesAreCheckedAsTheyAreTyped();
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
  // It holds people's addresses: readable by its owner only.
  QCOMPARE(std::filesystem::status(file).permissions(),
           std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);

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

  // The same sentence the CLI gives.
  qDeleteAll(window.findChildren<QMessageBox*>("alert"));
  QVERIFY(!window.commands()->restoreFile(f.t.dir.path()));
  QCOMPARE(window.findChild<QMessageBox*>("alert")->text(),
           "The backup could not be read: " + QString::fromStdString(f.t.dir.path().string()) +
               ". It is a folder, not a file.");
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

void StoreCommandsTest::newProjectSheetShowsThePrefixAsItWillBeStored() {
  AppFixture f;
  f.board().createProject("Apollo", "AP", f.clock);
  QWidget window;
  StoreCommands commands(*f.context, &window);
  commands.newProject();
  auto* sheet = window.findChild<NewProjectDialog*>();
  QVERIFY(sheet != nullptr);
  QVERIFY(!sheet->createButton()->isEnabled());  // no name yet
  QCOMPARE(sheet->keyPreview(), QString());

  const struct {
    const char* name;
    const char* typedPrefix;
    const char* shownPrefix;
    const char* preview;
    const char* nameProblem;
  } cases[] = {
      {"Forecasting", "frc x-1", "FRCX1", "Tickets will be numbered FRCX1-1, FRCX1-2 and so on.", ""},
      {"Forecasting", "platform2026", "PLATFO", "Tickets will be numbered PLATFO-1, PLATFO-2 and so on.", ""},
      {"Web shop", " -", "", "Tickets will be numbered WEBSHO-1, WEBSHO-2 and so on.", ""},
      {"apollo", "", "", "Tickets will be numbered APOLLO-1, APOLLO-2 and so on.", "\"apollo\" is already in use."},
      {"  ", "", "", "", "A name, title or comment cannot be empty."},
  };
  for (const auto& c : cases) {
    sheet->nameField()->setText(c.name);
    sheet->keyField()->clear();
    QTest::keyClicks(sheet->keyField(), c.typedPrefix);
    QCOMPARE(sheet->keyField()->text(), QString(c.shownPrefix));
    QCOMPARE(sheet->keyPreview(), QString(c.preview));
    QCOMPARE(sheet->nameProblem(), QString(c.nameProblem));
    QCOMPARE(sheet->createButton()->isEnabled(), QString(c.nameProblem).isEmpty());
  }

  // A letter typed in the middle stays where it was typed.
  sheet->keyField()->setText("FRC");
  sheet->keyField()->setCursorPosition(1);
  QTest::keyClicks(sheet->keyField(), "x");
  QCOMPARE(sheet->keyField()->text(), QString("FXRC"));
  QCOMPARE(sheet->keyField()->cursorPosition(), 2);

  // What the sheet showed is what is stored.
  sheet->nameField()->setText("Forecasting");
  sheet->keyField()->setText("frc-2");
  QCOMPARE(sheet->keyPreview(), QString("Tickets will be numbered FRC2-1, FRC2-2 and so on."));
  sheet->create();
  QCOMPARE(sheet->result(), int(QDialog::Accepted));
  bool found = false;
  for (const Project& project : f.board().projects()) found |= project.name == "Forecasting" && project.key == "FRC2";
  QVERIFY(found);
}

void StoreCommandsTest::recipientAddressesAreCheckedAsTheyAreTyped() {
  AppFixture f;
  const Uuid project = f.board().createProject("Apollo", "AP", f.clock).id;
  ProjectSetupDialog sheet(*f.context, project, nullptr);
  const QString notAnAddress = "That does not look like an email address.";
  const QString same =
      "The internal address cannot be the client's address, or internal reports could reach the client.";
  const struct {
    const char* client;
    const char* internal;
    QStringList problems;
  } cases[] = {
      {"", "", {}},
      {"anna@client", "", {notAnAddress}},
      {"anna@client.example", "boss@@us.example", {notAnAddress}},
      {"anna@client.example", " Anna@Client.example ", {same}},
      {"anna@client.example", "boss@us.example", {}},
  };
  for (const auto& c : cases) {
    sheet.field("clientEmail")->setText(c.client);
    sheet.field("internalEmail")->setText(c.internal);
    QCOMPARE(sheet.fieldProblems(), c.problems);
    QCOMPARE(sheet.saveButton()->isEnabled(), c.problems.isEmpty());
  }
  sheet.field("internalEmail")->setText("anna@client.example");
  sheet.save();  // refused where it was typed: nothing stored, nothing said twice
  QCOMPARE(f.snapshot(project).project.clientEmail, std::string());
  QCOMPARE(sheet.errorMessage(), QString());
  sheet.field("internalEmail")->setText("boss@us.example");
  sheet.save();
  QCOMPARE(f.snapshot(project).project.internalEmail, std::string("boss@us.example"));
}

QTEST_MAIN(StoreCommandsTest)
#include "StoreCommandsTest.moc"
