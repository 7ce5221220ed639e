#pragma once

#include <QApplication>
#include <QEventLoop>
#include <QObject>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "app/shell/AppContext.h"
#include "core/board/BoardService.h"
#include "core/store/Store.h"
#include "BenchStore.h"

namespace orvane::bench {

// Returns once `view` has shown its newest run, drawn: while it is still
// computing, waits for its `shown` signal to come with nothing left to do.
template <typename View, typename Signal>
void awaitView(View& view, Signal shown) {
  if (view.isComputing()) {
    QEventLoop loop;
    QObject::connect(&view, shown, &loop, [&] {
      if (!view.isComputing()) loop.quit();
    });
    loop.exec();
  }
  QApplication::processEvents();
}

// One screen of the window on a scratch store with the demo project, the
// clock pinned at `now`, drawn offscreen at 1280 x 800. The store is removed
// when the screen goes.
template <typename View>
struct ViewScreen {
  std::filesystem::path path;
  std::optional<Store> store;
  std::unique_ptr<app::AppContext> context;
  std::unique_ptr<View> view;
  Uuid demo;

  ViewScreen(const std::string& storeName, Timestamp now) : path(scratchStorePath(storeName)) {
    store.emplace(Store::open(path));
    context = std::make_unique<app::AppContext>(*store);
    context->setClock([now] { return now; });
    demo = context->board().loadDemoProject(now).id;
    view = std::make_unique<View>(*context, nullptr);
    view->resize(1280, 800);
    view->show();
  }
  ~ViewScreen() {
    view.reset();
    context.reset();
    store.reset();
    removeStore(path);
  }
  ViewScreen(const ViewScreen&) = delete;
  ViewScreen& operator=(const ViewScreen&) = delete;
};

}  // namespace orvane::bench
