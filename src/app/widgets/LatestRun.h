#pragma once

#include <QFutureWatcher>
#include <QObject>
#include <QtConcurrent>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace orvane::app {

// Work that takes longer than a frame, run on the thread pool with only the
// newest result shown: `start` hands `work` (plain values only, it must touch
// nothing shared) to the pool and calls `show` with its result on the
// user-interface thread, unless a newer start or a skip came meanwhile, in
// which case the result is dropped. Owned by the widget that shows results;
// the watchers it makes are children of `owner`, so nothing outlives it.
class LatestRun {
 public:
  template <typename Work, typename Show>
  void start(QObject* owner, Work work, Show show) {
    using Result = std::invoke_result_t<Work>;
    const std::uint64_t generation = ++pending_;
    auto* watcher = new QFutureWatcher<Result>(owner);
    QObject::connect(watcher, &QFutureWatcher<Result>::finished, owner, [this, watcher, generation, show] {
      watcher->deleteLater();
      if (generation != pending_) return;  // overtaken: stale
      shown_ = generation;
      show(watcher->result());
    });
    watcher->setFuture(QtConcurrent::run(std::move(work)));
  }

  // Drops every run still under way, as when the screen shows something
  // that needs no run.
  void skip() { shown_ = ++pending_; }

  // Whether a run's result is still to be shown.
  bool busy() const { return pending_ != shown_; }

 private:
  std::uint64_t pending_ = 0;
  std::uint64_t shown_ = 0;
};

}  // namespace orvane::app
