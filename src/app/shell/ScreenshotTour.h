#pragma once

#include <QObject>
#include <filesystem>
#include <optional>

#include "core/model/Uuid.h"

class QWidget;

namespace orvane::app {

class AppContext;
class ForecastView;
class MainWindow;

// Walks the window through every screen and saves a PNG of each into one
// folder, so all of them can be looked at in one go: the empty state, the
// nine views of the first project, the forecast log and its accuracy, the
// filtered board, a selection of cards
// with the card menu over it, the sheets, the settings, help and About.
class ScreenshotTour : public QObject {
  Q_OBJECT

 public:
  ScreenshotTour(AppContext& context, MainWindow& window, std::filesystem::path folder, QObject* parent);

  // Returns 0 when every picture was saved, 1 otherwise.
  int run();

 private:
  bool save(QWidget* widget, const QString& name);
  bool saveScreen(const QString& name);
  // Logs forecasts of `project` (one two weeks back, two today through the
  // sheet) and saves the log and accuracy page.
  void logForecasts(ForecastView& forecast, const Uuid& project);
  void tourRoadmap(const std::optional<Uuid>& demo);
  // The settings filled in, with a logo and with a refused file; the help
  // at its start and at the shortcuts; the About box.
  void tourSettingsAndHelp();
  // The Reports window with the client and then the internal preview.
  void tourReports(const std::optional<Uuid>& demo);

  AppContext& context_;
  MainWindow& window_;
  std::filesystem::path folder_;
  int failures_ = 0;
};

}  // namespace orvane::app
