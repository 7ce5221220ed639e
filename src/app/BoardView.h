#pragma once

#include <unordered_map>
#include <vector>

#include "app/ProjectViewBase.h"
#include "core/board/BoardTypes.h"
#include "core/filter/TicketFilter.h"

class QHBoxLayout;
class QPushButton;

namespace orvane::app {

class BoardColumnWidget;

// The board: the project's columns side by side with their cards. Cards are
// moved by drag and drop (between and within columns) through the service's
// moveTicket; a move over a WIP limit is allowed and the column warns.
class BoardView : public ProjectViewBase {
  Q_OBJECT

 public:
  BoardView(AppContext& context, QWidget* parent);

  void setFilter(const TicketFilter& filter);
  // The drop handler: moves `ticket` before view row `row` of `column`'s
  // card list (-1: the end). Returns whether the move was made.
  bool moveCard(const Uuid& ticket, const Uuid& column, int row);
  const std::vector<BoardColumnWidget*>& columnWidgets() const { return columns_; }
  void addColumn();

 signals:
  void openTicketRequested(const orvane::Uuid& ticket);

 protected:
  void reload() override;

 private:
  struct Placement {
    Uuid column;
    std::int64_t position = 0;
  };

  TicketFilter filter_;
  QWidget* strip_;
  QHBoxLayout* stripLayout_;
  QPushButton* addColumn_;
  std::vector<BoardColumnWidget*> columns_;
  std::unordered_map<Uuid, Placement> placements_;  // every active ticket, as last loaded
};

}  // namespace orvane::app
