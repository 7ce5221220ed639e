#include "app/shell/MainWindow.h"

#include <QActionGroup>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QSettings>
#include <QSplitter>
#include <QStackedWidget>
#include <QToolBar>
#include <QVBoxLayout>

#include "app/board/BoardCardActions.h"
#include "app/board/BoardView.h"
#include "app/exchange/TicketExchangeCommands.h"
#include "app/forecast/ForecastView.h"
#include "app/help/AboutDialog.h"
#include "app/help/HelpWindow.h"
#include "app/reports/PackSheet.h"
#include "app/reports/ReportsWindow.h"
#include "app/settings/SettingsDialog.h"
#include "app/shell/AppContext.h"
#include "app/shell/AppResources.h"
#include "app/shell/EmptyStateView.h"
#include "app/shell/ExternalChangeWatcher.h"
#include "app/shell/ProjectPane.h"
#include "app/shell/ProjectSetupDialog.h"
#include "app/shell/ProjectSidebar.h"
#include "app/shell/RenameProjectDialog.h"
#include "app/shell/StoreCommands.h"
#include "app/shell/UndoHistory.h"
#include "app/ticket/TicketOpener.h"

namespace orvane::app {

namespace {
const QString viewModeKey = QStringLiteral("window/viewMode");
const QString projectKey = QStringLiteral("window/project");
}  // namespace

MainWindow::MainWindow(AppContext& context, QWidget* parent) : QMainWindow(parent), context_(context) {
  setObjectName(QStringLiteral("mainWindow"));
  setWindowTitle(QStringLiteral("Orvane"));
  loadAppResources();
  setWindowIcon(QIcon(QStringLiteral(":/orvane/orvane.svg")));
  commands_ = new StoreCommands(context_, this);
  exchange_ = new TicketExchangeCommands(context_, this);
  watcher_ = new ExternalChangeWatcher(context_, this);

  sidebar_ = new ProjectSidebar(context_, this);
  empty_ = new EmptyStateView(this);
  noSelection_ = new QLabel(QStringLiteral("Select a project at the side."), this);
  noSelection_->setAlignment(Qt::AlignCenter);
  pane_ = new ProjectPane(context_, this);
  right_ = new QStackedWidget(this);
  right_->addWidget(empty_);
  right_->addWidget(noSelection_);
  right_->addWidget(pane_);

  auto* splitter = new QSplitter(this);
  splitter->addWidget(sidebar_);
  splitter->addWidget(right_);
  splitter->setStretchFactor(1, 1);
  splitter->setSizes({200, 1400});
  setCentralWidget(splitter);

  buildMenus();

  connect(sidebar_, &ProjectSidebar::projectSelected, this, &MainWindow::showSelection);
  connect(sidebar_, &ProjectSidebar::renameRequested, this, &MainWindow::renameProject);
  connect(sidebar_, &ProjectSidebar::deleteRequested, commands_, &StoreCommands::confirmDeleteProject);
  connect(commands_, &StoreCommands::projectCreated, this, [this](const Uuid& project) { selectProject(project); });
  connect(empty_, &EmptyStateView::startBlankRequested, commands_, &StoreCommands::newProject);
  connect(empty_, &EmptyStateView::loadDemoRequested, commands_, &StoreCommands::loadDemoProject);
  connect(empty_, &EmptyStateView::restoreRequested, commands_, &StoreCommands::restoreFromBackup);
  connect(pane_, &ProjectPane::openTicketRequested, this, &MainWindow::openTicket);
  connect(pane_, &ProjectPane::epicForecastRequested, this, [this](const Uuid& epic) {
    setViewMode(ProjectViewMode::forecast);
    pane_->forecastView()->showEpic(epic);
  });
  connect(&context_, &AppContext::storeChanged, this, &MainWindow::refresh);
  connect(&context_.undoHistory(), &UndoHistory::changed, this, &MainWindow::updateUndoActions);

  const std::optional<ProjectViewMode> stored = projectViewModeFromRaw(QSettings().value(viewModeKey).toString());
  setViewMode(stored.value_or(ProjectViewMode::board));
  refresh();
  // Back where the user left off: the last project, when it still exists.
  selectProject(Uuid::parse(QSettings().value(projectKey).toString().toStdString()));
  showSelection(sidebar_->selectedProject());
}

MainWindow::~MainWindow() = default;

void MainWindow::buildMenus() {
  QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
  QAction* newProject = file->addAction(QStringLiteral("New project…"), commands_, &StoreCommands::newProject);
  newProject->setShortcut(QKeySequence::New);
  file->addAction(QStringLiteral("Load the demo project"), commands_, &StoreCommands::loadDemoProject);
  file->addSeparator();
  // Tickets go into the selected project; without one the actions are off
  // and the toolbar button says why.
  importTickets_ = file->addAction(QStringLiteral("Import tickets…"), this, [this] {
    if (const std::optional<Uuid> project = selectedProject()) exchange_->importTickets(*project);
  });
  importTickets_->setIconText(QStringLiteral("Import…"));
  exportTickets_ = file->addAction(QStringLiteral("Export tickets…"), this, [this] {
    if (const std::optional<Uuid> project = selectedProject()) exchange_->exportTickets(*project);
  });
  file->addAction(QStringLiteral("Save the Excel import template…"), exchange_,
                  &TicketExchangeCommands::saveImportTemplate);
  file->addSeparator();
  file->addAction(QStringLiteral("Back up everything…"), commands_, &StoreCommands::backUpEverything);
  file->addAction(QStringLiteral("Restore from backup…"), commands_, &StoreCommands::restoreFromBackup);
  file->addSeparator();
  QAction* quit = file->addAction(QStringLiteral("Quit"), qApp, &QApplication::closeAllWindows);
  quit->setShortcut(QKeySequence::Quit);

  QMenu* edit = menuBar()->addMenu(QStringLiteral("&Edit"));
  undo_ = edit->addAction(QStringLiteral("Undo"), this, [this] { context_.undo(this); });
  undo_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
  redo_ = edit->addAction(QStringLiteral("Redo"), this, [this] { context_.redo(this); });
  redo_->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z));
  edit->addSeparator();
  // QKeySequence::Preferences is empty outside macOS; Ctrl+, is the key
  // desktops agree on.
  QAction* settings = edit->addAction(QStringLiteral("Settings…"), this, &MainWindow::openSettings);
  settings->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Comma));
  settings->setMenuRole(QAction::PreferencesRole);

  QMenu* view = menuBar()->addMenu(QStringLiteral("&View"));
  viewGroup_ = new QActionGroup(this);
  viewGroup_->setExclusive(true);
  for (ProjectViewMode mode : allProjectViewModes) {
    QAction* action = view->addAction(title(mode));
    action->setCheckable(true);
    action->setShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + position(mode))));
    action->setData(position(mode));
    viewGroup_->addAction(action);
    viewActions_[static_cast<std::size_t>(position(mode))] = action;
    connect(action, &QAction::triggered, this, [this, mode] { setViewMode(mode); });
  }

  QMenu* project = menuBar()->addMenu(QStringLiteral("&Project"));
  renameProject_ = project->addAction(QStringLiteral("Rename project…"), this, [this] {
    if (const std::optional<Uuid> selected = selectedProject()) renameProject(*selected);
  });
  reports_ = project->addAction(QStringLiteral("Reports…"), this, &MainWindow::showReports);
  reports_->setObjectName(QStringLiteral("reportsAction"));
  reports_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_R));
  recipients_ = project->addAction(QStringLiteral("Report recipients…"), this, &MainWindow::editReportRecipients);
  developmentPacks_ = project->addAction(QStringLiteral("Development packs…"), this, &MainWindow::openDevelopmentPacks);
  project->addSeparator();
  deleteProject_ = project->addAction(QStringLiteral("Delete project…"), this, &MainWindow::deleteSelectedProject);

  // The selected cards of the board; built when opened, so the column and
  // people submenus are current. Other views have no card selection.
  QMenu* ticket = menuBar()->addMenu(QStringLiteral("&Ticket"));
  ticket->setObjectName(QStringLiteral("ticketMenu"));
  connect(ticket, &QMenu::aboutToShow, this, [this, ticket] {
    for (QMenu* submenu : ticket->findChildren<QMenu*>(Qt::FindDirectChildrenOnly)) submenu->deleteLater();
    ticket->clear();
    pane_->boardView()->cardActions()->fill(ticket);
    const bool onBoard = viewMode() == ProjectViewMode::board && selectedProject().has_value();
    if (!onBoard) {
      for (QAction* action : ticket->actions()) action->setEnabled(false);
    }
  });

  // The Forecast view's commands, offered only while that view is on
  // screen and can carry them out; logging, the frequent one, has Ctrl+L.
  QMenu* forecast = menuBar()->addMenu(QStringLiteral("Fo&recast"));
  forecast->setObjectName(QStringLiteral("forecastMenu"));
  auto* forecastView = qobject_cast<ForecastView*>(pane_->view(ProjectViewMode::forecast));
  const auto canAct = [this](QAction* command) {
    return viewMode() == ProjectViewMode::forecast && selectedProject().has_value() && command->isEnabled();
  };
  for (QAction* command : forecastView->commands()) {
    QAction* entry = forecast->addAction(command->text(), this, [command, canAct] {
      if (canAct(command)) command->trigger();
    });
    if (command == forecastView->logAction()) entry->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_L));
    connect(forecast, &QMenu::aboutToShow, entry, [entry, command, canAct] { entry->setEnabled(canAct(command)); });
  }

  QMenu* people = menuBar()->addMenu(QStringLiteral("P&eople"));
  QAction* peopleAction = people->addAction(QStringLiteral("People…"), this, &MainWindow::showPeople);
  peopleAction->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_P));

  QMenu* help = menuBar()->addMenu(QStringLiteral("&Help"));
  QAction* helpAction = help->addAction(QStringLiteral("Orvane Help"), this, &MainWindow::showHelp);
  helpAction->setShortcut(QKeySequence(Qt::Key_F1));
  QAction* about = help->addAction(QStringLiteral("About Orvane"), this, &MainWindow::showAbout);
  about->setMenuRole(QAction::AboutRole);

  QToolBar* toolbar = addToolBar(QStringLiteral("Main"));
  toolbar->setObjectName(QStringLiteral("mainToolbar"));
  toolbar->setMovable(false);
  toolbar->addAction(newProject);
  toolbar->addAction(importTickets_);
  toolbar->addSeparator();
  for (QAction* action : viewActions_) toolbar->addAction(action);
  toolbar->addSeparator();
  toolbar->addAction(peopleAction);
  toolbar->addAction(reports_);
  updateUndoActions();
}

std::optional<Uuid> MainWindow::selectedProject() const { return sidebar_->selectedProject(); }

void MainWindow::selectProject(const std::optional<Uuid>& project) { sidebar_->selectProject(project); }

ProjectViewMode MainWindow::viewMode() const { return pane_->mode(); }

void MainWindow::setViewMode(ProjectViewMode mode) {
  viewActions_[static_cast<std::size_t>(position(mode))]->setChecked(true);
  pane_->setMode(mode);
  QSettings().setValue(viewModeKey, title(mode));
  updateTitle();
}

QWidget* MainWindow::currentRightSide() const { return right_->currentWidget(); }

void MainWindow::showSelection(const std::optional<Uuid>& project) {
  pane_->setProject(project);
  if (project) {
    QSettings().setValue(projectKey, QString::fromStdString(project->text()));
  } else {
    QSettings().remove(projectKey);
  }
  refresh();
}

void MainWindow::updateTitle() {
  // Names the place, so one of several windows (or its task bar entry) says
  // where it is.
  const QString name = sidebar_->selectedName();
  setWindowTitle(name.isEmpty() ? QStringLiteral("Orvane")
                                : QStringLiteral("Orvane — %1 — %2").arg(name, title(viewMode())));
}

void MainWindow::refresh() {
  const bool anyProject = sidebar_->count() > 0;
  const std::optional<Uuid> project = sidebar_->selectedProject();
  if (!anyProject) {
    right_->setCurrentWidget(empty_);
  } else if (!project) {
    right_->setCurrentWidget(noSelection_);
  } else {
    right_->setCurrentWidget(pane_);
  }
  deleteProject_->setEnabled(project.has_value());
  renameProject_->setEnabled(project.has_value());
  recipients_->setEnabled(project.has_value());
  reports_->setEnabled(project.has_value());
  developmentPacks_->setEnabled(project.has_value());
  importTickets_->setEnabled(project.has_value());
  importTickets_->setToolTip(project ? QStringLiteral("Import tickets from a CSV file or an Excel workbook")
                                     : QStringLiteral("Select a project to import tickets into."));
  exportTickets_->setEnabled(project.has_value());
  for (QAction* action : viewActions_) action->setEnabled(project.has_value());
  updateUndoActions();
  updateTitle();
}

void MainWindow::updateUndoActions() {
  UndoHistory& history = context_.undoHistory();
  undo_->setEnabled(history.canUndo());
  redo_->setEnabled(history.canRedo());
  undo_->setText(history.canUndo() ? QStringLiteral("Undo ") + history.undoLabel() : QStringLiteral("Undo"));
  redo_->setText(history.canRedo() ? QStringLiteral("Redo ") + history.redoLabel() : QStringLiteral("Redo"));
}

void MainWindow::openTicket(const Uuid& ticket) { openTicketWindow(context_, ticket, this); }

void MainWindow::showPeople() { openPeopleWindow(context_, this); }

SettingsDialog* MainWindow::openSettings() {
  auto* dialog = new SettingsDialog(this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->open();
  return dialog;
}

HelpWindow* MainWindow::showHelp() {
  if (help_ == nullptr) {
    help_ = new HelpWindow(this);
    help_->setAttribute(Qt::WA_DeleteOnClose);
  }
  help_->show();
  help_->raise();
  help_->activateWindow();
  return help_;
}

AboutDialog* MainWindow::showAbout() {
  auto* dialog = new AboutDialog(this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->open();
  return dialog;
}

void MainWindow::showReports() {
  if (const std::optional<Uuid> project = selectedProject()) openReportsWindow(context_, *project, this);
}

void MainWindow::editReportRecipients() {
  const std::optional<Uuid> project = selectedProject();
  if (!project) return;
  auto* dialog = new ProjectSetupDialog(context_, *project, this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->open();
}

void MainWindow::openDevelopmentPacks() {
  const std::optional<Uuid> project = selectedProject();
  if (!project) return;
  auto* sheet = new PackSheet(context_, *project, this);
  sheet->setAttribute(Qt::WA_DeleteOnClose);
  sheet->open();
}

QDialog* MainWindow::renameProject(const Uuid& project) {
  QString name;
  QString key;
  for (const Project& candidate : context_.board().projects()) {
    if (candidate.id != project) continue;
    name = QString::fromStdString(candidate.name);
    key = QString::fromStdString(candidate.key);
  }
  auto* dialog = new RenameProjectDialog(
      name, key, [this, project](const QString& typed) { return commands_->renameProject(project, typed); }, this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->open();
  return dialog;
}

void MainWindow::deleteSelectedProject() {
  if (const std::optional<Uuid> project = selectedProject()) commands_->confirmDeleteProject(*project);
}

void MainWindow::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  if (filledScreen_) return;
  filledScreen_ = true;
  // Once, at the first appearance: the visible area of the window's screen
  // (without panels and docks), never full-screen mode.
  QScreen* target = screen() != nullptr ? screen() : QGuiApplication::primaryScreen();
  if (target == nullptr) return;
  const QRect area = target->availableGeometry();
  const QSize frame = frameGeometry().size() - geometry().size();
  move(area.topLeft());
  resize(area.size() - frame);
}

}  // namespace orvane::app
