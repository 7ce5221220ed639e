#pragma once

#include <QRectF>
#include <memory>

#include "app/roadmap/RoadmapPicture.h"
#include "core/forecast/ForecastInput.h"
#include "core/metrics/FlowScreen.h"

class QPainter;

namespace orvane::app {

// The screens' own charts drawn into a report page: each chart is made off
// screen at a screen-like size, filled as its view fills it, and rendered
// into the page's area (as vectors on a PDF). They need the widgets'
// application object; call them on its thread.

void paintFinishWeeks(QPainter& painter, const QRectF& area, const WhenForecast& forecast);

enum class FlowChartKind { throughput, cycleTime, age, cumulative };
void paintFlowChart(QPainter& painter, const QRectF& area, FlowChartKind kind, const FlowScreen::Figures& figures);

// The roadmap's time line, laid out once: its height follows from the width
// it is drawn at, so the layout can ask before painting.
class RoadmapDrawing {
 public:
  explicit RoadmapDrawing(const RoadmapPicture& picture);
  ~RoadmapDrawing();
  qreal heightFor(qreal width) const;
  void paint(QPainter& painter, const QRectF& area) const;

 private:
  struct Scene;
  std::unique_ptr<Scene> scene_;
};

}  // namespace orvane::app
