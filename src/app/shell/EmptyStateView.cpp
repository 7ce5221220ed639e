#include "app/shell/EmptyStateView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace orvane::app {

QString EmptyStateView::explanation() {
  return QStringLiteral(
      "Start blank and import tickets from a CSV or the Excel template with Import in the toolbar, explore the demo "
      "project, or restore a backup.");
}

EmptyStateView::EmptyStateView(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("emptyState"));
  auto* heading = new QLabel(QStringLiteral("No projects yet"), this);
  QFont headingFont = heading->font();
  headingFont.setPointSizeF(headingFont.pointSizeF() * 1.6);
  headingFont.setBold(true);
  heading->setFont(headingFont);
  heading->setAlignment(Qt::AlignCenter);

  auto* text = new QLabel(explanation(), this);
  text->setObjectName(QStringLiteral("emptyStateText"));
  text->setWordWrap(true);
  text->setAlignment(Qt::AlignCenter);
  // A fixed width and the height that width needs: a layout alignment would
  // otherwise squeeze the wrapped lines.
  text->setFixedWidth(520);
  text->setMinimumHeight(text->heightForWidth(520));

  auto* blank = new QPushButton(QStringLiteral("Start a blank project"), this);
  auto* demo = new QPushButton(QStringLiteral("Load the demo project"), this);
  auto* restore = new QPushButton(QStringLiteral("Restore from a backup…"), this);
  blank->setObjectName(QStringLiteral("startBlank"));
  demo->setObjectName(QStringLiteral("loadDemo"));
  restore->setObjectName(QStringLiteral("restoreBackup"));
  blank->setDefault(true);
  connect(blank, &QPushButton::clicked, this, &EmptyStateView::startBlankRequested);
  connect(demo, &QPushButton::clicked, this, &EmptyStateView::loadDemoRequested);
  connect(restore, &QPushButton::clicked, this, &EmptyStateView::restoreRequested);

  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(blank);
  buttons->addWidget(demo);
  buttons->addWidget(restore);
  buttons->addStretch();

  auto* layout = new QVBoxLayout(this);
  layout->addStretch();
  layout->addWidget(heading);
  layout->addSpacing(8);
  layout->addWidget(text, 0, Qt::AlignHCenter);
  layout->addSpacing(16);
  layout->addLayout(buttons);
  layout->addStretch();
}

}  // namespace orvane::app
