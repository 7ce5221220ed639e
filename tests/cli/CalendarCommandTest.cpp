#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "cli/CliRun.h"
#include "core/support/TempStore.h"

namespace orvane::cli::testing {
namespace {

using nlohmann::json;
using orvane::testing::at;

class CalendarCommand : public ::testing::Test {
 protected:
  orvane::testing::TempStore t;
  std::string path = (t.dir.path() / "orvane.sqlite").string();

  void SetUp() override {
    BoardService& service = t.service;
    const Uuid shop = service.createProject("Shop", "SH", at(2026, 1, 5)).id;
    service.createTicket(shop, {.title = "Launch", .dueDate = at(2026, 3, 3)}, at(2026, 1, 6));
    service.createTicket(shop, {.title = "Before", .dueDate = at(2026, 2, 28)}, at(2026, 1, 6));
    service.createTicket(shop, {.title = "Far", .dueDate = at(2026, 6, 1)}, at(2026, 1, 6));
    const Uuid gone = service.createTicket(shop, {.title = "Gone", .dueDate = at(2026, 3, 3)}, at(2026, 1, 6)).id;
    service.archive(gone, at(2026, 1, 7));
  }

  CliRun run(std::vector<std::string> args) {
    args.insert(args.begin(), {"--store", path, "calendar", "shop"});
    return runWith(args);  // the test calendar: UTC, Sunday first
  }
};

TEST_F(CalendarCommand, ShowsTheMonthOfNowWithTicketsOnTheirDueDays) {
  const CliRun march = run({});  // fixedNow is 5 March 2026
  EXPECT_EQ(march.code, 0) << march.err;
  EXPECT_EQ(march.out,
            "Shop (SH): March 2026\n"
            "\n"
            " Sun   Mon   Tue   Wed   Thu   Fri   Sat\n"
            "   1     2     3*    4     5     6     7\n"
            "   8     9    10    11    12    13    14\n"
            "  15    16    17    18    19    20    21\n"
            "  22    23    24    25    26    27    28\n"
            "  29    30    31    (1)   (2)   (3)   (4)\n"
            "\n"
            "Due:\n"
            "  3 Mar 2026  SH-1  Launch\n");
}

TEST_F(CalendarCommand, GivenMonthAsJsonWithItsNeighbouringDays) {
  const CliRun february = run({"2026-02", "--json"});
  ASSERT_EQ(february.code, 0) << february.err;
  const json grid = json::parse(february.out);
  EXPECT_EQ(grid["month"], "2026-02");
  // 1 Feb 2026 is a Sunday, the test calendar's first weekday: 28 days, no neighbours.
  ASSERT_EQ(grid["days"].size(), 28u);
  EXPECT_EQ(grid["days"][0], (json{{"date", "2026-02-01"}, {"inMonth", true}, {"tickets", json::array()}}));
  EXPECT_EQ(grid["days"][27], (json{{"date", "2026-02-28"},
                                    {"inMonth", true},
                                    {"tickets", json::array({{{"ref", "SH-2"}, {"title", "Before"}}})}}));
  const json april = json::parse(run({"2026-04", "--json"}).out);
  ASSERT_EQ(april["days"].size(), 35u);  // Wednesday start: three days of March lead
  EXPECT_EQ(april["days"][2], (json{{"date", "2026-03-31"}, {"inMonth", false}, {"tickets", json::array()}}));

  for (const char* bad : {"2026-13", "2026-3", "March"}) {
    const CliRun refused = run({bad});
    EXPECT_EQ(refused.code, 2);
    EXPECT_EQ(refused.err, "The month must be written YYYY-MM, such as 2026-03, not \"" + std::string(bad) + "\".\n");
  }
}

}  // namespace
}  // namespace orvane::cli::testing
