#pragma once

#include "app/ticket/TicketTab.h"

class QTreeWidget;

namespace orvane::app {

// Files linked to the ticket by path. Only the record is kept: adding or
// removing a link never touches the file, and a file no longer at its path
// is marked missing.
class TicketFilesTab : public TicketTab {
 public:
  TicketFilesTab(AppContext& context, const Uuid& ticket, TicketChange change, QWidget* parent);

  // Links the file at `path` (what "Add file…" does after its open panel).
  void addFile(const QString& path);
  // Opens a linked file with the desktop's program for it; a warning when
  // the file is no longer where it was linked.
  void openFile(const Uuid& fileLink);

 protected:
  void refill(const ProjectSnapshot& snapshot, const Ticket& ticket) override;

 private:
  QTreeWidget* files_ = nullptr;
};

}  // namespace orvane::app
