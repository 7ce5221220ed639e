#include "app/roadmap/RoadmapScene.h"

#include <QFont>
#include <QFontMetricsF>
#include <QGraphicsLineItem>
#include <QGraphicsPolygonItem>
#include <QGraphicsSimpleTextItem>
#include <QPainter>
#include <QPen>
#include <algorithm>
#include <array>
#include <cmath>

#include "app/roadmap/RoadmapItems.h"

namespace orvane::app {
namespace {

constexpr std::array<const char*, 12> monthNames{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                 "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr double bandHeight = 17;
// Days of room before the first day and after the last one drawn.
constexpr std::int64_t leadDays = 7;
constexpr std::int64_t trailDays = 14;
// Room after the last day for the notes beside the bars.
constexpr double noteRoom = 280;

const QColor levelColour(0x44, 0x5e, 0x93);
const QColor todayColour(0xc6, 0x28, 0x28);
const QColor riskColour(0xb3, 0x26, 0x1e);
const QColor milestoneColour(0x6a, 0x1b, 0x9a);

bool isMonday(const CivilDate& day) { return ((day.daysSinceEpoch() + 3) % 7 + 7) % 7 == 0; }

CivilDate nextMonth(const CivilDate& first) {
  return first.month == 12 ? CivilDate(first.year + 1, 1, 1) : CivilDate(first.year, first.month + 1, 1);
}

QGraphicsSimpleTextItem* addLabel(QGraphicsScene& scene, const QString& text, const QColor& colour, bool bold = false) {
  auto* item = scene.addSimpleText(text);
  QFont font = item->font();
  font.setBold(bold);
  item->setFont(font);
  item->setBrush(colour);
  item->setZValue(3);
  return item;
}

}  // namespace

RoadmapScene::RoadmapScene(QObject* parent) : QGraphicsScene(parent) {}

double RoadmapScene::pixelsPerDay() const {
  switch (zoom_) {
    case RoadmapZoom::weeks:
      return 18;
    case RoadmapZoom::months:
      return 5;
    case RoadmapZoom::quarters:
      return 1.6;
  }
  return 5;
}

double RoadmapScene::xOf(const CivilDate& day) const {
  return nameColumnWidth + static_cast<double>(day.daysSince(origin_)) * pixelsPerDay();
}

CivilDate RoadmapScene::dayAt(double x) const {
  return origin_.addingDays(static_cast<std::int64_t>(std::floor((x - nameColumnWidth) / pixelsPerDay())));
}

std::vector<int> RoadmapScene::bands(const std::vector<std::pair<double, double>>& spans) {
  std::vector<double> ends;  // the right end of the last label of each band
  std::vector<int> result;
  for (const auto& [x, width] : spans) {
    std::size_t band = 0;
    while (band < ends.size() && ends[band] + 8 > x) ++band;
    if (band == ends.size()) ends.push_back(0);
    ends[band] = x + width;
    result.push_back(static_cast<int>(band));
  }
  return result;
}

void RoadmapScene::layOutTicks() {
  ticks_.clear();
  const CivilDate first = origin_;
  const CivilDate last = dayAt(sceneRect().right());
  if (zoom_ == RoadmapZoom::weeks) {
    for (CivilDate day = first; day <= last; day = day.addingDays(1))
      if (isMonday(day)) ticks_.push_back({xOf(day), QString::fromStdString(day.displayShort())});
    return;
  }
  for (CivilDate month(first.year, first.month, 1); month <= last; month = nextMonth(month)) {
    const QString name = QString::fromLatin1(monthNames[static_cast<std::size_t>(month.month - 1)]);
    if (zoom_ == RoadmapZoom::months) {
      ticks_.push_back({xOf(month), name + QStringLiteral(" %1").arg(month.year)});
    } else {
      const bool quarter = (month.month - 1) % 3 == 0;
      ticks_.push_back(
          {xOf(month), quarter ? QStringLiteral("Q%1 %2").arg((month.month - 1) / 3 + 1).arg(month.year) : QString()});
    }
  }
}

void RoadmapScene::showPicture(const RoadmapPicture& picture, RoadmapZoom zoom) {
  const std::optional<Uuid> selected = selectedEpic();
  clear();
  rows_.clear();
  picture_ = picture;
  zoom_ = zoom;
  origin_ = picture_.firstDay().addingDays(-leadDays);
  const CivilDate last = picture_.lastDay().addingDays(trailDays);
  const double width = xOf(last) + noteRoom;

  // The labels of the date lines: the project's finish dates and today, in
  // as many bands as they need not to overlap.
  const QFontMetricsF metrics(font());
  struct Line {
    CivilDate day;
    QString label;
    QColor colour;
    bool today;
  };
  std::vector<Line> lines{{picture_.today, QStringLiteral("Today"), todayColour, true}};
  for (const auto& [level, day] : picture_.projectDates)
    lines.push_back({day, QStringLiteral("%1%: %2").arg(level).arg(QString::fromStdString(day.displayShort())),
                     levelColour, false});
  std::vector<std::pair<double, double>> spans;
  for (const Line& line : lines) spans.emplace_back(xOf(line.day) + 3, metrics.horizontalAdvance(line.label) + 6);
  const std::vector<int> lineBands = bands(spans);
  const int lineBandCount = lineBands.empty() ? 0 : *std::max_element(lineBands.begin(), lineBands.end()) + 1;
  const double linesTop = headerHeight + 4;

  std::vector<std::pair<double, double>> markerSpans;
  for (const RoadmapMarker& marker : picture_.milestones)
    markerSpans.emplace_back(xOf(marker.day) - 6, metrics.horizontalAdvance(marker.label) + 18);
  const std::vector<int> markerBands = bands(markerSpans);
  const int markerBandCount = markerBands.empty() ? 0 : *std::max_element(markerBands.begin(), markerBands.end()) + 1;
  const double markersTop = linesTop + lineBandCount * bandHeight + 4;
  barsTop_ = markersTop + markerBandCount * bandHeight + 8;
  const double bottom = barsTop_ + static_cast<double>(picture_.bars.size()) * rowHeight + 12;
  setSceneRect(0, 0, width, bottom);
  layOutTicks();

  for (std::size_t i = 0; i < lines.size(); ++i) {
    const Line& line = lines[i];
    const double x = xOf(line.day);
    const double labelTop = linesTop + lineBands[i] * bandHeight;
    QPen pen(line.colour, line.today ? 1.5 : 1, line.today ? Qt::SolidLine : Qt::DashLine);
    auto* stroke = addLine(x, labelTop, x, bottom, pen);
    stroke->setZValue(0.5);
    stroke->setData(0, line.today ? QStringLiteral("today") : QStringLiteral("projectDate"));
    auto* label = addLabel(*this, line.label, line.colour, line.today);
    label->setPos(x + 3, labelTop);
  }

  for (std::size_t i = 0; i < picture_.milestones.size(); ++i) {
    const RoadmapMarker& marker = picture_.milestones[i];
    const double x = xOf(marker.day);
    const double top = markersTop + markerBands[i] * bandHeight + 2;
    const QColor colour = marker.done ? QColor(0x55, 0x8b, 0x5e) : milestoneColour;
    auto* flag = addPolygon(QPolygonF({QPointF(x - 6, top), QPointF(x + 6, top), QPointF(x, top + 11)}), QPen(colour),
                            QBrush(colour));
    flag->setZValue(3);
    flag->setData(0, QStringLiteral("milestone"));
    flag->setData(1, QString::fromStdString(marker.id.text()));
    flag->setToolTip(marker.name + QStringLiteral(", ") + QString::fromStdString(marker.day.displayText()));
    auto* stroke =
        addLine(x, top + 11, x, bottom, QPen(QColor(colour.red(), colour.green(), colour.blue(), 70), 1, Qt::DotLine));
    stroke->setZValue(0.4);
    auto* label = addLabel(*this, marker.label, colour);
    label->setPos(x + 9, top - 2);
  }

  for (std::size_t i = 0; i < picture_.bars.size(); ++i) {
    const RoadmapBar& bar = picture_.bars[i];
    const double rowTop = barsTop_ + static_cast<double>(i) * rowHeight;
    const double barTop = rowTop + (rowHeight - EpicBarItem::height) / 2;
    auto* item = new EpicBarItem(bar, *this, barTop);
    addItem(item);
    if (selected == bar.id) item->setSelected(true);
    rows_.push_back({bar.id, bar.name, rowTop + rowHeight / 2, bar.onLongestChain, bar.atRisk});
    double noteX = item->p85X();
    if (bar.due) {
      const double x = xOf(*bar.due);
      const double y = barTop + EpicBarItem::height / 2;
      const QColor colour = bar.atRisk ? riskColour : QColor(0x30, 0x30, 0x30);
      auto* diamond =
          addPolygon(QPolygonF({QPointF(x, y - 7), QPointF(x + 7, y), QPointF(x, y + 7), QPointF(x - 7, y)}),
                     QPen(Qt::white), QBrush(colour));
      diamond->setZValue(4);
      diamond->setData(0, QStringLiteral("due"));
      diamond->setData(1, QString::fromStdString(bar.id.text()));
      diamond->setToolTip(QStringLiteral("Due ") + QString::fromStdString(bar.due->displayText()));
      noteX = std::max(noteX, x + 7);
    }
    auto* note = addLabel(*this, bar.note, bar.atRisk ? riskColour : QColor(0x40, 0x40, 0x40), bar.atRisk);
    note->setPos(noteX + 8, barTop + (EpicBarItem::height - note->boundingRect().height()) / 2);
    note->setData(0, QStringLiteral("note"));
    note->setData(1, QString::fromStdString(bar.id.text()));
  }

  for (const RoadmapArrow& arrow : picture_.arrows) {
    const EpicBarItem* from = bar(arrow.predecessor);
    const EpicBarItem* to = bar(arrow.successor);
    if (!from || !to) continue;
    auto* item = new DependencyArrowItem(arrow, *from, *to);
    item->setToolTip(QStringLiteral("“%1” waits for “%2”")
                         .arg(picture_.bar(arrow.successor)->name, picture_.bar(arrow.predecessor)->name));
    addItem(item);
  }
}

std::vector<EpicBarItem*> RoadmapScene::bars() const {
  std::vector<EpicBarItem*> found;
  for (QGraphicsItem* item : items(Qt::AscendingOrder))
    if (auto* bar = qgraphicsitem_cast<EpicBarItem*>(item)) found.push_back(bar);
  return found;
}

EpicBarItem* RoadmapScene::bar(const Uuid& epic) const {
  for (EpicBarItem* bar : bars())
    if (bar->id() == epic) return bar;
  return nullptr;
}

std::vector<DependencyArrowItem*> RoadmapScene::arrows() const {
  std::vector<DependencyArrowItem*> found;
  for (QGraphicsItem* item : items(Qt::AscendingOrder))
    if (auto* arrow = qgraphicsitem_cast<DependencyArrowItem*>(item)) found.push_back(arrow);
  return found;
}

void RoadmapScene::selectEpic(const Uuid& epic) {
  clearSelection();
  if (EpicBarItem* found = bar(epic)) found->setSelected(true);
}

std::optional<Uuid> RoadmapScene::selectedEpic() const {
  for (QGraphicsItem* item : selectedItems())
    if (auto* bar = qgraphicsitem_cast<EpicBarItem*>(item)) return bar->id();
  return std::nullopt;
}

void RoadmapScene::drawBackground(QPainter* painter, const QRectF& rect) {
  painter->fillRect(rect, Qt::white);
  // Every other row shaded, and a line at every tick.
  for (std::size_t i = 0; i < rows_.size(); i += 2) {
    const QRectF row(rect.left(), rows_[i].centreY - rowHeight / 2, rect.width(), rowHeight);
    if (row.intersects(rect)) painter->fillRect(row, QColor(0xf6, 0xf7, 0xf9));
  }
  for (const Tick& tick : ticks_) {
    if (tick.x < rect.left() || tick.x > rect.right()) continue;
    painter->setPen(QPen(tick.label.isEmpty() ? QColor(0xf0, 0xf0, 0xf0) : QColor(0xe2, 0xe4, 0xe8), 1));
    painter->drawLine(QPointF(tick.x, std::max(rect.top(), headerHeight)), QPointF(tick.x, rect.bottom()));
  }
}

}  // namespace orvane::app
