#include "app/help/HelpWindow.h"

#include <QFile>
#include <QHBoxLayout>
#include <QRegularExpression>
#include <QSplitter>
#include <QTextBrowser>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>

#include "app/shell/AppResources.h"

namespace orvane::app {

namespace {

constexpr int anchorRole = Qt::UserRole;

}  // namespace

QString HelpWindow::html() {
  loadAppResources();
  QFile file(QStringLiteral(":/orvane/help.html"));
  if (!file.open(QIODevice::ReadOnly)) return {};
  return QString::fromUtf8(file.readAll());
}

HelpWindow::HelpWindow(QWidget* parent) : QWidget(parent, Qt::Window) {
  setObjectName(QStringLiteral("helpWindow"));
  setWindowTitle(QStringLiteral("Orvane Help"));

  const QString text = html();
  contents_ = new QTreeWidget(this);
  contents_->setObjectName(QStringLiteral("helpContents"));
  contents_->setHeaderHidden(true);
  contents_->setRootIsDecorated(false);
  contents_->setIndentation(14);
  // The table of contents comes from the text's own headings, so a section
  // added to the text is listed without touching this code.
  static const QRegularExpression heading(QStringLiteral("<h([23])><a name=\"([^\"]+)\"></a>([^<]+)</h[23]>"));
  QTreeWidgetItem* section = nullptr;
  for (auto match = heading.globalMatch(text); match.hasNext();) {
    const QRegularExpressionMatch found = match.next();
    const bool part = found.captured(1) == QLatin1String("3") && section != nullptr;
    auto* item = part ? new QTreeWidgetItem(section) : new QTreeWidgetItem(contents_);
    item->setText(0, found.captured(3));
    item->setData(0, anchorRole, found.captured(2));
    if (!part) section = item;
  }
  contents_->expandAll();
  // Wide enough for the longest title, never scrolled sideways.
  contents_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  contents_->resizeColumnToContents(0);
  contents_->setMinimumWidth(contents_->columnWidth(0) + 2 * contents_->frameWidth() + 8);

  browser_ = new QTextBrowser(this);
  browser_->setObjectName(QStringLiteral("helpText"));
  browser_->setOpenExternalLinks(true);
  browser_->setHtml(text);

  connect(contents_, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
    if (item != nullptr) browser_->scrollToAnchor(item->data(0, anchorRole).toString());
  });

  auto* splitter = new QSplitter(this);
  splitter->addWidget(contents_);
  splitter->addWidget(browser_);
  splitter->setStretchFactor(1, 1);
  splitter->setSizes({contents_->minimumWidth(), 960 - contents_->minimumWidth()});
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(splitter);
  resize(960, 640);
}

void HelpWindow::showSection(const QString& anchor) {
  for (QTreeWidgetItemIterator it(contents_); *it != nullptr; ++it) {
    if ((*it)->data(0, anchorRole).toString() == anchor) {
      contents_->setCurrentItem(*it);
      browser_->scrollToAnchor(anchor);
      return;
    }
  }
}

}  // namespace orvane::app
