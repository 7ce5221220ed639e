#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "cli/CliRun.h"
#include "cli/ForecastJson.h"
#include "cli/StoreFileTest.h"
#include "cli/TextLayout.h"
#include "core/forecast/Backtest.h"
#include "core/forecast/ForecastService.h"
#include "core/forecast/ReproductionScript.h"
#include "core/support/StoreDump.h"
#include "core/support/TempStore.h"

namespace orvane::cli::testing {
namespace {

using nlohmann::json;

const CivilDate today{2026, 3, 5};

// The demo project, loaded at --now, forecast through the command line and
// through the core directly.
class ForecastCommand : public StoreFileTest {
 protected:
  void SetUp() override { ASSERT_EQ(ok({"demo"}), "Demo: Web Shop\n"); }

  json okJson(std::vector<std::string> args) { return json::parse(ok(std::move(args))); }

  // The core's own answer, on the same file.
  template <typename Query>
  auto core(Query query) {
    Store store = Store::open(path);
    BoardService board(store);
    ForecastService forecasts(store);
    const ProjectSnapshot project = *board.snapshot(board.projects().front().id);
    return query(project, forecasts);
  }
};

std::vector<std::string> keysOf(const json& object) {
  std::vector<std::string> keys;
  for (const auto& item : object.items()) keys.push_back(item.key());
  return keys;
}

TEST_F(ForecastCommand, whenAndByDateAgreeWithTheCoreAndLogTheRun) {
  ok({"forecast", "commit", "demo: web shop", "2026-04-01"});
  const json when = okJson({"forecast", "when", "Demo: Web Shop", "--what-if", "-20", "--backlog-change", "3", "--log",
                            "--note", "before the call", "--json"});
  const WhenForecast expected = core([](const ProjectSnapshot& p, ForecastService& f) {
    return f.input(p.project.id, today, -20, std::nullopt, 3).runWhen();
  });
  json withoutRecord = when;
  withoutRecord.erase("logged");
  EXPECT_EQ(withoutRecord, whenJson(expected));
  EXPECT_EQ(keysOf(when),
            (std::vector<std::string>{"asOf", "backlog", "commitment", "commitmentConfidencePct", "dates", "histogram",
                                      "history", "inconclusive", "iterations", "logged", "periods", "whatIfPercent"}));
  EXPECT_EQ(when["backlog"], 19);  // 16 open + 3
  EXPECT_EQ(when["commitment"], "2026-04-01");
  EXPECT_EQ(when["dates"]["85"], expected.dates.at(85).description());
  EXPECT_EQ(when["history"][11], (json{{"start", "2026-02-27"},
                                       {"end", "2026-03-05"},
                                       {"count", expected.history[11].count},
                                       {"provenance", "actual"}}));
  EXPECT_EQ(when["logged"]["note"], "before the call");

  const json log = okJson({"forecast", "log", "SHOP", "--json"});
  ASSERT_EQ(log.size(), 1u);
  EXPECT_EQ(log[0], when["logged"]);
  EXPECT_EQ(log[0]["runAt"], "2026-03-05T10:00:00Z");
  EXPECT_EQ(log[0]["resultDays"][2], expected.dates.at(85).description());

  const json byDate = okJson({"forecast", "by-date", "SHOP", "2026-04-02", "--json"});
  const ByDateForecast expectedByDate = core([](const ProjectSnapshot& p, ForecastService& f) {
    return f.input(p.project.id, today, 0, CivilDate{2026, 4, 2}).runByDate();
  });
  EXPECT_EQ(byDate, byDateJson(expectedByDate));
  EXPECT_EQ(byDate["wholePeriods"], 4);

  const std::string text = ok({"forecast", "when", "SHOP", "--log"});
  const WhenForecast plain =
      core([](const ProjectSnapshot& p, ForecastService& f) { return f.input(p.project.id, today).runWhen(); });
  for (const std::string& line : std::vector<std::string>{
           std::string(
               "When will \"Demo: Web Shop\" be done?\nBacklog: 16 open tickets, as of 5 Mar 2026 (2026-03-05).\n"),
           "  Confidence     Weeks   Finish date\n",
           plain.dates.at(85).description() + "  " + plain.dates.at(85).displayText() + "\n",
           "Committed date 1 Apr 2026 (2026-04-01): " + percentText(*plain.commitmentConfidencePct, 1) +
               " chance of finishing by then.\nHistory: 12 of the 12 weeks are real; 0 are filler.\n",
           std::string("Weeks needed across the 10,000 simulations:\n"), std::string("\n\nLogged.\n")}) {
    EXPECT_NE(text.find(line), std::string::npos) << line << "\n---\n" << text;
  }
  EXPECT_NE(ok({"forecast", "by-date", "SHOP", "2026-04-02"})
                .find("By 2 Apr 2026 (2026-04-02), 4 whole weeks from 5 Mar 2026:\n  50% confidence: at least " +
                      counted(expectedByDate.counts.at(50), "ticket")),
            std::string::npos);
  EXPECT_NE(ok({"forecast", "log", "SHOP"})
                .find("Forecast log of \"Demo: Web Shop\": 2 runs\n\n2026-03-05  When, "
                      "19 tickets, what-if -20%\n  50% "),
            std::string::npos);
}

TEST_F(ForecastCommand, epicIterationAndRoadmapAgreeWithTheCore) {
  const json epic = okJson({"forecast", "epic", "SHOP", "customer ACCOUNTS", "--share", "40", "--json"});
  EXPECT_EQ(epic, whenJson(core([](const ProjectSnapshot& p, ForecastService& f) {
              const Epic& accounts = *std::find_if(p.epics.begin(), p.epics.end(),
                                                   [](const Epic& e) { return e.name == "Customer accounts"; });
              return f.input(accounts, 0.4, today, utcCalendar()).runWhen();
            })));
  EXPECT_EQ(epic["whatIfPercent"], -60.0);

  const IterationForecast sprint = core([](const ProjectSnapshot& p, ForecastService& f) {
    return f.input(p.iterations[1], 0, today, utcCalendar()).run();
  });
  const json iteration = okJson({"forecast", "iteration", "SHOP", "sprint 2", "--json"});
  EXPECT_EQ(iteration, iterationJson(sprint));
  EXPECT_EQ(iteration["outlook"], rawValue(sprint.outlook()));
  EXPECT_EQ(iteration["lastDay"], "2026-03-06");
  EXPECT_EQ(ok({"forecast", "iteration", "SHOP", "Sprint 2"})
                .find("Iteration \"Sprint 2\" of \"Demo: Web Shop\", as of 5 Mar 2026 (2026-03-05).\n" +
                      std::string(displayLabel(sprint.outlook())) + ": " + percentText(sprint.probabilityPct, 1) +
                      " chance that the " + counted(sprint.open, "open ticket")),
            0u);

  const json roadmap = okJson({"forecast", "roadmap", "SHOP", "--json"});
  const auto [expected, input] = core([](const ProjectSnapshot& p, ForecastService& f) {
    const RoadmapForecastInput in = f.roadmapInput(p.project.id, today, utcCalendar());
    return std::pair(in.run(), in);
  });
  json bare = roadmap;
  for (auto& [id, schedule] : bare["epics"].items()) schedule.erase("name");
  bare.erase("milestoneNames");
  bare.erase("conflicts");
  EXPECT_EQ(bare, roadmapJson(expected, [](const Uuid& id) { return id.text(); }));
  std::string chain;
  for (const Uuid& id : expected.longestChain) {
    const std::string& name = roadmap["epics"][id.text()]["name"];
    chain += (chain.empty() ? "" : " → ") + name;
  }
  std::string text = ok({"forecast", "roadmap", "SHOP"});
  std::replace(text.begin(), text.end(), '\n', ' ');  // undoes the wrapping
  EXPECT_NE(text.find(" Longest chain: " + chain + "  "), std::string::npos) << text;
  EXPECT_EQ(roadmap["milestoneNames"].size(), 5u);
}

TEST_F(ForecastCommand, estimateAndCommitAreStoredAndExplained) {
  ok({"project", "create", "New", "--key", "NEW"});
  ok({"ticket", "add", "NEW", "First"});
  EXPECT_NE(ok({"forecast", "when", "NEW"})
                .find("History: 0 of the 12 weeks are real; 12 are filler (the default "
                      "estimate).\n"),
            std::string::npos);
  EXPECT_EQ(ok({"forecast", "estimate", "NEW", "2.5"}),
            "Weeks before \"New\" began now count your estimate, 2.5 tickets each.\n");
  EXPECT_NE(ok({"forecast", "when", "NEW"}).find("12 are filler (your estimate)"), std::string::npos);
  EXPECT_EQ(ok({"forecast", "estimate", "NEW", "--clear"}),
            "Weeks before \"New\" began now count the default estimate, 5 tickets each.\n");
  EXPECT_EQ(ok({"forecast", "commit", "NEW", "2026-04-01"}),
            "Committed date of \"New\" set to 1 Apr 2026 (2026-04-01).\n");
  const auto stored = [&] {
    Store store = Store::open(path);
    BoardService board(store);
    return board.snapshot(board.projects().back().id)->project;
  };
  EXPECT_EQ(stored().committedDate, CivilDate(2026, 4, 1).utcMidnight());
  EXPECT_EQ(stored().fillerTierRaw, "system_default");
  EXPECT_EQ(ok({"forecast", "commit", "NEW", "--clear"}), "Committed date of \"New\" cleared.\n");
  EXPECT_EQ(stored().committedDate, std::nullopt);
}

TEST_F(ForecastCommand, scriptAndBacktestAgreeWithTheCore) {
  const ForecastInput input = core(
      [](const ProjectSnapshot& p, ForecastService& f) { return f.input(p.project.id, today, -30, std::nullopt, 4); });
  EXPECT_EQ(ok({"forecast", "when", "SHOP", "--what-if", "-30", "--backlog-change", "4", "--script"}),
            reproductionScript(input));

  // The core's backtest on the same file, and the command's answer.
  const auto backtest = [&](CivilDate day) {
    Store store = Store::open(path);
    return runBacktest(store, BoardService(store).projects().front().id, day, today);
  };
  const Backtest open = backtest(CivilDate{2026, 1, 20});
  ASSERT_EQ(open.forecast.backlog, 12);
  ASSERT_EQ(open.stillOpen, 4);
  json answer = okJson({"forecast", "backtest", "SHOP", "--as-of", "2026-01-20", "--json"});
  EXPECT_EQ(answer["actual"], (json{{"stillOpen", 4}, {"finishedOn", nullptr}, {"levelsMet", json::object()}}));
  answer.erase("actual");
  EXPECT_EQ(answer, whenJson(open.forecast));
  const std::string openText = ok({"forecast", "backtest", "SHOP", "--as-of", "2026-01-20"});
  EXPECT_NE(openText.find("Backlog then: 12 tickets"), std::string::npos) << openText;
  EXPECT_NE(openText.find("Actual: the work is still open, 4 of 12 tickets still open.\n"), std::string::npos);

  const Backtest done = backtest(CivilDate{2025, 12, 10});
  ASSERT_EQ(done.finishedOn, (CivilDate{2025, 12, 25}));
  answer = okJson({"forecast", "backtest", "SHOP", "--as-of", "2025-12-10", "--json"});
  EXPECT_EQ(answer["actual"]["finishedOn"], "2025-12-25");
  EXPECT_EQ(answer["actual"]["levelsMet"].size(), 4u);
  answer.erase("actual");
  EXPECT_EQ(answer, whenJson(done.forecast));
  const std::string doneText = ok({"forecast", "backtest", "SHOP", "--as-of", "2025-12-10"});
  EXPECT_NE(doneText.find("Actual: finished on 25 Dec 2025 (2025-12-25), 15 days later.\n  50%  by " +
                          done.forecast.dates.at(50).displayText() + ": missed\n"),
            std::string::npos)
      << doneText;
}

TEST_F(ForecastCommand, refusalsSayWhyAndChangeNothing) {
  ok({"forecast", "when", "SHOP"});  // the filler is in place
  const std::string before = [&] {
    Store store = Store::open(path);
    return orvane::testing::dumpStore(store.db());
  }();
  const struct {
    std::vector<std::string> args;
    std::string err;
  } cases[] = {
      {{"forecast", "when", "Shop floor"},
       "There is no project \"Shop floor\"; run \"orvane-cli projects\" to list them.\n"},
      {{"forecast", "epic", "SHOP", "Billing", "--share", "50"},
       "There is no epic \"Billing\" in \"Demo: Web Shop\"; its epics are Catalogue & search, Checkout & payments, "
       "Customer accounts, Launch readiness, Order tracking & e-mails.\n"},
      {{"forecast", "iteration", "SHOP", "Sprint 9"},
       "There is no iteration \"Sprint 9\" in \"Demo: Web Shop\"; its iterations are Sprint 1, Sprint 2, Sprint 3.\n"},
      {{"forecast", "iteration", "SHOP", "Sprint 1"},
       std::string(PMError(PMError::Case::iterationClosed).what()) + "\n"},
      {{"forecast", "by-date", "SHOP", "2026-03-05", "--log"}, "Choose a date after today.\n"},
      {{"forecast", "by-date", "SHOP", "2036-02-28"}, "That date is more than ten years away.\n"},
      {{"forecast", "by-date", "SHOP", "2026-02-30"},
       "forecast by-date needs a day like 2026-04-30; \"2026-02-30\" is not one.\n"},
      {{"forecast", "when", "SHOP", "--what-if", "-100", "--log"},
       sentenceFor(ForecastError::invalidMultiplier) + "\n"},
      {{"forecast", "when", "SHOP", "--what-if", "much"}, "--what-if needs a percentage, such as -20 or 15.\n"},
      {{"forecast", "when", "SHOP", "--note", "x"}, "--note goes with --log: only a logged run keeps a note.\n"},
      {{"forecast", "epic", "SHOP", "Launch readiness", "--share", "0"},
       "The share of capacity must be above 0 and at most 100 per cent.\n"},
      {{"forecast", "epic", "SHOP", "Launch readiness"},
       "forecast epic needs --share PERCENT, the epic's share of the team, such as 40.\n"},
      {{"forecast", "estimate", "SHOP", "1000.5"}, "The weekly estimate must be a number from 0 to 1000.\n"},
      {{"forecast", "estimate", "SHOP", "lots"}, "The weekly estimate must be a number from 0 to 1000.\n"},
      {{"forecast", "estimate", "SHOP", "3", "--clear"}, "forecast estimate takes WEEKLY or --clear, not both.\n"},
      {{"forecast", "commit", "SHOP"},
       "forecast commit needs PROJECT and YYYY-MM-DD; run \"orvane-cli forecast commit --help\" for its usage.\n"},
      {{"forecast", "guess", "SHOP"},
       "Unknown forecast command \"guess\"; use when, by-date, epic, iteration, roadmap, log, backtest, estimate or "
       "commit.\n"},
      {{"forecast", "backtest", "SHOP", "--as-of", "2026-03-06"},
       "Choose a day on or before today; a backtest looks at the past.\n"},
      {{"forecast", "backtest", "SHOP", "--as-of", "2025-11-23"},
       "Choose a day on or after 24 Nov 2025, when the project began.\n"},
      {{"forecast", "backtest", "SHOP", "--as-of", "2026-02-30"},
       "--as-of needs a day like 2026-04-30; \"2026-02-30\" is not one.\n"},
      {{"forecast", "backtest", "SHOP", "--json"},
       "forecast backtest needs --as-of YYYY-MM-DD, the past day to forecast from.\n"},
      {{"forecast", "when", "SHOP", "--script", "--log"},
       "--script prints the script alone, without --log or --json.\n"},
      {{"forecast", "by-date", "SHOP", "2026-04-01", "--script"},
       "--script goes with forecast when: it rebuilds the four levels of a when-forecast.\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.args[1] + " " + c.args[2]);
    const CliRun result = run(c.args);
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, c.err);
  }
  Store store = Store::open(path);
  EXPECT_EQ(orvane::testing::dumpStore(store.db()), before);
}

TEST_F(ForecastCommand, aStoredDateNoCalendarDayHoldsIsRefusedNotFatal) {
  {
    // As a version that did not check restored dates could have left it.
    Store store = Store::open(path);
    store.db().exec("UPDATE projects SET created_at = 1e300");
  }
  const std::string sentence =
      "\"Demo: Web Shop\" holds a date outside the years 0000 to 9999 (its creation date), so it cannot be forecast "
      "or measured.\n";
  for (const std::vector<std::string>& args : std::vector<std::vector<std::string>>{
           {"forecast", "when", "SHOP"}, {"forecast", "by-date", "SHOP", "2026-04-30"}, {"health", "SHOP"}}) {
    const CliRun result = run(args);
    EXPECT_EQ(result.code, 2) << args[1];
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, sentence);
  }
}

}  // namespace
}  // namespace orvane::cli::testing
