// The main of every benchmark that draws Qt widgets: the offscreen platform,
// so no display is needed, and no platform notes among the figures.
#include <QApplication>
#include <benchmark/benchmark.h>

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // The offscreen platform's notes on window hints would drown the figures.
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  QApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
