#include "core/board/ProjectFixture.h"

namespace orvane {
namespace {

using testing::at;

class TicketDetailOperations : public testing::ProjectFixture {
 protected:
  void link(const Uuid& source, const Uuid& target, LinkKind kind = LinkKind::blockedBy) {
    service.addLink(source, target, kind, at(2026, 1, 8));
  }
  std::vector<std::string> checklist(const Uuid& ticketId) {
    std::vector<std::string> items;
    for (const auto& item : rows::select<ChecklistItem>(db, "WHERE ticket_id = ?1 ORDER BY position", ticketId)) {
      items.push_back(std::to_string(item.position) + ":" + item.title + (item.isDone ? "+" : ""));
    }
    return items;
  }
};

TEST_F(TicketDetailOperations, refusesEmptyTextsAndBadLinksInOrder) {
  const Uuid a = ticket("A");
  const Uuid b = ticket("B");
  const Uuid c = ticket("C");
  const Uuid foreign = ticket("Foreign", service.createProject("Other", std::nullopt, at(2026, 1, 5)).id);
  link(a, b);
  link(b, c);
  link(a, c, LinkKind::relatedTo);  // waiting is only along blocked_by
  const Uuid item = service.addChecklistItem(a, "Write tests").id;
  const std::string empty = "A name, title or path cannot be empty.";
  const std::string duplicate = "These tickets are already linked that way.";

  expectRefusals({
      {"comment empty", [&] { service.addComment(a, " \n", at(2026, 1, 9)); },
       "A name, title or comment cannot be empty."},
      {"checklist empty", [&] { service.addChecklistItem(a, "\t"); }, empty},
      {"checklist rename empty", [&] { service.renameChecklistItem(item, " "); }, empty},
      {"file path empty", [&] { service.addFileLink(a, "  \n", at(2026, 1, 9)); }, empty},
      {"self", [&] { link(a, a); }, "A ticket cannot be linked to itself."},
      {"other project", [&] { link(a, foreign); }, "Tickets can only be linked inside one project."},
      {"blocked_by again", [&] { link(a, b); }, duplicate},
      {"related_to reversed", [&] { link(c, a, LinkKind::relatedTo); }, duplicate},
      {"direct loop", [&] { link(b, a); }, "That would make the tickets wait on each other."},
      {"loop through a chain", [&] { link(c, a); }, "That would make the tickets wait on each other."},
  });

  link(b, a, LinkKind::relatedTo);  // another kind is another link
  link(a, c);                       // already implied through b, but not a loop
  EXPECT_EQ(rows::select<TicketLink>(db, "").size(), 5u);
}

TEST_F(TicketDetailOperations, checklistItemsGoToTheEndAndCloseGapsOnDelete) {
  const Uuid a = ticket("A");
  std::vector<Uuid> items;
  for (const char* title : {" One ", "Two", "Three", "Four"}) items.push_back(service.addChecklistItem(a, title).id);
  service.setChecklistItem(items[2], true);
  service.renameChecklistItem(items[3], " Four! ");
  service.deleteChecklistItem(items[1]);
  EXPECT_EQ(checklist(a), (std::vector<std::string>{"0:One", "1:Three+", "2:Four!"}));
  EXPECT_EQ(service.addChecklistItem(a, "Five").position, 3);
}

TEST_F(TicketDetailOperations, clearThisWeekStaysInItsProjectAndTextsAreTrimmed) {
  const Uuid a = ticket("A");
  const Uuid b = ticket("B");
  const Uuid foreign = ticket("Foreign", service.createProject("Other", std::nullopt, at(2026, 1, 5)).id);
  for (const Uuid& id : {a, b, foreign}) service.setThisWeek(id, true);
  service.archive(b, at(2026, 1, 7));
  service.clearThisWeek(project.id);
  EXPECT_EQ((std::vector{row<Ticket>(a).thisWeek, row<Ticket>(b).thisWeek, row<Ticket>(foreign).thisWeek}),
            (std::vector{false, false, true}));

  const TicketComment comment = service.addComment(a, "  Looks good\n", at(2026, 1, 9));
  EXPECT_EQ(row<TicketComment>(comment.id), (TicketComment{comment.id, "Looks good", at(2026, 1, 9), a}));

  const TicketFileLink file = service.addFileLink(a, " /home/ann/Designs/brief v2.pdf ", at(2026, 1, 9));
  EXPECT_EQ(row<TicketFileLink>(file.id),
            (TicketFileLink{file.id, "brief v2.pdf", "/home/ann/Designs/brief v2.pdf", std::nullopt, at(2026, 1, 9), a}));
  EXPECT_EQ(service.addFileLink(a, "/home/ann/Designs/", at(2026, 1, 9)).name, "Designs");
}

}  // namespace
}  // namespace orvane
