#include "engine/ThroughputHistory.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "engine/ColdStart.h"
#include "engine/ForecastError.h"

namespace orvane {
namespace {

const CivilDate asOf{2026, 3, 5};
const std::vector<std::int64_t> filler{9, 8, 7, 6, 5, 4, 3, 2, 1, 10, 11, 12};

std::vector<PeriodCount> historyFor(CivilDate created, const std::vector<CivilDate>& completions) {
  return ThroughputHistory::build(completions, asOf, created, filler, ProvenanceTier::userEstimated, 12, 7);
}

TEST(ThroughputHistory, FillsEveryPeriodThatBeganBeforeTheProject) {
  // Created today: even the last window began six days before creation.
  const auto createdToday = historyFor(asOf, {asOf});
  ASSERT_EQ(createdToday.size(), 12u);
  for (std::size_t k = 0; k < 12; ++k) {
    EXPECT_EQ(createdToday[k].count, filler[k]);
    EXPECT_EQ(createdToday[k].provenance, ProvenanceTier::userEstimated);
  }
  // Created 83 days ago: all twelve windows are real, and empty ones stay.
  for (const auto& period : historyFor(asOf.addingDays(-83), {})) {
    EXPECT_EQ(period.count, 0);
    EXPECT_EQ(period.provenance, ProvenanceTier::actual);
  }
}

TEST(ThroughputHistory, SwitchesToActualCountsAtTheWindowThatStartsOnCreation) {
  const auto windows = ColdStart::windows(asOf, 12, 7);
  const std::size_t k = 5;
  const auto history = historyFor(windows[k].start, {});
  for (std::size_t i = 0; i < 12; ++i) {
    EXPECT_EQ(history[i].provenance, i < k ? ProvenanceTier::userEstimated : ProvenanceTier::actual) << i;
    EXPECT_EQ(history[i].window, windows[i]);
  }
}

TEST(ThroughputHistory, CountsCompletionsInsideTheWindowsOnly) {
  const auto history = historyFor(asOf.addingDays(-200), {
                                                             asOf, asOf, asOf,          // three on the last day
                                                             asOf.addingDays(-6),       // first day of the last window
                                                             asOf.addingDays(-7),       // last day of the one before
                                                             asOf.addingDays(-83),      // first day of the first window
                                                             asOf.addingDays(-84),      // before every window
                                                             asOf.addingDays(1),        // after asOf
                                                         });
  EXPECT_EQ(history[11].count, 4);
  EXPECT_EQ(history[10].count, 1);
  EXPECT_EQ(history[0].count, 1);
  EXPECT_EQ(ThroughputHistory::samples(history),
            (std::vector<double>{1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 4}));
}

TEST(ProvenanceTier, RoundTripsItsRawValues) {
  for (const auto tier : {ProvenanceTier::actual, ProvenanceTier::userEstimated, ProvenanceTier::systemDefault,
                          ProvenanceTier::carriedForward}) {
    EXPECT_EQ(provenanceTierFromRaw(rawValue(tier)), tier);
  }
  EXPECT_EQ(rawValue(ProvenanceTier::userEstimated), "user_estimated");
  EXPECT_EQ(provenanceTierFromRaw("Actual"), std::nullopt);
}

TEST(ColdStart, DrawsPoissonCountsInSlices) {
  EXPECT_EQ(ColdStart::syntheticThroughput(0, 12, 1), std::vector<std::int64_t>(12, 0));
  // A high rate must not underflow into a constant: the counts vary around
  // the mean.
  const auto counts = ColdStart::syntheticThroughput(45, 200, 9);
  double mean = 0;
  for (const auto c : counts) mean += static_cast<double>(c) / 200;
  EXPECT_NEAR(mean, 45, 2);
  EXPECT_NE(*std::min_element(counts.begin(), counts.end()), *std::max_element(counts.begin(), counts.end()));
  EXPECT_EQ(ColdStart::syntheticThroughput(5, 12, 77), ColdStart::syntheticThroughput(5, 12, 77));
}

TEST(ColdStart, RefusesABadRateBeforeABadLength) {
  const struct {
    double lambda;
    std::int64_t periods;
    ForecastError expected;
  } cases[] = {
      {-1, 0, ForecastError::invalidLambda},
      {std::numeric_limits<double>::quiet_NaN(), 12, ForecastError::invalidLambda},
      {5, 0, ForecastError::invalidPeriods},
  };
  for (const auto& c : cases) {
    try {
      ColdStart::syntheticThroughput(c.lambda, c.periods, 1);
      ADD_FAILURE() << "no error for " << c.lambda << ", " << c.periods;
    } catch (const ForecastFailure& failure) {
      EXPECT_EQ(failure.error(), c.expected);
    }
  }
}

}  // namespace
}  // namespace orvane
