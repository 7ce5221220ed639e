#pragma once

#include <QPoint>
#include <unordered_map>
#include <vector>

#include "app/shell/ProjectViewBase.h"
#include "core/board/BoardTypes.h"
#include "core/filter/TicketFilter.h"

class QHBoxLayout;
class QMenu;
class QPushButton;

namespace orvane::app {

class BoardCardActions;
class BoardColumnWidget;

// The board: the project's columns side by side with their cards, scrolling
// sideways when they are wider than the window, with "Add column…" always in
// sight above them. Cards are moved by drag and drop (between and within
// columns) or from the keyboard and the card menu, always through the
// service's moveTicket; a move over a WIP limit is allowed and the column
// warns. Cards can be selected across columns (Ctrl or Shift and click); a
// plain click selects one card only. The selection outlives reloads.
class BoardView : public ProjectViewBase {
  Q_OBJECT

 public:
  BoardView(AppContext& context, QWidget* parent);

  void setFilter(const TicketFilter& filter);
  // The drop handler: moves `tickets` (in this order) before view row `row`
  // of `column`'s card list (-1: after its last shown card), as one step.
  // Returns whether the move was made.
  bool moveCards(const std::vector<Uuid>& tickets, const Uuid& column, int row);
  bool moveCard(const Uuid& ticket, const Uuid& column, int row) { return moveCards({ticket}, column, row); }
  const std::vector<BoardColumnWidget*>& columnWidgets() const { return columns_; }
  QPushButton* addColumnButton() const { return addColumn_; }
  void addColumn();

  // The selected cards in board order: column by column, top to bottom.
  std::vector<Uuid> selectedTickets() const;
  void selectTickets(const std::vector<Uuid>& tickets);
  BoardCardActions* cardActions() const { return actions_; }
  // The card menu for the selection, shown at `globalPos`; it deletes itself
  // when closed.
  QMenu* showCardMenu(const QPoint& globalPos);
  // The snapshot the board shows; null without a project.
  std::shared_ptr<const ProjectSnapshot> boardSnapshot() { return snapshot(); }

 signals:
  void openTicketRequested(const orvane::Uuid& ticket);
  void selectionChanged();

 protected:
  void reload() override;
  void showEvent(QShowEvent* event) override;

 private:
  struct Placement {
    Uuid column;
    std::int64_t position = 0;
  };
  // A new selection in `source` made without Ctrl or Shift replaces the
  // selection in every other column.
  void columnSelectionChanged(BoardColumnWidget* source);
  // The column's active tickets in board order, as last loaded.
  std::vector<Uuid> activeOrder(const Uuid& column) const;

  TicketFilter filter_;
  QWidget* strip_;
  QHBoxLayout* stripLayout_;
  QPushButton* addColumn_;
  BoardCardActions* actions_;
  std::vector<BoardColumnWidget*> columns_;
  std::unordered_map<Uuid, Placement> placements_;  // every active ticket, as last loaded
  bool selecting_ = false;
};

}  // namespace orvane::app
