#include "app/TicketTab.h"

#include <QPushButton>
#include <QTreeWidget>
#include <utility>

#include "app/ItemIds.h"

namespace orvane::app {

TicketTab::TicketTab(AppContext& context, const Uuid& ticket, TicketChange change, QWidget* parent)
    : QWidget(parent), context_(context), ticket_(ticket), change_(std::move(change)) {}

void TicketTab::fill(const std::shared_ptr<const ProjectSnapshot>& snapshot, const Ticket& ticket) {
  snapshot_ = snapshot;
  refill(*snapshot, ticket);
}

QPushButton* TicketTab::button(const QString& text, const char* name) {
  auto* b = new QPushButton(text, this);
  b->setObjectName(QLatin1String(name));
  return b;
}

QString quoted(const std::string& text) { return QStringLiteral("“%1”").arg(qText(text)); }

std::optional<Uuid> selectedId(const QTreeWidget* tree) {
  const QTreeWidgetItem* item = tree->currentItem();
  return item ? idFrom(item->data(0, idRole)) : std::nullopt;
}

}  // namespace orvane::app
