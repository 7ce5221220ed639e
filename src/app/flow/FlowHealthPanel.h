#pragma once

#include <QFrame>

#include "core/accuracy/FlowHealth.h"

class QLabel;
class QVBoxLayout;

namespace orvane::app {

// The flow-health verdict beside the tiles: the throughput trend's label
// and every note of FlowHealth in order, WIP breaches in red and the caution
// on short history in amber. Note labels are named healthNote0, healthNote1...
class FlowHealthPanel : public QFrame {
  Q_OBJECT

 public:
  explicit FlowHealthPanel(QWidget* parent);

  void showHealth(const FlowHealth& health);

 private:
  QLabel* trend_ = nullptr;
  QVBoxLayout* notes_ = nullptr;
};

}  // namespace orvane::app
