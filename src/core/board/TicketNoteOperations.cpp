// Editing what was already written on a ticket: comments and the order of
// its checklist.
#include <algorithm>

#include "core/board/BoardService.h"
#include "core/board/ServiceRules.h"
#include "core/store/Rows.h"
#include "core/text/Text.h"

namespace orvane {

void BoardService::editComment(const Uuid& comment, std::string_view body) {
  inTransaction([&] {
    TicketComment row = rules::requireRow<TicketComment>(db_, comment, "comment");
    // A comment is written with the board's wording, so it is refused with it.
    row.body = rules::requireText(body, BoardError::emptyText());
    rows::update(db_, row);
  });
}

void BoardService::deleteComment(const Uuid& comment) {
  inTransaction([&] {
    rules::requireRow<TicketComment>(db_, comment, "comment");
    rows::remove<TicketComment>(db_, comment);
  });
}

void BoardService::moveChecklistItem(const Uuid& item, std::int64_t to) {
  inTransaction([&] {
    const ChecklistItem row = rules::requireRow<ChecklistItem>(db_, item, "checklist item");
    std::vector<ChecklistItem> items =
        rows::select<ChecklistItem>(db_, "WHERE ticket_id = ?1 ORDER BY position, rowid", row.ticketId);
    const auto found = std::find_if(items.begin(), items.end(), [&](const ChecklistItem& i) { return i.id == item; });
    ChecklistItem moving = *found;
    items.erase(found);
    const auto index =
        static_cast<std::size_t>(std::clamp<std::int64_t>(to, 0, static_cast<std::int64_t>(items.size())));
    items.insert(items.begin() + static_cast<std::ptrdiff_t>(index), moving);
    Statement& renumber = db_.cached("UPDATE checklist_items SET position = ?2 WHERE id = ?1 AND position != ?2");
    for (std::size_t i = 0; i < items.size(); ++i) {
      renumber.reset();
      renumber.bindAll(items[i].id, static_cast<std::int64_t>(i)).run();
    }
  });
}

}  // namespace orvane
