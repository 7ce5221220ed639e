#include "engine/MonteCarlo.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

#include "engine/ForecastError.h"
#include "engine/Pcg64.h"
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

TEST(MonteCarlo, ATeamThatCompletesNothingNeverFinishes) {
  const std::vector<double> zeros(12, 0.0);
  const auto result = run(zeros, 10, 200, 520, std::nullopt, std::nullopt);
  EXPECT_TRUE(result.inconclusive);
  EXPECT_EQ(result.percentiles(), (std::map<int, double>{{50, 520}, {70, 520}, {85, 520}, {95, 520}}));
}

TEST(MonteCarlo, ASingleSampleNeedsNoDraws) {
  const std::vector<double> five{5};
  const auto result = run(five, 12, 100, 520, std::nullopt, 2);
  EXPECT_EQ(result.periodsDistribution, std::vector<std::int64_t>(100, 3));
  EXPECT_EQ(*result.completedByHorizon, std::vector<double>(100, 10.0));
  EXPECT_EQ(result.p50, 3);
  EXPECT_EQ(result.p95, 3);
  EXPECT_FALSE(result.inconclusive);
}

TEST(MonteCarlo, AnEmptyBacklogIsDoneAtOnce) {
  const std::vector<double> samples{1, 2, 3, 4};
  const auto noHorizon = run(samples, 0, 50, 520, 7, std::nullopt);
  EXPECT_EQ(noHorizon.periodsDistribution, std::vector<std::int64_t>(50, 0));
  EXPECT_FALSE(noHorizon.inconclusive);
  EXPECT_FALSE(noHorizon.completedByHorizon.has_value());

  // With a horizon the simulations still draw: each holds the sum of its
  // first four draws, and the next simulation starts 520 draws later.
  const auto withHorizon = run(samples, 0, 50, 520, 7, 4);
  EXPECT_EQ(withHorizon.periodsDistribution, std::vector<std::int64_t>(50, 0));
  EXPECT_FALSE(withHorizon.inconclusive);
  PCG64 reference(7);
  for (int t = 0; t < 50; ++t) {
    double sum = 0;
    for (int p = 0; p < 520; ++p) {
      const double drawn = samples[reference.nextBounded(4)];
      if (p < 4) sum += drawn;
    }
    ASSERT_EQ((*withHorizon.completedByHorizon)[t], sum) << t;
  }
}

TEST(MonteCarlo, AZeroHorizonAndZeroPeriodsAreEdgesNotErrors) {
  const std::vector<double> samples{1, 2};
  EXPECT_EQ(*run(samples, 3, 20, 520, 1, 0).completedByHorizon, std::vector<double>(20, 0.0));
  const auto noPeriods = run(samples, 3, 20, 0, 1, std::nullopt);
  EXPECT_TRUE(noPeriods.inconclusive);
  EXPECT_EQ(noPeriods.p95, 0);
  EXPECT_FALSE(run(samples, 0, 20, 0, 1, 0).inconclusive);
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
