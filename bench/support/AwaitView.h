#pragma once

#include <QApplication>
#include <QEventLoop>
#include <QObject>

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

}  // namespace orvane::bench
