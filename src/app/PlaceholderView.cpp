#include "app/PlaceholderView.h"

#include <QLabel>
#include <QVBoxLayout>

namespace orvane::app {

PlaceholderView::PlaceholderView(AppContext& context, const QString& heading, const QString& promise, QWidget* parent)
    : ProjectViewBase(context, parent) {
  auto* title = new QLabel(heading, this);
  QFont font = title->font();
  font.setPointSizeF(font.pointSizeF() * 1.5);
  font.setBold(true);
  title->setFont(font);
  title->setAlignment(Qt::AlignCenter);
  auto* text = new QLabel(promise, this);
  text->setObjectName(QStringLiteral("placeholderText"));
  text->setWordWrap(true);
  text->setAlignment(Qt::AlignCenter);
  // A fixed width and the height that width needs: a layout alignment would
  // otherwise squeeze the wrapped lines.
  text->setFixedWidth(560);
  text->setMinimumHeight(text->heightForWidth(560));

  auto* layout = new QVBoxLayout(this);
  layout->addStretch();
  layout->addWidget(title);
  layout->addWidget(text, 0, Qt::AlignHCenter);
  layout->addStretch();
}

}  // namespace orvane::app
