#pragma once

#include <QWidget>

#include "core/metrics/FlowScreen.h"

class QLabel;

namespace orvane::app {

// The Flow screen's four tiles in a row: "Throughput", "Median cycle time",
// "P85 cycle time" and "In progress", each a name, a large value and a
// caption, written as FlowScreen writes them. The value labels are named
// <tile>Value and the captions <tile>Caption (throughputTile, medianTile,
// p85Tile, inProgressTile).
class FlowTiles : public QWidget {
  Q_OBJECT

 public:
  explicit FlowTiles(QWidget* parent);

  void showFigures(const FlowScreen::Figures& figures);

 private:
  struct Tile {
    QLabel* value = nullptr;
    QLabel* caption = nullptr;
  };
  Tile addTile(const QString& name, const QString& title, const QString& caption);

  Tile throughput_;
  Tile median_;
  Tile p85_;
  Tile inProgress_;
};

}  // namespace orvane::app
