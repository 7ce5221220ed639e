#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "cli/CliRun.h"
#include "core/metrics/FlowAnalysis.h"
#include "core/metrics/FlowScreen.h"
#include "core/support/TempStore.h"

namespace orvane::cli::testing {
namespace {

using nlohmann::json;

// The demo project, loaded at fixedNow (23:30 UTC, so a slip into the local
// day or the next UTC day shows).
class FlowCommand : public ::testing::Test {
 protected:
  orvane::testing::TempStore t;
  Project demo = t.service.loadDemoProject(fixedNow);

  CliRun run(std::vector<std::string> args) {
    args.insert(args.begin(), {"--store", (t.dir.path() / "orvane.sqlite").string()});
    return runWith(args);
  }
};

TEST_F(FlowCommand, JsonCarriesTheScreenFiguresOfTheUtcWeeksEndingToday) {
  const CliRun result = run({"flow", demo.key, "--weeks", "4", "--json"});
  ASSERT_EQ(result.code, 0) << result.err;
  const json flow = json::parse(result.out);

  const std::vector<FlowTicket> tickets = flowTickets(*t.service.snapshot(demo.id));
  const FlowScreen::Figures expected = FlowScreen::figures(tickets, fixedNow, 4);
  EXPECT_EQ(flow["asOf"], "2026-03-05");
  EXPECT_EQ(flow["weeks"], 4);
  ASSERT_EQ(flow["weeklyThroughput"].size(), 4u);
  EXPECT_EQ(flow["weeklyThroughput"][3]["end"], "2026-03-05");
  EXPECT_EQ(flow["weeklyThroughput"][0]["start"], "2026-02-06");
  for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(flow["weeklyThroughput"][i]["count"], expected.throughput[i].count);
  EXPECT_EQ(flow["cumulative"].size(), 28u);
  EXPECT_EQ(flow["cumulative"][27]["date"], "2026-03-05");
  EXPECT_EQ(flow["cycleTimes"].size(), expected.cyclePoints.size());
  ASSERT_TRUE(expected.summary.has_value());
  EXPECT_EQ(flow["summary"]["p85"], expected.summary->p85);
  EXPECT_EQ(flow["tiles"]["medianCycleTime"], FlowScreen::medianCycleTimeTile(expected));
  EXPECT_EQ(flow["tiles"]["inProgressCaption"], FlowScreen::inProgressCaption(expected));
  EXPECT_EQ(flow["ages"].size(), expected.ages.size());
  EXPECT_EQ(flow["note"],
            "Archived tickets are left out of every chart. Weeks are UTC weeks ending today, the same ones the "
            "forecast uses.");
}

// The analyses beside the screen's figures, for a year of weeks: the same
// numbers and sentences the view shows.
TEST_F(FlowCommand, JsonCarriesTheAnalysesOfTheSameWeeks) {
  const CliRun result = run({"flow", demo.key, "--weeks", "52", "--json"});
  ASSERT_EQ(result.code, 0) << result.err;
  const json flow = json::parse(result.out);
  const ProjectSnapshot snapshot = *t.service.snapshot(demo.id);
  const std::vector<FlowTicket> tickets = flowTickets(snapshot);
  const FlowScreen::Figures figures = FlowScreen::figures(tickets, fixedNow, 52);
  const FlowAnalysis expected = FlowAnalyses::analyse(tickets, figures, FlowAnalyses::wipLimitSum(snapshot),
                                                            CivilDate::fromUtc(snapshot.project.createdAt));

  ASSERT_EQ(flow["arrivalsDepartures"].size(), 52u);
  for (std::size_t i = 0; i < 52; ++i) {
    EXPECT_EQ(flow["arrivalsDepartures"][i]["departures"], flow["weeklyThroughput"][i]["count"]);
    EXPECT_EQ(flow["arrivalsDepartures"][i]["arrivals"], expected.weeks[i].arrivals);
    EXPECT_EQ(flow["arrivalsDepartures"][i]["gap"], expected.weeks[i].gap);
  }
  EXPECT_EQ(flow["wipRun"]["days"].size(), 364u);
  EXPECT_EQ(flow["wipRun"]["limitSum"].is_null(), !expected.wipLimitSum.has_value());
  const std::pair<const char*, const BehaviourMeasure*> measures[] = {{"throughput", &expected.throughput},
                                                                      {"arrivals", &expected.arrivals},
                                                                      {"wip", &expected.wip},
                                                                      {"cycleTime", &expected.cycleTime}};
  for (const auto& [name, measure] : measures) {
    SCOPED_TRACE(name);
    const json& m = flow["processBehaviour"][name];
    EXPECT_EQ(m["sentences"], measure->sentences);
    ASSERT_TRUE(measure->chart.has_value());
    EXPECT_EQ(m["chart"]["values"], measure->chart->values);
    EXPECT_EQ(m["chart"]["upperLimit"], measure->chart->upperLimit);
    EXPECT_EQ(m["chart"]["signals"].size(), measure->chart->detected.size());
  }
  // The charts begin with the project, a few months into the year.
  const json& weekly = flow["processBehaviour"]["throughput"]["chart"]["values"];
  EXPECT_LT(weekly.size(), 52u);
  EXPECT_EQ(weekly.back(), flow["weeklyThroughput"][51]["count"]);
  EXPECT_EQ(flow["littlesLaw"]["from"], figures.cumulative.front().date.description());
  EXPECT_EQ(flow["littlesLaw"]["sentence"], expected.littlesLawSentence);
  EXPECT_EQ(flow["predictability"]["sentence"], expected.predictabilitySentence);
}

TEST_F(FlowCommand, TextShowsTilesChartsAndNote) {
  const CliRun result = run({"flow", demo.name});
  ASSERT_EQ(result.code, 0) << result.err;
  EXPECT_NE(result.out.find("12 weeks ending 5 Mar 2026"), std::string::npos);
  for (const char* part :
       {"Throughput", "Median cycle time", "P85 cycle time", "In progress", "tickets per week", "85% finish within",
        "oldest ", "Work item age", "Cumulative flow", "Archived tickets are left out of every chart."}) {
    EXPECT_NE(result.out.find(part), std::string::npos) << part;
  }
}

TEST_F(FlowCommand, EmptyProjectShowsDashesAndEmptyTexts) {
  t.service.createProject("Empty", std::nullopt, fixedNow);
  const CliRun result = run({"flow", "Empty"});
  ASSERT_EQ(result.code, 0) << result.err;
  EXPECT_NE(result.out.find("\u2013"), std::string::npos);
  EXPECT_NE(result.out.find("nothing started"), std::string::npos);
  EXPECT_NE(result.out.find("No tickets finished in this range."), std::string::npos);
  EXPECT_NE(result.out.find("Nothing is in progress."), std::string::npos);
  EXPECT_TRUE(json::parse(run({"flow", "Empty", "--json"}).out)["summary"].is_null());
}

TEST_F(FlowCommand, RefusesBadArguments) {
  const struct {
    std::vector<std::string> args;
    const char* message;
  } cases[] = {
      {{"flow", demo.key, "--weeks", "5"}, "--weeks must be 4, 8, 12, 26 or 52.\n"},
      {{"flow", demo.key, "--weeks", "12x"}, "--weeks must be 4, 8, 12, 26 or 52.\n"},
  };
  for (const auto& c : cases) {
    const CliRun result = run(c.args);
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.err, c.message);
    EXPECT_EQ(result.out, "");
  }
  const CliRun unknown = run({"flow", "Nope"});
  EXPECT_EQ(unknown.code, 2);
  EXPECT_NE(unknown.err.find("Nope"), std::string::npos);
}

}  // namespace
}  // namespace orvane::cli::testing
