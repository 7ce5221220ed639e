#include <gtest/gtest.h>

#include <functional>

#include "core/store/Rows.h"
#include "core/support/StoreDump.h"
#include "core/support/TempStore.h"

namespace orvane {
namespace {

using testing::at;

const std::string closedMessage = "This iteration is closed. Choose an iteration that is planned or active.";

struct Refusal {
  std::string label;
  std::function<void()> call;
  std::string message;  // what() of the PMError
};

class IterationOperations : public ::testing::Test {
 protected:
  testing::TempStore t;
  BoardService& service = t.service;
  Project project = service.createProject("Shop", std::nullopt, at(2026, 1, 5));
  Project other = service.createProject("Other", std::nullopt, at(2026, 1, 5));
  std::vector<BoardColumn> columns =
      rows::select<BoardColumn>(t.store.db(), "WHERE project_id = ?1 ORDER BY position", project.id);
  const BoardColumn& backlog = columns[0];
  const BoardColumn& done = columns[4];

  Uuid sprint(const std::string& name, int day, const Project* in = nullptr) {
    return service.createIteration((in ? *in : project).id, name, "", at(2026, 2, day), at(2026, 2, day + 11)).id;
  }
  Uuid closedSprint(const std::string& name, const Project* in = nullptr) {
    const Uuid id = sprint(name, 1, in);
    service.startIteration(id, at(2026, 2, 1));
    service.closeIteration(id, IterationCarryOver::backlog(), at(2026, 2, 12));
    return id;
  }
  Uuid ticketIn(const BoardColumn& column, std::optional<Uuid> iteration = {}) {
    const Uuid id = service.createTicket(project.id, NewTicket{.title = "T", .column = column.id}, at(2026, 1, 6)).id;
    if (iteration) service.setIteration(id, iteration);
    return id;
  }
  Iteration iteration(const Uuid& id) { return *rows::find<Iteration>(t.store.db(), id); }
  Ticket ticket(const Uuid& id) { return *rows::find<Ticket>(t.store.db(), id); }

  // Each call must throw a PMError with the exact sentence and change nothing.
  void expectRefusals(const std::vector<Refusal>& refusals) {
    for (const Refusal& r : refusals) {
      SCOPED_TRACE(r.label);
      const std::string before = testing::dumpStore(t.store.db());
      try {
        r.call();
        ADD_FAILURE() << "accepted";
      } catch (const PMError& error) {
        EXPECT_EQ(std::string(error.what()), r.message);
      }
      EXPECT_EQ(testing::dumpStore(t.store.db()), before);
    }
  }
};

TEST_F(IterationOperations, createAndUpdateCheckNameThenDates) {
  const Iteration first = service.createIteration(project.id, "  Sprint 1\n", " Goal ", at(2026, 2, 2), at(2026, 2, 13));
  EXPECT_EQ(first.name, "Sprint 1");
  EXPECT_EQ(first.goal, "Goal");
  EXPECT_EQ(iteration(first.id), first);
  const Uuid second = sprint("Sprint 2", 16);
  sprint("Sprint 1", 2, &other);  // names are per project

  const auto create = [&](const char* name, int endDay) {
    return [&, name, endDay] { service.createIteration(project.id, name, "", at(2026, 3, 2), at(2026, 3, endDay)); };
  };
  const auto update = [&](const char* name, int endDay) {
    return [&, name, endDay] { service.updateIteration(second, name, "", at(2026, 3, 2), at(2026, 3, endDay)); };
  };
  expectRefusals({
      {"create empty", create(" \n\t", 1), "A name, title or path cannot be empty."},
      {"create duplicate before range", create(" SPRINT 1 ", 1), "\"SPRINT 1\" is already in use."},
      {"create range", create("Sprint 3", 1), "The end date cannot be before the start date."},
      {"update empty", update("", 1), "A name, title or path cannot be empty."},
      {"update duplicate", update("sprint 1", 1), "\"sprint 1\" is already in use."},
      {"update range", update("Sprint 2", 1), "The end date cannot be before the start date."},
  });

  // The iteration itself is left out of the name test; an active one may move its dates.
  const Uuid closed = closedSprint("Old");
  service.startIteration(first.id, at(2026, 2, 2));
  service.updateIteration(first.id, "SPRINT 1", "", at(2026, 2, 3), at(2026, 2, 20));
  EXPECT_EQ(iteration(first.id).name, "SPRINT 1");
  EXPECT_EQ(iteration(first.id).endDate, at(2026, 2, 20));
  EXPECT_EQ(iteration(first.id).startedAt, at(2026, 2, 2));
  expectRefusals({{"update closed", [&] { service.updateIteration(closed, "Old", "", at(2026, 2, 1), at(2026, 2, 1)); },
                   closedMessage}});
}

TEST_F(IterationOperations, setIterationRefusesClosedThenForeignThenArchived) {
  const Uuid open = sprint("Open", 2);
  const Uuid closed = closedSprint("Closed");
  const Uuid foreign = sprint("Foreign", 2, &other);
  const Uuid foreignClosed = closedSprint("Foreign closed", &other);
  const Uuid archived = ticketIn(backlog, open);
  service.archive(archived, at(2026, 2, 3));
  const Uuid plain = ticketIn(backlog);

  const std::string foreignMessage = "Tickets can only be linked inside one project.";
  expectRefusals({
      {"closed", [&] { service.setIteration(plain, closed); }, closedMessage},
      {"closed before foreign", [&] { service.setIteration(plain, foreignClosed); }, closedMessage},
      {"foreign", [&] { service.setIteration(plain, foreign); }, foreignMessage},
      {"foreign before archived", [&] { service.setIteration(archived, foreign); }, foreignMessage},
      {"archived", [&] { service.setIteration(archived, open); },
       "An archived ticket cannot be put in an iteration. Restore it first."},
  });
  // Archiving kept the iteration, so restoring brings the ticket back into it;
  // taking a ticket out needs no checks, archived or not.
  service.unarchive(archived);
  EXPECT_EQ(ticket(archived).iterationId, open);
  service.archive(archived, at(2026, 2, 4));
  service.setIteration(archived, std::nullopt);
  EXPECT_EQ(ticket(archived).iterationId, std::nullopt);
}

TEST_F(IterationOperations, startFreezesTheCommitmentAndAllowsOneActiveIteration) {
  const Uuid first = sprint("Sprint 1", 2);
  const Uuid second = sprint("Sprint 2", 16);
  ticketIn(backlog, first);
  ticketIn(done, first);  // every active ticket is committed, done or not
  service.archive(ticketIn(backlog, first), at(2026, 2, 1));

  service.startIteration(first, at(2026, 2, 2, 9));
  EXPECT_EQ(iteration(first).startedAt, at(2026, 2, 2, 9));
  EXPECT_EQ(iteration(first).committedCount, 2);
  ticketIn(backlog, first);
  EXPECT_EQ(iteration(first).committedCount, 2);

  expectRefusals({
      {"again", [&] { service.startIteration(first, at(2026, 2, 3)); }, "This iteration has already been started."},
      {"second", [&] { service.startIteration(second, at(2026, 2, 3)); },
       "\"Sprint 1\" is still active. Close it before starting another iteration."},
  });
  service.closeIteration(first, IterationCarryOver::backlog(), at(2026, 2, 13));
  expectRefusals({{"closed", [&] { service.startIteration(first, at(2026, 2, 14)); }, closedMessage}});
  service.startIteration(second, at(2026, 2, 16));
  EXPECT_EQ(iteration(second).state(), IterationState::active);
}

TEST_F(IterationOperations, closeCountsDoneKeepsArchivedAndCarriesOpenTicketsOn) {
  const Uuid current = sprint("Sprint 1", 2);
  const Uuid next = sprint("Sprint 2", 16);
  const std::vector<Uuid> finished{ticketIn(done, current), ticketIn(done, current), ticketIn(done, current)};
  const Uuid inWork = ticketIn(columns[2], current);
  const Uuid waiting = ticketIn(backlog, current);
  const Uuid archived = ticketIn(backlog, current);
  service.archive(archived, at(2026, 2, 5));
  const Uuid foreign = sprint("Foreign", 2, &other);
  const Uuid old = closedSprint("Sprint 0");

  const auto close = [&](const Uuid& id, IterationCarryOver carryOver) {
    return [&, id, carryOver] { service.closeIteration(id, carryOver, at(2026, 2, 13)); };
  };
  const std::string carryMessage =
      "Open tickets cannot be carried over to the iteration being closed, or to one from another project.";
  expectRefusals({{"planned", close(current, IterationCarryOver::backlog()),
                   "Only an active iteration can be closed. Start it first."}});
  service.startIteration(current, at(2026, 2, 2));
  expectRefusals({
      {"into itself", close(current, IterationCarryOver::into(current)), carryMessage},
      {"into another project", close(current, IterationCarryOver::into(foreign)), carryMessage},
      {"into a closed one", close(current, IterationCarryOver::into(old)), closedMessage},
      {"already closed", close(old, IterationCarryOver::backlog()), closedMessage},
  });

  EXPECT_EQ(service.closeIteration(current, IterationCarryOver::into(next), at(2026, 2, 13, 17)),
            (IterationCloseResult{3, 2}));
  const Iteration closed = iteration(current);
  EXPECT_EQ(closed.closedAt, at(2026, 2, 13, 17));
  EXPECT_EQ(closed.finishedCount, 3);
  EXPECT_EQ(closed.carriedOverCount, 2);
  for (const Uuid& id : finished) EXPECT_EQ(ticket(id).iterationId, current);
  EXPECT_EQ(ticket(archived).iterationId, current);
  EXPECT_EQ(ticket(inWork).iterationId, next);
  EXPECT_EQ(ticket(waiting).iterationId, next);

  service.startIteration(next, at(2026, 2, 16));
  EXPECT_EQ(service.closeIteration(next, IterationCarryOver::backlog(), at(2026, 2, 27)), (IterationCloseResult{0, 2}));
  EXPECT_EQ(ticket(inWork).iterationId, std::nullopt);
}

TEST_F(IterationOperations, deleteKeepsTheTicketsWithoutIteration) {
  const Uuid current = sprint("Sprint 1", 2);
  const Uuid finished = ticketIn(done, current);
  service.startIteration(current, at(2026, 2, 2));
  service.closeIteration(current, IterationCarryOver::backlog(), at(2026, 2, 13));
  service.deleteIteration(current);  // even a closed one
  EXPECT_EQ(rows::find<Iteration>(t.store.db(), current), std::nullopt);
  EXPECT_EQ(ticket(finished).iterationId, std::nullopt);
  EXPECT_EQ(ticket(finished).completedAt, at(2026, 1, 6));
}

}  // namespace
}  // namespace orvane
