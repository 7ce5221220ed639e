// The main of every benchmark that draws Qt widgets: the offscreen platform,
// so no display is needed, and no platform notes among the figures.
#include <QApplication>
#include <benchmark/benchmark.h>

#include <functional>
#include <utility>
#include <vector>

#include "support/OffscreenExit.h"

namespace {

std::vector<std::function<void()>>& cleanups() {
  static std::vector<std::function<void()>> registered;
  return registered;
}

}  // namespace

void orvane::bench::atOffscreenExit(std::function<void()> cleanup) { cleanups().push_back(std::move(cleanup)); }

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // The offscreen platform's notes on window hints would drown the figures.
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  QApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  for (auto cleanup = cleanups().rbegin(); cleanup != cleanups().rend(); ++cleanup) (*cleanup)();
  return 0;
}
