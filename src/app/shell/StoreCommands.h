#pragma once

#include <QObject>
#include <QString>
#include <filesystem>
#include <optional>

#include "core/backup/BackupReport.h"
#include "core/model/Uuid.h"

class QWidget;

namespace orvane::app {

class AppContext;

// The whole-store commands of the window: new project, the demo project,
// delete project, back up everything and restore from a backup. Each change
// is one undoable step; refusals and failures reach the user as sentences.
class StoreCommands : public QObject {
  Q_OBJECT

 public:
  StoreCommands(AppContext& context, QWidget* window);

  // Opens the new-project sheet; a created project is announced.
  void newProject();
  // Creates a project; returns the service's sentence when it is refused.
  std::optional<QString> createProject(const QString& name, const QString& key);
  // Renames a project as one undoable step; returns the service's sentence
  // when it is refused (an empty name, a name another project has).
  std::optional<QString> renameProject(const Uuid& project, const QString& name);
  void loadDemoProject();
  // Asks "Delete this project and all its tickets?" first.
  void confirmDeleteProject(const Uuid& project);
  bool deleteProject(const Uuid& project);

  void backUpEverything();   // offers a save panel
  void restoreFromBackup();  // offers an open panel
  // Writes the backup of every project to `path`; false (after an alert)
  // when it cannot.
  bool writeBackup(const std::filesystem::path& path);
  // Adds the projects of the backup at `path` beside the existing ones and
  // returns the result message; an error alert and nothing when it fails.
  std::optional<QString> restoreFile(const std::filesystem::path& path);
  // "orvane-backup-2026-03-05.json", dated in the user's calendar.
  QString defaultBackupName() const;
  // "Restored 2 project(s) with 5 saved forecasts. Nothing existing was
  // changed.", then " 3 warning(s):" and each warning on a line of its own
  // (a renamed project, a dropped reference, a repaired value) when any.
  static QString restoreMessage(const Backup::Report& report);

 signals:
  void projectCreated(const orvane::Uuid& project);
  void projectDeleted(const orvane::Uuid& project);

 private:
  AppContext& context_;
  QWidget* window_;
};

}  // namespace orvane::app
