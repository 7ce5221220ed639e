#pragma once

#include <QWidget>
#include <memory>
#include <optional>

#include "core/model/ProjectSnapshot.h"

namespace orvane::app {

class AppContext;
class SnapshotCache;

// The common life of a project view: it shows one project (or none) and
// reloads its snapshot when the store changes. A hidden view only notes that
// it is stale and reloads when it is shown again, so a change costs one
// reload of the visible view, however many views exist.
class ProjectViewBase : public QWidget {
  Q_OBJECT

 public:
  ProjectViewBase(AppContext& context, QWidget* parent);

  void showProject(const std::optional<Uuid>& project);
  const std::optional<Uuid>& project() const { return project_; }
  // Reloads at once, visible or not.
  void reloadNow();
  // Reads through `cache` (shared with the other screens of the pane)
  // instead of reading the store alone.
  void useSnapshotCache(SnapshotCache* cache) { cache_ = cache; }

 protected:
  // Reads the current project's snapshot and shows it; called while the
  // view is visible, or through reloadNow().
  virtual void reload() = 0;
  void showEvent(QShowEvent* event) override;
  // The current project's snapshot; null without a project or when it is gone.
  std::shared_ptr<const ProjectSnapshot> snapshot();

  AppContext& context_;

 private:
  void markStale();

  std::optional<Uuid> project_;
  bool stale_ = true;
  SnapshotCache* cache_ = nullptr;
};

}  // namespace orvane::app
