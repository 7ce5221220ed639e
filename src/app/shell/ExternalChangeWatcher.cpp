#include "app/shell/ExternalChangeWatcher.h"

#include <QTimer>

#include "app/shell/AppContext.h"

namespace orvane::app {

ExternalChangeWatcher::ExternalChangeWatcher(AppContext& context, QObject* parent)
    : QObject(parent), context_(context), timer_(new QTimer(this)) {
  lastVersion_ = context_.store().db().scalarInt("PRAGMA data_version");
  connect(timer_, &QTimer::timeout, this, &ExternalChangeWatcher::check);
  timer_->start(intervalMs);
}

bool ExternalChangeWatcher::check() {
  std::int64_t version = lastVersion_;
  try {
    version = context_.store().db().scalarInt("PRAGMA data_version");
  } catch (const std::exception&) {
    return false;  // busy or locked for a moment: look again at the next tick
  }
  if (version == lastVersion_) return false;
  lastVersion_ = version;
  context_.notifyStoreChanged();
  return true;
}

}  // namespace orvane::app
