#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "cli/CliRun.h"
#include "core/support/TempStore.h"

namespace orvane::cli::testing {
namespace {

using nlohmann::json;
using orvane::testing::at;

// fixedNow is 2026-03-05T23:30Z. The project began on 13 February: the weeks
// starting 13, 20 and 27 February are real history.
class HealthCommand : public ::testing::Test {
 protected:
  orvane::testing::TempStore t;
  std::string path = (t.dir.path() / "orvane.sqlite").string();

  void SetUp() override {
    BoardService& service = t.service;
    const Project shop = service.createProject("Shop", "SH", at(2026, 2, 13));
    const ProjectSnapshot s = *service.snapshot(shop.id);
    const Uuid doing = s.columns[2].id;   // In Progress, limit 5
    const Uuid review = s.columns[3].id;  // Review, limit 3
    const Uuid done = s.columns[4].id;
    for (int day : {20, 24, 26, 27}) {
      const Uuid id = service.createTicket(shop.id, {.title = "T"}, at(2026, 2, 14)).id;
      service.moveTicket(id, doing, std::nullopt, at(2026, 2, day - 2));
      service.moveTicket(id, done, std::nullopt, at(2026, 2, day));
    }
    for (int i = 0; i < 4; ++i) {
      const Uuid id = service.createTicket(shop.id, {.title = "R"}, at(2026, 2, 14)).id;
      service.moveTicket(id, review, std::nullopt, at(2026, 2, 20 + 3 * i));
    }
  }
};

TEST_F(HealthCommand, FiguresAndNotes) {
  const CliRun text = runWith({"--store", path, "health", "sh"});
  EXPECT_EQ(text.code, 0) << text.err;
  EXPECT_EQ(text.out,
            "Flow health of Shop (SH), 5 Mar 2026\n"
            "\n"
            "  Throughput      1.0 a week, 0.0 before (Rising)\n"
            "  Cycle time      50% within 2.0 d, 85% within 2.0 d (4 tickets)\n"
            "  In progress     4, 4 past the 85% cycle time\n"
            "  Over WIP limit  Review 4/3\n"
            "  Real history    3 of 12 weeks\n"
            "\n"
            "Throughput is rising: 1.0 tickets a week over the last four weeks, against 0.0\n"
            "in the four before.\n"
            "Half of the tickets finished in the last 12 weeks took 2.0 days or less from\n"
            "start to finish, and 85% took 2.0 days or less (4 tickets).\n"
            "Work item age shows 4 of the 4 tickets in progress to be older than 85% of\n"
            "finished work and probably need attention.\n"
            "Review holds 4 tickets against a limit of 3.\n"
            "Only 3 weeks of real history exist, so read the trends with caution.\n");

  const json health = json::parse(runWith({"--store", path, "health", "Shop", "--json"}).out);
  EXPECT_EQ(health["asOf"], "2026-03-05");
  EXPECT_EQ(health["trend"], "up");
  EXPECT_EQ(health["cycle"]["count"], 4);
  EXPECT_EQ(health["wipBreaches"], json::array({{{"column", "Review"}, {"count", 4}, {"limit", 3}}}));
  EXPECT_EQ(health["realWeeks"], 3);
  EXPECT_EQ(health["notes"].size(), 5u);
}

}  // namespace
}  // namespace orvane::cli::testing
