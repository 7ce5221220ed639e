#include "app/flow/FlowTiles.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "app/charts/FlowChartParts.h"

namespace orvane::app {

FlowTiles::FlowTiles(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("flowTiles"));
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(10);
  throughput_ =
      addTile(QStringLiteral("throughputTile"), QStringLiteral("Throughput"), QStringLiteral("tickets per week"));
  median_ = addTile(QStringLiteral("medianTile"), QStringLiteral("Median cycle time"), QString());
  p85_ = addTile(QStringLiteral("p85Tile"), QStringLiteral("P85 cycle time"), QStringLiteral("85% finish within"));
  inProgress_ = addTile(QStringLiteral("inProgressTile"), QStringLiteral("In progress"), QString());
}

FlowTiles::Tile FlowTiles::addTile(const QString& name, const QString& title, const QString& caption) {
  auto* frame = new QFrame(this);
  frame->setObjectName(name);
  frame->setFrameShape(QFrame::StyledPanel);
  frame->setMinimumWidth(130);
  auto* column = new QVBoxLayout(frame);
  column->setContentsMargins(12, 8, 12, 8);
  column->setSpacing(2);
  auto* heading = new QLabel(title, frame);
  QFont headingFont = heading->font();
  headingFont.setBold(true);
  heading->setFont(headingFont);
  heading->setWordWrap(true);  // "Median cycle time" on a small screen
  column->addWidget(heading);
  Tile tile;
  tile.value = new QLabel(frame);
  tile.value->setObjectName(name + QStringLiteral("Value"));
  QFont valueFont = tile.value->font();
  valueFont.setPointSizeF(valueFont.pointSizeF() * 1.9);
  valueFont.setBold(true);
  tile.value->setFont(valueFont);
  column->addWidget(tile.value);
  tile.caption = new QLabel(caption, frame);
  tile.caption->setObjectName(name + QStringLiteral("Caption"));
  tile.caption->setStyleSheet(QStringLiteral("color: palette(mid);"));
  column->addWidget(tile.caption);
  column->addStretch(1);
  static_cast<QHBoxLayout*>(layout())->addWidget(frame, 1);
  return tile;
}

void FlowTiles::showFigures(const FlowScreen::Figures& figures) {
  throughput_.value->setText(qtext(FlowScreen::throughputTile(figures)));
  median_.value->setText(qtext(FlowScreen::medianCycleTimeTile(figures)));
  p85_.value->setText(qtext(FlowScreen::p85CycleTimeTile(figures)));
  inProgress_.value->setText(qtext(FlowScreen::inProgressTile(figures)));
  inProgress_.caption->setText(qtext(FlowScreen::inProgressCaption(figures)));
}

}  // namespace orvane::app
