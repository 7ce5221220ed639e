#include "app/shell/ProjectViewBase.h"

#include "app/shell/AppContext.h"
#include "app/shell/SnapshotCache.h"

namespace orvane::app {

ProjectViewBase::ProjectViewBase(AppContext& context, QWidget* parent) : QWidget(parent), context_(context) {
  connect(&context_, &AppContext::storeChanged, this, &ProjectViewBase::markStale);
}

void ProjectViewBase::showProject(const std::optional<Uuid>& project) {
  project_ = project;
  markStale();
}

void ProjectViewBase::markStale() {
  stale_ = true;
  if (isVisible()) reloadNow();
}

void ProjectViewBase::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  if (stale_) reloadNow();
}

std::shared_ptr<const ProjectSnapshot> ProjectViewBase::snapshot() {
  if (!project_) return nullptr;
  if (cache_ != nullptr) return cache_->get(*project_);
  std::optional<ProjectSnapshot> loaded = context_.board().snapshot(*project_);
  return loaded ? std::make_shared<const ProjectSnapshot>(std::move(*loaded)) : nullptr;
}

void ProjectViewBase::reloadNow() {
  stale_ = false;
  reload();
}

}  // namespace orvane::app
