#include "app/roadmap/RoadmapTimeline.h"

#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

#include "app/roadmap/RoadmapScene.h"

namespace orvane::app {

RoadmapTimeline::RoadmapTimeline(RoadmapScene* scene, QWidget* parent) : QGraphicsView(scene, parent), scene_(scene) {
  setObjectName(QStringLiteral("roadmapTimeline"));
  setAlignment(Qt::AlignLeft | Qt::AlignTop);
  setRenderHint(QPainter::Antialiasing);
  setDragMode(QGraphicsView::NoDrag);
  // The pinned header and names move with every scroll: repaint it all.
  setViewportUpdateMode(QGraphicsView::FullViewportUpdate);
  setFrameShape(QFrame::NoFrame);
}

void RoadmapTimeline::reveal(const QRectF& sceneRect) {
  ensureVisible(sceneRect.adjusted(-RoadmapScene::nameColumnWidth - 20, -RoadmapScene::headerHeight - 20, 60, 20));
}

void RoadmapTimeline::drawForeground(QPainter* painter, const QRectF&) {
  const QRectF visible = mapToScene(viewport()->rect()).boundingRect();
  const QFontMetrics metrics(font());
  painter->save();
  painter->setFont(font());

  // The names, over the left of the scene.
  const QRectF names(visible.left(), visible.top(), RoadmapScene::nameColumnWidth - 8, visible.height());
  painter->fillRect(names, QColor(0xfb, 0xfb, 0xfc));
  painter->setPen(QColor(0xd8, 0xda, 0xde));
  painter->drawLine(names.topRight(), names.bottomRight());
  const std::optional<Uuid> selected = scene_->selectedEpic();
  for (const RoadmapScene::Row& row : scene_->rows()) {
    if (row.centreY < visible.top() + RoadmapScene::headerHeight - 4 || row.centreY > visible.bottom() + 20) continue;
    QFont font = painter->font();
    font.setBold(row.onLongestChain || selected == row.id);
    painter->setFont(font);
    painter->setPen(row.atRisk ? QColor(0xb3, 0x26, 0x1e) : QColor(0x20, 0x20, 0x20));
    const QRectF cell(names.left() + 10, row.centreY - RoadmapScene::rowHeight / 2, names.width() - 16,
                      RoadmapScene::rowHeight);
    painter->drawText(cell, Qt::AlignVCenter | Qt::AlignLeft,
                      QFontMetrics(font).elidedText(row.name, Qt::ElideRight, static_cast<int>(cell.width())));
  }
  painter->setFont(font());

  // The date header, over the top.
  const QRectF header(visible.left(), visible.top(), visible.width(), RoadmapScene::headerHeight);
  painter->fillRect(header, QColor(0xf1, 0xf3, 0xf6));
  painter->setPen(QColor(0xc8, 0xcb, 0xd0));
  painter->drawLine(header.bottomLeft(), header.bottomRight());
  painter->setPen(QColor(0x30, 0x30, 0x30));
  for (const RoadmapScene::Tick& tick : scene_->ticks()) {
    if (tick.label.isEmpty() || tick.x < visible.left() + RoadmapScene::nameColumnWidth - 8) continue;
    if (tick.x > visible.right()) break;
    painter->drawLine(QPointF(tick.x, header.bottom() - 6), QPointF(tick.x, header.bottom()));
    painter->drawText(QRectF(tick.x + 4, header.top(), 200, header.height()), Qt::AlignVCenter | Qt::AlignLeft,
                      tick.label);
  }
  QFont bold = font();
  bold.setBold(true);
  painter->setFont(bold);
  painter->fillRect(QRectF(header.left(), header.top(), RoadmapScene::nameColumnWidth - 8, header.height()),
                    QColor(0xf1, 0xf3, 0xf6));
  painter->drawText(QRectF(header.left() + 10, header.top(), RoadmapScene::nameColumnWidth, header.height()),
                    Qt::AlignVCenter | Qt::AlignLeft, QStringLiteral("Epic"));
  painter->restore();
}

int RoadmapTimeline::nameRowAt(const QPoint& point) const {
  if (point.x() >= RoadmapScene::nameColumnWidth - 8 || point.y() < RoadmapScene::headerHeight) return -1;
  const double y = mapToScene(point).y();
  const auto& rows = scene_->rows();
  for (std::size_t i = 0; i < rows.size(); ++i)
    if (std::abs(rows[i].centreY - y) <= RoadmapScene::rowHeight / 2) return static_cast<int>(i);
  return -1;
}

void RoadmapTimeline::mousePressEvent(QMouseEvent* event) {
  const int row = nameRowAt(event->position().toPoint());
  if (row < 0) {
    QGraphicsView::mousePressEvent(event);
    return;
  }
  scene_->selectEpic(scene_->rows()[static_cast<std::size_t>(row)].id);
  viewport()->update();
}

void RoadmapTimeline::mouseDoubleClickEvent(QMouseEvent* event) {
  const int row = nameRowAt(event->position().toPoint());
  if (row < 0) {
    QGraphicsView::mouseDoubleClickEvent(event);
    return;
  }
  scene_->reportActivated(scene_->rows()[static_cast<std::size_t>(row)].id);
}

}  // namespace orvane::app
