#include "app/flow/ChartCard.h"

#include <QLabel>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace orvane::app {

ChartCard::ChartCard(const QString& name, const QString& title, QWidget* chart, const QString& emptyText,
                     QWidget* parent)
    : QFrame(parent) {
  setObjectName(name);
  setFrameShape(QFrame::StyledPanel);
  column_ = new QVBoxLayout(this);
  column_->setContentsMargins(8, 6, 8, 6);
  column_->setSpacing(4);
  auto* heading = new QLabel(title, this);
  QFont bold = heading->font();
  bold.setBold(true);
  heading->setFont(bold);
  column_->addWidget(heading);
  pages_ = new QStackedWidget(this);
  chart->setParent(pages_);
  pages_->addWidget(chart);
  auto* empty = new QLabel(emptyText, pages_);
  empty->setObjectName(name + QStringLiteral("Empty"));
  empty->setAlignment(Qt::AlignCenter);
  empty->setWordWrap(true);
  empty->setStyleSheet(QStringLiteral("color: palette(mid);"));
  pages_->addWidget(empty);
  pages_->setMinimumHeight(chart->minimumHeight());
  column_->addWidget(pages_, 1);
}

void ChartCard::showEmpty(bool empty) { pages_->setCurrentIndex(empty ? 1 : 0); }

bool ChartCard::isEmptyShown() const { return pages_->currentIndex() == 1; }

void ChartCard::addBelow(QWidget* widget) { column_->addWidget(widget); }

}  // namespace orvane::app
