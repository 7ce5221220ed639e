#pragma once

#include <QGraphicsItem>
#include <QGraphicsPathItem>
#include <optional>

#include "app/roadmap/RoadmapPicture.h"

class QGraphicsSimpleTextItem;

namespace orvane::app {

class RoadmapScene;

// One epic's bar: solid from its start to its 50% date, lighter on to its
// 85% date; an epic with nothing open is a short grey-green bar that ends
// today. Its left end is a handle: dragging it picks a new planned start,
// whole days at a time, which the scene reports on release. A double-click
// asks for the epic's form.
class EpicBarItem : public QGraphicsItem {
 public:
  enum { Type = UserType + 1 };
  static constexpr double height = 14;
  static constexpr double handleWidth = 7;

  EpicBarItem(const RoadmapBar& bar, RoadmapScene& scene, double top);

  int type() const override { return Type; }
  QRectF boundingRect() const override;
  void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

  const Uuid& id() const { return id_; }
  double startX() const { return left_; }
  // The end of the solid part (the 50% date) and of the lighter one (the
  // 85% date); both end today for an epic with nothing open.
  double p50X() const { return solidRight_; }
  double p85X() const { return right_; }
  double centreY() const { return top_ + height / 2; }
  bool isDone() const { return done_; }
  bool onLongestChain() const { return onLongestChain_; }

 protected:
  void hoverMoveEvent(QGraphicsSceneHoverEvent* event) override;
  void mousePressEvent(QGraphicsSceneMouseEvent* event) override;
  void mouseMoveEvent(QGraphicsSceneMouseEvent* event) override;
  void mouseReleaseEvent(QGraphicsSceneMouseEvent* event) override;
  void mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event) override;

 private:
  bool onHandle(const QPointF& point) const;
  void setLeft(double x);

  RoadmapScene& scene_;
  Uuid id_;
  QColor colour_;
  bool done_ = false;
  bool onLongestChain_ = false;
  double top_ = 0;
  double left_ = 0;
  double solidRight_ = 0;
  double right_ = 0;
  double plannedLeft_ = 0;
  bool dragging_ = false;
  QGraphicsSimpleTextItem* dragLabel_ = nullptr;
};

// A dependency: from the end of the predecessor's solid bar to the start of
// the successor's, stronger on the longest chain.
class DependencyArrowItem : public QGraphicsPathItem {
 public:
  enum { Type = UserType + 2 };

  DependencyArrowItem(const RoadmapArrow& arrow, const EpicBarItem& from, const EpicBarItem& to);

  int type() const override { return Type; }
  const Uuid& predecessor() const { return predecessor_; }
  const Uuid& successor() const { return successor_; }
  bool onLongestChain() const { return onLongestChain_; }

 private:
  Uuid predecessor_;
  Uuid successor_;
  bool onLongestChain_ = false;
};

}  // namespace orvane::app
