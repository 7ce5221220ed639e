#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "core/filter/TicketFilter.h"
#include "core/support/TempStore.h"

namespace orvane {
namespace {

using testing::at;

// One project with a ticket for each thing a filter can look at. Titles name
// the tickets, so expectations read as lists of titles.
class TicketFilterTest : public ::testing::Test {
 protected:
  testing::TempStore t;
  BoardService& service = t.service;
  Project project = service.createProject("Shop", "FRC", at(2026, 1, 5));
  ProjectSnapshot s = *service.snapshot(project.id);

  Uuid column(std::string_view name) const {
    for (const BoardColumn& c : s.columns) {
      if (c.name == name) return c.id;
    }
    throw std::logic_error("no column");
  }
  Uuid add(const std::string& title, NewTicket fields = {}) {
    fields.title = title;
    return service.createTicket(project.id, fields, at(2026, 1, 6)).id;
  }

  void SetUp() override {
    const Person emile = service.createPerson("Émile Zola", std::nullopt);
    const Person ana = service.createPerson("Ana", std::nullopt);
    const Epic checkout = service.createEpic(project.id, "Checkout", std::nullopt, std::nullopt);
    const Iteration sprint1 = service.createIteration(project.id, "Sprint 1", "", at(2026, 1, 5), at(2026, 1, 18));
    const Iteration sprint2 = service.createIteration(project.id, "Sprint 2", "", at(2026, 1, 19), at(2026, 2, 1));
    epicId = checkout.id;
    emileId = emile.id;
    sprint2Id = sprint2.id;

    const Uuid payment = add(
        "Payment form",
        {.details = "Card fields", .priority = TicketPriority::high, .epic = checkout.id, .tags = {"backend", "ui"}});
    service.setAssignee(payment, emile.id);
    service.setIteration(payment, sprint1.id);
    service.startIteration(sprint1.id, at(2026, 1, 5));
    service.addComment(payment, "Ask about the login page first", at(2026, 1, 7));

    const Uuid review = add("Review copy", {.column = column("In Progress")});
    service.setAssignee(review, ana.id);
    service.setThisWeek(review, true);
    service.setIteration(review, sprint2.id);
    service.addChecklistItem(review, "Café menu wording");

    const Uuid shipped = add("Shipped thing", {.priority = TicketPriority::low, .column = column("Done")});
    const Uuid waiting = add("Waiting on payment");
    service.addLink(waiting, payment, LinkKind::blockedBy, at(2026, 1, 8));
    const Uuid waitingDone = add("Waiting on shipped");
    service.addLink(waitingDone, shipped, LinkKind::blockedBy, at(2026, 1, 8));
    const Uuid flagged = add("Flagged fix");
    service.setBlocked(flagged, true);
    const Uuid old = add("Old idea", {.tags = {"Backend"}});
    service.archive(old, at(2026, 1, 9));
    s = *service.snapshot(project.id);
  }

  std::vector<std::string> titles(const TicketFilter& filter) const {
    std::vector<std::string> found;
    for (const Ticket* ticket : filter.apply(std::span<const Ticket>(s.tickets), s)) {
      found.push_back(ticket->title);
      EXPECT_TRUE(filter.matches(*ticket, s)) << ticket->title;  // apply and matches agree
    }
    EXPECT_EQ(found.size(),
              static_cast<std::size_t>(std::count_if(s.tickets.begin(), s.tickets.end(),
                                                     [&](const Ticket& x) { return filter.matches(x, s); })));
    return found;
  }

  Uuid epicId, emileId, sprint2Id;
};

using Titles = std::vector<std::string>;
const Titles allActive{"Payment form",       "Review copy",        "Shipped thing",
                       "Waiting on payment", "Waiting on shipped", "Flagged fix"};

TEST_F(TicketFilterTest, EachFieldNarrowsTheTicketsAsItSays) {
  struct Case {
    std::string label;
    std::function<void(TicketFilter&)> set;
    Titles expected;
  };
  const std::vector<Case> cases{
      {"default hides archived only", [](TicketFilter&) {}, allActive},
      {"include archived", [](TicketFilter& f) { f.includeArchived = true; },
       [] {
         Titles all = allActive;
         all.push_back("Old idea");
         return all;
       }()},
      {"archived only", [](TicketFilter& f) { f.archivedOnly = true; }, {"Old idea"}},
      {"archived only wins", [](TicketFilter& f) { f.archivedOnly = f.includeArchived = true; }, {"Old idea"}},
      {"epic", [&](TicketFilter& f) { f.epicId = epicId; }, {"Payment form"}},
      {"epic that is gone", [](TicketFilter& f) { f.epicId = Uuid::random(); }, {}},
      {"assignee", [&](TicketFilter& f) { f.assigneeId = emileId; }, {"Payment form"}},
      {"unassigned",
       [](TicketFilter& f) { f.unassignedOnly = true; },
       {"Shipped thing", "Waiting on payment", "Waiting on shipped", "Flagged fix"}},
      {"assignee and unassigned",
       [&](TicketFilter& f) {
         f.assigneeId = emileId;
         f.unassignedOnly = true;
       },
       {}},
      {"priority", [](TicketFilter& f) { f.priority = TicketPriority::low; }, {"Shipped thing"}},
      {"tag ignores case",
       [](TicketFilter& f) {
         f.tag = "Backend";
         f.includeArchived = true;
       },
       {"Payment form", "Old idea"}},
      {"blocked by flag or open blocker",
       [](TicketFilter& f) { f.blockedOnly = true; },
       {"Waiting on payment", "Flagged fix"}},
      {"this week", [](TicketFilter& f) { f.thisWeekOnly = true; }, {"Review copy"}},
      {"active iteration", [](TicketFilter& f) { f.iteration = IterationFilter::active(); }, {"Payment form"}},
      {"specific iteration",
       [&](TicketFilter& f) { f.iteration = IterationFilter::specific(sprint2Id); },
       {"Review copy"}},
      {"no iteration",
       [](TicketFilter& f) { f.iteration = IterationFilter::none(); },
       {"Shipped thing", "Waiting on payment", "Waiting on shipped", "Flagged fix"}},
      {"not started",
       [](TicketFilter& f) { f.status = StatusFilter::notStarted; },
       {"Payment form", "Waiting on payment", "Waiting on shipped", "Flagged fix"}},
      {"in progress", [](TicketFilter& f) { f.status = StatusFilter::inProgress; }, {"Review copy"}},
      {"done", [](TicketFilter& f) { f.status = StatusFilter::done; }, {"Shipped thing"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.label);
    TicketFilter filter;
    c.set(filter);
    EXPECT_EQ(titles(filter), c.expected);
  }
}

TEST_F(TicketFilterTest, TextSearchesEveryPieceIgnoringCaseAndDiacritics) {
  const std::vector<std::pair<std::string, Titles>> cases{
      {"  fix   login ", {}},                 // both words needed
      {"  form   login ", {"Payment form"}},  // title and comment together
      {"emile", {"Payment form"}},            // assignee "Émile Zola"
      {"ÉMILE zola", {"Payment form"}},
      {"cafe", {"Review copy"}},                    // checklist "Café menu wording"
      {"CARD checkout BACKEND", {"Payment form"}},  // details, epic, tag
      {"frc-1", {"Payment form"}},                  // reference FRC-1
      {"frc-3", {"Shipped thing"}},
      {" \t ", allActive},  // no words: passes
      {"payment nowhere", {}},
  };
  for (const auto& [text, expected] : cases) {
    SCOPED_TRACE(text);
    TicketFilter filter;
    filter.text = text;
    EXPECT_EQ(titles(filter), expected);
  }
}

TEST_F(TicketFilterTest, ATicketWithoutAColumnPassesOnlyTheAnyStatus) {
  Ticket loose = s.tickets.front();
  loose.columnId.reset();
  for (StatusFilter status : allStatusFilters) {
    TicketFilter filter;
    filter.status = status;
    EXPECT_EQ(filter.matches(loose, s), status == StatusFilter::any) << rawValue(status);
  }
}

TEST(TicketFilterValue, IsActiveWhenAnyFieldDiffersFromTheDefault) {
  EXPECT_FALSE(TicketFilter{}.isActive());
  const std::vector<std::function<void(TicketFilter&)>> changes{
      [](TicketFilter& f) { f.text = "x"; },
      [](TicketFilter& f) { f.epicId = Uuid::random(); },
      [](TicketFilter& f) { f.unassignedOnly = true; },
      [](TicketFilter& f) { f.tag = ""; },
      [](TicketFilter& f) { f.iteration = IterationFilter::none(); },
      [](TicketFilter& f) { f.archivedOnly = true; },
  };
  for (const auto& change : changes) {
    TicketFilter filter;
    change(filter);
    EXPECT_TRUE(filter.isActive());
    EXPECT_NE(filter, TicketFilter{});
  }
  EXPECT_NE(IterationFilter::specific(Uuid::random()), IterationFilter::specific(Uuid::random()));
}

}  // namespace
}  // namespace orvane
