#include "app/board/BoardView.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>
#include <algorithm>
#include <unordered_set>

#include "app/board/AddColumnDialog.h"
#include "app/board/BoardCardActions.h"
#include "app/board/BoardColumnModel.h"
#include "app/board/BoardColumnWidget.h"
#include "app/shell/AppContext.h"

namespace orvane::app {

BoardView::BoardView(AppContext& context, QWidget* parent) : ProjectViewBase(context, parent) {
  setObjectName(QStringLiteral("boardView"));
  actions_ = new BoardCardActions(context_, *this);
  connect(actions_, &BoardCardActions::openTicketRequested, this, &BoardView::openTicketRequested);
  connect(this, &BoardView::selectionChanged, actions_, &BoardCardActions::update);

  // Outside the scrolling strip, so it stays in sight however many columns
  // the board has.
  addColumn_ = new QPushButton(QStringLiteral("Add column…"), this);
  addColumn_->setObjectName(QStringLiteral("addColumn"));
  connect(addColumn_, &QPushButton::clicked, this, &BoardView::addColumn);
  auto* header = new QHBoxLayout;
  header->setContentsMargins(8, 6, 8, 0);
  header->addStretch();
  header->addWidget(addColumn_);

  auto* scroll = new QScrollArea(this);
  scroll->setObjectName(QStringLiteral("boardScroll"));
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  strip_ = new QWidget(scroll);
  stripLayout_ = new QHBoxLayout(strip_);
  stripLayout_->setContentsMargins(8, 8, 8, 8);
  stripLayout_->setSpacing(8);
  stripLayout_->addStretch();
  scroll->setWidget(strip_);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addLayout(header);
  layout->addWidget(scroll, 1);
}

void BoardView::showEvent(QShowEvent* event) {
  ProjectViewBase::showEvent(event);
  // Another view's Ticket menu may have switched the card actions off.
  actions_->update();
}

void BoardView::setFilter(const TicketFilter& filter) {
  filter_ = filter;
  showProject(project());
}

void BoardView::reload() {
  const std::vector<Uuid> keep = selectedTickets();
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
    connect(column, &BoardColumnWidget::moveRequested, this, &BoardView::moveCards, Qt::QueuedConnection);
    connect(column, &BoardColumnWidget::openTicketRequested, this, &BoardView::openTicketRequested);
    connect(column, &BoardColumnWidget::cardMenuRequested, this, &BoardView::showCardMenu);
    connect(column->list()->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this, column] { columnSelectionChanged(column); });
    // A click on a card that was already selected changes nothing in its
    // own list, but still means "this card only".
    connect(column->list(), &QAbstractItemView::clicked, this, [this, column] { columnSelectionChanged(column); });
    for (QAction* action : actions_->keyboardActions()) column->list()->addAction(action);
    columns_.push_back(column);
  }
  addColumn_->setEnabled(snapshot != nullptr);
  if (snapshot) {
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
    selecting_ = true;
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
    selecting_ = false;
  }
  // The cards that are still on the board stay selected, wherever they went,
  // and a card list that had the focus hands it on to the list they are in,
  // so the keyboard can walk a card across the board.
  QWidget* focus = QApplication::focusWidget();
  const bool listHadFocus =
      std::any_of(columns_.begin(), columns_.end(), [focus](BoardColumnWidget* c) { return c->list() == focus; });
  selectTickets(keep);
  if (listHadFocus && !keep.empty()) {
    for (BoardColumnWidget* column : columns_) {
      if (column->model()->rowOf(keep.front()) >= 0) {
        column->list()->setFocus();
        break;
      }
    }
  }
}

std::vector<Uuid> BoardView::selectedTickets() const {
  std::vector<Uuid> selected;
  for (BoardColumnWidget* column : columns_) {
    QModelIndexList rows = column->list()->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end(), [](const QModelIndex& a, const QModelIndex& b) { return a.row() < b.row(); });
    for (const QModelIndex& row : rows) {
      if (row.row() < column->model()->rowCount()) selected.push_back(column->model()->card(row.row()).id);
    }
  }
  return selected;
}

void BoardView::selectTickets(const std::vector<Uuid>& tickets) {
  selecting_ = true;
  for (BoardColumnWidget* column : columns_) {
    QItemSelectionModel* selection = column->list()->selectionModel();
    QItemSelection rows;
    for (const Uuid& ticket : tickets) {
      const int row = column->model()->rowOf(ticket);
      if (row >= 0) rows.select(column->model()->index(row), column->model()->index(row));
    }
    selection->select(rows, QItemSelectionModel::ClearAndSelect);
    if (!rows.isEmpty()) selection->setCurrentIndex(rows.indexes().front(), QItemSelectionModel::NoUpdate);
  }
  selecting_ = false;
  emit selectionChanged();
}

void BoardView::columnSelectionChanged(BoardColumnWidget* source) {
  if (selecting_) return;
  const bool adding = (QApplication::keyboardModifiers() & (Qt::ControlModifier | Qt::ShiftModifier)) != 0;
  if (!adding && source->list()->selectionModel()->hasSelection()) {
    selecting_ = true;
    for (BoardColumnWidget* column : columns_) {
      if (column != source) column->list()->selectionModel()->clearSelection();
    }
    selecting_ = false;
  }
  emit selectionChanged();
}

QMenu* BoardView::showCardMenu(const QPoint& globalPos) {
  auto* menu = new QMenu(this);
  menu->setObjectName(QStringLiteral("cardMenu"));
  menu->setAttribute(Qt::WA_DeleteOnClose);
  actions_->fill(menu);
  menu->popup(globalPos);
  return menu;
}

std::vector<Uuid> BoardView::activeOrder(const Uuid& column) const {
  std::vector<std::pair<std::int64_t, Uuid>> placed;
  for (const auto& [ticket, placement] : placements_) {
    if (placement.column == column) placed.emplace_back(placement.position, ticket);
  }
  std::sort(placed.begin(), placed.end());
  std::vector<Uuid> order;
  order.reserve(placed.size());
  for (const auto& entry : placed) order.push_back(entry.second);
  return order;
}

bool BoardView::moveCards(const std::vector<Uuid>& tickets, const Uuid& column, int row) {
  if (tickets.empty()) return false;
  const std::unordered_set<Uuid> moving(tickets.begin(), tickets.end());
  // The cards land before an anchor: the first card that stays, at or after
  // the drop row. With a filter on, the rows are a subset of the column, so
  // a drop after the last shown card lands before the next card of the
  // column, hidden or not. No anchor: the bottom.
  std::optional<Uuid> anchor;
  std::vector<Uuid> order = activeOrder(column);
  for (BoardColumnWidget* widget : columns_) {
    if (widget->model()->column() != column) continue;
    const BoardColumnModel* model = widget->model();
    const int count = model->rowCount();
    std::vector<Uuid>::const_iterator from = order.end();
    if (row >= 0 && row < count) {
      from = std::find(order.begin(), order.end(), model->card(row).id);
    } else if (count > 0) {
      from = std::find(order.begin(), order.end(), model->card(count - 1).id);
      if (from != order.end()) ++from;
    }
    for (auto it = from; it != order.end(); ++it) {
      if (moving.count(*it) == 0) {
        anchor = *it;
        break;
      }
    }
  }
  return context_.perform(
      tickets.size() == 1 ? QStringLiteral("Move ticket") : QStringLiteral("Move tickets"),
      [&](BoardService& board) {
        // The service's index counts the column without the moving card, as
        // this copy of the column does.
        for (const Uuid& ticket : tickets) {
          order.erase(std::remove(order.begin(), order.end(), ticket), order.end());
          const auto at = anchor ? std::find(order.begin(), order.end(), *anchor) : order.end();
          const auto index = static_cast<std::int64_t>(at - order.begin());
          order.insert(at, ticket);
          board.moveTicket(ticket, column, index, context_.now());
        }
      },
      this);
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
