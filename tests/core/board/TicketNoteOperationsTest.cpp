#include <gtest/gtest.h>

#include <algorithm>

#include "core/support/TempStore.h"

namespace orvane {
namespace {

using testing::at;

struct Fixture {
  testing::TempStore temp;
  BoardService& s = temp.service;
  Project project = s.createProject("Apollo", "AP", at(2026, 3, 1));
  Ticket ticket = s.createTicket(project.id, {.title = "Engine"}, at(2026, 3, 2));

  std::vector<std::string> checklistTitles() {
    auto items = s.snapshot(project.id)->checklistItems;
    std::sort(items.begin(), items.end(), [](const auto& x, const auto& y) { return x.position < y.position; });
    std::vector<std::string> titles;
    for (std::size_t i = 0; i < items.size(); ++i) {
      EXPECT_EQ(items[i].position, static_cast<std::int64_t>(i));
      titles.push_back(items[i].title);
    }
    return titles;
  }
};

TEST(TicketNoteOperations, EditKeepsTheCommentsDateAndRefusesAnEmptyBody) {
  Fixture f;
  const TicketComment comment = f.s.addComment(f.ticket.id, "First", at(2026, 3, 3));
  f.s.editComment(comment.id, "  Second \n");
  EXPECT_EQ(f.s.snapshot(f.project.id)->comments.at(0),
            (TicketComment{comment.id, "Second", comment.createdAt, f.ticket.id}));
  EXPECT_THROW(f.s.editComment(comment.id, " \n "), BoardError);
  f.s.deleteComment(comment.id);
  EXPECT_TRUE(f.s.snapshot(f.project.id)->comments.empty());
  EXPECT_THROW(f.s.deleteComment(comment.id), MissingRecordError);
}

TEST(TicketNoteOperations, MovingAChecklistItemRenumbersAndClampsTheTarget) {
  Fixture f;
  std::vector<Uuid> ids;
  for (const char* title : {"a", "b", "c", "d"}) ids.push_back(f.s.addChecklistItem(f.ticket.id, title).id);
  f.s.moveChecklistItem(ids[3], 0);
  EXPECT_EQ(f.checklistTitles(), (std::vector<std::string>{"d", "a", "b", "c"}));
  f.s.moveChecklistItem(ids[3], 99);
  EXPECT_EQ(f.checklistTitles(), (std::vector<std::string>{"a", "b", "c", "d"}));
  f.s.moveChecklistItem(ids[0], 2);
  EXPECT_EQ(f.checklistTitles(), (std::vector<std::string>{"b", "c", "a", "d"}));
}

}  // namespace
}  // namespace orvane
