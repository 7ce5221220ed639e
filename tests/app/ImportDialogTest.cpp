#include <QCheckBox>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>
#include <fstream>

#include "app/AppFixture.h"
#include "app/exchange/ImportDialog.h"
#include "app/exchange/TicketExchangeCommands.h"
#include "app/shell/MainWindow.h"
#include "app/shell/StoreCommands.h"
#include "app/shell/UndoHistory.h"
#include "core/exchange/TicketXlsx.h"
#include "core/support/StoreDump.h"

using namespace orvane;
using namespace orvane::app;
using orvane::testing::AppFixture;
using orvane::testing::at;
using orvane::testing::dumpStore;

namespace {

const std::filesystem::path csvData = std::filesystem::path(ORVANE_TEST_DATA_DIR) / "csv";

QStringList issueLines(const ImportDialog& dialog, bool errors) {
  QStringList lines;
  for (int i = 0; i < dialog.issueList()->count(); ++i) {
    const QListWidgetItem* item = dialog.issueList()->item(i);
    if (item->data(ImportDialog::isErrorRole).toBool() == errors) lines << item->text();
  }
  return lines;
}

QString alertText(QWidget& window) {
  auto* alert = window.findChild<QMessageBox*>(QStringLiteral("alert"));
  const QString text = alert != nullptr ? alert->text() : QString();
  delete alert;
  return text;
}

}  // namespace

class ImportDialogTest : public QObject {
  Q_OBJECT

 private slots:
  void previewShowsRowsAndIssuesAndChangesNothing();
  void previewMarksRowsTheImportWouldSkip();
  void importIsOneStepThatUndoesExactly();
  void unreadableFilesAreRefusedWithTheirSentence();
  void exportAndTemplateReadBackAsTicketFiles();
  void importNeedsASelectedProject();
};

void ImportDialogTest::previewShowsRowsAndIssuesAndChangesNothing() {
  AppFixture f;
  const Uuid shop = f.board().createProject("Shop", std::nullopt, f.clock).id;
  const std::string before = dumpStore(f.t.store.db());
  QWidget window;
  TicketExchangeCommands commands(*f.context, &window);

  ImportDialog* dialog = commands.openImportFile(shop, csvData / "issues.csv");
  QVERIFY(dialog != nullptr);
  QTableWidget* table = dialog->rowTable();
  QCOMPARE(table->rowCount(), 4);
  const QStringList expected[] = {{"2", "Too many", "Backlog"},
                                  {"5", "Odd priority", "Backlog"},
                                  {"6", "Not blocked", "Backlog"},
                                  {"7", "Short", "First Backlog column"}};
  for (int r = 0; r < 4; ++r) {
    QCOMPARE(
        QStringList({table->item(r, ImportDialog::rowColumn)->text(), table->item(r, ImportDialog::titleColumn)->text(),
                     table->item(r, ImportDialog::boardColumn)->text()}),
        expected[r]);
  }
  QCOMPARE(issueLines(*dialog, true), QStringList({"Row 3: The title is empty. Row skipped.",
                                                   "Row 4: due_date \"05/10/2026\" is not a valid date. Use 2026-10-05 "
                                                   "or 2026-10-05T09:30:00Z. Row skipped."}));
  const QStringList warnings = issueLines(*dialog, false);
  QCOMPARE(warnings.size(), 5);
  QVERIFY(warnings.contains("Row 5: Priority \"Someday\" is not recognised; Medium was used."));
  QCOMPARE(dialog->summaryLabel()->text(), QString("4 tickets will be imported. 2 rows will be skipped; 5 warnings."));
  // No created dates in the file: nothing to extend.
  QVERIFY(!dialog->extendHistoryBox()->isEnabled());

  // The preview is a rolled-back dry run; cancelling leaves no trace.
  dialog->reject();
  QCOMPARE(dumpStore(f.t.store.db()), before);
  QVERIFY(!f.context->undoHistory().canUndo());
}

void ImportDialogTest::previewMarksRowsTheImportWouldSkip() {
  AppFixture f;
  const Uuid shop = f.board().createProject("Shop", std::nullopt, f.clock).id;
  const std::filesystem::path file = f.t.dir.path() / "tickets.csv";
  std::ofstream(file) << "title,column\nSomewhere else,Nowhere\n";
  QWidget window;
  TicketExchangeCommands commands(*f.context, &window);

  ImportDialog* dialog = commands.openImportFile(shop, file);
  QVERIFY(dialog != nullptr);
  QCOMPARE(issueLines(*dialog, true), QStringList({"Row 2: Unknown column \"Nowhere\". Row skipped."}));
  QVERIFY(dialog->rowTable()->item(0, ImportDialog::titleColumn)->toolTip().startsWith("Skipped: "));
  QCOMPARE(dialog->summaryLabel()->text(), QString("No ticket can be imported. 1 row will be skipped; 0 warnings."));
  QVERIFY(!dialog->importButton()->isEnabled());
}

void ImportDialogTest::importIsOneStepThatUndoesExactly() {
  AppFixture f;
  const Uuid shop = f.board().createProject("Shop", std::nullopt, f.clock).id;
  f.board().createTicket(shop, NewTicket{.title = "Already here"}, f.clock);
  const std::string before = dumpStore(f.t.store.db());
  QWidget window;
  TicketExchangeCommands commands(*f.context, &window);

  ImportDialog* dialog = commands.openImportFile(shop, csvData / "comma_crlf.csv");
  QVERIFY(dialog != nullptr);
  QCOMPARE(dialog->rowTable()->rowCount(), 3);
  QCOMPARE(dialog->rowTable()->item(0, ImportDialog::assigneeColumn)->text(), QString("Ana Souza"));
  QCOMPARE(dialog->rowTable()->item(0, ImportDialog::completedColumn)->text(), QString("2026-01-09"));
  QVERIFY(dialog->extendHistoryBox()->isEnabled());
  dialog->extendHistoryBox()->setChecked(true);
  dialog->importButton()->click();

  const ProjectSnapshot imported = f.snapshot(shop);
  QCOMPARE(imported.tickets.size(), std::size_t(4));
  QCOMPARE(imported.epics.size(), std::size_t(1));
  QCOMPARE(imported.project.createdAt, at(2026, 1, 2, 0));
  auto* report = window.findChild<QMessageBox*>(QStringLiteral("importReport"));
  QVERIFY(report != nullptr);
  QCOMPARE(report->text(), QString("Imported 3 tickets into Shop, creating 1 epic and 2 people. The project's history "
                                   "now starts on 2026-01-02."));
  const std::string after = dumpStore(f.t.store.db());

  UndoHistory& history = f.context->undoHistory();
  QCOMPARE(history.undoLabel(), QString("Import tickets"));
  f.context->undo(&window);
  QCOMPARE(dumpStore(f.t.store.db()), before);
  QVERIFY(!history.canUndo());
  f.context->redo(&window);
  QCOMPARE(dumpStore(f.t.store.db()), after);
}

void ImportDialogTest::unreadableFilesAreRefusedWithTheirSentence() {
  AppFixture f;
  const Uuid shop = f.board().createProject("Shop", std::nullopt, f.clock).id;
  QWidget window;
  TicketExchangeCommands commands(*f.context, &window);
  const std::filesystem::path folder = f.t.dir.path();
  std::ofstream(folder / "empty.csv") << "";
  std::ofstream(folder / "notitle.csv") << "summary_text,column\nA,Backlog\n";
  std::ofstream(folder / "fake.xlsx") << "title\nA\n";
  std::filesystem::create_directory(folder / "d.csv");
  const struct {
    const char* file;
    bool exactSentence;
    QString sentence;
  } cases[] = {
      {"empty.csv", true, "The file is empty."},
      {"notitle.csv", true, "The first row must contain a \"title\" column."},
      {"fake.xlsx", false, {}},
      {"missing.csv", false, {}},
      {"d.csv", true,
       "The file could not be read: " + QString::fromStdString((folder / "d.csv").string()) +
           ". It is a folder, not a file."},
  };
  for (const auto& c : cases) {
    QVERIFY2(commands.openImportFile(shop, folder / c.file) == nullptr, c.file);
    const QString text = alertText(window);
    QVERIFY2(!text.isEmpty(), c.file);
    if (c.exactSentence) QCOMPARE(text, c.sentence);
  }
  QVERIFY(window.findChild<ImportDialog*>() == nullptr);
}

void ImportDialogTest::exportAndTemplateReadBackAsTicketFiles() {
  AppFixture f;
  const Uuid shop = f.board().createProject("Shop", std::nullopt, f.clock).id;
  f.board().createTicket(shop, NewTicket{.title = "Café, \"quoted\""}, f.clock);
  QWidget window;
  TicketExchangeCommands commands(*f.context, &window);
  const std::filesystem::path folder = f.t.dir.path();

  // Each file goes through the same open path the user takes.
  for (const char* name : {"out.csv", "out.xlsx"}) {
    QVERIFY(commands.writeExport(shop, folder / name));
    ImportDialog* dialog = commands.openImportFile(shop, folder / name);
    QVERIFY2(dialog != nullptr, name);
    QCOMPARE(dialog->rowTable()->item(0, ImportDialog::titleColumn)->text(), QString("Café, \"quoted\""));
    QCOMPARE(dialog->issueList()->item(0)->text(), QString("No problems found."));
    delete dialog;
  }
  QVERIFY(commands.writeTemplate(folder / "template.xlsx"));
  QVERIFY(commands.openImportFile(shop, folder / "template.xlsx") != nullptr);

  // A folder that does not exist: refused, nothing written.
  QVERIFY(!commands.writeExport(shop, folder / "missing" / "out.csv"));
  QVERIFY(alertText(window).startsWith("The file could not be written: "));
  QVERIFY(!std::filesystem::exists(folder / "missing"));
}

void ImportDialogTest::importNeedsASelectedProject() {
  AppFixture f;
  MainWindow window(*f.context);
  QVERIFY(!window.importAction()->isEnabled());
  QCOMPARE(window.importAction()->toolTip(), QString("Select a project to import tickets into."));
  window.commands()->createProject("Shop", "");
  QVERIFY(window.importAction()->isEnabled());
}

QTEST_MAIN(ImportDialogTest)
#include "ImportDialogTest.moc"
