#pragma once

#include "app/ticket/TicketTab.h"

class QPlainTextEdit;
class QTreeWidget;
class QTreeWidgetItem;

namespace orvane::app {

// The ticket's comments, oldest first: add, edit in place, delete.
class TicketCommentsTab : public TicketTab {
 public:
  TicketCommentsTab(AppContext& context, const Uuid& ticket, TicketChange change, QWidget* parent);

 protected:
  void refill(const ProjectSnapshot& snapshot, const Ticket& ticket) override;

 private:
  void edited(QTreeWidgetItem* item, int column);

  QTreeWidget* comments_ = nullptr;
  QPlainTextEdit* newComment_ = nullptr;
};

}  // namespace orvane::app
