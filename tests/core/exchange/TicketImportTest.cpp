#include <gtest/gtest.h>

#include <algorithm>

#include "core/exchange/IsoDateTime.h"
#include "core/exchange/TicketImport.h"
#include "core/support/StoreDump.h"
#include "core/support/TempStore.h"

namespace orvane {
namespace {

using testing::at;

class TicketImportTest : public ::testing::Test {
 protected:
  testing::TempStore t;
  BoardService& service = t.service;
  // Standard board: Backlog, To Do, In Progress, Review, Done.
  Project project = service.createProject("Shop", std::nullopt, at(2026, 1, 5));
  Timestamp now = at(2026, 3, 1);

  ProjectSnapshot snapshot(const Uuid& id) { return *service.snapshot(id); }
  ImportReport import(const std::string& text, bool extend = false) {
    return importTickets(t.store, TicketCSV::parse(text), project.id, now, extend);
  }
  const Ticket& only(const ProjectSnapshot& s) {
    EXPECT_EQ(s.tickets.size(), 1u);
    return s.tickets.front();
  }
};

TEST_F(TicketImportTest, ExportThenImportGivesTheSameTickets) {
  const Uuid source = service.createProject("Old", std::nullopt, at(2025, 12, 1)).id;
  const auto columns = snapshot(source).columns;
  const Epic epic = service.createEpic(source, "Checkout", std::nullopt, std::nullopt);
  const Person ana = service.createPerson("Ana", std::nullopt);
  auto make = [&](const char* title, Timestamp created) {
    return service
        .createTicket(source,
                      NewTicket{.title = title,
                                .details = "line one\nline \"two\", three",
                                .priority = TicketPriority::high,
                                .epic = epic.id,
                                .dueDate = at(2026, 2, 1, 0),
                                .tags = {"api", "ui"}},
                      created)
        .id;
  };
  const Uuid a = make("Pay", at(2025, 12, 2));
  const Uuid b = make("Refund", at(2025, 12, 3));
  const Uuid c = make("Receipt", at(2025, 12, 4));
  const Uuid d = service.createTicket(source, NewTicket{.title = " Plain"}, at(2025, 12, 5)).id;
  service.moveTicket(a, columns[2].id, std::nullopt, at(2025, 12, 6));
  service.moveTicket(a, columns[4].id, std::nullopt, at(2025, 12, 9));
  service.moveTicket(b, columns[2].id, std::nullopt, at(2025, 12, 7));
  service.moveTicket(c, columns[4].id, std::nullopt, at(2025, 12, 8));
  service.moveTicket(d, columns[1].id, std::nullopt, at(2025, 12, 8));
  service.setAssignee(b, ana.id);
  service.setBlocked(b, true);
  service.archive(c, at(2025, 12, 10));

  const std::string exported = TicketCSV::exportText(snapshot(source));
  // Board order: To Do, In Progress, Done, then Done's archived ticket.
  EXPECT_EQ(exported.substr(exported.find("\nPlain")),
            "\nPlain,,To Do,Medium,,,2025-12-05T12:00:00Z,,,,,,\n"
            "Refund,\"line one\nline \"\"two\"\", three\",In Progress,High,Checkout,api|ui,2025-12-03T12:00:00Z,"
            "2025-12-07T12:00:00Z,,,2026-02-01T00:00:00Z,Ana,Yes\n"
            "Pay,\"line one\nline \"\"two\"\", three\",Done,High,Checkout,api|ui,2025-12-02T12:00:00Z,"
            "2025-12-06T12:00:00Z,2025-12-09T12:00:00Z,,2026-02-01T00:00:00Z,,\n"
            "Receipt,\"line one\nline \"\"two\"\", three\",Done,High,Checkout,api|ui,2025-12-04T12:00:00Z,"
            "2025-12-08T12:00:00Z,2025-12-08T12:00:00Z,2025-12-10T12:00:00Z,2026-02-01T00:00:00Z,,\n");
  const ImportReport report = import(exported);
  EXPECT_EQ(report.imported, 4);
  EXPECT_EQ(report.createdEpics, 1);
  EXPECT_EQ(report.createdPeople, 0);  // Ana is global and reused
  EXPECT_TRUE(report.issues.empty());
  EXPECT_EQ(TicketCSV::exportText(snapshot(project.id)), exported);

  const auto copy = snapshot(project.id);
  EXPECT_EQ(copy.project.nextTicketNumber, 5);
  // Pay's history is replayed: created in Backlog, started, then done.
  const auto pay =
      std::find_if(copy.tickets.begin(), copy.tickets.end(), [](const Ticket& t) { return t.title == "Pay"; });
  ASSERT_NE(pay, copy.tickets.end());
  std::vector<std::string> moves;
  for (const auto& event : copy.events)
    if (event.ticketId == pay->id) moves.push_back(event.toColumnName);
  EXPECT_EQ(moves, (std::vector<std::string>{"Backlog", "In Progress", "Done"}));
}

TEST_F(TicketImportTest, ReconcilesDatesWithTheColumnType) {
  const struct {
    const char* label;
    const char* row;  // column,created_at,started_at,completed_at,archived_at
    std::vector<ImportIssue> issues;
    const char* started;
    const char* completed;
    const char* created;
  } cases[] = {
      {"backlog drops flow dates",
       "Backlog,2026-01-01,2026-01-02,2026-01-03,",
       {{2, "started_at and completed_at are ignored for a ticket in a Backlog column.", false}},
       "",
       "",
       "2026-01-01"},
      {"in progress drops completion",
       "In Progress,2026-01-01,2026-01-02,2026-01-03,",
       {{2, "completed_at is ignored for a ticket that is not in a Done column.", false}},
       "2026-01-02",
       "",
       "2026-01-01"},
      {"in progress without start starts at creation", "In Progress,2026-01-01,,,", {}, "2026-01-01", "", "2026-01-01"},
      {"done without dates completes at creation",
       "Done,,,,",
       {{2, "No completed_at for a ticket in a Done column; created_at was used.", false}},
       "2026-03-01T12:00:00Z",
       "2026-03-01T12:00:00Z",
       "2026-03-01T12:00:00Z"},
      {"created moved earlier",
       "Done,2026-01-05,2026-01-02,2026-01-03,",
       {{2, "created_at was later than started_at or completed_at and was moved earlier.", false}},
       "2026-01-02",
       "2026-01-03",
       "2026-01-02"},
      {"archived moved later",
       "Done,2026-01-01,2026-01-02,2026-01-04,2026-01-03",
       {{2, "archived_at was earlier than the ticket's last activity and was moved later.", false}},
       "2026-01-02",
       "2026-01-04",
       "2026-01-01"},
      {"completed before started",
       "Done,2026-01-01,2026-01-04,2026-01-03,",
       {{2, "completed_at is earlier than started_at. Row skipped.", true}},
       nullptr,
       nullptr,
       nullptr},
      {"unknown column", "Later,,,,", {{2, "Unknown column \"Later\". Row skipped.", true}}, nullptr, nullptr, nullptr},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.label);
    testing::TempStore fresh;
    const Project target = fresh.service.createProject("P", std::nullopt, at(2025, 1, 1));
    const std::string text = std::string("title,column,created_at,started_at,completed_at,archived_at\nT,") + c.row;
    const ImportReport report = importTickets(fresh.store, TicketCSV::parse(text), target.id, now, false);
    EXPECT_EQ(report.issues, c.issues);
    const auto s = *fresh.service.snapshot(target.id);
    if (!c.created) {
      EXPECT_EQ(report.imported, 0);
      EXPECT_TRUE(s.tickets.empty());
      EXPECT_EQ(report.errorCount(), 1);
      continue;
    }
    ASSERT_EQ(s.tickets.size(), 1u);
    const Ticket& ticket = s.tickets.front();
    auto date = [](const char* text) { return *text ? ISODateTime::parse(text) : std::nullopt; };
    EXPECT_EQ(ticket.createdAt, date(c.created));
    EXPECT_EQ(ticket.startedAt, date(c.started));
    EXPECT_EQ(ticket.completedAt, date(c.completed));
  }
}

TEST_F(TicketImportTest, CreatesEpicsAndPeopleOnceAndPlacesTicketsAtTheBottom) {
  service.createTicket(project.id, NewTicket{.title = "Existing"}, at(2026, 1, 6));
  service.createPerson("Ana Souza", std::nullopt);
  const ImportReport report = import(
      "title,column,epic,assignee,blocked,tags\n"
      "One,,Billing,ana souza,No,a| |b\n"
      "Two,backlog,BILLING,Bo,,\n"
      "Three,To Do,Search,bo,yes,\n");
  EXPECT_EQ(report.imported, 3);
  EXPECT_EQ(report.createdEpics, 2);
  EXPECT_EQ(report.createdPeople, 1);
  EXPECT_EQ(report.issues.size(), 1u);  // the "No" of blocked
  const auto s = snapshot(project.id);
  ASSERT_EQ(s.tickets.size(), 4u);
  EXPECT_EQ(s.tickets[1].position, 1);  // after "Existing" in Backlog
  EXPECT_EQ(s.tickets[2].position, 2);
  EXPECT_EQ(s.tickets[3].position, 0);
  EXPECT_EQ(s.tickets[1].columnId, s.columns[0].id);  // an empty cell is the first backlog column
  EXPECT_EQ(s.tickets[1].epicId, s.tickets[2].epicId);
  EXPECT_EQ(s.tickets[2].assigneeId, s.tickets[3].assigneeId);
  EXPECT_FALSE(s.tickets[1].blocked);
  EXPECT_TRUE(s.tickets[3].blocked);
  EXPECT_EQ(s.tickets[1].tags, (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(s.tickets[2].createdAt, now);
}

TEST_F(TicketImportTest, FindsEpicsAndPeopleByTheirLowerCasedName) {
  // Two epics and two people whose names only case folding confuses.
  const Epic strasse = service.createEpic(project.id, "Straße", std::nullopt, std::nullopt);
  const Epic upper = service.createEpic(project.id, "STRASSE", std::nullopt, std::nullopt);
  const Person weiss = service.createPerson("weiss", std::nullopt);
  const Person sharpS = service.createPerson("Weiß", std::nullopt);
  const ImportReport report = import(
      "title,epic,assignee\n"
      "One,strasse,WEISS\n"
      "Two,STRAßE,weiß\n");
  EXPECT_EQ(report.imported, 2);
  EXPECT_EQ(report.createdEpics, 0);
  EXPECT_EQ(report.createdPeople, 0);
  const auto s = snapshot(project.id);
  ASSERT_EQ(s.tickets.size(), 2u);
  EXPECT_EQ(s.tickets[0].epicId, upper.id);
  EXPECT_EQ(s.tickets[0].assigneeId, weiss.id);
  EXPECT_EQ(s.tickets[1].epicId, strasse.id);
  EXPECT_EQ(s.tickets[1].assigneeId, sharpS.id);
}

TEST_F(TicketImportTest, ExtendsTheProjectHistoryOnlyWhenAsked) {
  const std::string text = "title,created_at\nOld,2025-06-01\nNewer,2025-09-01\n";
  EXPECT_EQ(import(text).projectHistoryExtendedTo, std::nullopt);
  EXPECT_EQ(snapshot(project.id).project.createdAt, project.createdAt);
  const ImportReport report = import(text, true);
  EXPECT_EQ(report.projectHistoryExtendedTo, ISODateTime::parse("2025-06-01"));
  EXPECT_EQ(snapshot(project.id).project.createdAt, *ISODateTime::parse("2025-06-01"));
}

TEST_F(TicketImportTest, LeavesTheStoreAloneWhenTheProjectIsGone) {
  const std::string before = testing::dumpStore(t.store.db());
  EXPECT_THROW(importTickets(t.store, TicketCSV::parse("title\nA\n"), Uuid::random(), now, false), MissingRecordError);
  EXPECT_EQ(testing::dumpStore(t.store.db()), before);
}

}  // namespace
}  // namespace orvane
