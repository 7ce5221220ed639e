#include "app/board/TicketCard.h"

#include "engine/LocalCivilDate.h"

namespace orvane::app {

QString dayText(Timestamp instant, const icu::Calendar& calendar) {
  return QString::fromStdString(civilDateFromLocal(instant, calendar).displayText());
}

TicketCardFactory::TicketCardFactory(const ProjectSnapshot& snapshot, const icu::Calendar& calendar, Timestamp now)
    : snapshot_(snapshot), calendar_(calendar), now_(now) {
  for (const ChecklistItem& item : snapshot.checklistItems) {
    auto& [done, total] = checklist_[item.ticketId];
    ++total;
    if (item.isDone) ++done;
  }
  for (const TicketLink& link : snapshot.links) linkSources_.insert(link.sourceId);
}

TicketCard TicketCardFactory::card(const Ticket& ticket) const {
  TicketCard card;
  card.id = ticket.id;
  card.number = ticket.number;
  card.position = ticket.position;
  card.reference = QString::fromStdString(snapshot_.referenceCode(ticket));
  card.title = QString::fromStdString(ticket.title);
  card.priority = ticket.effectivePriority();
  card.priorityLabel =
      QString::fromUtf8(displayLabel(card.priority).data(), static_cast<qsizetype>(displayLabel(card.priority).size()));
  if (ticket.epicId) {
    if (const Epic* epic = snapshot_.epic(*ticket.epicId)) {
      card.epicName = QString::fromStdString(epic->name);
      card.epicColor = epic->colorHex ? QColor(QString::fromStdString(*epic->colorHex)) : QColor();
      if (!card.epicColor.isValid()) card.epicColor = QColor(0x8a, 0x94, 0xa6);
    }
  }
  if (ticket.assigneeId) {
    if (const Person* person = snapshot_.person(*ticket.assigneeId))
      card.assignee = QString::fromStdString(person->name);
  }
  if (ticket.columnId) {
    if (const BoardColumn* column = snapshot_.column(*ticket.columnId))
      card.columnName = QString::fromStdString(column->name);
  }
  if (ticket.iterationId) {
    if (const Iteration* iteration = snapshot_.iteration(*ticket.iterationId))
      card.iterationName = QString::fromStdString(iteration->name);
  }
  card.dueDate = ticket.dueDate;
  if (ticket.dueDate) card.dueText = dayText(*ticket.dueDate, calendar_);
  card.createdAt = ticket.createdAt;
  card.archivedAt = ticket.archivedAt;
  if (ticket.archivedAt) card.archivedText = dayText(*ticket.archivedAt, calendar_);
  // Only a ticket with links can have an open blocker; the others need no walk.
  card.blocked = ticket.blocked || (linkSources_.count(ticket.id) != 0 && snapshot_.isBlocked(ticket));
  card.thisWeek = ticket.thisWeek;
  card.overdue = ticket.dueDate && *ticket.dueDate < now_ && snapshot_.isOpen(ticket);
  if (auto found = checklist_.find(ticket.id); found != checklist_.end()) {
    card.checklistDone = found->second.first;
    card.checklistTotal = found->second.second;
  }
  return card;
}

}  // namespace orvane::app
