#include "app/ticket/TicketTab.h"

#include <QAbstractItemView>
#include <QItemSelectionModel>
#include <QPushButton>
#include <QTreeWidget>
#include <utility>

#include "app/widgets/ItemIds.h"

namespace orvane::app {

TicketTab::TicketTab(AppContext& context, const Uuid& ticket, TicketChange change, QWidget* parent)
    : QWidget(parent), context_(context), ticket_(ticket), change_(std::move(change)) {}

void TicketTab::fill(const std::shared_ptr<const ProjectSnapshot>& snapshot, const Ticket& ticket) {
  snapshot_ = snapshot;
  refill(*snapshot, ticket);
  refreshOffers();
}

QPushButton* TicketTab::button(const QString& text, const char* name) {
  auto* b = new QPushButton(text, this);
  b->setObjectName(QLatin1String(name));
  return b;
}

void TicketTab::offerWhen(QPushButton* button, std::function<bool()> canAct) {
  offers_.emplace_back(button, std::move(canAct));
  refreshOffers();
}

void TicketTab::offerWhileCurrent(QPushButton* button, QAbstractItemView* view) {
  offerWhen(button, [view] { return view->currentIndex().isValid(); });
  // The selection model outlives the view's clear() and keeps signalling
  // while the view's own signals are blocked during a refill.
  connect(view->selectionModel(), &QItemSelectionModel::currentChanged, this, &TicketTab::refreshOffers);
}

void TicketTab::refreshOffers() {
  for (const auto& [button, canAct] : offers_) button->setEnabled(canAct());
}

QString quoted(const std::string& text) { return QStringLiteral("“%1”").arg(qText(text)); }

std::optional<Uuid> selectedId(const QTreeWidget* tree) {
  const QTreeWidgetItem* item = tree->currentItem();
  return item ? idFrom(item->data(0, idRole)) : std::nullopt;
}

}  // namespace orvane::app
