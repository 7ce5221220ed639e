#include "app/shell/SnapshotCache.h"

#include "app/shell/AppContext.h"

namespace orvane::app {

SnapshotCache::SnapshotCache(AppContext& context, QObject* parent) : QObject(parent), context_(context) {
  connect(&context_, &AppContext::storeChanged, this, &SnapshotCache::forget);
}

std::shared_ptr<const ProjectSnapshot> SnapshotCache::get(const Uuid& project) {
  if (project_ != project) {
    std::optional<ProjectSnapshot> loaded = context_.board().snapshot(project);
    snapshot_ = loaded ? std::make_shared<const ProjectSnapshot>(std::move(*loaded)) : nullptr;
    project_ = project;
  }
  return snapshot_;
}

void SnapshotCache::forget() {
  project_.reset();
  snapshot_.reset();
}

}  // namespace orvane::app
