#pragma once

#include "app/ticket/TicketTab.h"

class QListWidget;

namespace orvane::app {

// The ticket's moves across the board, oldest first, with each column named
// as it was called at the time of the move.
class TicketHistoryTab : public TicketTab {
 public:
  TicketHistoryTab(AppContext& context, const Uuid& ticket, QWidget* parent);

 protected:
  void refill(const ProjectSnapshot& snapshot, const Ticket& ticket) override;

 private:
  QListWidget* history_ = nullptr;
};

}  // namespace orvane::app
