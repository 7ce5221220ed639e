#include "app/ticket/TicketCommentsTab.h"

#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "app/shell/AppContext.h"
#include "app/widgets/ItemIds.h"
#include "core/board/BoardService.h"
#include "engine/LocalCivilDate.h"

namespace orvane::app {

TicketCommentsTab::TicketCommentsTab(AppContext& context, const Uuid& ticket, TicketChange change, QWidget* parent)
    : TicketTab(context, ticket, std::move(change), parent) {
  comments_ = new QTreeWidget(this);
  comments_->setObjectName(QStringLiteral("comments"));
  comments_->setHeaderLabels({QStringLiteral("Written"), QStringLiteral("Comment")});
  comments_->setRootIsDecorated(false);
  comments_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
  connect(comments_, &QTreeWidget::itemChanged, this, &TicketCommentsTab::edited);

  newComment_ = new QPlainTextEdit(this);
  newComment_->setObjectName(QStringLiteral("newComment"));
  newComment_->setPlaceholderText(QStringLiteral("Write a comment"));
  newComment_->setMaximumHeight(70);
  auto* add = button(QStringLiteral("Add comment"), "addComment");
  auto* remove = button(QStringLiteral("Delete comment"), "deleteComment");
  connect(add, &QPushButton::clicked, this, [this] {
    const std::string body = newComment_->toPlainText().toStdString();
    if (change_(QStringLiteral("Add comment"), [&](BoardService& s) { s.addComment(ticket_, body, context_.now()); }))
      newComment_->clear();
  });
  connect(remove, &QPushButton::clicked, this, [this] {
    if (const auto comment = selectedId(comments_))
      change_(QStringLiteral("Delete comment"), [&](BoardService& s) { s.deleteComment(*comment); });
  });
  offerWhen(add, [this] { return !newComment_->toPlainText().trimmed().isEmpty(); });
  connect(newComment_, &QPlainTextEdit::textChanged, this, &TicketCommentsTab::refreshOffers);
  offerWhileCurrent(remove, comments_);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(comments_, 1);
  layout->addWidget(newComment_);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(add);
  buttons->addStretch(1);
  buttons->addWidget(remove);
  layout->addLayout(buttons);
}

void TicketCommentsTab::refill(const ProjectSnapshot& snapshot, const Ticket&) {
  const QSignalBlocker blocker(comments_);
  const std::optional<Uuid> selected = selectedId(comments_);
  comments_->clear();
  std::vector<const TicketComment*> comments;
  for (const TicketComment& comment : snapshot.comments)
    if (comment.ticketId == ticket_) comments.push_back(&comment);
  std::stable_sort(comments.begin(), comments.end(),
                   [](const TicketComment* a, const TicketComment* b) { return a->createdAt < b->createdAt; });
  for (const TicketComment* comment : comments) {
    auto* item = new QTreeWidgetItem(comments_);
    item->setText(0, qText(civilDateFromLocal(comment->createdAt, context_.calendar()).displayText()));
    item->setText(1, qText(comment->body));
    item->setData(0, idRole, idData(comment->id));
    item->setFlags(item->flags() | Qt::ItemIsEditable);
    if (selected == comment->id) comments_->setCurrentItem(item);
  }
}

void TicketCommentsTab::edited(QTreeWidgetItem* item, int column) {
  if (column != 1 || !snapshot_) return;
  const std::optional<Uuid> id = idFrom(item->data(0, idRole));
  if (!id) return;
  const std::string body = item->text(1).toStdString();
  const auto stored = std::find_if(snapshot_->comments.begin(), snapshot_->comments.end(),
                                   [&](const TicketComment& c) { return c.id == *id; });
  if (stored != snapshot_->comments.end() && stored->body == body) return;
  change_(QStringLiteral("Edit comment"), [&](BoardService& s) { s.editComment(*id, body); });
}

}  // namespace orvane::app
