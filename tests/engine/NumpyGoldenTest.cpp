// The engine against reference data computed with NumPy and Python by
// tools/make_golden_data.py. Every comparison is exact: the random streams,
// seeds and forecasts are meant to be bit for bit those of the reference.

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <fstream>
#include <iomanip>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "engine/CivilDate.h"
#include "engine/ColdStart.h"
#include "engine/ForecastResult.h"
#include "engine/Histogram.h"
#include "engine/MonteCarlo.h"
#include "engine/Pcg64.h"
#include "engine/PythonRepr.h"
#include "engine/SeedDerivation.h"
#include "engine/SeedSequence.h"

namespace orvane {
namespace {

using nlohmann::json;

// One table of a data file, returned by value so that a range-for over it
// owns it.
json table(const std::string& file, const char* key) {
  std::ifstream in(std::string(ORVANE_TEST_DATA_DIR) + "/engine/" + file);
  if (!in) throw std::runtime_error("missing test data " + file + "; run tools/make_golden_data.py");
  return json::parse(in).at(key);
}

// Doubles stored as 16 hex digits of their IEEE-754 pattern.
double fromBits(const json& hex) { return std::bit_cast<double>(std::stoull(hex.get<std::string>(), nullptr, 16)); }

std::string decimal(uint128 value) {
  std::string text;
  do {
    text.insert(text.begin(), static_cast<char>('0' + static_cast<int>(value % 10)));
    value /= 10;
  } while (value != 0);
  return text;
}

// Reports the first differing element only: a broken stream differs
// everywhere after it.
template <typename T>
void expectSameSequence(const std::vector<T>& actual, const std::vector<T>& expected, const char* what) {
  ASSERT_EQ(actual.size(), expected.size()) << what;
  const auto [a, e] = std::mismatch(actual.begin(), actual.end(), expected.begin());
  if (a != actual.end()) {
    ADD_FAILURE() << what << ": first difference at index " << (a - actual.begin()) << ": " << std::setprecision(17)
                  << *a << " (engine) != " << *e << " (reference)";
  }
}

template <typename Draw>
auto drawN(std::size_t count, Draw draw) {
  std::vector<decltype(draw())> values;
  for (std::size_t i = 0; i < count; ++i) values.push_back(draw());
  return values;
}

TEST(NumpyGolden, SeedingAndStreamsMatchPcg64WithSeedSequence) {
  for (const json& c : table("pcg64.json", "seeds")) {
    const auto seed = c["seed"].get<std::uint64_t>();
    SCOPED_TRACE("seed " + std::to_string(seed));

    const auto pool = SeedSequence::pool(seed);
    EXPECT_EQ(std::vector<std::uint32_t>(pool.begin(), pool.end()), c["pool"].get<std::vector<std::uint32_t>>());
    EXPECT_EQ(SeedSequence::generateState64(pool, 4), c["generateState64"].get<std::vector<std::uint64_t>>());
    const PCG64 seeded(seed);
    EXPECT_EQ(decimal(seeded.state()), c["state"].get<std::string>());
    EXPECT_EQ(decimal(seeded.increment()), c["inc"].get<std::string>());

    PCG64 raw(seed), halves(seed), unit(seed);
    expectSameSequence(drawN(c["raw"].size(), [&] { return raw.nextUInt64(); }),
                       c["raw"].get<std::vector<std::uint64_t>>(), "nextUInt64");
    expectSameSequence(drawN(c["uint32"].size(), [&] { return halves.nextUInt32(); }),
                       c["uint32"].get<std::vector<std::uint32_t>>(), "nextUInt32");
    std::vector<double> doubles;
    for (const json& hex : c["doubles"]) doubles.push_back(fromBits(hex));
    expectSameSequence(drawN(doubles.size(), [&] { return unit.nextDouble(); }), doubles, "nextDouble");

    // A waiting 32-bit half survives nextUInt64 and nextDouble.
    PCG64 mixed(seed);
    for (std::size_t i = 0; i < c["mixed"].size(); ++i) {
      const std::string op = c["mixed"][i][0];
      const json& want = c["mixed"][i][1];
      SCOPED_TRACE("mixed step " + std::to_string(i) + " " + op);
      if (op == "uint32") {
        EXPECT_EQ(mixed.nextUInt32(), want.get<std::uint32_t>());
      } else if (op == "uint64") {
        EXPECT_EQ(mixed.nextUInt64(), want.get<std::uint64_t>());
      } else {
        EXPECT_EQ(mixed.nextDouble(), fromBits(want));
      }
    }
  }
}

// The draws must agree, and so must the number of 64-bit outputs consumed
// (Lemire rejections included), which the next raw output reveals.
TEST(NumpyGolden, BoundedDrawsMatchIntegersIncludingRejections) {
  for (const json& c : table("bounded.json", "cases")) {
    const auto n = c["n"].get<std::uint64_t>();
    const auto seed = c["seed"].get<std::uint64_t>();
    SCOPED_TRACE("n " + std::to_string(n) + ", seed " + std::to_string(seed));
    PCG64 generator(seed);
    expectSameSequence(drawN(c["draws"].size(), [&] { return generator.nextBounded(n); }),
                       c["draws"].get<std::vector<std::uint64_t>>(), "nextBounded");
    EXPECT_EQ(generator.nextUInt64(), c["nextRaw"].get<std::uint64_t>());
  }
}

TEST(NumpyGolden, SeedTextAndDerivedSeedMatchPythonReprAndSha256) {
  for (const json& c : table("seeds.json", "cases")) {
    const auto samples = c["samples"].get<std::vector<double>>();
    const auto backlog = c["backlog"].get<std::int64_t>();
    SCOPED_TRACE(c["repr"].get<std::string>());
    EXPECT_EQ(pythonRepr(backlog, samples), c["repr"].get<std::string>());
    EXPECT_EQ(deriveSeed(samples, backlog), c["seed"].get<std::uint64_t>());
  }
  for (const json& c : table("seeds.json", "floatRepr")) {
    SCOPED_TRACE(c["bits"].get<std::string>());
    EXPECT_EQ(pythonFloatRepr(fromBits(c["bits"])), c["repr"].get<std::string>());
  }
}

TEST(NumpyGolden, CivilDatesMatchPythonOrdinals) {
  for (const json& row : table("civil.json", "dates")) {
    const auto days = row[0].get<std::int64_t>();
    const auto text = row[1].get<std::string>();
    SCOPED_TRACE(text);
    EXPECT_EQ(CivilDate::fromDaysSinceEpoch(days).description(), text);
    const auto parsed = CivilDate::fromIso(text);
    ASSERT_TRUE(parsed.has_value());
    EXPECT_EQ(parsed->daysSinceEpoch(), days);
    if (HasFailure()) return;  // one broken row stands for the rest
  }
}

TEST(NumpyGolden, ColdStartFillerMatchesSlicedKnuthPoisson) {
  for (const json& c : table("coldstart.json", "cases")) {
    const auto lambda = c["lambda"].get<double>();
    const auto seed = c["seed"].get<std::uint64_t>();
    SCOPED_TRACE("lambda " + std::to_string(lambda) + ", seed " + std::to_string(seed));
    EXPECT_EQ(ColdStart::syntheticThroughput(lambda, 12, seed), c["periods"].get<std::vector<std::int64_t>>());
  }
}

std::optional<std::int64_t> optionalInt(const json& value) {
  if (value.is_null()) return std::nullopt;
  return value.get<std::int64_t>();
}

void expectForecast(const json& c, std::size_t threads) {
  const auto samples = c["samples"].get<std::vector<double>>();
  const auto backlog = c["backlog"].get<std::int64_t>();
  const auto iterations = c["iterations"].get<std::int64_t>();
  const auto horizon = optionalInt(c["horizon"]);
  const CivilDate runAt = CivilDate::fromIso(c["runAt"].get<std::string>()).value();
  std::optional<std::uint64_t> seed;
  if (!c["seed"].is_null()) seed = c["seed"].get<std::uint64_t>();
  if (!seed) {
    EXPECT_EQ(deriveSeed(samples, backlog), c["usedSeed"].get<std::uint64_t>());
  }

  const ForecastResult result =
      MonteCarlo::run(samples, backlog, iterations, c["maxPeriods"].get<std::int64_t>(), seed, horizon, threads);
  EXPECT_EQ(result.iterations, iterations);
  EXPECT_EQ(result.backlogSize, backlog);
  EXPECT_EQ(result.inconclusive, c["inconclusive"].get<bool>());
  const auto distribution = c["periodsDistribution"].get<std::vector<std::int64_t>>();
  expectSameSequence(result.periodsDistribution, distribution, "periodsDistribution");

  const auto percentiles = result.percentiles();
  const auto dates = result.dates(runAt, 7);
  for (const int level : confidenceLevels) {
    SCOPED_TRACE("level " + std::to_string(level));
    EXPECT_EQ(percentiles.at(level), c["percentiles"][std::to_string(level)].get<double>());
    EXPECT_EQ(dates.at(level).description(), c["dates"][std::to_string(level)].get<std::string>());
  }

  const auto tickets = result.ticketsByHorizon();
  ASSERT_EQ(result.completedByHorizon.has_value(), !c["completedByHorizon"].is_null());
  ASSERT_EQ(tickets.has_value(), !c["ticketsByHorizon"].is_null());
  if (tickets) {
    expectSameSequence(*result.completedByHorizon, c["completedByHorizon"].get<std::vector<double>>(),
                       "completedByHorizon");
    for (const int level : confidenceLevels) {
      EXPECT_EQ(tickets->at(level), c["ticketsByHorizon"][std::to_string(level)].get<std::int64_t>())
          << "level " << level;
    }
  }

  // Built from the reference distribution so that a fault in the histogram
  // is not hidden behind one in the simulation.
  const auto bins = buildHistogram(distribution, iterations, runAt, 7);
  ASSERT_EQ(bins.size(), c["histogram"].size());
  for (std::size_t i = 0; i < bins.size(); ++i) {
    const json& want = c["histogram"][i];
    SCOPED_TRACE("bin " + std::to_string(i));
    EXPECT_EQ(bins[i].period, want["period"].get<std::int64_t>());
    EXPECT_EQ(bins[i].count, want["count"].get<std::int64_t>());
    EXPECT_EQ(bins[i].probabilityPct, want["probabilityPct"].get<double>());
    EXPECT_EQ(bins[i].cumulativePct, want["cumulativePct"].get<double>());
    EXPECT_EQ(rawValue(bins[i].band), want["band"].get<std::string>());
    EXPECT_EQ(bins[i].date.description(), want["date"].get<std::string>());
  }
}

// On one thread and split over several: the same numbers.
TEST(NumpyGolden, ForecastsMatchTheIndexMatrixComputation) {
  for (const json& c : table("forecasts.json", "cases")) {
    for (const std::size_t threads : {1, 2, 7}) {
      SCOPED_TRACE(c["name"].get<std::string>() + " on " + std::to_string(threads) + " threads");
      expectForecast(c, threads);
    }
  }
}

}  // namespace
}  // namespace orvane
