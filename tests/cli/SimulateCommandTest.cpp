#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/CliRun.h"
#include "engine/Histogram.h"
#include "engine/MonteCarlo.h"
#include "engine/SeedDerivation.h"

namespace orvane::cli::testing {
namespace {

using nlohmann::json;

std::vector<std::string> simulate(std::initializer_list<std::string> extra) {
  std::vector<std::string> args{"simulate"};
  args.insert(args.end(), extra);
  return args;
}

json runJson(std::initializer_list<std::string> extra) {
  const CliRun run = runWith(simulate(extra));
  EXPECT_EQ(run.code, 0) << run.err;
  EXPECT_EQ(run.err, "");
  return json::parse(run.out);
}

TEST(SimulateCommand, jsonMatchesTheEngineRunDirectly) {
  const json j = runJson({"--samples", "3,5,4", "--backlog", "30", "--seed", "42", "--iterations", "500", "--horizon",
                          "6", "--as-of", "2026-01-10", "--json"});
  const std::vector<double> samples{3, 5, 4};
  const ForecastResult expected = MonteCarlo::run(samples, 30, 500, 520, 42, 6);
  const CivilDate asOf{2026, 1, 10};

  EXPECT_EQ(j["seed"], 42u);
  EXPECT_EQ(j["iterations"], 500);
  EXPECT_EQ(j["backlogSize"], 30);
  EXPECT_EQ(j["p50"], expected.p50);
  EXPECT_EQ(j["p70"], expected.p70);
  EXPECT_EQ(j["p85"], expected.p85);
  EXPECT_EQ(j["p95"], expected.p95);
  EXPECT_EQ(j["inconclusive"], false);
  EXPECT_EQ(j["periodsDistribution"].get<std::vector<std::int64_t>>(), expected.periodsDistribution);
  EXPECT_EQ(j["completedByHorizon"].get<std::vector<double>>(), *expected.completedByHorizon);
  for (const auto& [level, date] : expected.dates(asOf, 7)) {
    EXPECT_EQ(j["dates"][std::to_string(level)], date.description());
    EXPECT_EQ(j["ticketsByHorizon"][std::to_string(level)], expected.ticketsByHorizon()->at(level));
  }
  const auto bins = buildHistogram(expected.periodsDistribution, 500, asOf, 7);
  ASSERT_EQ(j["histogram"].size(), bins.size());
  for (std::size_t i = 0; i < bins.size(); ++i) {
    EXPECT_EQ(j["histogram"][i], (json{{"period", bins[i].period},
                                       {"count", bins[i].count},
                                       {"probabilityPct", bins[i].probabilityPct},
                                       {"cumulativePct", bins[i].cumulativePct},
                                       {"band", rawValue(bins[i].band)},
                                       {"date", bins[i].date.description()}}));
  }
  std::vector<std::string> keys;
  for (const auto& item : j.items()) keys.push_back(item.key());
  EXPECT_EQ(keys, (std::vector<std::string>{"backlogSize", "completedByHorizon", "dates", "histogram", "inconclusive",
                                            "iterations", "p50", "p70", "p85", "p95", "periodsDistribution", "seed",
                                            "ticketsByHorizon"}));
}

TEST(SimulateCommand, whatIfAdjustsTheSamplesTheSeedDerivesFrom) {
  const json j = runJson({"--samples", "4, 8", "--backlog", "10", "--what-if", "-50", "--iterations", "200", "--json"});
  const std::vector<double> adjusted{2, 4};
  EXPECT_EQ(j["seed"], deriveSeed(adjusted, 10));
  EXPECT_EQ(j["periodsDistribution"].get<std::vector<std::int64_t>>(),
            MonteCarlo::run(adjusted, 10, 200, 520, std::nullopt, std::nullopt).periodsDistribution);
  EXPECT_TRUE(j["completedByHorizon"].is_null());
  EXPECT_TRUE(j["ticketsByHorizon"].is_null());
}

TEST(SimulateCommand, asOfDefaultsToTheUtcDayOfNow) {
  // A single sample of 5 against 12 tickets takes exactly 3 weeks.
  const json j = runJson({"--samples", "5", "--backlog", "12", "--json"});
  EXPECT_EQ(j["dates"]["95"], "2026-03-26");
  EXPECT_EQ(j["histogram"][0]["date"], "2026-03-26");
}

TEST(SimulateCommand, textShowsLevelsDatesHorizonAndHistogram) {
  const CliRun run = runWith(simulate({"--samples", "5", "--backlog", "12", "--horizon", "2", "--iterations", "100"}));
  ASSERT_EQ(run.code, 0) << run.err;
  for (const char* expected : {
           "Forecast: 12 tickets, 1 sample, 100 simulations, seed ",
           "As of 5 Mar 2026 (2026-03-05), up to 520 weeks simulated.\n",
           "\n         95%       3     2026-03-26  26 Mar 2026\n",
           "\nBy 19 Mar 2026 (2 weeks):\n",
           "\n  85% confidence: at least 10 tickets\n",
           "       3  2026-03-26  100.00%     100.00%  ###################################\n",
       }) {
    EXPECT_NE(run.out.find(expected), std::string::npos) << expected << "\n---\n" << run.out;
  }
  EXPECT_EQ(run.out.find("Inconclusive"), std::string::npos);
}

TEST(SimulateCommand, textWarnsWhenInconclusiveAndFitsEightyColumns) {
  const CliRun run = runWith(simulate({"--samples", "0,1", "--backlog", "40", "--max-periods", "52", "--what-if",
                                       "12.5", "--seed", "18446744073709551615"}));
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_NE(run.out.find("What-if: every sample changed by +12.5% before simulating."), std::string::npos);
  EXPECT_NE(run.out.find("Inconclusive: some simulations did not finish within 52 weeks;"), std::string::npos);
  std::istringstream lines(run.out);
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80u) << line;
}

TEST(SimulateCommand, badInputIsOneExactSentenceAndNothingOnStdout) {
  struct Case {
    std::vector<std::string> args;
    std::string sentence;
  };
  const std::string b = "--backlog", s = "--samples";
  const Case cases[] = {
      {{s, "3,x,4", b, "30"}, "Throughput sample \"x\" in --samples is not a number."},
      {{s, "3,,4", b, "30"}, "--samples has an empty item at position 2 in \"3,,4\"."},
      {{s, "3,4,", b, "30"}, "--samples has an empty item at position 3 in \"3,4,\"."},
      {{s, "3,-2", b, "30"}, "Throughput sample \"-2\" in --samples is negative."},
      {{s, "nan", b, "30"}, "Throughput sample \"nan\" in --samples is not a finite number."},
      {{s, "1e999", b, "30"}, "Throughput sample \"1e999\" in --samples is out of range."},
      {{s, " ", b, "30"}, "--samples needs at least one number, such as --samples 3,5,4."},
      {{b, "30"}, "Option --samples is required: the tickets finished per past week, such as 3,5,4."},
      {{s, "3"}, "Option --backlog is required: the number of tickets left to do."},
      {{s, "3", b, "12.5"}, "--backlog must be a whole number of 0 or more, not \"12.5\"."},
      {{s, "3", b, "-1"}, "--backlog must be a whole number of 0 or more, not \"-1\"."},
      {{s, "3", b, "1", "--iterations", "0"}, "--iterations must be a whole number from 1 to 10000000, not \"0\"."},
      {{s, "3", b, "1", "--iterations", "ten"}, "--iterations must be a whole number from 1 to 10000000, not \"ten\"."},
      {{s, "3", b, "1", "--max-periods", "-1"}, "--max-periods must be a whole number from 0 to 100000, not \"-1\"."},
      {{s, "3", b, "1", "--horizon", "-1"},
       "--horizon must be a whole number from 0 to 520 (the --max-periods), not \"-1\"."},
      {{s, "3", b, "1", "--max-periods", "10", "--horizon", "11"},
       "--horizon must be a whole number from 0 to 10 (the --max-periods), not \"11\"."},
      {{s, "3", b, "1", "--seed", "-1"}, "--seed must be a whole number from 0 to 18446744073709551615, not \"-1\"."},
      {{s, "3", b, "1", "--seed", "18446744073709551616"},
       "--seed must be a whole number from 0 to 18446744073709551615, not \"18446744073709551616\"."},
      {{s, "3", b, "1", "--what-if", "-100"}, "--what-if must be greater than -100 percent, not \"-100\"."},
      {{s, "3", b, "1", "--what-if", "20%"}, "--what-if must be a percentage such as 20 or -15, not \"20%\"."},
      {{s, "3", b, "1", "--as-of", "2026-02-30"}, "--as-of must be a real day written YYYY-MM-DD, not \"2026-02-30\"."},
      {{s, "3", b, "1", "--as-of", "2026-3-5"}, "--as-of must be a real day written YYYY-MM-DD, not \"2026-3-5\"."},
      {{s, "3", b, "1", "--as-of", "2026-03-05T10:00"},
       "--as-of must be a real day written YYYY-MM-DD, not \"2026-03-05T10:00\"."},
      {{s, "3", b, "1", "--verbose"},
       "Unknown option \"--verbose\"; run \"orvane-cli simulate --help\" for its options."},
      {{s, "3", b, "1", "extra"}, "Unexpected argument \"extra\"; simulate takes only options."},
      {{s, "3", b, "1", "--seed", "1", "--seed=2"}, "Option --seed is given more than once."},
      {{s, "3", b}, "Option --backlog needs a value."},
      {{s, b, "1"}, "Option --samples needs a value."},
      {{s, "3", b, "1", "--json=yes"}, "Option --json takes no value."},
  };
  for (const Case& c : cases) {
    std::vector<std::string> args{"simulate"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    args.push_back("--json");  // a refusal must not print even the JSON
    const CliRun run = runWith(args);
    EXPECT_EQ(run.code, 2) << c.sentence;
    EXPECT_EQ(run.out, "") << c.sentence;
    EXPECT_EQ(run.err, c.sentence + "\n");
  }
}

}  // namespace
}  // namespace orvane::cli::testing
