#include "app/reports/ReportCharts.h"

#include <QChart>
#include <QAbstractAxis>
#include <QChartView>
#include <QLegend>
#include <QCoreApplication>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>

#include "app/charts/FinishWeeksChart.h"
#include "app/charts/FlowAgeChart.h"
#include "app/charts/FlowCumulativeChart.h"
#include "app/charts/FlowCycleTimeChart.h"
#include "app/charts/FlowThroughputChart.h"
#include "app/roadmap/RoadmapScene.h"
#include "app/roadmap/RoadmapTimeline.h"

namespace orvane::app {
namespace {

// The size a chart is laid out at before it is scaled into the page: about
// what the screen gives it, so labels keep their proportions.
constexpr int chartPixelWidth = 760;

QFont withoutLigatures(QFont font) {
  font.setStyleStrategy(QFont::PreferNoShaping);
  return font;
}

// No ligatures in a chart's words either: "fi" in "confidence" stays two
// letters for anyone who searches or copies the PDF's text.
void unshapeText(QChart& chart) {
  chart.setTitleFont(withoutLigatures(chart.titleFont()));
  chart.legend()->setFont(withoutLigatures(chart.legend()->font()));
  for (QAbstractAxis* axis : chart.axes()) {
    axis->setTitleFont(withoutLigatures(axis->titleFont()));
    axis->setLabelsFont(withoutLigatures(axis->labelsFont()));
  }
}

void render(QChartView& view, QPainter& painter, const QRectF& area) {
  unshapeText(*view.chart());
  const QSize size(chartPixelWidth,
                   static_cast<int>(chartPixelWidth * area.height() / std::max<qreal>(area.width(), 1)));
  view.setAttribute(Qt::WA_DontShowOnScreen);
  view.resize(size);
  view.show();
  view.chart()->resize(QSizeF(size));
  // The chart lays its axes out on posted layout requests.
  QCoreApplication::sendPostedEvents();
  view.chart()->scene()->render(&painter, area, QRectF(QPointF(0, 0), QSizeF(size)), Qt::IgnoreAspectRatio);
}

}  // namespace

void paintFinishWeeks(QPainter& painter, const QRectF& area, const WhenForecast& forecast) {
  FinishWeeksChart chart(nullptr);
  chart.showHistogram(forecast.histogram, forecast.periods, forecast.commitment);
  render(chart, painter, area);
}

void paintFlowChart(QPainter& painter, const QRectF& area, FlowChartKind kind, const FlowScreen::Figures& figures) {
  const std::optional<double> p85 = figures.summary ? std::optional<double>(figures.summary->p85) : std::nullopt;
  switch (kind) {
    case FlowChartKind::throughput: {
      FlowThroughputChart chart(nullptr);
      chart.showWeeks(figures.throughput, figures.averageWeeklyThroughput());
      render(chart, painter, area);
      return;
    }
    case FlowChartKind::cycleTime: {
      FlowCycleTimeChart chart(nullptr);
      chart.showPoints(figures.cyclePoints, figures.summary, figures.today.addingDays(-(7 * figures.weeks - 1)),
                       figures.today);
      render(chart, painter, area);
      return;
    }
    case FlowChartKind::age: {
      FlowAgeChart chart(nullptr);
      chart.showAges(figures.ages, p85);
      render(chart, painter, area);
      return;
    }
    case FlowChartKind::cumulative: {
      FlowCumulativeChart chart(nullptr);
      chart.showDays(figures.cumulative);
      render(chart, painter, area);
      return;
    }
  }
}

struct RoadmapDrawing::Scene {
  RoadmapScene scene{nullptr};
  RoadmapTimeline view{&scene, nullptr};
};

// Wider than this, a time line is too small to read across a page.
constexpr double widestRoadmap = 1600;

RoadmapDrawing::RoadmapDrawing(const RoadmapPicture& picture) : scene_(std::make_unique<Scene>()) {
  // The finest zoom whose time line still fits a page's width legibly.
  for (const RoadmapZoom zoom : {RoadmapZoom::weeks, RoadmapZoom::months, RoadmapZoom::quarters}) {
    scene_->scene.showPicture(picture, zoom);
    if (scene_->scene.sceneRect().width() <= widestRoadmap) break;
  }
  QGraphicsView& view = scene_->view;
  view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  // Sized in pixels, so the names and dates scale with the scene's items
  // rather than with the resolution of the page.
  QFont font = view.font();
  font.setPixelSize(13);
  view.setFont(font);
  view.setAttribute(Qt::WA_DontShowOnScreen);
  view.resize(scene_->scene.sceneRect().size().toSize());
  view.show();
  QCoreApplication::sendPostedEvents();
  view.horizontalScrollBar()->setValue(0);
  view.verticalScrollBar()->setValue(0);
}

RoadmapDrawing::~RoadmapDrawing() = default;

qreal RoadmapDrawing::heightFor(qreal width) const {
  const QRectF rect = scene_->scene.sceneRect();
  return width * rect.height() / std::max<qreal>(rect.width(), 1);
}

void RoadmapDrawing::paint(QPainter& painter, const QRectF& area) const {
  scene_->view.render(&painter, area, scene_->view.viewport()->rect(), Qt::KeepAspectRatio);
}

}  // namespace orvane::app
