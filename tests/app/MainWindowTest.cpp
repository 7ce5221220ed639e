#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QStackedWidget>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <fstream>

#include "app/AppFixture.h"
#include "app/board/AddColumnDialog.h"
#include "app/board/BoardCardActions.h"
#include "app/board/BoardColumnWidget.h"
#include "app/board/BoardView.h"
#include "app/exchange/ImportDialog.h"
#include "app/exchange/TicketExchangeCommands.h"
#include "app/forecast/ForecastView.h"
#include "app/forecast/LogForecastDialog.h"
#include "app/planning/EpicDialog.h"
#include "app/planning/IterationCloseDialog.h"
#include "app/planning/IterationDialog.h"
#include "app/planning/MilestoneDialog.h"
#include "app/shell/EmptyStateView.h"
#include "app/shell/ExternalChangeWatcher.h"
#include "app/shell/MainWindow.h"
#include "app/shell/NewProjectDialog.h"
#include "app/shell/ProjectPane.h"
#include "app/shell/ProjectSetupDialog.h"
#include "app/shell/ProjectSidebar.h"
#include "app/shell/ProjectViewBase.h"
#include "app/shell/RenameProjectDialog.h"
#include "app/shell/StoreCommands.h"
#include "app/shell/UndoHistory.h"
#include "app/ticket/TicketOpener.h"

using namespace orvane;
using namespace orvane::app;
using orvane::testing::AppFixture;

class MainWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void viewModeRawValues_data();
  void viewModeRawValues();
  void emptyStoreOffersThreeWaysIn();
  void newProjectSheetKeepsRefusalThenSelectsProject();
  void shortcutsSwitchViews();
  void deletingSelectedProjectLeavesNoDanglingView();
  void fillsScreenOnceAtFirstShowAndStartsOnStoredView();
  void showsChangesMadeByAnotherConnection();
  void undoAndRedoFromTheEditMenu();
  void everyViewAndSheetFitsASmallScreen();
  void titleNamesProjectAndView();
  void reopensOnLastProjectAndView();
  void renamesProjectFromListAndMenuAsOneUndoStep();
  void ticketMenuActsOnTheBoardSelection();
  void forecastMenuCarriesTheForecastViewsCommands();
};

namespace {

QAction* actionStartingWith(const QWidget& window, const QString& prefix) {
  for (QAction* action : window.findChildren<QAction*>()) {
    if (action->text().startsWith(prefix)) return action;
  }
  return nullptr;
}

}  // namespace

void MainWindowTest::viewModeRawValues_data() {
  QTest::addColumn<QString>("raw");
  QTest::addColumn<int>("mode");  // -1: no mode
  QTest::newRow("first") << "Board" << 0;
  QTest::newRow("last") << "Archived" << 8;
  QTest::newRow("middle") << "Iterations" << 5;
  QTest::newRow("lower case") << "board" << -1;
  QTest::newRow("padded") << " List" << -1;
  QTest::newRow("empty") << "" << -1;
  QTest::newRow("unknown") << "Kanban" << -1;
}

void MainWindowTest::viewModeRawValues() {
  QFETCH(QString, raw);
  QFETCH(int, mode);
  const std::optional<ProjectViewMode> parsed = projectViewModeFromRaw(raw);
  QCOMPARE(parsed ? position(*parsed) : -1, mode);
  if (parsed) QCOMPARE(title(*parsed), raw);
}

void MainWindowTest::emptyStoreOffersThreeWaysIn() {
  AppFixture f;
  MainWindow window(*f.context);
  auto* empty = qobject_cast<EmptyStateView*>(window.currentRightSide());
  QVERIFY(empty != nullptr);
  QCOMPARE(empty->findChild<QLabel*>("emptyStateText")->text(),
           QString("Start blank and import tickets from a CSV or the Excel template with Import in the toolbar, "
                   "explore the demo project, or restore a backup."));
  QCOMPARE(empty->findChild<QPushButton*>("startBlank")->text(), QString("Start a blank project"));
  QCOMPARE(empty->findChild<QPushButton*>("loadDemo")->text(), QString("Load the demo project"));
  QCOMPARE(empty->findChild<QPushButton*>("restoreBackup")->text(), QString("Restore from a backup…"));

  // The demo button creates the demo project and selects it.
  empty->findChild<QPushButton*>("loadDemo")->click();
  QVERIFY(window.selectedProject().has_value());
  QCOMPARE(window.currentRightSide(), static_cast<QWidget*>(window.pane()));
  QVERIFY(!f.snapshot(*window.selectedProject()).tickets.empty());
}

void MainWindowTest::newProjectSheetKeepsRefusalThenSelectsProject() {
  AppFixture f;
  MainWindow window(*f.context);
  window.show();
  window.commands()->newProject();
  auto* sheet = window.findChild<NewProjectDialog*>();
  QVERIFY(sheet != nullptr);

  sheet->nameField()->setText("   ");
  sheet->keyField()->setText("frc");
  sheet->create();
  QCOMPARE(sheet->problem(), QString("A name, title or comment cannot be empty."));
  QVERIFY(sheet->isVisible());
  QVERIFY(f.board().projects().empty());
  QVERIFY(!window.selectedProject());

  sheet->nameField()->setText("Web shop");
  sheet->create();
  QCOMPARE(sheet->result(), int(QDialog::Accepted));
  const std::vector<Project> projects = f.board().projects();
  QCOMPARE(projects.size(), std::size_t(1));
  QCOMPARE(projects[0].key, std::string("FRC"));
  QCOMPARE(window.selectedProject(), std::optional<Uuid>(projects[0].id));
  QCOMPARE(window.currentRightSide(), static_cast<QWidget*>(window.pane()));
  // The board of the new project shows its five standard columns.
  QCOMPARE(window.pane()->boardView()->columnWidgets().size(), std::size_t(5));
}

void MainWindowTest::shortcutsSwitchViews() {
  AppFixture f;
  f.board().createProject("Shop", std::nullopt, f.clock);
  MainWindow window(*f.context);
  window.sidebar()->setCurrentRow(0);
  window.show();
  QApplication::setActiveWindow(&window);
  QVERIFY(QTest::qWaitForWindowActive(&window));

  // Backwards, so every key is a real change.
  for (int index = 8; index >= 0; --index) {
    QTest::keyClick(&window, static_cast<Qt::Key>(Qt::Key_1 + index), Qt::ControlModifier);
    const ProjectViewMode mode = allProjectViewModes[static_cast<std::size_t>(index)];
    QCOMPARE(window.viewMode(), mode);
    QVERIFY(window.viewAction(mode)->isChecked());
    QVERIFY(window.pane()->view(mode)->isVisible());
    // Every view it shows is on the selected project.
    if (auto* view = qobject_cast<ProjectViewBase*>(window.pane()->view(mode)))
      QCOMPARE(view->project(), window.selectedProject());
  }
}

void MainWindowTest::deletingSelectedProjectLeavesNoDanglingView() {
  AppFixture f;
  const Uuid keep = f.board().createProject("Keep", std::nullopt, f.clock).id;
  const Uuid doomed = f.board().createProject("Doomed", std::nullopt, f.clock).id;
  f.board().createTicket(doomed, NewTicket{.title = "Gone soon"}, f.clock);
  MainWindow window(*f.context);
  window.show();
  window.selectProject(doomed);
  window.setViewMode(ProjectViewMode::archived);
  window.setViewMode(ProjectViewMode::board);
  QCOMPARE(window.pane()->boardView()->columnWidgets().size(), std::size_t(5));

  window.deleteSelectedProject();
  auto* confirm = window.findChild<QMessageBox*>("confirmDeleteProject");
  QVERIFY(confirm != nullptr);
  QCOMPARE(confirm->text(), QString("Delete this project and all its tickets?"));
  QCOMPARE(confirm->informativeText(),
           QString("This cannot be undone. Use Back up everything first if you want a copy."));
  confirm->findChild<QPushButton*>("delete")->click();

  QVERIFY(!f.board().snapshot(doomed));
  QVERIFY(!window.selectedProject());
  QVERIFY(qobject_cast<QLabel*>(window.currentRightSide()) != nullptr);
  QCOMPARE(window.pane()->boardView()->project(), std::optional<Uuid>());
  QVERIFY(window.pane()->boardView()->columnWidgets().empty());
  // A view last shown on the deleted project forgets it when shown again.
  window.setViewMode(ProjectViewMode::archived);
  QCOMPARE(qobject_cast<ProjectViewBase*>(window.pane()->view(ProjectViewMode::archived))->project(),
           std::optional<Uuid>());

  // The other project is untouched; deleting it too leaves the empty state.
  window.selectProject(keep);
  QCOMPARE(window.currentRightSide(), static_cast<QWidget*>(window.pane()));
  QVERIFY(window.commands()->deleteProject(keep));
  QVERIFY(qobject_cast<EmptyStateView*>(window.currentRightSide()) != nullptr);
}

void MainWindowTest::fillsScreenOnceAtFirstShowAndStartsOnStoredView() {
  AppFixture f;
  QSettings().setValue("window/viewMode", "Calendar");
  MainWindow window(*f.context);
  QCOMPARE(window.viewMode(), ProjectViewMode::calendar);
  window.show();
  // The whole visible area, or as near as the window's minimum size allows
  // on the small offscreen screen.
  const QRect area = window.screen()->availableGeometry();
  QCOMPARE(window.frameGeometry().topLeft(), area.topLeft());
  const QSize frame = window.frameGeometry().size() - window.geometry().size();
  QCOMPARE(window.frameGeometry().size(), area.size().expandedTo(window.minimumSizeHint() + frame));
  QVERIFY(!window.isFullScreen());
  // Later appearances keep the size the user chose.
  window.hide();
  window.resize(900, 560);
  window.show();
  QCOMPARE(window.size(), QSize(900, 560));

  // A stored mode that is none of the nine starts on the board.
  QSettings().setValue("window/viewMode", "Kanban");
  MainWindow other(*f.context);
  QCOMPARE(other.viewMode(), ProjectViewMode::board);
}

void MainWindowTest::showsChangesMadeByAnotherConnection() {
  AppFixture f;
  MainWindow window(*f.context);
  ExternalChangeWatcher watcher(*f.context, nullptr);
  QVERIFY(!watcher.check());

  // The window's own changes are not news to it.
  window.commands()->createProject("Mine", "");
  QVERIFY(!watcher.check());

  // orvane-cli (another connection to the same file) adds a project.
  Store other = Store::open(f.t.store.path());
  BoardService(other).createProject("From the terminal", std::nullopt, f.clock);
  QVERIFY(watcher.check());
  QCOMPARE(window.sidebar()->count(), 2);
  QVERIFY(!watcher.check());
}

void MainWindowTest::undoAndRedoFromTheEditMenu() {
  AppFixture f;
  MainWindow window(*f.context);
  window.show();
  QAction* undo = actionStartingWith(window, "Undo");
  QAction* redo = actionStartingWith(window, "Redo");
  QVERIFY(undo != nullptr && redo != nullptr);
  QCOMPARE(undo->shortcut(), QKeySequence("Ctrl+Z"));
  QCOMPARE(redo->shortcut(), QKeySequence("Ctrl+Shift+Z"));
  QVERIFY(!undo->isEnabled());

  QVERIFY(!window.commands()->createProject("Web shop", ""));
  QCOMPARE(undo->text(), QString("Undo New project"));
  undo->trigger();
  QVERIFY(f.board().projects().empty());
  QVERIFY(qobject_cast<EmptyStateView*>(window.currentRightSide()) != nullptr);
  QCOMPARE(redo->text(), QString("Redo New project"));
  redo->trigger();
  QCOMPARE(window.sidebar()->count(), 1);
  QVERIFY(!redo->isEnabled());
}

void MainWindowTest::everyViewAndSheetFitsASmallScreen() {
  // 1280x800 less a task bar: every control must stay reachable there, so no
  // screen may ask for more than that as its minimum.
  const QSize small(1280, 800 - 48);
  auto fits = [&](QWidget* widget, const QString& what) {
    QVERIFY2(widget != nullptr, qPrintable(what));
    const QSize needed = widget->minimumSizeHint().expandedTo(widget->minimumSize());
    QVERIFY2(needed.width() <= small.width() && needed.height() <= small.height(),
             qPrintable(QStringLiteral("%1 needs %2x%3").arg(what).arg(needed.width()).arg(needed.height())));
  };

  AppFixture f;
  MainWindow window(*f.context);
  window.commands()->loadDemoProject();
  const Uuid project = *window.selectedProject();
  // A board wider than any screen: the columns scroll, "Add column" stays.
  for (int i = 0; i < 8; ++i)
    f.board().addColumn(project, "Extra " + std::to_string(i), ColumnType::inProgress, std::nullopt);
  f.context->notifyStoreChanged();
  window.show();
  for (ProjectViewMode mode : allProjectViewModes) {
    window.setViewMode(mode);
    QCoreApplication::processEvents();
    fits(&window, QStringLiteral("the window on ") + title(mode));
  }

  // At that size the board scrolls its columns and keeps "Add column" in
  // sight.
  window.setViewMode(ProjectViewMode::board);
  window.resize(small);
  QCoreApplication::processEvents();
  QPushButton* addColumn = window.pane()->boardView()->addColumnButton();
  QVERIFY(addColumn->isVisible());
  QVERIFY(window.rect().contains(QRect(addColumn->mapTo(&window, QPoint(0, 0)), addColumn->size())));

  const ProjectSnapshot snapshot = f.snapshot(project);
  const Timestamp now = f.clock;
  fits(new NewProjectDialog([](const QString&, const QString&) { return std::optional<QString>(); }, &window),
       "new project");
  fits(new ProjectSetupDialog(*f.context, project, &window), "report recipients");
  fits(new AddColumnDialog(&window), "add column");
  fits(new EpicDialog(
           f.context->calendar(), snapshot.epics, snapshot.epics.front(), [](auto&&...) { return true; }, &window),
       "epic");
  fits(new IterationDialog(
           f.context->calendar(), snapshot.iterations, std::nullopt, now, [](auto&&...) { return true; }, &window),
       "iteration");
  fits(new MilestoneDialog(
           f.context->calendar(), snapshot.epics, std::nullopt, now, [](auto&&...) { return true; }, &window),
       "milestone");
  if (!snapshot.iterations.empty())
    fits(new IterationCloseDialog(
             snapshot, snapshot.iterations.front(), [](auto&&...) { return true; }, &window),
         "close iteration");
  fits(openTicketWindow(*f.context, snapshot.tickets.front().id, &window), "ticket window");
  fits(openPeopleWindow(*f.context, &window), "people");
  QTemporaryDir folder;
  const std::filesystem::path csv = folder.filePath("tickets.csv").toStdString();
  std::ofstream(csv) << "title,column\nExport invoices,Backlog\n";
  fits(window.exchange()->openImportFile(project, csv), "import preview");
  window.deleteSelectedProject();
  fits(window.findChild<QMessageBox*>("confirmDeleteProject"), "delete project");
}

void MainWindowTest::titleNamesProjectAndView() {
  AppFixture f;
  const Uuid project = f.board().createProject("Website relaunch", std::nullopt, f.clock).id;
  MainWindow window(*f.context);
  QCOMPARE(window.windowTitle(), QString("Orvane"));
  window.selectProject(project);
  QCOMPARE(window.windowTitle(), QString("Orvane — Website relaunch — Board"));
  window.setViewMode(ProjectViewMode::iterations);
  QCOMPARE(window.windowTitle(), QString("Orvane — Website relaunch — Iterations"));
  window.selectProject(std::nullopt);
  QCOMPARE(window.windowTitle(), QString("Orvane"));
}

void MainWindowTest::reopensOnLastProjectAndView() {
  AppFixture f;
  f.board().createProject("Alpha", std::nullopt, f.clock);
  const Uuid beta = f.board().createProject("Beta", std::nullopt, f.clock).id;
  {
    MainWindow window(*f.context);
    QVERIFY(!window.selectedProject());
    window.selectProject(beta);
    window.setViewMode(ProjectViewMode::epics);
  }
  {
    MainWindow window(*f.context);
    QCOMPARE(window.selectedProject(), std::optional<Uuid>(beta));
    QCOMPARE(window.viewMode(), ProjectViewMode::epics);
    QCOMPARE(window.currentRightSide(), static_cast<QWidget*>(window.pane()));
    QVERIFY(window.pane()->view(ProjectViewMode::epics)->isVisibleTo(window.pane()));
    QVERIFY(window.commands()->deleteProject(beta));
  }
  // A remembered project that is gone opens on no project.
  MainWindow window(*f.context);
  QVERIFY(!window.selectedProject());
  QCOMPARE(window.windowTitle(), QString("Orvane"));
}

void MainWindowTest::renamesProjectFromListAndMenuAsOneUndoStep() {
  AppFixture f;
  const Uuid web = f.board().createProject("Web", std::nullopt, f.clock).id;
  f.board().createProject("Shop", std::nullopt, f.clock);
  MainWindow window(*f.context);
  window.show();

  // The list's context menu selects the project under the pointer and
  // offers the rename.
  ProjectSidebar* list = window.sidebar();
  const int row = list->item(0)->text() == "Web" ? 0 : 1;
  emit list->customContextMenuRequested(list->visualItemRect(list->item(row)).center());
  auto* menu = list->findChild<QMenu*>("projectMenu");
  QVERIFY(menu != nullptr);
  QCOMPARE(window.selectedProject(), std::optional<Uuid>(web));
  QAction* fromList = nullptr;
  for (QAction* action : menu->actions())
    if (action->text() == "Rename project…") fromList = action;
  QVERIFY(fromList != nullptr);
  fromList->trigger();
  menu->close();
  auto* sheet = window.findChild<RenameProjectDialog*>();
  QVERIFY(sheet != nullptr);
  QCOMPARE(sheet->nameField()->text(), QString("Web"));
  QCOMPARE(sheet->findChild<QLabel*>("projectKey")->text(), QString("WEB"));

  // Refusals stay in the sheet, where the name is typed.
  struct Refusal {
    const char* typed;
    const char* sentence;
  };
  for (const Refusal& refusal :
       {Refusal{"  ", "A name, title or comment cannot be empty."}, Refusal{" shop ", "\"shop\" is already in use."}}) {
    sheet->nameField()->setText(refusal.typed);
    sheet->rename();
    QCOMPARE(sheet->problem(), QString(refusal.sentence));
    QVERIFY(sheet->isVisible());
  }
  QVERIFY(!f.context->undoHistory().canUndo());

  sheet->nameField()->setText(" Website relaunch ");
  sheet->rename();
  QCOMPARE(sheet->result(), int(QDialog::Accepted));
  QCOMPARE(f.snapshot(web).project.name, std::string("Website relaunch"));
  QCOMPARE(window.windowTitle(), QString("Orvane — Website relaunch — Board"));
  QCOMPARE(window.selectedProject(), std::optional<Uuid>(web));

  QAction* undo = actionStartingWith(window, "Undo");
  QCOMPARE(undo->text(), QString("Undo Rename project"));
  undo->trigger();
  QCOMPARE(f.snapshot(web).project.name, std::string("Web"));
  QCOMPARE(window.windowTitle(), QString("Orvane — Web — Board"));
  QVERIFY(!f.context->undoHistory().canUndo());

  // The Project menu offers the same sheet for the selected project.
  QAction* fromMenu = actionStartingWith(*window.menuBar(), "Rename project…");
  QVERIFY(fromMenu != nullptr && fromMenu->isEnabled());
  delete sheet;
  fromMenu->trigger();
  QVERIFY(window.findChild<RenameProjectDialog*>() != nullptr);
  window.selectProject(std::nullopt);
  QVERIFY(!fromMenu->isEnabled());
}

void MainWindowTest::ticketMenuActsOnTheBoardSelection() {
  AppFixture f;
  const Uuid project = f.board().createProject("Web", std::nullopt, f.clock).id;
  const Uuid ticket = f.board().createTicket(project, NewTicket{.title = "A"}, f.clock).id;
  MainWindow window(*f.context);
  window.selectProject(project);
  window.show();
  window.pane()->boardView()->selectTickets({ticket});
  auto* menu = window.menuBar()->findChild<QMenu*>("ticketMenu");
  QVERIFY(menu != nullptr);
  auto entryOf = [menu](const QString& text) -> QAction* {
    for (QAction* action : menu->actions())
      if (action->text() == text) return action;
    return nullptr;
  };

  emit menu->aboutToShow();
  QVERIFY(entryOf("Move to next column") != nullptr && entryOf("Move to next column")->isEnabled());
  QVERIFY(!entryOf("Move to previous column")->isEnabled());
  entryOf("Move to next column")->trigger();
  QCOMPARE(f.snapshot(project).ticket(ticket)->columnId, std::optional<Uuid>(f.snapshot(project).columns[1].id));
  QCOMPARE(actionStartingWith(window, "Undo")->text(), QString("Undo Move ticket"));

  // Other views have no cards to act on.
  window.setViewMode(ProjectViewMode::list);
  emit menu->aboutToShow();
  for (QAction* action : menu->actions()) QVERIFY(!action->isEnabled());
  window.setViewMode(ProjectViewMode::board);
  QVERIFY(window.pane()->boardView()->cardActions()->archiveAction()->isEnabled());
}

void MainWindowTest::forecastMenuCarriesTheForecastViewsCommands() {
  AppFixture f;
  const Uuid demo = f.board().loadDemoProject(f.clock).id;
  MainWindow window(*f.context);
  window.selectProject(demo);
  window.show();
  auto* menu = window.menuBar()->findChild<QMenu*>("forecastMenu");
  QVERIFY(menu != nullptr);
  auto entryOf = [menu](const QString& text) -> QAction* {
    for (QAction* action : menu->actions())
      if (action->text() == text) return action;
    return nullptr;
  };

  // Elsewhere the forecast on screen is not this project's: nothing to act on.
  window.setViewMode(ProjectViewMode::board);
  emit menu->aboutToShow();
  QVERIFY(!menu->actions().isEmpty());
  for (QAction* action : menu->actions()) QVERIFY(!action->isEnabled());

  window.setViewMode(ProjectViewMode::forecast);
  auto* view = qobject_cast<ForecastView*>(window.pane()->view(ProjectViewMode::forecast));
  orvane::testing::awaitNewest(*view, &ForecastView::forecastShown);
  emit menu->aboutToShow();
  QAction* copy = entryOf("Copy reproduction script");
  QVERIFY(copy != nullptr && copy->isEnabled());
  QApplication::clipboard()->clear();
  copy->trigger();
  QVERIFY(QApplication::clipboard()->text().contains("numpy"));
  QVERIFY(entryOf("How would this forecast have done?…")->isEnabled());

  // Ctrl+L logs the forecast on screen: it asks for the note first.
  QAction* log = entryOf("Log this forecast…");
  QCOMPARE(log->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_L));
  log->trigger();
  QCOMPARE(view->findChildren<LogForecastDialog*>().size(), 1);
  view->findChild<LogForecastDialog*>()->reject();
  // Elsewhere the shortcut does nothing.
  window.setViewMode(ProjectViewMode::board);
  log->trigger();
  QTRY_COMPARE(view->findChildren<LogForecastDialog*>().size(), 0);
}

QTEST_MAIN(MainWindowTest)
#include "MainWindowTest.moc"
