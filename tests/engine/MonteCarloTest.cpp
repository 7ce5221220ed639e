#include "engine/MonteCarlo.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

#include "engine/ForecastError.h"
#include "engine/SeedDerivation.h"
#include "engine/Percentile.h"
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





TEST(MonteCarlo, IsReproducibleAndDerivesItsSeedFromTheInputs) {
  const std::vector<double> samples{3, 5, 4, 6, 2, 7, 5, 4, 3, 6, 5, 4};
  const auto first = run(samples, 100, 1000, 520, std::nullopt, 8);
  EXPECT_EQ(first, run(samples, 100, 1000, 520, std::nullopt, 8));
  EXPECT_EQ(first, run(samples, 100, 1000, 520, deriveSeed(samples, 100), 8));
  EXPECT_NE(first, run(samples, 100, 1000, 520, deriveSeed(samples, 100) + 1, 8));
  // A simulation's periods are where its running total first reaches the
  // backlog; the p50 sits between the fastest and slowest of them.
  const auto [fastest, slowest] = std::minmax_element(first.periodsDistribution.begin(), first.periodsDistribution.end());
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
