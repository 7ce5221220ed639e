#pragma once

#include "app/ticket/TicketTab.h"

class QLineEdit;
class QListWidget;
class QListWidgetItem;

namespace orvane::app {

// The ticket's checklist in its order: add, tick, rename in place, move up
// and down, delete.
class TicketChecklistTab : public TicketTab {
 public:
  TicketChecklistTab(AppContext& context, const Uuid& ticket, TicketChange change, QWidget* parent);

 protected:
  void refill(const ProjectSnapshot& snapshot, const Ticket& ticket) override;

 private:
  void edited(QListWidgetItem* item);
  void moveCurrent(int by);

  QListWidget* checklist_ = nullptr;
  QLineEdit* newItem_ = nullptr;
};

}  // namespace orvane::app
