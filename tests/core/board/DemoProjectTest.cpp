#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "core/board/FlowRules.h"
#include "core/support/TempStore.h"

namespace orvane {
namespace {

using testing::at;

// 2026-03-05 is a Thursday: the week of `now` has begun but holds no history.
const Timestamp now = at(2026, 3, 5, 10);

// Monday-based week number of a day.
std::int64_t weekOf(const CivilDate& day) { return (day.daysSinceEpoch() + 3) / 7; }

void expectRealisticShape(Timestamp now) {
  testing::TempStore t;
  const Project demo = t.service.loadDemoProject(now);
  EXPECT_EQ(demo.name, "Demo: Web Shop");
  EXPECT_EQ(demo.key, "SHOP");
  const ProjectSnapshot s = *t.service.snapshot(demo.id);

  EXPECT_EQ(s.tickets.size(), 63u);
  EXPECT_EQ(std::count_if(s.tickets.begin(), s.tickets.end(), [](const Ticket& x) { return x.isArchived(); }), 3);
  EXPECT_EQ(demo.nextTicketNumber, 64);

  // Weekly throughput: every one of the 14 weeks before this one finished 2 to 7 tickets.
  std::map<std::int64_t, int> perWeek;
  for (const CivilDate& day : s.completionDatesUTC()) ++perWeek[weekOf(day)];
  const std::int64_t thisWeek = weekOf(CivilDate::fromUtc(now));
  EXPECT_EQ(perWeek.size(), 14u);
  for (const auto& [week, count] : perWeek) {
    EXPECT_TRUE(week >= thisWeek - 14 && week < thisWeek) << week;
    EXPECT_TRUE(count >= 2 && count <= 7) << count;
  }

  // Events replay to the stamped dates; nothing lies in the future.
  std::map<Uuid, std::vector<const TicketEvent*>> eventsOf;
  for (const TicketEvent& e : s.events) eventsOf[e.ticketId].push_back(&e);
  for (const Ticket& ticket : s.tickets) {
    SCOPED_TRACE(ticket.title);
    const auto& events = eventsOf[ticket.id];
    ASSERT_FALSE(events.empty());
    EXPECT_EQ(events.front()->fromColumnId, std::nullopt);
    EXPECT_EQ(events.front()->at, ticket.createdAt);
    EXPECT_GE(ticket.createdAt, demo.createdAt);
    FlowState flow;
    for (const TicketEvent* e : events) {
      EXPECT_LT(e->at, now);
      flow = FlowRules::apply(flow, s.column(e->toColumnId)->effectiveType(), e->at);
    }
    EXPECT_EQ(events.back()->toColumnId, ticket.columnId);
    EXPECT_EQ(flow, ticket.flow());
  }
  // Some work was sent back (more events than a straight run through the board).
  EXPECT_GT(s.events.size(), s.tickets.size() * 3);

  // Iterations: one closed with carry-over, one active, one planned.
  ASSERT_EQ(s.iterations.size(), 3u);
  const Iteration& closed = s.iterations[0];
  EXPECT_EQ(closed.state(), IterationState::closed);
  EXPECT_EQ(closed.finishedCount, static_cast<std::int64_t>(s.doneTickets(closed).size()));
  EXPECT_GT(closed.carriedOverCount, 0);
  ASSERT_NE(s.activeIteration(), nullptr);
  const Iteration& active = *s.activeIteration();
  EXPECT_EQ(active.name, "Sprint 2");
  EXPECT_GT(s.openTickets(active).size(), 0u);
  EXPECT_GT(s.doneTickets(active).size(), 0u);
  EXPECT_LT(active.committedCount, static_cast<std::int64_t>(s.activeTickets(active).size()));  // added later
  EXPECT_EQ(s.iterations[2].state(), IterationState::planned);

  // Epics, dependencies, milestones.
  EXPECT_EQ(s.epics.size(), 5u);
  EXPECT_EQ(s.epicDependencies.size(), 5u);
  for (const Epic& epic : s.epics) EXPECT_LT(epic.startDate, epic.dueDate);
  const auto doneMilestones = std::count_if(s.milestones.begin(), s.milestones.end(), [](const Milestone& m) { return m.isDone(); });
  EXPECT_GT(doneMilestones, 0);
  EXPECT_LT(doneMilestones, static_cast<std::ptrdiff_t>(s.milestones.size()));

  // The ticket details a demo is meant to show.
  std::set<std::int64_t> priorities;
  std::set<Uuid> assignees;
  int flaggedThisWeek = 0;
  for (const Ticket& ticket : s.tickets) {
    priorities.insert(ticket.priorityRaw);
    if (ticket.assigneeId) assignees.insert(*ticket.assigneeId);
    flaggedThisWeek += ticket.thisWeek;
  }
  EXPECT_EQ(priorities.size(), 4u);
  EXPECT_EQ(assignees.size(), 5u);
  EXPECT_GT(flaggedThisWeek, 0);
  EXPECT_EQ(s.overdueTickets(now).size(), 2u);
  EXPECT_GE(s.blockedTickets().size(), 2u);
  EXPECT_GT(s.comments.size(), 5u);
  EXPECT_TRUE(std::any_of(s.checklistItems.begin(), s.checklistItems.end(), [](auto& i) { return i.isDone; }));
  EXPECT_TRUE(std::any_of(s.checklistItems.begin(), s.checklistItems.end(), [](auto& i) { return !i.isDone; }));
  std::set<std::string> linkKinds;
  for (const TicketLink& link : s.links) linkKinds.insert(link.kindRaw);
  EXPECT_EQ(linkKinds, (std::set<std::string>{"blocked_by", "related_to"}));
}

TEST(DemoProject, looksLikeFourteenWeeksOfARealTeam) {
  {
    SCOPED_TRACE("Thursday morning");
    expectRealisticShape(now);
  }
  SCOPED_TRACE("half a minute into a Monday");  // history must still lie before now
  expectRealisticShape(Timestamp{at(2026, 3, 9, 0).secondsSince1970 + 30});
}

TEST(DemoProject, loadsAgainAsASecondProjectWithTheSameContentAndSharedPeople) {
  testing::TempStore t;
  const Uuid maya = t.service.createPerson("maya chen", std::nullopt).id;
  const Project first = t.service.loadDemoProject(now);
  const Project second = t.service.loadDemoProject(now);
  EXPECT_EQ(second.name, "Demo: Web Shop 2");
  EXPECT_EQ(t.service.projects().size(), 2u);

  const ProjectSnapshot a = *t.service.snapshot(first.id);
  const ProjectSnapshot b = *t.service.snapshot(second.id);
  EXPECT_EQ(a.people.size(), 5u);  // the existing "maya chen" was reused, not duplicated
  EXPECT_TRUE(std::any_of(a.tickets.begin(), a.tickets.end(), [&](const Ticket& x) { return x.assigneeId == maya; }));

  ASSERT_EQ(a.tickets.size(), b.tickets.size());
  for (std::size_t i = 0; i < a.tickets.size(); ++i) {
    Ticket x = a.tickets[i];
    Ticket y = b.tickets[i];
    EXPECT_EQ(a.column(*x.columnId)->name, b.column(*y.columnId)->name);
    for (Ticket* ticket : {&x, &y}) ticket->id = ticket->projectId = Uuid{};
    x.columnId = y.columnId = x.epicId = y.epicId = x.iterationId = y.iterationId = std::nullopt;
    EXPECT_EQ(x, y);
  }
  ASSERT_EQ(a.events.size(), b.events.size());
  for (std::size_t i = 0; i < a.events.size(); ++i) EXPECT_EQ(a.events[i].at, b.events[i].at);
}

TEST(DemoProject, aFailurePartWayLeavesTheStoreFileAsItWas) {
  testing::TempDir dir;
  const auto path = dir.path() / "orvane.sqlite";
  std::int64_t pages = 0;
  {
    Store store = Store::open(path);
    BoardService(store).createProject("Existing", std::nullopt, now);
    pages = store.db().scalarInt("PRAGMA page_count");
  }
  const std::string before = testing::bytesOf(path);
  {
    Store store = Store::open(path);
    // Room for the project row and its columns, not for fourteen weeks of work.
    store.db().exec("PRAGMA max_page_count = " + std::to_string(pages + 6));
    BoardService service(store);
    try {
      service.loadDemoProject(now);
      ADD_FAILURE() << "the demo fitted";
    } catch (const SqliteError& error) {
      EXPECT_EQ(error.code() & 0xFF, SQLITE_FULL) << error.what();
    }
    ASSERT_EQ(service.projects().size(), 1u);
    EXPECT_EQ(store.db().scalarInt("SELECT count(*) FROM people"), 0);
  }
  EXPECT_TRUE(testing::bytesOf(path) == before) << "the store file changed";

  // Once there is room, the demo loads whole under its first name.
  Store store = Store::open(path);
  EXPECT_EQ(BoardService(store).loadDemoProject(now).name, "Demo: Web Shop");
}

}  // namespace
}  // namespace orvane
