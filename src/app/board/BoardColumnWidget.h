#pragma once

#include <QFrame>
#include <vector>

#include "app/board/TicketCard.h"
#include "core/model/BoardColumn.h"

class QAction;
class QLabel;
class QLineEdit;
class QListView;
class QToolButton;

namespace orvane::app {

class AppContext;
class BoardColumnModel;

// One column of the board: its header (name, type, count against the WIP
// limit, and "Over the WIP limit" when exceeded), its cards, a quick-add
// field and a menu to rename, limit, reorder or delete the column.
class BoardColumnWidget : public QFrame {
  Q_OBJECT

 public:
  static constexpr int columnWidth = 256;

  BoardColumnWidget(AppContext& context, QWidget* parent);

  // `activeCount` is every active ticket of the column, shown or not.
  void setColumn(const BoardColumn& column, std::size_t columnCount, std::vector<TicketCard> cards,
                 std::size_t activeCount);
  BoardColumnModel* model() const { return model_; }
  QListView* list() const { return list_; }
  QLineEdit* quickAdd() const { return quickAdd_; }
  bool showsWipWarning() const;
  QString countText() const;

 signals:
  void moveRequested(const std::vector<orvane::Uuid>& tickets, const orvane::Uuid& column, int row);
  void openTicketRequested(const orvane::Uuid& ticket);
  void cardMenuRequested(const QPoint& globalPos);

 private:
  void addTicket();
  void rename();
  void editLimit();
  void moveBy(int offset);
  void remove();

  AppContext& context_;
  BoardColumn column_;
  std::size_t columnCount_ = 0;
  QLabel* name_;
  QLabel* type_;
  QLabel* count_;
  QLabel* warning_;
  QToolButton* menuButton_;
  QAction* moveLeft_;
  QAction* moveRight_;
  QListView* list_;
  BoardColumnModel* model_;
  QLineEdit* quickAdd_;
};

}  // namespace orvane::app
