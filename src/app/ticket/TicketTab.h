#pragma once

#include <QString>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "core/model/ProjectSnapshot.h"

class QAbstractItemView;
class QPushButton;
class QTreeWidget;

namespace orvane {
class BoardService;
}

namespace orvane::app {

class AppContext;

// One undoable step taken on behalf of the ticket window; false (after the
// alert) when the service refused it.
using TicketChange = std::function<bool(const QString& label, const std::function<void(BoardService&)>& step)>;

// A page of the ticket window listing one kind of record that belongs to the
// ticket. The window fills every page from one snapshot after each change to
// the store, and a page changes the store only through `change`, so each
// edit is one undoable step and a refusal refills the page with what is
// stored.
class TicketTab : public QWidget {
 public:
  TicketTab(AppContext& context, const Uuid& ticket, TicketChange change, QWidget* parent);

  // Shows what `snapshot` holds for `ticket`, which it contains.
  void fill(const std::shared_ptr<const ProjectSnapshot>& snapshot, const Ticket& ticket);

 protected:
  virtual void refill(const ProjectSnapshot& snapshot, const Ticket& ticket) = 0;
  QPushButton* button(const QString& text, const char* name);
  // Keeps `button` enabled only while `canAct` holds, so a button that
  // cannot act is greyed out instead of answered with an alert or nothing.
  // Asked again after every fill and by refreshOffers().
  void offerWhen(QPushButton* button, std::function<bool()> canAct);
  // offerWhen for a button that acts on the current row of `view`.
  void offerWhileCurrent(QPushButton* button, QAbstractItemView* view);
  void refreshOffers();

  AppContext& context_;
  const Uuid ticket_;
  const TicketChange change_;
  std::shared_ptr<const ProjectSnapshot> snapshot_;  // as last filled

 private:
  std::vector<std::pair<QPushButton*, std::function<bool()>>> offers_;
};

// A record name as shown inside a sentence: “Name”.
QString quoted(const std::string& text);
// The record id of the tree's current row, if there is one.
std::optional<Uuid> selectedId(const QTreeWidget* tree);

}  // namespace orvane::app
