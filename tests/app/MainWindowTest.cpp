#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QStackedWidget>
#include <QTest>

#include "app/AppFixture.h"
#include "app/BoardColumnWidget.h"
#include "app/BoardView.h"
#include "app/EmptyStateView.h"
#include "app/ExternalChangeWatcher.h"
#include "app/MainWindow.h"
#include "app/NewProjectDialog.h"
#include "app/ProjectPane.h"
#include "app/ProjectSidebar.h"
#include "app/ProjectViewBase.h"
#include "app/StoreCommands.h"

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

QTEST_MAIN(MainWindowTest)
#include "MainWindowTest.moc"
