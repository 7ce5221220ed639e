#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "core/store/ChangeRecorder.h"
#include "core/support/StoreDump.h"
#include "core/support/TempStore.h"

namespace orvane {
namespace {

using testing::at;
using testing::dumpStore;

// A project with something of everything: tickets in several columns with
// events, comments, a checklist, links and a file link, an epic with a
// milestone, a person, an active iteration and a planned one.
struct Board {
  testing::TempStore temp;
  BoardService& s = temp.service;
  Project project = s.createProject("Apollo", "AP", at(2026, 3, 1));
  std::vector<BoardColumn> columns = s.snapshot(project.id)->columns;
  Epic epic = s.createEpic(project.id, "Launch", "#336699", at(2026, 5, 1));
  Person person = s.createPerson("Ada", std::nullopt);
  Ticket a = s.createTicket(project.id, {.title = "Engine", .epic = epic.id}, at(2026, 3, 2));
  Ticket b = s.createTicket(project.id, {.title = "Fuel"}, at(2026, 3, 2));
  Ticket c = s.createTicket(project.id, {.title = "Crew"}, at(2026, 3, 3));
  Iteration sprint = s.createIteration(project.id, "Sprint 1", "Lift off", at(2026, 3, 2), at(2026, 3, 15));
  Iteration next = s.createIteration(project.id, "Sprint 2", "", at(2026, 3, 16), at(2026, 3, 29));
  TicketLink link;
  BoardColumn added;  // by a step, for the outside change to use

  Board() {
    s.moveTicket(a.id, columns[2].id, std::nullopt, at(2026, 3, 4));
    s.moveTicket(c.id, columns[4].id, std::nullopt, at(2026, 3, 6));
    s.setAssignee(a.id, person.id);
    s.setAssignee(b.id, person.id);
    s.addComment(a.id, "Check the valves", at(2026, 3, 4, 9));
    s.addChecklistItem(a.id, "Order parts");
    s.addChecklistItem(a.id, "Fit");
    link = s.addLink(a.id, b.id, LinkKind::blockedBy, at(2026, 3, 4));
    s.addFileLink(a.id, "/tmp/engine.pdf", at(2026, 3, 4));
    s.createMilestone(project.id, "Demo", at(2026, 4, 1), epic.id, "");
    for (const Ticket& t : {a, b, c}) s.setIteration(t.id, sprint.id);
    s.startIteration(sprint.id, at(2026, 3, 2, 10));
  }
};

struct Operation {
  const char* name;
  std::function<void(Board&)> run;
};
void PrintTo(const Operation& operation, std::ostream* os) { *os << operation.name; }

class ChangeRecorderRoundTrip : public ::testing::TestWithParam<Operation> {};

TEST_P(ChangeRecorderRoundTrip, UndoRestoresTheStoreExactlyAndRedoRepeatsTheStep) {
  Board board;
  Database& db = board.temp.store.db();
  ChangeRecorder recorder(db);
  const std::string before = dumpStore(db);

  const Changeset step = recorder.record([&] { GetParam().run(board); });
  const std::string after = dumpStore(db);
  ASSERT_FALSE(step.empty());
  ASSERT_NE(before, after);

  recorder.revert(step);
  EXPECT_EQ(dumpStore(db), before);
  recorder.reapply(step);
  EXPECT_EQ(dumpStore(db), after);
  // The foreign keys are on again for the service's own operations.
  EXPECT_EQ(db.scalarInt("PRAGMA foreign_keys"), 1);
}

INSTANTIATE_TEST_SUITE_P(
    Operations, ChangeRecorderRoundTrip,
    ::testing::Values(
        Operation{"moveTicket", [](Board& b) { b.s.moveTicket(b.b.id, b.columns[3].id, 0, at(2026, 3, 9)); }},
        Operation{"archive", [](Board& b) { b.s.archive(b.a.id, at(2026, 3, 9)); }},
        Operation{"updateTicket",
                  [](Board& b) {
                    b.s.updateTicket(b.a.id, {"Engine v2", "Bigger", TicketPriority::urgent, at(2026, 4, 2), {"hw"}});
                  }},
        Operation{"deleteTicketWithItsChildren", [](Board& b) { b.s.deleteTicket(b.a.id); }},
        Operation{"deleteProject", [](Board& b) { b.s.deleteProject(b.project.id); }},
        Operation{"addColumn", [](Board& b) { b.s.addColumn(b.project.id, "QA", ColumnType::inProgress, 2, 1); }},
        Operation{"createEpicWithDependency",
                  [](Board& b) {
                    const Epic later = b.s.createEpic(b.project.id, "Orbit", std::nullopt, std::nullopt);
                    b.s.addEpicDependency(later.id, b.epic.id, at(2026, 3, 9));
                  }},
        Operation{
            "closeIterationWithCarryOver",
            [](Board& b) { b.s.closeIteration(b.sprint.id, IterationCarryOver::into(b.next.id), at(2026, 3, 15)); }},
        Operation{"deletePersonLeavesTicketsUnassigned", [](Board& b) { b.s.deletePerson(b.person.id); }},
        Operation{"deleteEpicWithMilestone", [](Board& b) { b.s.deleteEpic(b.epic.id); }}),
    [](const ::testing::TestParamInfo<Operation>& info) { return std::string(info.param.name); });

TEST(ChangeRecorder, AStepThatChangesNothingRecordsNothing) {
  Board board;
  ChangeRecorder recorder(board.temp.store.db());
  EXPECT_TRUE(recorder.record([&] { board.s.setBlocked(board.a.id, false); }).empty());
}

TEST(ChangeRecorder, AFailingStepTakesBackWhatItsEarlierOperationsDid) {
  Board board;
  Database& db = board.temp.store.db();
  const std::string before = dumpStore(db);
  EXPECT_THROW(ChangeRecorder(db).record([&] {
    board.s.createEpic(board.project.id, "Orbit", std::nullopt, std::nullopt);
    board.s.createEpic(board.project.id, "ORBIT", std::nullopt, std::nullopt);
  }),
               PMError);
  EXPECT_EQ(dumpStore(db), before);
}

// Each outside change touches what the step touched; undo must then apply
// nothing at all.
struct OutsideChange {
  const char* name;
  std::function<void(Board&)> step;
  std::function<void(Board&)> outside;
};
void PrintTo(const OutsideChange& change, std::ostream* os) { *os << change.name; }

class ChangeRecorderConflict : public ::testing::TestWithParam<OutsideChange> {};

TEST_P(ChangeRecorderConflict, UndoIsRefusedAndChangesNothing) {
  Board board;
  Database& db = board.temp.store.db();
  ChangeRecorder recorder(db);
  const Changeset step = recorder.record([&] { GetParam().step(board); });
  GetParam().outside(board);
  const std::string changedElsewhere = dumpStore(db);

  try {
    recorder.revert(step);
    FAIL() << "undo was applied";
  } catch (const ChangeConflictError& error) {
    EXPECT_STREQ(error.what(), "This change can no longer be undone because the project was changed elsewhere.");
  }
  EXPECT_EQ(dumpStore(db), changedElsewhere);
  EXPECT_EQ(db.scalarInt("PRAGMA foreign_keys"), 1);
}

INSTANTIATE_TEST_SUITE_P(
    Outside, ChangeRecorderConflict,
    ::testing::Values(OutsideChange{"sameFieldChanged", [](Board& b) { b.s.renameColumn(b.columns[0].id, "Ideas"); },
                                    [](Board& b) { b.s.renameColumn(b.columns[0].id, "Inbox"); }},
                      OutsideChange{"addedRowsParentDeleted",
                                    [](Board& b) { b.s.addComment(b.b.id, "Soon", at(2026, 3, 9)); },
                                    [](Board& b) { b.s.deleteTicket(b.b.id); }},
                      // Undo would bring back a link to a ticket that is gone:
                      // no row conflicts, only the reference check catches it.
                      // Undo would delete a column a ticket was moved into
                      // meanwhile; only the reference check sees it.
                      OutsideChange{"deletedRowStillReferenced",
                                    [](Board& b) {
                                      b.added = b.s.addColumn(b.project.id, "QA", ColumnType::inProgress, std::nullopt,
                                                              std::nullopt);
                                    },
                                    [](Board& b) { b.s.moveTicket(b.b.id, b.added.id, std::nullopt, at(2026, 3, 9)); }},
                      OutsideChange{"restoredRowWouldDangle", [](Board& b) { b.s.removeLink(b.link.id); },
                                    [](Board& b) { b.s.deleteTicket(b.b.id); }}),
    [](const ::testing::TestParamInfo<OutsideChange>& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace orvane
