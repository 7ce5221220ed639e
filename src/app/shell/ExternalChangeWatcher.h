#pragma once

#include <QObject>
#include <cstdint>

class QTimer;

namespace orvane::app {

class AppContext;

// Notices when another program (orvane-cli, a second window) commits to the
// store file and asks every screen to reload. SQLite's data_version changes
// exactly when another connection has committed, so a light poll costs one
// tiny query and never fires for the window's own changes.
class ExternalChangeWatcher : public QObject {
  Q_OBJECT

 public:
  static constexpr int intervalMs = 1000;

  ExternalChangeWatcher(AppContext& context, QObject* parent);

  // Compares data_version with the last value seen; reloads the screens when
  // it moved. Returns whether it did.
  bool check();

 private:
  AppContext& context_;
  QTimer* timer_;
  std::int64_t lastVersion_ = 0;
};

}  // namespace orvane::app
