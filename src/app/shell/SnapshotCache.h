#pragma once

#include <QObject>
#include <memory>
#include <optional>

#include "core/model/ProjectSnapshot.h"

namespace orvane::app {

class AppContext;

// The last snapshot read, shared by the screens that show the same project
// (a view and the filter bar above it), so one change costs one read of the
// store. Forgotten as soon as the store changes: it is created before the
// screens that use it, so its slot runs before theirs.
class SnapshotCache : public QObject {
  Q_OBJECT

 public:
  SnapshotCache(AppContext& context, QObject* parent);

  // The project's current snapshot; null when there is no such project.
  std::shared_ptr<const ProjectSnapshot> get(const Uuid& project);
  void forget();

 private:
  AppContext& context_;
  std::optional<Uuid> project_;
  std::shared_ptr<const ProjectSnapshot> snapshot_;
};

}  // namespace orvane::app
