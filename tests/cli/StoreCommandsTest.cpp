#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "cli/CliRun.h"
#include "cli/GlobalOptions.h"
#include "cli/StoreFileTest.h"
#include "core/store/Rows.h"
#include "core/support/StoreDump.h"
#include "core/support/TempStore.h"

namespace orvane::cli::testing {
namespace {

using nlohmann::json;

// 2026-03-05T10:00:00Z, given with --now; the runner's own clock differs.
constexpr Timestamp commandNow{1772704800.0};

class StoreCommands : public StoreFileTest {
 protected:
};

TEST_F(StoreCommands, createAddMoveShowArchiveAndRestore) {
  EXPECT_EQ(ok({"project", "create", "Web shop", "--key", "ws"}), "Created project \"Web shop\" with key WS.\n");
  EXPECT_EQ(ok({"ticket", "add", "web SHOP", "  Checkout  "}), "WS-1\n");
  EXPECT_EQ(ok({"ticket", "add", "ws", "Payment", "--column", "to do", "--priority", "Urgent"}), "WS-2\n");
  for (const char* title : {"R1", "R2", "R3"}) ok({"ticket", "add", "WS", title, "--column", "REVIEW"});
  EXPECT_EQ(ok({"ticket", "move", "ws", "ws-1", "Review", "--index", "1"}),
            "Moved WS-1 from Backlog to Review.\nOver the WIP limit: Review holds 4 tickets, its limit is 3.\n");
  EXPECT_EQ(ok({"ticket", "move", "ws", "2", "to do", "--index", "-4"}), "Reordered WS-2 within To Do.\n");

  EXPECT_EQ(ok({"board", "WS"}),
            "Web shop (WS)\n"
            "\nBacklog [backlog] 0 tickets\n"
            "\nTo Do [backlog] 1 ticket\n"
            "  WS-2  Payment  [Urgent]\n"
            "\nIn Progress [in progress] 0 tickets, WIP limit 5\n"
            "\nReview [in progress] 4 tickets, WIP limit 3 - Over the WIP limit\n"
            "  WS-3  R1  [Medium]\n"
            "  WS-1  Checkout  [Medium]\n"
            "  WS-4  R2  [Medium]\n"
            "  WS-5  R3  [Medium]\n"
            "\nDone [done] 0 tickets\n");
  const json board = json::parse(ok({"board", "Web Shop", "--json"}));
  EXPECT_EQ(board["project"]["key"], "WS");
  ASSERT_EQ(board["columns"].size(), 5u);
  const json& review = board["columns"][3];
  EXPECT_EQ(review["type"], "in_progress");
  EXPECT_EQ(review["wipLimit"], 3);
  EXPECT_EQ(review["count"], 4);
  EXPECT_EQ(review["overWipLimit"], true);
  EXPECT_EQ(review["tickets"][1], (json{{"ref", "WS-1"},
                                        {"number", 1},
                                        {"title", "Checkout"},
                                        {"priority", "medium"},
                                        {"assignee", nullptr},
                                        {"blocked", false}}));
  EXPECT_EQ(board["columns"][0]["wipLimit"], nullptr);

  EXPECT_EQ(ok({"ticket", "archive", "ws", "WS-2"}), "Archived WS-2.\n");
  EXPECT_EQ(ok({"ticket", "archive", "ws", "WS-2"}), "WS-2 is already archived.\n");
  EXPECT_EQ(json::parse(ok({"projects", "--json"})), (json::array({{{"id", board["project"]["id"]},
                                                                    {"name", "Web shop"},
                                                                    {"key", "WS"},
                                                                    {"openTickets", 4},
                                                                    {"tickets", 4}}})));
  EXPECT_EQ(ok({"ticket", "restore", "ws", "ws-2"}), "Restored WS-2 to To Do.\n");
  EXPECT_EQ(ok({"projects"}), "PROJECT   KEY  OPEN  TICKETS\nWeb shop  WS      5        5\n");

  // Everything happened at --now, not at the runner's clock.
  Store store = Store::open(path);
  const auto tickets = rows::select<Ticket>(store.db(), "ORDER BY number");
  EXPECT_EQ(tickets[0].createdAt, commandNow);
  EXPECT_EQ(tickets[0].startedAt, commandNow);
  for (const TicketEvent& event : rows::select<TicketEvent>(store.db(), "")) EXPECT_EQ(event.at, commandNow);
}

TEST_F(StoreCommands, refusalsExplainThemselvesAndChangeNothing) {
  ok({"project", "create", "Web shop", "--key", "WS"});
  ok({"ticket", "add", "WS", "Archived one"});
  ok({"ticket", "archive", "WS", "WS-1"});
  const std::string before = [&] {
    Store store = Store::open(path);
    return orvane::testing::dumpStore(store.db());
  }();

  const struct {
    std::vector<std::string> args;
    std::string err;
  } cases[] = {
      {{"ticket", "move", "WS", "WS-1", "Done"}, "Archived tickets cannot be moved. Restore the ticket first.\n"},
      {{"project", "create", " WEB SHOP "}, "\"WEB SHOP\" is already in use.\n"},
      {{"ticket", "add", "WS", " \n "}, "A name, title or comment cannot be empty.\n"},
      {{"board", "Shop"}, "There is no project \"Shop\"; run \"orvane-cli projects\" to list them.\n"},
      {{"ticket", "archive", "WS", "WS-7"}, "There is no ticket WS-7 in \"Web shop\".\n"},
      {{"ticket", "archive", "WS", "SHOP-1"}, "There is no ticket SHOP-1 in \"Web shop\".\n"},
      {{"ticket", "archive", "WS", "WS-x"}, "\"WS-x\" is not a ticket reference like WS-12.\n"},
      {{"ticket", "add", "WS", "T", "--column", "Doing"},
       "There is no column \"Doing\" in \"Web shop\"; its columns are Backlog, To Do, In Progress, Review, Done.\n"},
      {{"ticket", "add", "WS", "T", "--epic", "Launch"},
       "There is no epic \"Launch\" in \"Web shop\"; it has no epics.\n"},
      {{"ticket", "add", "WS", "T", "--priority", "asap"},
       "--priority must be low, medium, high or urgent, not \"asap\".\n"},
      {{"ticket", "move", "WS", "WS-1", "Done", "--index", "top"},
       "--index needs a whole number, such as --index 0 for the top.\n"},
      {{"ticket", "move", "WS", "WS-1"},
       "ticket move needs PROJECT, REF and COLUMN; run \"orvane-cli ticket move --help\" for its usage.\n"},
      {{"ticket", "restore", "WS", "WS-1", "extra"},
       "Unexpected argument \"extra\"; ticket restore takes PROJECT and REF.\n"},
      {{"ticket", "close", "WS"}, "Unknown ticket command \"close\"; use add, move, archive or restore.\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.args[0] + " " + c.args[1]);
    const CliRun result = run(c.args);
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, c.err);
  }
  Store store = Store::open(path);
  EXPECT_EQ(orvane::testing::dumpStore(store.db()), before);
}

TEST_F(StoreCommands, aFileThatIsNotAnOrvaneStoreIsRefusedAndLeftAlone) {
  const std::filesystem::path notes = dir.path() / "notes.txt";
  const std::string text = "Shopping list: milk, eggs, a database that is not one.\n";
  std::ofstream(notes, std::ios::binary) << text;
  const CliRun result = runWith({"--store", notes.string(), "projects"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "The database could not be opened: \"" + notes.string() + "\" is not an Orvane database.\n");
  std::ifstream in(notes, std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), text);

  // simulate needs no store, so it never creates one.
  const std::filesystem::path unused = dir.path() / "unused" / "orvane.sqlite";
  EXPECT_EQ(runWith({"--store", unused.string(), "simulate", "--samples", "3", "--backlog", "3"}).code, 0);
  EXPECT_FALSE(std::filesystem::exists(unused.parent_path()));
}

TEST_F(StoreCommands, aFolderOrAPipeGivenAsTheStoreIsRefusedAtOnce) {
  const std::filesystem::path fifo = dir.path() / "pipe.sqlite";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  const struct {
    std::filesystem::path path;
    std::string err;
  } cases[] = {
      {dir.path(), "\"" + dir.path().string() +
                       "\" is a folder, not a database file; give the path of a file in it, such as \"" +
                       (dir.path() / "orvane.sqlite").string() + "\"."},
      // SQLite would wait for ever for a writer on the other end.
      {fifo,
       "\"" + fifo.string() + "\" is not a regular file (a pipe, socket or device); give the path of a database file."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.path.string());
    const CliRun result = runWith({"--store", c.path.string(), "projects"});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "The database could not be opened: " + c.err + "\n");
  }
  EXPECT_TRUE(std::filesystem::is_fifo(fifo));
  EXPECT_FALSE(std::filesystem::exists(dir.path() / "orvane.sqlite"));
}

TEST_F(StoreCommands, demoLoadsOneMoreProjectEachTime) {
  EXPECT_EQ(ok({"demo"}), "Demo: Web Shop\n");
  EXPECT_EQ(ok({"demo"}), "Demo: Web Shop 2\n");
  const json projects = json::parse(ok({"projects", "--json"}));
  ASSERT_EQ(projects.size(), 2u);
  EXPECT_EQ(projects[1]["key"], "SHOP");
  EXPECT_EQ(projects[1]["openTickets"], 16);
  // The key is shared, so only the name picks a project.
  EXPECT_EQ(run({"board", "shop"}).err, "Several projects have the key SHOP; name the project instead.\n");
}

TEST_F(StoreCommands, aNameSeveralProjectsShareIsRefusedWithTheCandidates) {
  ok({"project", "create", "Shop"});
  ok({"project", "create", "Shop two", "--key", "ST"});
  {
    // Two projects of one name, as older versions could restore them.
    Store store = Store::open(path);
    store.db().exec("UPDATE projects SET name = 'SHOP' WHERE key = 'ST'");
  }
  const CliRun result = run({"board", " shop "});
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err,
            "Several projects are named \"shop\": \"Shop\" (key SHOP), \"SHOP\" (key ST); name the one you mean by "
            "its key.\n");
  EXPECT_NE(ok({"board", "st"}).find("SHOP"), std::string::npos);
}

TEST(GlobalOptions, nowAcceptsADayOrAZonedDateTimeAndNothingElse) {
  const struct {
    std::string_view text;
    std::optional<double> seconds;
  } cases[] = {
      {"2026-03-05", 1772668800.0},
      {"2026-03-05T10:00Z", 1772704800.0},
      {"2026-03-05T10:00:00.5Z", 1772704800.5},
      {"2026-03-05T11:30:00+01:30", 1772704800.0},
      {"2024-02-29", 1709164800.0},
      {"2026-02-29", std::nullopt},
      {"2026-03-05T24:00Z", std::nullopt},
      {"2026-03-05T10:00:00", std::nullopt},  // a time needs its zone
      {"2026-03-05T10:00:00Zjunk", std::nullopt},
      {"5 March 2026", std::nullopt},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    const std::optional<Timestamp> parsed = parseInstant(c.text);
    ASSERT_EQ(parsed.has_value(), c.seconds.has_value());
    if (parsed) {
      EXPECT_EQ(parsed->secondsSince1970, *c.seconds);
    }
  }
  EXPECT_EQ(runWith({"--now", "tomorrow", "projects"}).err,
            "--now needs a day like 2026-03-05 or a date-time like 2026-03-05T10:00:00Z; \"tomorrow\" is neither.\n");
}

}  // namespace
}  // namespace orvane::cli::testing
