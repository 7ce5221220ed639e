#pragma once

#include <QGraphicsView>

namespace orvane::app {

class RoadmapScene;

// The roadmap's scene in a scrolling view that keeps the date header at the
// top and the epics' names at the left whatever the scroll. A click on a
// name selects its epic, a double-click there asks for its form, as on the
// bar.
class RoadmapTimeline : public QGraphicsView {
  Q_OBJECT

 public:
  RoadmapTimeline(RoadmapScene* scene, QWidget* parent);

  RoadmapScene* roadmap() const { return scene_; }
  // Scrolls so that the epic's bar is in sight.
  void reveal(const QRectF& sceneRect);

 protected:
  void drawForeground(QPainter* painter, const QRectF& rect) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  // The row under a point of the viewport, when it lies on the names.
  int nameRowAt(const QPoint& point) const;

  RoadmapScene* scene_;
};

}  // namespace orvane::app
