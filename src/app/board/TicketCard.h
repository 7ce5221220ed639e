#pragma once

#include <unicode/utypes.h>

#include <QColor>
#include <QString>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "core/model/ProjectSnapshot.h"

U_NAMESPACE_BEGIN
class Calendar;
U_NAMESPACE_END

namespace orvane::app {

// What a card (or a row) shows of one ticket, worked out once per reload so
// painting and sorting touch no snapshot.
struct TicketCard {
  Uuid id;
  std::int64_t number = 0;
  std::int64_t position = 0;
  QString reference;  // "FRC-12"
  QString title;
  TicketPriority priority = TicketPriority::medium;
  QString priorityLabel;
  QString epicName;
  QColor epicColor;  // invalid when the ticket has no epic
  QString assignee;
  QString columnName;
  QString iterationName;
  std::optional<Timestamp> dueDate;
  QString dueText;  // "5 Mar 2026", in the user's calendar
  std::optional<Timestamp> createdAt;
  std::optional<Timestamp> archivedAt;
  QString archivedText;
  bool blocked = false;  // the flag or an open blocker
  bool thisWeek = false;
  bool overdue = false;  // open and past its due date
  int checklistDone = 0;
  int checklistTotal = 0;
};

// Makes cards for the tickets of one snapshot. Holds the per-project lookups
// (checklist counts, which tickets have links) so that a board of thousands
// of cards is made in one pass.
class TicketCardFactory {
 public:
  TicketCardFactory(const ProjectSnapshot& snapshot, const icu::Calendar& calendar, Timestamp now);

  TicketCard card(const Ticket& ticket) const;

 private:
  const ProjectSnapshot& snapshot_;
  const icu::Calendar& calendar_;
  Timestamp now_;
  std::unordered_map<Uuid, std::pair<int, int>> checklist_;  // done, total
  std::unordered_set<Uuid> linkSources_;
};

// A day in the user's calendar: "5 Mar 2026".
QString dayText(Timestamp instant, const icu::Calendar& calendar);

}  // namespace orvane::app
