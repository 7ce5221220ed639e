#pragma once

#include <QMainWindow>
#include <QPointer>
#include <array>
#include <optional>

#include "app/shell/ProjectViewMode.h"
#include "core/model/Uuid.h"

class QAction;
class QActionGroup;
class QDialog;
class QLabel;
class QStackedWidget;

namespace orvane::app {

class AboutDialog;
class AppContext;
class EmptyStateView;
class HelpWindow;
class SettingsDialog;
class ExternalChangeWatcher;
class ProjectPane;
class ProjectSidebar;
class StoreCommands;
class TicketExchangeCommands;

// The one window: projects at the side, the selected project on the right in
// one of nine views, and the whole-store commands in the menus. With no
// project at all the right side offers the three ways in.
class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  explicit MainWindow(AppContext& context, QWidget* parent = nullptr);
  ~MainWindow() override;

  std::optional<Uuid> selectedProject() const;
  void selectProject(const std::optional<Uuid>& project);
  ProjectViewMode viewMode() const;
  void setViewMode(ProjectViewMode mode);

  ProjectSidebar* sidebar() const { return sidebar_; }
  ProjectPane* pane() const { return pane_; }
  StoreCommands* commands() const { return commands_; }
  TicketExchangeCommands* exchange() const { return exchange_; }
  QAction* importAction() const { return importTickets_; }
  // The widget the right side shows now: the empty state, the "select a
  // project" note or the project pane.
  QWidget* currentRightSide() const;
  QAction* viewAction(ProjectViewMode mode) const { return viewActions_[static_cast<std::size_t>(position(mode))]; }

  void openTicket(const Uuid& ticket);
  void showPeople();
  void editReportRecipients();
  // The client and internal reports of the selected project, in a window.
  void showReports();
  void openDevelopmentPacks();
  void deleteSelectedProject();  // asks first
  // Opens the rename sheet for `project`; returns it (tests and the tour
  // fill it in).
  QDialog* renameProject(const Uuid& project);
  // Edit > Settings…, Help > Orvane Help and Help > About Orvane; each
  // returns the window it opened (tests and the tour fill them in). Help is
  // one window, raised when asked for again.
  SettingsDialog* openSettings();
  HelpWindow* showHelp();
  AboutDialog* showAbout();

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void buildMenus();
  void refresh();  // after any change to the store
  void updateUndoActions();
  void showSelection(const std::optional<Uuid>& project);
  void updateTitle();

  AppContext& context_;
  StoreCommands* commands_;
  TicketExchangeCommands* exchange_;
  ExternalChangeWatcher* watcher_;
  ProjectSidebar* sidebar_;
  QStackedWidget* right_;
  EmptyStateView* empty_;
  QLabel* noSelection_;
  ProjectPane* pane_;
  QActionGroup* viewGroup_;
  std::array<QAction*, 9> viewActions_{};
  QAction* undo_ = nullptr;
  QAction* redo_ = nullptr;
  QAction* deleteProject_ = nullptr;
  QAction* recipients_ = nullptr;
  QAction* reports_ = nullptr;
  QAction* developmentPacks_ = nullptr;
  QAction* renameProject_ = nullptr;
  QAction* importTickets_ = nullptr;
  QAction* exportTickets_ = nullptr;
  QPointer<HelpWindow> help_;
  bool filledScreen_ = false;
};

}  // namespace orvane::app
