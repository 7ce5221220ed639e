#pragma once

#include <QObject>
#include <QString>
#include <optional>
#include <vector>

#include "core/model/Uuid.h"

class QAction;
class QMenu;
class QWidget;

namespace orvane::app {

class AppContext;
class BoardView;

// What can be done to the selected cards of the board: open, move to the
// previous or next column, move to any column, assign, archive and delete.
// The same actions serve the card context menu, the window's Ticket menu and
// the keyboard (their shortcuts work while a card list has the focus). An
// action on several cards is one step of Undo; an action that cannot act on
// every selected card is disabled rather than answered with an alert.
class BoardCardActions : public QObject {
  Q_OBJECT

 public:
  BoardCardActions(AppContext& context, BoardView& board);

  QAction* openAction() const { return open_; }
  QAction* moveLeftAction() const { return moveLeft_; }
  QAction* moveRightAction() const { return moveRight_; }
  QAction* archiveAction() const { return archive_; }
  QAction* deleteAction() const { return delete_; }
  // The actions with a shortcut, to be added to every card list.
  std::vector<QAction*> keyboardActions() const;

  // Adds every action to `menu`, with "Move to column" (each column) and
  // "Assign" (each person, then "Unassigned") as submenus built for the
  // current selection.
  void fill(QMenu* menu);
  // Enables what can act on the current selection; call when it changes.
  void update();

  void moveBy(int offset);  // each card to its column's neighbour, at the bottom
  void moveTo(const Uuid& column);
  void assign(const std::optional<Uuid>& person);
  void archiveSelected();
  void confirmDelete();  // asks first

 signals:
  void openTicketRequested(const orvane::Uuid& ticket);

 private:
  // Board positions (0 = first column) of the selected cards' columns.
  std::vector<int> selectedColumnPositions() const;
  QString label(const QString& one, const QString& many) const;

  AppContext& context_;
  BoardView& board_;
  QAction* open_;
  QAction* moveLeft_;
  QAction* moveRight_;
  QAction* archive_;
  QAction* delete_;
};

}  // namespace orvane::app
