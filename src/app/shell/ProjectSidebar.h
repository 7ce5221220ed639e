#pragma once

#include <QListWidget>
#include <optional>

#include "core/model/Uuid.h"

namespace orvane::app {

class AppContext;

// The list of every project at the side of the window, by name. Keeps the
// selected project across reloads; when the selected project disappears
// (deleted here or from outside) the selection is cleared and announced.
// A right click on a project offers to rename or delete it.
class ProjectSidebar : public QListWidget {
  Q_OBJECT

 public:
  ProjectSidebar(AppContext& context, QWidget* parent);

  std::optional<Uuid> selectedProject() const;
  QString selectedName() const;  // "" without a selection
  void selectProject(const std::optional<Uuid>& project);
  void reload();

 signals:
  void projectSelected(const std::optional<orvane::Uuid>& project);
  void renameRequested(const orvane::Uuid& project);
  void deleteRequested(const orvane::Uuid& project);

 private:
  void announceSelection();
  void showContextMenu(const QPoint& at);

  AppContext& context_;
  std::optional<Uuid> announced_;
  bool reloading_ = false;
};

}  // namespace orvane::app
