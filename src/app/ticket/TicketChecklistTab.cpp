#include "app/ticket/TicketChecklistTab.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>

#include "app/widgets/ItemIds.h"
#include "core/board/BoardService.h"

namespace orvane::app {

TicketChecklistTab::TicketChecklistTab(AppContext& context, const Uuid& ticket, TicketChange change, QWidget* parent)
    : TicketTab(context, ticket, std::move(change), parent) {
  checklist_ = new QListWidget(this);
  checklist_->setObjectName(QStringLiteral("checklist"));
  checklist_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
  connect(checklist_, &QListWidget::itemChanged, this, &TicketChecklistTab::edited);

  newItem_ = new QLineEdit(this);
  newItem_->setObjectName(QStringLiteral("newChecklistItem"));
  newItem_->setPlaceholderText(QStringLiteral("Add an item"));
  auto* add = button(QStringLiteral("Add"), "addChecklistItem");
  auto* up = button(QStringLiteral("Move up"), "checklistUp");
  auto* down = button(QStringLiteral("Move down"), "checklistDown");
  auto* remove = button(QStringLiteral("Delete item"), "deleteChecklistItem");
  const auto addItem = [this] {
    if (newItem_->text().trimmed().isEmpty()) return;
    const std::string title = newItem_->text().toStdString();
    if (change_(QStringLiteral("Add checklist item"), [&](BoardService& s) { s.addChecklistItem(ticket_, title); }))
      newItem_->clear();
  };
  connect(add, &QPushButton::clicked, this, addItem);
  connect(newItem_, &QLineEdit::returnPressed, this, addItem);
  connect(up, &QPushButton::clicked, this, [this] { moveCurrent(-1); });
  connect(down, &QPushButton::clicked, this, [this] { moveCurrent(+1); });
  connect(remove, &QPushButton::clicked, this, [this] {
    const QListWidgetItem* item = checklist_->currentItem();
    if (const auto id = item ? idFrom(item->data(idRole)) : std::nullopt)
      change_(QStringLiteral("Delete checklist item"), [&](BoardService& s) { s.deleteChecklistItem(*id); });
  });
  // An empty title is not an item yet: Add waits for text rather than
  // answering with the service's refusal.
  offerWhen(add, [this] { return !newItem_->text().trimmed().isEmpty(); });
  connect(newItem_, &QLineEdit::textChanged, this, &TicketChecklistTab::refreshOffers);
  offerWhileCurrent(remove, checklist_);
  offerWhen(up, [this] { return checklist_->currentRow() > 0; });
  offerWhen(down, [this] {
    const int row = checklist_->currentRow();
    return row >= 0 && row + 1 < checklist_->count();
  });

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(checklist_, 1);
  auto* adding = new QHBoxLayout;
  adding->addWidget(newItem_, 1);
  adding->addWidget(add);
  layout->addLayout(adding);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(up);
  buttons->addWidget(down);
  buttons->addStretch(1);
  buttons->addWidget(remove);
  layout->addLayout(buttons);
}

void TicketChecklistTab::refill(const ProjectSnapshot& snapshot, const Ticket&) {
  const QSignalBlocker blocker(checklist_);
  const QListWidgetItem* currentItem = checklist_->currentItem();
  const std::optional<Uuid> selected = currentItem ? idFrom(currentItem->data(idRole)) : std::nullopt;
  checklist_->clear();
  std::vector<const ChecklistItem*> items;
  for (const ChecklistItem& item : snapshot.checklistItems)
    if (item.ticketId == ticket_) items.push_back(&item);
  std::stable_sort(items.begin(), items.end(),
                   [](const ChecklistItem* a, const ChecklistItem* b) { return a->position < b->position; });
  for (const ChecklistItem* item : items) {
    auto* row = new QListWidgetItem(qText(item->title), checklist_);
    row->setData(idRole, idData(item->id));
    row->setFlags(row->flags() | Qt::ItemIsEditable | Qt::ItemIsUserCheckable);
    row->setCheckState(item->isDone ? Qt::Checked : Qt::Unchecked);
    if (selected == item->id) checklist_->setCurrentItem(row);
  }
}

void TicketChecklistTab::edited(QListWidgetItem* item) {
  const std::optional<Uuid> id = idFrom(item->data(idRole));
  if (!id || !snapshot_) return;
  const auto stored = std::find_if(snapshot_->checklistItems.begin(), snapshot_->checklistItems.end(),
                                   [&](const ChecklistItem& c) { return c.id == *id; });
  if (stored == snapshot_->checklistItems.end()) return;
  const bool done = item->checkState() == Qt::Checked;
  const std::string title = item->text().toStdString();
  if (done != stored->isDone) {
    change_(done ? QStringLiteral("Tick checklist item") : QStringLiteral("Untick checklist item"),
            [&](BoardService& s) { s.setChecklistItem(*id, done); });
  } else if (title != stored->title) {
    change_(QStringLiteral("Rename checklist item"), [&](BoardService& s) { s.renameChecklistItem(*id, title); });
  }
}

void TicketChecklistTab::moveCurrent(int by) {
  const int row = checklist_->currentRow();
  const QListWidgetItem* item = checklist_->currentItem();
  const std::optional<Uuid> id = item ? idFrom(item->data(idRole)) : std::nullopt;
  if (!id || row + by < 0 || row + by >= checklist_->count()) return;
  change_(QStringLiteral("Reorder checklist"), [&](BoardService& s) { s.moveChecklistItem(*id, row + by); });
}

}  // namespace orvane::app
