#pragma once

#include <QGraphicsScene>
#include <QString>
#include <optional>
#include <vector>

#include "app/roadmap/RoadmapPicture.h"

namespace orvane::app {

class DependencyArrowItem;
class EpicBarItem;

enum class RoadmapZoom { weeks, months, quarters };

// The time line of a roadmap laid out in scene coordinates: x counts days
// from a little before the first day drawn (behind a column kept free for
// the epics' names), y runs from a header band over the date lines' labels
// and the milestones' band to one row per epic. The view pins the header
// and the names; everything else is items here.
class RoadmapScene : public QGraphicsScene {
  Q_OBJECT

 public:
  static constexpr double nameColumnWidth = 220;
  static constexpr double headerHeight = 30;
  static constexpr double rowHeight = 34;

  struct Row {
    Uuid id;
    QString name;
    double centreY = 0;
    bool onLongestChain = false;
    bool atRisk = false;
  };
  struct Tick {
    double x = 0;
    QString label;  // empty for a minor line
  };

  explicit RoadmapScene(QObject* parent);

  void showPicture(const RoadmapPicture& picture, RoadmapZoom zoom);
  const RoadmapPicture& picture() const { return picture_; }
  RoadmapZoom zoom() const { return zoom_; }

  double pixelsPerDay() const;
  // The left edge of a day's column, and the day whose column holds x.
  double xOf(const CivilDate& day) const;
  CivilDate dayAt(double x) const;

  const std::vector<Row>& rows() const { return rows_; }
  const std::vector<Tick>& ticks() const { return ticks_; }
  std::vector<EpicBarItem*> bars() const;
  EpicBarItem* bar(const Uuid& epic) const;
  std::vector<DependencyArrowItem*> arrows() const;
  // The epic's bar is the only selected item.
  void selectEpic(const Uuid& epic);
  std::optional<Uuid> selectedEpic() const;

  // Called by the bars.
  void reportStartDragged(const Uuid& epic, const CivilDate& day) { emit startDragged(epic, day); }
  void reportActivated(const Uuid& epic) { emit epicActivated(epic); }

 signals:
  void epicActivated(const Uuid& epic);
  // A bar's left end was dropped on `day`, another day than its start.
  void startDragged(const Uuid& epic, const CivilDate& day);

 protected:
  void drawBackground(QPainter* painter, const QRectF& rect) override;

 private:
  void layOutTicks();
  // Places labels of the given widths at their x, each in the first band
  // where it overlaps no earlier one; returns the band of each.
  static std::vector<int> bands(const std::vector<std::pair<double, double>>& spans);

  RoadmapPicture picture_;
  RoadmapZoom zoom_ = RoadmapZoom::months;
  CivilDate origin_;
  std::vector<Row> rows_;
  std::vector<Tick> ticks_;
  double barsTop_ = 0;
};

}  // namespace orvane::app
