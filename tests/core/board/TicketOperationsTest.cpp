#include <gtest/gtest.h>

#include <limits>

#include "core/exchange/TicketCsv.h"
#include "core/exchange/TicketImport.h"
#include "core/store/Rows.h"
#include "core/support/TempStore.h"

namespace orvane {
namespace {

using testing::at;

// A board of Backlog, Doing (limit 3), Done and Shipped (both done).
struct Board {
  testing::TempStore t;
  Project project = t.service.createProject("Flow", std::nullopt, Timestamp{0},
                                            {{"Backlog", ColumnType::backlog, {}},
                                             {"Doing", ColumnType::inProgress, 3},
                                             {"Done", ColumnType::done, {}},
                                             {"Shipped", ColumnType::done, {}}});
  std::vector<BoardColumn> columns =
      rows::select<BoardColumn>(t.store.db(), "WHERE project_id = ?1 ORDER BY position", project.id);
  Uuid backlog = columns[0].id, doing = columns[1].id, done = columns[2].id, shipped = columns[3].id;

  Uuid add(const std::string& title, std::optional<Uuid> column = std::nullopt, Timestamp now = Timestamp{0}) {
    return t.service.createTicket(project.id, {.title = title, .column = column}, now).id;
  }
  Ticket get(const Uuid& id) { return *rows::find<Ticket>(t.store.db(), id); }
  // Titles of the column's active tickets in order; a position out of step shows as "!".
  std::string order(const Uuid& column) {
    std::string titles;
    const auto tickets =
        rows::select<Ticket>(t.store.db(), "WHERE column_id = ?1 AND archived_at IS NULL ORDER BY position", column);
    for (std::size_t i = 0; i < tickets.size(); ++i) {
      titles += (i ? " " : "") + tickets[i].title + (tickets[i].position == static_cast<std::int64_t>(i) ? "" : "!");
    }
    return titles;
  }
  // "from>to" for each event of the ticket, oldest first.
  std::string history(const Uuid& ticket) {
    std::string moves;
    for (const TicketEvent& e : rows::select<TicketEvent>(t.store.db(), "WHERE ticket_id = ?1 ORDER BY at", ticket)) {
      moves += (moves.empty() ? "" : ", ") + e.fromColumnName.value_or("-") + ">" + e.toColumnName;
    }
    return moves;
  }
};

TEST(TicketOperations, NewTicketsAreNumberedPlacedAtTheBottomAndStampedByTheirColumn) {
  Board b;
  const Epic epic{Uuid::random(), "Checkout", std::nullopt, std::nullopt, std::nullopt, "", b.project.id};
  rows::insert(b.t.store.db(), epic);
  const Ticket first = b.t.service.createTicket(
      b.project.id,
      {" Pay \n", " by card ", TicketPriority::high, std::nullopt, epic.id, at(2025, 3, 1), {" ui ", " ", "x"}},
      at(2025, 1, 6));
  const Ticket expected{first.id,     1,         "Pay",  "by card",      2,           0,     at(2025, 1, 6),
                        {},           {},        {},     at(2025, 3, 1), {"ui", "x"}, false, false,
                        b.project.id, b.backlog, epic.id};  // in the first backlog column, not started
  EXPECT_EQ(first, expected);
  EXPECT_EQ(b.get(first.id), first);
  EXPECT_EQ(b.history(first.id), "->Backlog");

  const Ticket started = b.get(b.add("Started", b.doing, at(2025, 1, 7)));
  const Ticket finished = b.get(b.add("Finished", b.done, at(2025, 1, 8)));
  EXPECT_EQ(started.flow(), (FlowState{at(2025, 1, 7), std::nullopt}));
  EXPECT_EQ(finished.flow(), (FlowState{at(2025, 1, 8), at(2025, 1, 8)}));

  b.add("Four");
  b.add("Five");
  b.t.service.deleteTicket(started.id);  // number 2 is not reused
  EXPECT_EQ(b.get(b.add("Six")).number, 6);
  EXPECT_EQ(b.order(b.backlog), "Pay Four Five Six");
  EXPECT_EQ(rows::find<Project>(b.t.store.db(), b.project.id)->nextTicketNumber, 7);
}

TEST(TicketOperations, MovesBetweenColumnsStampFlowDatesAndRecordEachChange) {
  Board b;
  const Uuid card = b.add("Card");
  const auto move = [&](const Uuid& column, int day) {
    EXPECT_EQ(b.t.service.moveTicket(card, column, std::nullopt, at(2025, 2, day)), (MoveResult{true, false}));
    return b.get(card).flow();
  };
  EXPECT_EQ(move(b.done, 1), (FlowState{at(2025, 2, 1), at(2025, 2, 1)}));
  EXPECT_EQ(move(b.shipped, 2), (FlowState{at(2025, 2, 1), at(2025, 2, 1)}));
  EXPECT_EQ(move(b.doing, 3), (FlowState{at(2025, 2, 1), std::nullopt}));
  EXPECT_EQ(move(b.done, 4), (FlowState{at(2025, 2, 1), at(2025, 2, 4)}));
  EXPECT_EQ(move(b.backlog, 5), (FlowState{at(2025, 2, 1), std::nullopt}));
  b.t.service.renameColumn(b.done, "Finished");
  EXPECT_EQ(b.history(card), "->Backlog, Backlog>Done, Done>Shipped, Shipped>Doing, Doing>Done, Done>Backlog");
  const TicketEvent last = rows::select<TicketEvent>(b.t.store.db(), "WHERE ticket_id = ?1 ORDER BY at DESC", card)[0];
  EXPECT_EQ(std::tie(last.fromColumnId, last.toColumnId, last.at), std::make_tuple(b.done, b.backlog, at(2025, 2, 5)));
}

TEST(TicketOperations, ReorderingClampsTheIndexAndRecordsNothing) {
  Board b;
  for (const char* title : {"a", "b", "c", "d"}) b.add(title, b.doing, at(2025, 1, 1));
  const Uuid e = b.add("e", b.doing, at(2025, 1, 1));  // limit 3: already over
  const Ticket before = b.get(e);
  const auto reorder = [&](std::optional<std::int64_t> index) {
    EXPECT_EQ(b.t.service.moveTicket(e, b.doing, index, at(2025, 2, 1)), (MoveResult{false, true}));
    return b.order(b.doing);
  };
  EXPECT_EQ(reorder(-5), "e a b c d");
  EXPECT_EQ(reorder(2), "a b e c d");
  EXPECT_EQ(reorder(99), "a b c d e");
  EXPECT_EQ(reorder(0), "e a b c d");
  EXPECT_EQ(reorder(std::nullopt), "a b c d e");
  EXPECT_EQ(b.get(e).flow(), before.flow());
  EXPECT_EQ(b.history(e), "->Doing");
}

TEST(TicketOperations, MovingIntoAColumnRenumbersBothAndWarnsOnlyAboveTheLimit) {
  Board b;
  std::vector<Uuid> cards;
  for (const char* title : {"a", "b", "c", "d", "e"}) cards.push_back(b.add(title));
  const std::optional<std::int64_t> top = 0;
  EXPECT_EQ(b.t.service.moveTicket(cards[1], b.doing, top, Timestamp{1}).wipLimitExceeded, false);
  EXPECT_EQ(b.t.service.moveTicket(cards[3], b.doing, 99, Timestamp{1}).wipLimitExceeded, false);
  EXPECT_EQ(b.t.service.moveTicket(cards[0], b.doing, 1, Timestamp{1}).wipLimitExceeded, false);  // 3 of 3
  EXPECT_EQ(b.order(b.backlog), "c e");
  EXPECT_EQ(b.t.service.moveTicket(cards[4], b.doing, -1, Timestamp{1}), (MoveResult{true, true}));  // 4 of 3
  EXPECT_EQ(b.order(b.doing), "e b a d");
  EXPECT_EQ(b.t.service.moveTicket(cards[2], b.done, std::nullopt, Timestamp{1}).wipLimitExceeded, false);
  EXPECT_EQ(b.order(b.backlog), "");
}

TEST(TicketOperations, ArchivingRestoringAndDeletingKeepTheColumnContiguous) {
  Board b;
  const Uuid a = b.add("a"), x = b.add("x", b.doing, at(2025, 1, 2)), c = b.add("c");
  b.t.service.moveTicket(x, b.backlog, 1, at(2025, 1, 3));
  b.t.service.archive(x, at(2025, 1, 4));
  b.t.service.archive(x, at(2025, 1, 9));  // already archived: left as it is
  EXPECT_EQ(b.order(b.backlog), "a c");
  const Ticket archived = b.get(x);
  EXPECT_EQ(archived.archivedAt, at(2025, 1, 4));
  EXPECT_EQ(std::tie(archived.columnId, archived.startedAt), std::make_tuple(b.backlog, at(2025, 1, 2)));

  b.t.service.unarchive(x);
  b.t.service.unarchive(x);
  EXPECT_EQ(b.order(b.backlog), "a c x");
  b.t.service.deleteTicket(a);
  EXPECT_EQ(b.order(b.backlog), "c x");
  EXPECT_EQ(b.t.store.db().scalarInt("SELECT count(*) FROM ticket_events"), 3);  // a's event went with it
  b.t.service.archive(c, Timestamp{1});
  b.t.service.deleteTicket(c);
  EXPECT_EQ(b.get(x).position, 0);
}

TEST(TicketOperations, EditsAreTrimmedAndEpicsAssignedWithinTheProject) {
  Board b;
  const Uuid card = b.add("Card");
  const Epic epic{Uuid::random(), "Checkout", std::nullopt, std::nullopt, std::nullopt, "", b.project.id};
  rows::insert(b.t.store.db(), epic);
  b.t.service.updateTicket(card,
                           {" New title ", "\n notes ", TicketPriority::urgent, at(2025, 5, 1), {" a ", "\t", "b"}});
  b.t.service.assign(card, epic.id);
  Ticket edited = b.get(card);
  EXPECT_EQ(std::tie(edited.title, edited.details, edited.tags),
            std::make_tuple("New title", "notes", std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(std::tie(edited.priorityRaw, edited.dueDate, edited.epicId), std::make_tuple(3, at(2025, 5, 1), epic.id));
  b.t.service.assign(card, std::nullopt);
  EXPECT_EQ(b.get(card).epicId, std::nullopt);
}

TEST(TicketOperations, ACounterAStoreLeftBehindNeverReusesOrOverflowsANumber) {
  // Counters an older version or another tool could have stored, with
  // tickets 1 to 3 in use: each new ticket, added or imported, takes a
  // number no ticket has.
  const struct {
    std::int64_t counter;
    std::int64_t next;
  } cases[] = {{4, 4},
               {10, 10},
               {3, 4},
               {1, 4},
               {0, 4},
               {-7, 4},
               {maxTicketNumber, maxTicketNumber},
               {maxTicketNumber + 1, 4},
               {std::numeric_limits<std::int64_t>::max(), 4}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.counter);
    Board b;
    for (const char* title : {"One", "Two", "Three"}) b.add(title);
    b.t.store.db()
        .cached("UPDATE projects SET next_ticket_number = ?1 WHERE id = ?2")
        .bindAll(c.counter, b.project.id)
        .run();
    EXPECT_EQ(b.get(b.add("Next")).number, c.next);
    const ImportReport imported =
        importTickets(b.t.store, TicketCSV::parse("title\nImported\n"), b.project.id, at(2025, 1, 2), false);
    ASSERT_EQ(imported.imported, 1);
    EXPECT_EQ(rows::find<Project>(b.t.store.db(), b.project.id)->nextTicketNumber, c.next + 2);
  }
}

TEST(TicketOperations, AColumnOfUnknownTypeActsAsBacklog) {
  Board b;
  b.t.store.db().cached("UPDATE board_columns SET type_raw = 'icebox' WHERE id = ?1").bindAll(b.backlog).run();
  const Uuid card = b.add("Card", b.done, at(2025, 1, 1));
  b.t.service.moveTicket(card, b.backlog, std::nullopt, at(2025, 1, 2));
  EXPECT_EQ(b.get(card).flow(), (FlowState{at(2025, 1, 1), std::nullopt}));
  EXPECT_EQ(b.get(b.add("Default")).columnId, b.backlog);
}

TEST(TicketOperations, AMoveInALongColumnWritesOnlyTheRowsItChanges) {
  Board b;
  std::vector<Uuid> cards;
  for (int i = 0; i < 500; ++i) cards.push_back(b.add(std::to_string(i)));
  sqlite3* db = b.t.store.db().handle();
  const int before = sqlite3_total_changes(db);
  b.t.service.moveTicket(cards[10], b.backlog, 12, Timestamp{1});
  EXPECT_EQ(sqlite3_total_changes(db) - before, 3);
}

}  // namespace
}  // namespace orvane
