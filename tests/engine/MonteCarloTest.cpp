#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <vector>

#include "engine/BoundedDrawStream.h"
#include "engine/ForecastError.h"
#include "engine/MonteCarlo.h"
#include "engine/Percentile.h"
#include "engine/SeedDerivation.h"
#include "engine/GuessedStarts.h"
#include "engine/ThroughputMultiplier.h"

namespace orvane {
namespace {

using MonteCarlo::run;

ForecastError errorOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const ForecastFailure& failure) {
    return failure.error();
  }
  ADD_FAILURE() << "no ForecastFailure";
  return ForecastError::invalidPeriods;
}

TEST(MonteCarlo, ValidatesInputsInOrder) {
  const std::vector<double> none;
  const std::vector<double> some{1, 2};
  EXPECT_EQ(errorOf([&] { run(none, -1, 0, 520, 1, 999); }), ForecastError::nonPositiveIterations);
  EXPECT_EQ(errorOf([&] { run(none, -1, 10, 520, 1, std::nullopt); }), ForecastError::negativeBacklog);
  EXPECT_EQ(errorOf([&] { run(none, 5, 10, 520, 1, 999); }), ForecastError::emptySamples);
  EXPECT_EQ(errorOf([&] { run(some, 5, 10, 520, 1, 521); }), ForecastError::invalidHorizon);
  EXPECT_EQ(errorOf([&] { run(some, 5, 10, 520, 1, -1); }), ForecastError::invalidHorizon);
}

// Any number of threads must give the serial result bit for bit. The inputs
// are drawn at random around the hard spots: a million samples (about one
// word in 4,400 is rejected, so nearly every block starts late and runs
// again), a handful of samples (rejections are rare), backlogs that finish
// in a period or never, horizons, short futures, block sizes that do not
// divide the simulations.
TEST(MonteCarlo, AnyNumberOfThreadsGivesTheSerialResult) {
  std::mt19937_64 random(20260305);
  std::vector<double> manySamples(1'000'000);
  for (double& sample : manySamples) sample = static_cast<double>(random() % 9);
  for (int round = 0; round < 24; ++round) {
    const bool many = round % 4 == 0;
    std::vector<double> samples;
    if (many) {
      samples = manySamples;
    } else {
      samples.resize(2 + random() % 60);
      for (double& sample : samples) sample = static_cast<double>(random() % 8) + (round % 3 == 1 ? 0.25 : 0.0);
    }
    const std::int64_t backlogs[] = {0, 1, 3, 40, 500, 5000};
    const std::int64_t backlog = backlogs[random() % 6];
    const std::int64_t maxPeriods = round % 5 == 3 ? 1 + static_cast<std::int64_t>(random() % 40) : 520;
    std::optional<std::int64_t> horizon;
    if (round % 2 == 1) horizon = static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(maxPeriods + 1));
    const std::int64_t iterations = 600 + static_cast<std::int64_t>(random() % 2000);
    const std::uint64_t seed = random();
    SCOPED_TRACE(testing::Message() << "round " << round << ": " << samples.size() << " samples, backlog " << backlog
                                    << ", " << iterations << " x " << maxPeriods << ", horizon "
                                    << (horizon ? *horizon : -1));
    const ForecastResult serial = run(samples, backlog, iterations, maxPeriods, seed, horizon, 1);
    for (const std::size_t threads : {2, 3, 8})
      EXPECT_EQ(run(samples, backlog, iterations, maxPeriods, seed, horizon, threads), serial) << threads << " threads";
  }
}

// The blocks of a stream whose bound rejects about half of all words
// (2^31 + 1): nearly every planned start is wrong, and the blocks must still
// read exactly what one stream read from start to end gives.
TEST(GuessedStarts, GiveTheSerialReadingWhenHalfTheWordsAreRejected) {
  for (const std::uint64_t n : {(1ull << 31) + 1, 12ull}) {
    for (const std::size_t blocks : {1, 2, 5, 9}) {
      SCOPED_TRACE(testing::Message() << "n=" << n << ", " << blocks << " blocks");
      constexpr int drawsPerBlock = 1500;
      const PCG64 generator(77);
      BoundedDrawStream serial(generator, n);
      std::vector<std::uint64_t> expected(blocks * drawsPerBlock);
      for (std::uint64_t& draw : expected) draw = serial.next();

      std::vector<std::uint64_t> planned(blocks), actual(expected.size());
      for (std::size_t b = 0; b < blocks; ++b) planned[b] = b * drawsPerBlock;
      runFromGuessedStarts(planned, 4, [&](std::size_t b, std::uint64_t startWord) {
        BoundedDrawStream stream(generator, n, startWord);
        for (int i = 0; i < drawsPerBlock; ++i) actual[b * drawsPerBlock + i] = stream.next();
        return stream.wordsUsed();
      });
      EXPECT_EQ(actual, expected);
    }
  }
}

TEST(MonteCarlo, IsReproducibleAndDerivesItsSeedFromTheInputs) {
  const std::vector<double> samples{3, 5, 4, 6, 2, 7, 5, 4, 3, 6, 5, 4};
  const auto first = run(samples, 100, 1000, 520, std::nullopt, 8);
  EXPECT_EQ(first, run(samples, 100, 1000, 520, std::nullopt, 8));
  EXPECT_EQ(first, run(samples, 100, 1000, 520, deriveSeed(samples, 100), 8));
  EXPECT_NE(first, run(samples, 100, 1000, 520, deriveSeed(samples, 100) + 1, 8));
  // A simulation's periods are where its running total first reaches the
  // backlog; the p50 sits between the fastest and slowest of them.
  const auto [fastest, slowest] =
      std::minmax_element(first.periodsDistribution.begin(), first.periodsDistribution.end());
  EXPECT_GE(first.p50, *fastest);
  EXPECT_LE(first.p50, *slowest);
  EXPECT_LE(first.p50, first.p70);
  EXPECT_LE(first.p85, first.p95);
}

TEST(Percentile, InterpolatesBetweenClosestRanks) {
  const struct {
    std::vector<double> sorted;
    double q;
    double expected;
  } cases[] = {
      {{1, 2, 3, 4}, 50, 2.5}, {{7}, 95, 7}, {{1, 2}, 75, 1.75}, {{1, 2}, 0, 1}, {{1, 2}, 100, 2}, {{0, 10, 20}, 25, 5},
  };
  for (const auto& c : cases) EXPECT_EQ(percentile(c.sorted, c.q), c.expected) << c.q;
}

TEST(ThroughputMultiplier, ScalesEverySampleAboveMinusOneHundredPercent) {
  const std::vector<double> four{4};
  EXPECT_EQ(applyThroughputMultiplier(four, -50), std::vector<double>{2});
  EXPECT_EQ(applyThroughputMultiplier(four, 25), std::vector<double>{5});
  for (const double bad : {-100.0, -150.0, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(errorOf([&] { applyThroughputMultiplier(four, bad); }), ForecastError::invalidMultiplier) << bad;
  }
}

}  // namespace
}  // namespace orvane
