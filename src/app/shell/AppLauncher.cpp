#include "app/shell/AppLauncher.h"

#include <QApplication>
#include <QIcon>
#include <QMessageBox>
#include <QTimer>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>

#include "app/shell/AppContext.h"
#include "app/shell/AppResources.h"
#include "app/shell/MainWindow.h"
#include "app/shell/ScreenshotTour.h"
#include "core/store/Store.h"

namespace orvane::app {

namespace {

struct Options {
  std::optional<std::filesystem::path> store;
  std::optional<std::filesystem::path> screenshots;
  bool help = false;
  std::string problem;
};

Options parse(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    auto value = [&](std::optional<std::filesystem::path>& into) {
      if (i + 1 >= argc) {
        options.problem = arg + " needs a path.";
        return;
      }
      into = argv[++i];
    };
    if (arg == "--store") {
      value(options.store);
    } else if (arg == "--screenshots") {
      value(options.screenshots);
    } else if (arg == "-h" || arg == "--help") {
      options.help = true;
    } else if (arg.rfind("-", 0) == 0 && arg.rfind("--", 0) != 0 && arg.size() > 1) {
      // Qt's own options (-platform, -style, ...) pass through to QApplication.
      if (i + 1 < argc && argv[i + 1][0] != '-') ++i;
    } else {
      options.problem = "Unknown option " + arg + ". Use --store PATH to open another store.";
    }
  }
  return options;
}

bool hasDisplay() {
  return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
         qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
}

int fatal(int& argc, char** argv, const std::string& message) {
  if (!hasDisplay()) {
    std::cerr << message << '\n';
    return 1;
  }
  QApplication app(argc, argv);
  QMessageBox::critical(nullptr, QStringLiteral("Orvane"), QString::fromStdString(message));
  return 1;
}

}  // namespace

int runDesktopApp(int argc, char** argv) {
  const Options options = parse(argc, argv);
  if (options.help) {
    std::cout << "usage: orvane [--store PATH]\n"
                 "Opens the Orvane desktop application on the store at PATH, or on\n"
                 "$XDG_DATA_HOME/orvane/orvane.sqlite by default.\n";
    return 0;
  }
  if (!options.problem.empty()) {
    std::cerr << options.problem << '\n';
    return 2;
  }

  std::optional<Store> store;
  try {
    store.emplace(Store::open(options.store ? *options.store : Store::defaultPath()));
  } catch (const std::exception& error) {
    return fatal(argc, argv, std::string("The database could not be opened: ") + error.what());
  }

  QApplication app(argc, argv);
  QApplication::setApplicationName(QStringLiteral("orvane"));
  QApplication::setOrganizationName(QStringLiteral("orvane"));
  // No application display name: the platform would append it to every
  // window title, and the main window's title already begins with "Orvane".
  QApplication::setDesktopFileName(QStringLiteral("orvane"));
  loadAppResources();
  QApplication::setWindowIcon(QIcon(QStringLiteral(":/orvane/orvane.svg")));

  AppContext context(*store);
  MainWindow window(context);
  window.show();
  if (options.screenshots) {
    auto* tour = new ScreenshotTour(context, window, *options.screenshots, &window);
    QTimer::singleShot(300, tour, [tour] { QApplication::exit(tour->run()); });
  }
  return QApplication::exec();
}

}  // namespace orvane::app
