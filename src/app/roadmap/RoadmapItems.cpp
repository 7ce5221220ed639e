#include "app/roadmap/RoadmapItems.h"

#include <QBrush>
#include <QCursor>
#include <QGraphicsSceneHoverEvent>
#include <QGraphicsSceneMouseEvent>
#include <QGraphicsSimpleTextItem>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QStyleOptionGraphicsItem>
#include <algorithm>

#include "app/roadmap/RoadmapScene.h"

namespace orvane::app {
namespace {

const QColor chainColour(0xd3, 0x54, 0x00);
const QColor doneColour(0x8f, 0xb9, 0x96);
constexpr double minimumWidth = 6;

}  // namespace

EpicBarItem::EpicBarItem(const RoadmapBar& bar, RoadmapScene& scene, double top)
    : scene_(scene),
      id_(bar.id),
      colour_(bar.colour),
      done_(bar.isDone()),
      onLongestChain_(bar.onLongestChain),
      top_(top) {
  const CivilDate& today = scene.picture().today;
  if (done_) {
    // Done: up to today, from a planned start that has passed.
    right_ = solidRight_ = scene.xOf(today);
    left_ = std::min(scene.xOf(bar.start), right_ - 2 * minimumWidth);
  } else {
    left_ = scene.xOf(bar.start);
    solidRight_ = scene.xOf(*bar.p50);
    right_ = scene.xOf(*bar.p85);
  }
  plannedLeft_ = left_;
  setToolTip(bar.detail);
  setAcceptHoverEvents(true);
  setFlag(ItemIsSelectable);
  setZValue(2);
}

QRectF EpicBarItem::boundingRect() const {
  const double right = std::max({right_, solidRight_, left_ + minimumWidth});
  return QRectF(left_ - 3, top_ - 3, right - left_ + 6, height + 6);
}

void EpicBarItem::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*) {
  painter->setRenderHint(QPainter::Antialiasing);
  const double solidRight = std::max(solidRight_, left_ + minimumWidth);
  const double right = std::max(right_, solidRight);
  const QRectF whole(left_, top_, right - left_, height);
  if (done_) {
    painter->setPen(Qt::NoPen);
    painter->setBrush(doneColour);
    painter->drawRoundedRect(whole, 3, 3);
  } else {
    QColor light = colour_;
    light.setAlpha(85);
    painter->setPen(Qt::NoPen);
    painter->setBrush(light);
    painter->drawRoundedRect(whole, 3, 3);
    painter->setBrush(colour_);
    painter->drawRoundedRect(QRectF(left_, top_, solidRight - left_, height), 3, 3);
  }
  // The handle: a darker edge at the start.
  painter->setBrush(colour_.darker(done_ ? 110 : 150));
  painter->drawRect(QRectF(left_, top_ + 2, 2.5, height - 4));
  if (onLongestChain_ || isSelected()) {
    QPen outline(isSelected() ? QColor(0x20, 0x20, 0x20) : chainColour, 2);
    if (isSelected() && onLongestChain_) outline.setStyle(Qt::DashLine);
    painter->setPen(outline);
    painter->setBrush(Qt::NoBrush);
    painter->drawRoundedRect(whole.adjusted(-1, -1, 1, 1), 3, 3);
  }
}

bool EpicBarItem::onHandle(const QPointF& point) const {
  return point.x() >= left_ - 3 && point.x() <= left_ + handleWidth;
}

void EpicBarItem::hoverMoveEvent(QGraphicsSceneHoverEvent* event) {
  setCursor(onHandle(event->pos()) ? Qt::SizeHorCursor : Qt::ArrowCursor);
}

void EpicBarItem::mousePressEvent(QGraphicsSceneMouseEvent* event) {
  if (event->button() == Qt::LeftButton && onHandle(event->pos())) {
    dragging_ = true;
    scene_.selectEpic(id_);
    event->accept();
    return;
  }
  QGraphicsItem::mousePressEvent(event);
}

void EpicBarItem::setLeft(double x) {
  prepareGeometryChange();
  left_ = x;
  update();
}

void EpicBarItem::mouseMoveEvent(QGraphicsSceneMouseEvent* event) {
  if (!dragging_) {
    QGraphicsItem::mouseMoveEvent(event);
    return;
  }
  const CivilDate day = scene_.dayAt(event->scenePos().x());
  setLeft(scene_.xOf(day));
  if (dragLabel_ == nullptr) {
    dragLabel_ = new QGraphicsSimpleTextItem(this);
    dragLabel_->setBrush(QColor(0x20, 0x20, 0x20));
  }
  dragLabel_->setText(QStringLiteral("Planned start ") + QString::fromStdString(day.displayText()));
  dragLabel_->setPos(left_, top_ - dragLabel_->boundingRect().height() - 1);
}

void EpicBarItem::mouseReleaseEvent(QGraphicsSceneMouseEvent* event) {
  if (!dragging_) {
    QGraphicsItem::mouseReleaseEvent(event);
    return;
  }
  dragging_ = false;
  delete dragLabel_;
  dragLabel_ = nullptr;
  const CivilDate day = scene_.dayAt(left_ + 0.5);
  const bool moved = left_ != plannedLeft_;
  // Back where it was until the store says otherwise: the new start shows
  // when the roadmap is drawn again.
  setLeft(plannedLeft_);
  if (moved) scene_.reportStartDragged(id_, day);
}

void EpicBarItem::mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event) {
  if (event->button() == Qt::LeftButton) scene_.reportActivated(id_);
}

DependencyArrowItem::DependencyArrowItem(const RoadmapArrow& arrow, const EpicBarItem& from, const EpicBarItem& to)
    : predecessor_(arrow.predecessor), successor_(arrow.successor), onLongestChain_(arrow.onLongestChain) {
  const double x1 = std::max(from.p50X(), from.startX() + 6);
  const double y1 = from.centreY();
  const double x2 = to.startX();
  const double y2 = to.centreY();
  const double gap = 10;
  QPainterPath path(QPointF(x1, y1));
  if (x2 - gap >= x1 + gap) {
    path.lineTo(x2 - gap, y1);
    path.lineTo(x2 - gap, y2);
  } else {
    // The successor starts before its predecessor's end: round the rows.
    const double between = y2 + (y2 > y1 ? -1 : 1) * RoadmapScene::rowHeight / 2;
    path.lineTo(x1 + gap, y1);
    path.lineTo(x1 + gap, between);
    path.lineTo(x2 - gap, between);
    path.lineTo(x2 - gap, y2);
  }
  path.lineTo(x2 - 1, y2);
  // The head.
  path.moveTo(x2 - 1, y2);
  path.lineTo(x2 - 7, y2 - 4);
  path.moveTo(x2 - 1, y2);
  path.lineTo(x2 - 7, y2 + 4);
  setPath(path);
  QPen pen(onLongestChain_ ? chainColour : QColor(0x80, 0x86, 0x90), onLongestChain_ ? 2 : 1.2);
  pen.setCapStyle(Qt::RoundCap);
  pen.setJoinStyle(Qt::RoundJoin);
  setPen(pen);
  setZValue(onLongestChain_ ? 1.5 : 1);
}

}  // namespace orvane::app
