#include "app/help/HelpWindow.h"

#include <QFile>
#include <QHBoxLayout>
#include <QListWidget>
#include <QRegularExpression>
#include <QSplitter>
#include <QTextBrowser>

#include "app/AppResources.h"

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
  contents_ = new QListWidget(this);
  contents_->setObjectName(QStringLiteral("helpContents"));
  // The table of contents comes from the text's own sections, so a section
  // added to the text is listed without touching this code.
  static const QRegularExpression section(QStringLiteral("<h2><a name=\"([^\"]+)\"></a>([^<]+)</h2>"));
  for (auto match = section.globalMatch(text); match.hasNext();) {
    const QRegularExpressionMatch found = match.next();
    auto* item = new QListWidgetItem(found.captured(2), contents_);
    item->setData(anchorRole, found.captured(1));
  }

  // Wide enough for the longest section title, never scrolled sideways.
  contents_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  contents_->setMinimumWidth(contents_->sizeHintForColumn(0) + 2 * contents_->frameWidth() + 16);

  browser_ = new QTextBrowser(this);
  browser_->setObjectName(QStringLiteral("helpText"));
  browser_->setOpenExternalLinks(true);
  browser_->setHtml(text);

  connect(contents_, &QListWidget::currentItemChanged, this, [this](QListWidgetItem* item) {
    if (item != nullptr) browser_->scrollToAnchor(item->data(anchorRole).toString());
  });

  auto* splitter = new QSplitter(this);
  splitter->addWidget(contents_);
  splitter->addWidget(browser_);
  splitter->setStretchFactor(1, 1);
  splitter->setSizes({contents_->minimumWidth(), 900 - contents_->minimumWidth()});
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(splitter);
  resize(900, 640);
}

void HelpWindow::showSection(const QString& anchor) {
  for (int row = 0; row < contents_->count(); ++row) {
    if (contents_->item(row)->data(anchorRole).toString() == anchor) {
      contents_->setCurrentRow(row);
      browser_->scrollToAnchor(anchor);
      return;
    }
  }
}

}  // namespace orvane::app
