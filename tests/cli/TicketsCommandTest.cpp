#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "cli/CliRun.h"
#include "core/support/TempStore.h"

namespace orvane::cli::testing {
namespace {

using nlohmann::json;
using orvane::testing::at;

class TicketsCommand : public ::testing::Test {
 protected:
  orvane::testing::TempStore t;
  std::string path = (t.dir.path() / "orvane.sqlite").string();

  void SetUp() override {
    BoardService& service = t.service;
    const Uuid shop = service.createProject("Shop", "SH", at(2026, 1, 5)).id;
    const Person emile = service.createPerson("Émile", std::nullopt);
    const Epic checkout = service.createEpic(shop, "Checkout", std::nullopt, std::nullopt);
    const Iteration sprint = service.createIteration(shop, "Sprint 1", "", at(2026, 1, 5), at(2026, 1, 18));
    const Uuid pay =
        service
            .createTicket(
                shop,
                {.title = "Payment form", .priority = TicketPriority::high, .epic = checkout.id, .tags = {"backend"}},
                at(2026, 1, 6))
            .id;
    service.setAssignee(pay, emile.id);
    service.setIteration(pay, sprint.id);
    service.startIteration(sprint.id, at(2026, 1, 6));
    const Uuid copy = service.createTicket(shop, {.title = "Copy text"}, at(2026, 1, 6)).id;
    service.setBlocked(copy, true);
    service.setThisWeek(copy, true);
    const Uuid old = service.createTicket(shop, {.title = "Old idea"}, at(2026, 1, 6)).id;
    service.archive(old, at(2026, 1, 7));
  }

  CliRun run(std::vector<std::string> args) {
    args.insert(args.begin(), {"--store", path, "tickets", "shop"});
    return runWith(args);
  }
  std::string ok(std::vector<std::string> args) {
    const CliRun result = run(std::move(args));
    EXPECT_EQ(result.code, 0) << result.err;
    return result.out;
  }
};

TEST_F(TicketsCommand, ListsWhatEachFilterLeaves) {
  EXPECT_EQ(ok({}),
            "SH-1  Payment form  [Backlog, High] @Émile\n"
            "SH-2  Copy text  [Backlog, Medium] [Blocked]\n"
            "2 tickets.\n");
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
      {{"--text", "EMILE pay"}, "SH-1"},
      {{"--epic", "checkout"}, "SH-1"},
      {{"--assignee", "émile"}, "SH-1"},
      {{"--unassigned"}, "SH-2"},
      {{"--priority", "High"}, "SH-1"},
      {{"--tag", "Backend"}, "SH-1"},
      {{"--status", "not-started"}, "SH-1 SH-2"},
      {{"--status", "done"}, ""},
      {{"--blocked"}, "SH-2"},
      {{"--this-week"}, "SH-2"},
      {{"--iteration", "active"}, "SH-1"},
      {{"--iteration", "none"}, "SH-2"},
      {{"--iteration", "sprint 1"}, "SH-1"},
      {{"--archived"}, "SH-3"},
      {{"--include-archived"}, "SH-1 SH-2 SH-3"},
  };
  for (const auto& [args, refs] : cases) {
    SCOPED_TRACE(args.front());
    std::vector<std::string> withJson = args;
    withJson.push_back("--json");
    const json listed = json::parse(ok(withJson));
    std::string found;
    for (const json& ticket : listed["tickets"]) found += (found.empty() ? "" : " ") + ticket["ref"].get<std::string>();
    EXPECT_EQ(found, refs);
    EXPECT_EQ(listed["count"], listed["tickets"].size());
  }
  EXPECT_EQ(ok({"--status", "done"}), "No tickets match.\n");
}

TEST_F(TicketsCommand, RefusesWhatItCannotFind) {
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
      {{"--status", "started"}, "--status must be not-started, in-progress, done or any, not \"started\".\n"},
      {{"--assignee", "Nobody"}, "There is no person \"Nobody\"; assignees are named as in the people list.\n"},
      {{"--priority", "huge"}, "--priority must be low, medium, high or urgent, not \"huge\".\n"},
      {{"--iteration", "Sprint 9"}, "There is no iteration \"Sprint 9\" in \"Shop\"; its iterations are Sprint 1.\n"},
  };
  for (const auto& [args, message] : cases) {
    const CliRun result = run(args);
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.err, message);
    EXPECT_EQ(result.out, "");
  }
}

}  // namespace
}  // namespace orvane::cli::testing
