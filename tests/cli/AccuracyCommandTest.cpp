#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "cli/CliRun.h"
#include "core/forecast/ForecastService.h"
#include "core/support/TempStore.h"

namespace orvane::cli::testing {
namespace {

using nlohmann::json;
using orvane::testing::at;

// Two forecasts run on 2 March; two tickets done on 3 and 4 March; judged on
// fixedNow, 5 March.
class AccuracyCommand : public ::testing::Test {
 protected:
  orvane::testing::TempStore t;
  std::string path = (t.dir.path() / "orvane.sqlite").string();

  void SetUp() override {
    BoardService& service = t.service;
    const Project shop = service.createProject("Shop", "SH", at(2026, 1, 5));
    const Uuid a = service.createTicket(shop.id, {.title = "A"}, at(2026, 2, 1)).id;
    const Uuid b = service.createTicket(shop.id, {.title = "B"}, at(2026, 2, 1)).id;
    ForecastService forecasts(t.store);
    WhenForecast when;
    when.asOf = {2026, 3, 2};
    when.backlog = 2;
    when.dates = {{50, {2026, 3, 3}}, {70, {2026, 3, 4}}, {85, {2026, 3, 6}}, {95, {2026, 3, 9}}};
    when.commitment = CivilDate{2026, 3, 6};
    when.commitmentConfidencePct = 61.5;
    forecasts.log(when, shop.id, "", at(2026, 3, 2));
    ByDateForecast byDate;
    byDate.asOf = {2026, 3, 2};
    byDate.target = {2026, 3, 4};
    byDate.backlog = 2;
    byDate.counts = {{50, 3}, {70, 2}, {85, 1}, {95, 0}};
    forecasts.log(byDate, shop.id, "", at(2026, 3, 2));
    const Uuid done = service.snapshot(shop.id)->columns.back().id;
    service.moveTicket(a, done, std::nullopt, at(2026, 3, 3));
    service.moveTicket(b, done, std::nullopt, at(2026, 3, 4));
  }
};

TEST_F(AccuracyCommand, OutcomesCalibrationAndHistory) {
  const CliRun text = runWith({"--store", path, "accuracy", "SH"});
  EXPECT_EQ(text.code, 0) << text.err;
  EXPECT_EQ(text.out,
            "Forecast accuracy of Shop (SH), judged on 5 Mar 2026\n"
            "\n"
            "\"When will it be done?\" forecasts\n"
            "  2026-03-02  2 tickets  By the 70% date, done 2026-03-04\n"
            "              50% 2026-03-03, 70% 2026-03-04, 85% 2026-03-06, 95% 2026-03-09\n"
            "\n"
            "  Level   Hits  Judged  Hit rate\n"
            "    50%      0       1      0.0%\n"
            "    70%      1       1    100.0%\n"
            "    85%      1       1    100.0%\n"
            "    95%      1       1    100.0%\n"
            "\n"
            "\"How many by a date?\" forecasts whose day has passed\n"
            "  2026-03-02 to 2026-03-04 (0 weeks): 2 done\n"
            "              forecast 50% 3, 70% 2, 85% 1, 95% 0; reached 70%, 85%, 95%\n"
            "\n"
            "  Level   Hits  Judged  Hit rate\n"
            "    50%      0       1      0.0%\n"
            "    70%      1       1    100.0%\n"
            "    85%      1       1    100.0%\n"
            "    95%      1       1    100.0%\n"
            "\n"
            "Forecast history\n"
            "  Run on      Backlog  50%         85%         95%         Agreed (chance)\n"
            "  2026-03-02        2  2026-03-03  2026-03-06  2026-03-09  2026-03-06 (61.5%)\n");

  const json report = json::parse(runWith({"--store", path, "accuracy", "shop", "--json"}).out);
  EXPECT_EQ(report["whenOutcomes"][0]["verdict"],
            (json{{"kind", "withinP70"}, {"label", "By the 70% date"}, {"remaining", 0}, {"isFinished", true}}));
  EXPECT_EQ(report["whenOutcomes"][0]["leftSince"], 0);
  EXPECT_EQ(report["byDateOutcomes"][0]["levelsReached"], json::array({70, 85, 95}));
  EXPECT_EQ(report["whenCalibration"][1], (json{{"level", 70}, {"hits", 1}, {"total", 1}, {"hitPct", 100.0}}));
  EXPECT_EQ(report["history"][0]["confidencePct"], 61.5);

  // The day before the finish, the same forecast is still open.
  const json early =
      json::parse(runWith({"--store", path, "--now", "2026-03-03T18:00:00Z", "accuracy", "SH", "--json"}).out);
  EXPECT_EQ(early["whenOutcomes"][0]["verdict"]["label"], "Still open, 1 left");
  EXPECT_EQ(early["byDateOutcomes"], json::array());

  // A ticket deleted after the run leaves the forecast's scope: the other
  // one, done on 3 March, finished the work by the 50% date.
  const Uuid b = t.service.snapshot(t.service.projects().front().id)->tickets.at(1).id;
  t.service.deleteTicket(b);
  const CliRun after = runWith({"--store", path, "accuracy", "SH"});
  EXPECT_NE(after.out.find("  2026-03-02  2 tickets (1 since archived or deleted)  By the 50% date, done 2026-03-03\n"),
            std::string::npos)
      << after.out;
}

}  // namespace
}  // namespace orvane::cli::testing
