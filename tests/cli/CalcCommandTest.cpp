#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "cli/CliRun.h"
#include "cli/ForecastJson.h"
#include "core/forecast/ForecastServiceError.h"
#include "core/support/TempStore.h"
#include "engine/ColdStart.h"

namespace orvane::cli::testing {
namespace {

using nlohmann::json;

const CivilDate asOf{2026, 3, 5};
const std::vector<std::int64_t> weeks{3, 5, 0, 4};

std::vector<PeriodCount> actualHistory() {
  const auto windows = ColdStart::windows(asOf, 4, 7);
  std::vector<PeriodCount> history;
  for (std::size_t k = 0; k < weeks.size(); ++k) history.push_back({windows[k], weeks[k], ProvenanceTier::actual});
  return history;
}

json calc(const std::string& kind, const json& input) {
  const CliRun run = runWith({"calc", kind}, fixedNow, input.dump());
  EXPECT_EQ(run.code, 0) << run.err;
  EXPECT_EQ(run.err, "");
  return json::parse(run.out);
}

TEST(CalcCommand, whenAndByDateMatchTheCoreOnTheSameNumbers) {
  const json when = calc("when", {{"asOf", "2026-03-05"},
                                  {"backlog", 20},
                                  {"whatIfPercent", 10},
                                  {"history", weeks},
                                  {"commitment", "2026-04-10"}});
  EXPECT_EQ(when,
            whenJson(ForecastInput{asOf, 20, 10, actualHistory(), CivilDate{2026, 4, 10}, std::nullopt}.runWhen()));
  EXPECT_EQ(when["history"][0],
            (json{{"start", "2026-02-06"}, {"end", "2026-02-12"}, {"count", 3}, {"provenance", "actual"}}));
  EXPECT_TRUE(calc("when", {{"asOf", "2026-03-05"},
                            {"backlog", 0},
                            {"history", weeks},
                            {"commitment", nullptr}})["commitmentConfidencePct"]
                  .is_null());

  // From a file, the same as from standard input.
  orvane::testing::TempDir dir;
  const std::string file = (dir.path() / "in.json").string();
  const json input = {{"asOf", "2026-03-05"}, {"backlog", 20}, {"history", weeks}, {"target", "2026-04-02"}};
  std::ofstream(file) << input.dump();
  const CliRun fromFile = runWith({"calc", "by-date", file});
  ASSERT_EQ(fromFile.code, 0) << fromFile.err;
  EXPECT_EQ(json::parse(fromFile.out), calc("by-date", input));
  EXPECT_EQ(json::parse(fromFile.out),
            byDateJson(ForecastInput{asOf, 20, 0, actualHistory(), std::nullopt, CivilDate{2026, 4, 2}}.runByDate()));
  EXPECT_EQ(runWith({"calc", "by-date", "-"}, fixedNow, input.dump()).out, fromFile.out);
}

TEST(CalcCommand, iterationAddsItsOutlookAndActualPeriods) {
  const json result =
      calc("iteration",
           {{"asOf", "2026-03-05"}, {"lastDay", "2026-03-13"}, {"open", 6}, {"history", weeks}, {"firstDay", nullptr}});
  const IterationForecast expected =
      IterationForecastInput{asOf, {2026, 3, 13}, std::nullopt, 6, 0, actualHistory()}.run();
  EXPECT_EQ(result, iterationJson(expected));
  EXPECT_EQ(result["outlook"], rawValue(expected.outlook()));
  EXPECT_EQ(result["actualPeriods"], 4);
  EXPECT_EQ(result["daysLeft"], 9);
}

TEST(CalcCommand, roadmapSpeaksInTheCallersIds) {
  const json input = {
      {"asOf", "2026-03-05"},
      {"history", weeks},
      {"epics",
       {{{"id", "api"}, {"name", "API"}, {"open", 6}, {"dueDay", "2026-04-01"}},
        {{"id", "ui"}, {"open", 4}, {"startOffsetDays", 14}, {"predecessors", {"api"}}},
        {{"id", "docs"}, {"open", 0}, {"dueDay", "2026-03-20"}}}},
      {"milestones",
       {{{"id", "beta"}, {"day", "2026-05-01"}, {"epicID", "ui"}},
        {{"id", "kickoff"}, {"day", "2026-03-01"}, {"isDone", true}}}},
  };
  const json result = calc("roadmap", input);

  // The same nodes with ids of our own, in the same order.
  const auto id = [](std::uint8_t n) {
    Uuid u;
    u.bytes[15] = n;
    return u;
  };
  const std::map<Uuid, std::string> names{
      {id(1), "api"}, {id(2), "ui"}, {id(3), "docs"}, {id(4), "beta"}, {id(5), "kickoff"}};
  const RoadmapForecastInput nodes{asOf,
                                   actualHistory(),
                                   {{id(1), "API", 6, 0, CivilDate{2026, 4, 1}, {}},
                                    {id(2), "", 4, 14, std::nullopt, {id(1)}},
                                    {id(3), "", 0, 0, CivilDate{2026, 3, 20}, {}}},
                                   {{id(4), {2026, 5, 1}, id(2), false}, {id(5), {2026, 3, 1}, std::nullopt, true}}};
  EXPECT_EQ(result, roadmapJson(nodes.run(), [&](const Uuid& u) { return names.at(u); }));
  EXPECT_EQ(result["longestChain"], (json{"api", "ui"}));
  EXPECT_EQ(result["epics"]["docs"]["chanceByDue"], 100.0);
  EXPECT_TRUE(result["milestoneChances"].contains("beta"));
}

TEST(CalcCommand, roadmapIgnoresPredecessorsThatAreNotAmongTheEpics) {
  const json epics = {{{"id", "api"}, {"open", 6}, {"dueDay", "2026-04-01"}},
                      {{"id", "ui"}, {"open", 4}, {"startOffsetDays", 14}, {"predecessors", {"api"}}}};
  json withOutsiders = epics;
  withOutsiders[0]["predecessors"] = {"legacy"};
  withOutsiders[1]["predecessors"] = {"gone", "api", "legacy"};
  const json base = {{"asOf", "2026-03-05"}, {"history", weeks}};
  json given = base;
  given["epics"] = withOutsiders;
  json plain = base;
  plain["epics"] = epics;
  const json result = calc("roadmap", given);
  EXPECT_EQ(result, calc("roadmap", plain));
  EXPECT_EQ(result["longestChain"], (json{"api", "ui"}));
}

TEST(CalcCommand, refusesBadInputWithOneSentenceNamingTheField) {
  const json epicA = {{"id", "a"}, {"open", 1}};
  const struct {
    std::string kind;
    std::string input;
    std::string err;
  } cases[] = {
      {"when", "{\"asOf\": \"2026-03-05\", \"backlog\": 3}", "Field \"history\" is missing.\n"},
      {"when", "{\"asOf\": \"2026-03-05\", \"backlog\": -1, \"history\": [1]}",
       "Field \"backlog\" must be a whole number of 0 or more.\n"},
      {"when", "{\"asOf\": \"2026-03-05\", \"backlog\": 2.5, \"history\": [1]}",
       "Field \"backlog\" must be a whole number of 0 or more.\n"},
      {"when", "{\"asOf\": \"2026-02-30\", \"backlog\": 2, \"history\": [1]}",
       "Field \"asOf\" must be a day written YYYY-MM-DD.\n"},
      {"when", "{\"asOf\": \"2026-03-05\", \"backlog\": 2, \"history\": [1, \"2\"]}",
       "Field \"history[1]\" must be a whole number of 0 or more.\n"},
      {"when", "{\"asOf\": \"2026-03-05\", \"backlog\": 2, \"history\": [1], \"whatIf\": 5}",
       "Field \"whatIf\" is not one of asOf, backlog, whatIfPercent, history, commitment, target.\n"},
      {"when", "{\"asOf\": \"2026-03-05\", \"backlog\": 2, \"history\": [1], \"whatIfPercent\": \"5\"}",
       "Field \"whatIfPercent\" must be a number.\n"},
      {"when", "{\"asOf\": \"2026-03-05\", \"backlog\": 2, \"history\": [1], \"whatIfPercent\": -100}",
       sentenceFor(ForecastError::invalidMultiplier) + "\n"},
      // A by-date run without a target is the forecast's own refusal.
      {"by-date", "{\"asOf\": \"2026-03-05\", \"backlog\": 2, \"history\": [1]}",
       "A date is needed for this forecast.\n"},
      {"by-date", "{\"asOf\": \"2026-03-05\", \"backlog\": 2, \"history\": [1], \"target\": null}",
       "A date is needed for this forecast.\n"},
      {"by-date", "{\"asOf\": \"2026-03-05\", \"backlog\": 2, \"history\": [1], \"target\": 5}",
       "Field \"target\" must be a day written YYYY-MM-DD, or null.\n"},
      {"by-date", "{\"asOf\": \"2026-03-05\", \"backlog\": 2, \"history\": [1], \"target\": \"2026-03-05\"}",
       "Choose a date after today.\n"},
      {"iteration", "{\"asOf\": \"2026-03-05\", \"lastDay\": \"2036-02-20\", \"open\": 1, \"history\": [1]}",
       "That date is more than ten years away.\n"},
      {"roadmap", json{{"asOf", "2026-03-05"}, {"history", {1}}, {"epics", {epicA, epicA}}}.dump(),
       "Field \"epics[1].id\" repeats \"a\"; each epic needs its own id.\n"},
      {"roadmap",
       json{{"asOf", "2026-03-05"},
            {"history", {1}},
            {"epics", {epicA}},
            {"milestones", {{{"id", "m"}, {"day", "2026-04-01"}, {"epicID", "z"}}}}}
           .dump(),
       "Field \"milestones[0].epicID\" names \"z\", which is not the id of an epic.\n"},
      {"roadmap",
       json{
           {"asOf", "2026-03-05"},
           {"history", {1}},
           {"epics",
            {{{"id", "a"}, {"open", 1}, {"predecessors", {"b"}}}, {{"id", "b"}, {"open", 1}, {"predecessors", {"a"}}}}}}
           .dump(),
       "Field \"epics\" has predecessors that form a cycle through \"a\".\n"},
      {"roadmap",
       json{{"asOf", "2026-03-05"},
            {"history", {1}},
            {"epics", {epicA}},
            {"milestones", {{{"id", "m"}, {"day", "2026-04-01"}, {"epicID", 7}}}}}
           .dump(),
       "Field \"milestones[0].epicID\" must be an epic id or null.\n"},
      {"roadmap", "[]", "The input must be one JSON object.\n"},
      {"when", "{\"asOf\": ",
       "The input is not valid JSON: parse error at line 1, column 10: syntax error while "
       "parsing value - unexpected end of input; expected '[', '{', or a literal.\n"},
      {"guess", "{}", "Unknown calc command \"guess\"; use when, by-date, iteration or roadmap.\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.input);
    const CliRun run = runWith({"calc", c.kind}, fixedNow, c.input);
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, c.err);
  }
  EXPECT_EQ(runWith({"calc", "when", "/nonexistent/in.json"}).err,
            "The file \"/nonexistent/in.json\" could not be read.\n");
}

}  // namespace
}  // namespace orvane::cli::testing
