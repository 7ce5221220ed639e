#include "app/ticket/TicketHistoryTab.h"

#include <QListWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "app/shell/AppContext.h"
#include "app/widgets/ItemIds.h"
#include "engine/LocalCivilDate.h"

namespace orvane::app {

TicketHistoryTab::TicketHistoryTab(AppContext& context, const Uuid& ticket, QWidget* parent)
    : TicketTab(context, ticket, nullptr, parent) {
  history_ = new QListWidget(this);
  history_->setObjectName(QStringLiteral("history"));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(history_);
}

void TicketHistoryTab::refill(const ProjectSnapshot& snapshot, const Ticket&) {
  history_->clear();
  std::vector<const TicketEvent*> events;
  for (const TicketEvent& event : snapshot.events)
    if (event.ticketId == ticket_) events.push_back(&event);
  std::stable_sort(events.begin(), events.end(),
                   [](const TicketEvent* a, const TicketEvent* b) { return a->at < b->at; });
  for (const TicketEvent* event : events) {
    const QString day = qText(civilDateFromLocal(event->at, context_.calendar()).displayText());
    const QString what =
        event->fromColumnName
            ? QStringLiteral("Moved from %1 to %2").arg(quoted(*event->fromColumnName), quoted(event->toColumnName))
            : QStringLiteral("Created in %1").arg(quoted(event->toColumnName));
    history_->addItem(QStringLiteral("%1  %2").arg(day, what));
  }
}

}  // namespace orvane::app
