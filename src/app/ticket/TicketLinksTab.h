#pragma once

#include "app/ticket/TicketTab.h"

class QComboBox;
class QTreeWidget;

namespace orvane::app {

// The ticket's links to other tickets, seen from this end ("Blocked by",
// "Blocks", "Related to"): add one to any other ticket on the board, remove
// one. The service's refusal of a blocking cycle reaches the user as its
// sentence.
class TicketLinksTab : public TicketTab {
 public:
  TicketLinksTab(AppContext& context, const Uuid& ticket, TicketChange change, QWidget* parent);

 protected:
  void refill(const ProjectSnapshot& snapshot, const Ticket& ticket) override;

 private:
  QTreeWidget* links_ = nullptr;
  QComboBox* linkKind_ = nullptr;
  QComboBox* linkTarget_ = nullptr;
};

}  // namespace orvane::app
