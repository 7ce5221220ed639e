#include "app/ticket/TicketFilesTab.h"

#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QPushButton>
#include <QTreeWidget>
#include <QUrl>
#include <QVBoxLayout>
#include <algorithm>

#include "app/shell/AppContext.h"
#include "app/widgets/Alert.h"
#include "app/widgets/ItemIds.h"
#include "core/board/BoardService.h"

namespace orvane::app {

TicketFilesTab::TicketFilesTab(AppContext& context, const Uuid& ticket, TicketChange change, QWidget* parent)
    : TicketTab(context, ticket, std::move(change), parent) {
  files_ = new QTreeWidget(this);
  files_->setObjectName(QStringLiteral("files"));
  files_->setHeaderLabels({QStringLiteral("File"), QStringLiteral("Where")});
  files_->setRootIsDecorated(false);
  connect(files_, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* item) {
    if (const auto id = idFrom(item->data(0, idRole))) openFile(*id);
  });

  auto* add = button(QStringLiteral("Add file…"), "addFile");
  auto* open = button(QStringLiteral("Open"), "openFile");
  auto* remove = button(QStringLiteral("Remove link"), "removeFile");
  connect(add, &QPushButton::clicked, this, [this] {
    const QString path = QFileDialog::getOpenFileName(this, QStringLiteral("Link a file"));
    if (!path.isEmpty()) addFile(path);
  });
  connect(open, &QPushButton::clicked, this, [this] {
    if (const auto id = selectedId(files_)) openFile(*id);
  });
  connect(remove, &QPushButton::clicked, this, [this] {
    // The record only: the file on disk stays where it is.
    if (const auto id = selectedId(files_))
      change_(QStringLiteral("Remove file link"), [&](BoardService& s) { s.removeFileLink(*id); });
  });

  offerWhileCurrent(open, files_);
  offerWhileCurrent(remove, files_);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(files_, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(add);
  buttons->addWidget(open);
  buttons->addStretch(1);
  buttons->addWidget(remove);
  layout->addLayout(buttons);
}

void TicketFilesTab::refill(const ProjectSnapshot& snapshot, const Ticket&) {
  files_->clear();
  for (const TicketFileLink& link : snapshot.fileLinks) {
    if (link.ticketId != ticket_) continue;
    auto* item = new QTreeWidgetItem(files_);
    const QString path = qText(link.path);
    item->setText(0, qText(link.name));
    item->setText(1, QFileInfo::exists(path) ? path : QStringLiteral("%1 (missing)").arg(path));
    item->setData(0, idRole, idData(link.id));
  }
}

void TicketFilesTab::addFile(const QString& path) {
  const std::string chosen = path.toStdString();
  change_(QStringLiteral("Link file"), [&](BoardService& s) { s.addFileLink(ticket_, chosen, context_.now()); });
}

void TicketFilesTab::openFile(const Uuid& fileLink) {
  if (!snapshot_) return;
  const auto link = std::find_if(snapshot_->fileLinks.begin(), snapshot_->fileLinks.end(),
                                 [&](const TicketFileLink& f) { return f.id == fileLink; });
  if (link == snapshot_->fileLinks.end()) return;
  const QString path = qText(link->path);
  // Linux keeps no bookmark that follows a moved file: the path is all there is.
  if (!QFileInfo::exists(path)) {
    showAlert(
        this,
        QStringLiteral("%1 is no longer at %2. It may have been moved or deleted.").arg(quoted(link->name), path));
    return;
  }
  QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

}  // namespace orvane::app
