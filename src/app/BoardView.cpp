#include "app/BoardView.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>
#include <algorithm>
#include <unordered_set>

#include "app/AddColumnDialog.h"
#include "app/AppContext.h"
#include "app/BoardColumnModel.h"
#include "app/BoardColumnWidget.h"

namespace orvane::app {

BoardView::BoardView(AppContext& context, QWidget* parent) : ProjectViewBase(context, parent) {
  setObjectName(QStringLiteral("boardView"));
  auto* scroll = new QScrollArea(this);
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  strip_ = new QWidget(scroll);
  stripLayout_ = new QHBoxLayout(strip_);
  stripLayout_->setContentsMargins(8, 8, 8, 8);
  stripLayout_->setSpacing(8);
  addColumn_ = new QPushButton(QStringLiteral("Add column…"), strip_);
  addColumn_->setObjectName(QStringLiteral("addColumn"));
  connect(addColumn_, &QPushButton::clicked, this, &BoardView::addColumn);
  stripLayout_->addWidget(addColumn_, 0, Qt::AlignTop);
  stripLayout_->addStretch();
  scroll->setWidget(strip_);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(scroll);
}

void BoardView::setFilter(const TicketFilter& filter) {
  filter_ = filter;
  showProject(project());
}

void BoardView::reload() {
  placements_.clear();
  const std::shared_ptr<const ProjectSnapshot> snapshot = this->snapshot();
  const std::size_t wanted = snapshot ? snapshot->columns.size() : 0;
  while (columns_.size() > wanted) {
    // Later, not now: the column may be the one whose menu asked for this.
    columns_.back()->hide();
    columns_.back()->deleteLater();
    columns_.pop_back();
  }
  while (columns_.size() < wanted) {
    auto* column = new BoardColumnWidget(context_, strip_);
    stripLayout_->insertWidget(static_cast<int>(columns_.size()), column);
    connect(column, &BoardColumnWidget::moveRequested, this, &BoardView::moveCard, Qt::QueuedConnection);
    connect(column, &BoardColumnWidget::openTicketRequested, this, &BoardView::openTicketRequested);
    columns_.push_back(column);
  }
  addColumn_->setEnabled(snapshot != nullptr);
  if (!snapshot) return;

  // One pass over the tickets: group the active ones by column, in position.
  std::unordered_map<Uuid, std::vector<const Ticket*>> byColumn;
  for (const Ticket& ticket : snapshot->tickets) {
    if (ticket.isArchived() || !ticket.columnId) continue;
    byColumn[*ticket.columnId].push_back(&ticket);
    placements_[ticket.id] = {*ticket.columnId, ticket.position};
  }
  const std::vector<const Ticket*> shown = filter_.apply(snapshot->tickets, *snapshot);
  const std::unordered_set<const Ticket*> passes(shown.begin(), shown.end());
  const TicketCardFactory factory(*snapshot, context_.calendar(), context_.now());
  for (std::size_t i = 0; i < wanted; ++i) {
    const BoardColumn& column = snapshot->columns[i];
    std::vector<const Ticket*>& tickets = byColumn[column.id];
    std::sort(tickets.begin(), tickets.end(),
              [](const Ticket* a, const Ticket* b) { return a->position < b->position; });
    std::vector<TicketCard> cards;
    cards.reserve(tickets.size());
    for (const Ticket* ticket : tickets) {
      if (passes.count(ticket) != 0) cards.push_back(factory.card(*ticket));
    }
    columns_[i]->setColumn(column, wanted, std::move(cards), tickets.size());
  }
}

bool BoardView::moveCard(const Uuid& ticket, const Uuid& column, int row) {
  std::optional<std::int64_t> index;
  for (BoardColumnWidget* widget : columns_) {
    if (widget->model()->column() != column) continue;
    const auto placement = placements_.find(ticket);
    const bool sameColumn = placement != placements_.end() && placement->second.column == column;
    index =
        widget->model()->dropIndex(placement != placements_.end() ? placement->second.position : 0, sameColumn, row);
  }
  return context_.perform(
      QStringLiteral("Move ticket"),
      [&](BoardService& board) { board.moveTicket(ticket, column, index, context_.now()); }, this);
}

void BoardView::addColumn() {
  if (!project()) return;
  const auto shown = snapshot();
  auto* dialog = new AddColumnDialog(this, shown ? shown->columns : std::vector<BoardColumn>{});
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  const Uuid projectId = *project();
  connect(dialog, &QDialog::accepted, this, [this, dialog, projectId] {
    context_.perform(
        QStringLiteral("Add column"),
        [&](BoardService& board) {
          board.addColumn(projectId, dialog->name().toStdString(), dialog->type(), dialog->wipLimit());
        },
        this);
  });
  dialog->open();
}

}  // namespace orvane::app
