#include "app/flow/FlowHealthPanel.h"

#include <QLabel>
#include <QVBoxLayout>

#include "app/charts/FlowChartParts.h"
#include "core/accuracy/HistoryDepth.h"

namespace orvane::app {

FlowHealthPanel::FlowHealthPanel(QWidget* parent) : QFrame(parent) {
  setObjectName(QStringLiteral("flowHealthPanel"));
  setFrameShape(QFrame::StyledPanel);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(12, 8, 12, 8);
  column->setSpacing(4);
  auto* heading = new QLabel(QStringLiteral("Flow health"), this);
  QFont bold = heading->font();
  bold.setBold(true);
  heading->setFont(bold);
  trend_ = new QLabel(this);
  trend_->setObjectName(QStringLiteral("healthTrend"));
  auto* top = new QHBoxLayout;
  top->addWidget(heading);
  top->addStretch(1);
  top->addWidget(trend_);
  column->addLayout(top);
  notes_ = new QVBoxLayout;
  notes_->setSpacing(3);
  column->addLayout(notes_);
  column->addStretch(1);
}

void FlowHealthPanel::showHealth(const FlowHealth& health) {
  trend_->setText(QStringLiteral("Throughput: <b>%1</b>").arg(qtext(std::string(displayLabel(health.trend)))));
  while (QLayoutItem* item = notes_->takeAt(0)) {
    delete item->widget();
    delete item;
  }
  // The notes come as throughput, cycle time, ageing, one per WIP breach,
  // then the caution when real history is short.
  const std::size_t firstBreach = 3;
  const std::size_t breachesEnd = firstBreach + health.wipBreaches.size();
  for (std::size_t i = 0; i < health.notes.size(); ++i) {
    auto* note = new QLabel(qtext(health.notes[i]), this);
    note->setObjectName(QStringLiteral("healthNote%1").arg(i));
    note->setWordWrap(true);
    note->setTextInteractionFlags(Qt::TextSelectableByMouse);
    if (i >= firstBreach && i < breachesEnd) {
      note->setStyleSheet(QStringLiteral("color: #b3261e; font-weight: bold;"));
    } else if (i >= breachesEnd) {
      note->setStyleSheet(QStringLiteral("color: #a06800;"));
    }
    notes_->addWidget(note);
  }
}

}  // namespace orvane::app
