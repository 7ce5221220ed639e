#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "core/forecast/ForecastInput.h"
#include "core/forecast/ForecastServiceError.h"
#include "engine/MonteCarlo.h"

namespace orvane {
namespace {

const CivilDate asOf(2026, 3, 2);
const std::vector<double> lumpy{2, 12};  // half the weeks finish 10 tickets at once

ForecastInput input(std::int64_t backlog, std::optional<std::int64_t> commitmentDays = {},
                    std::optional<std::int64_t> targetDays = {}, double whatIf = 0) {
  ForecastInput in{asOf, backlog, whatIf, {{{}, 2}, {{}, 12}}};
  if (commitmentDays) in.commitment = asOf.addingDays(*commitmentDays);
  if (targetDays) in.target = asOf.addingDays(*targetDays);
  return in;
}

std::string refusal(const ForecastInput& in) {
  try {
    in.runByDate();
  } catch (const ForecastServiceError& error) {
    return error.what();
  } catch (const ForecastFailure& failure) {
    return sentenceFor(failure.error());
  }
  return "accepted";
}

TEST(ForecastInput, byDateRefusesMissingPastAndTooDistantTargetsAndACutOfAllThroughput) {
  EXPECT_EQ(refusal(input(5)), "A date is needed for this forecast.");
  EXPECT_EQ(refusal(input(5, {}, 0)), "Choose a date after today.");
  EXPECT_EQ(refusal(input(5, {}, -3)), "Choose a date after today.");
  EXPECT_EQ(refusal(input(5, {}, 3647)), "That date is more than ten years away.");
  EXPECT_EQ(refusal(input(5, {}, 14, -100)), "The throughput change must be more than -100 per cent.");
}

TEST(ForecastInput, byDateSimulatesTheWholeWeeksBeforeTheTarget) {
  for (const auto& [days, weeks] : {std::pair{3646, 520}, {10, 1}, {14, 2}, {6, 0}}) {
    SCOPED_TRACE(days);
    const ByDateForecast forecast = input(14, {}, days).runByDate();
    const auto expected = MonteCarlo::run(lumpy, 14, 10000, 520, {}, weeks);
    const auto& done = *expected.completedByHorizon;
    EXPECT_EQ(forecast.wholePeriods, weeks);
    EXPECT_EQ(forecast.counts, *expected.ticketsByHorizon());
    // 2 + 12 after two weeks is exactly the backlog, and counts as done.
    EXPECT_EQ(forecast.backlogDonePct,
              std::count_if(done.begin(), done.end(), [](double v) { return v >= 14; }) / 1e4 * 100);
  }
  EXPECT_EQ(input(0, {}, 6).runByDate().backlogDonePct, 100);
}

TEST(ForecastInput, commitmentScoresTheSimulationsDoneWithinItsWholeWeeks) {
  const auto periods = MonteCarlo::run(lumpy, 10, 10000, 520, {}, {}).periodsDistribution;
  const auto shareWithin = [&](std::int64_t weeks) {
    return std::count_if(periods.begin(), periods.end(), [&](std::int64_t p) { return p <= weeks; }) / 1e4 * 100;
  };
  ASSERT_LT(shareWithin(1), shareWithin(2));
  for (const auto& [days, expected] : {std::pair{13, shareWithin(1)}, {14, shareWithin(2)}, {6, 0.0}, {-1, 0.0}}) {
    EXPECT_EQ(input(10, days).runWhen().commitmentConfidencePct, expected) << days;
  }
  EXPECT_EQ(input(0, -1).runWhen().commitmentConfidencePct, 100);  // nothing left to do
  EXPECT_EQ(input(10).runWhen().commitmentConfidencePct, std::nullopt);
}

// The screen shows both forecasts from one simulation; that must never give a
// number the separate runs would not. Thin and lumpy samples, empty and huge
// backlogs, what-ifs, commitments, horizons of one week up to the limit.
TEST(ForecastInput, oneRunForBothForecastsEqualsTheSeparateRuns) {
  struct Case {
    std::int64_t backlog;
    std::optional<std::int64_t> commitmentDays;
    std::int64_t targetDays;
    double whatIf;
  };
  const Case cases[] = {{0, 10, 7, 0},      {1, {}, 1, 0},      {25, 20, 10, 0},     {25, -5, 3646, -30},
                        {300, 400, 90, 50}, {5000, {}, 700, 0}, {40, 13, 27, 100}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.backlog);
    const ForecastInput in = input(c.backlog, c.commitmentDays, c.targetDays, c.whatIf);
    const auto [when, byDate] = in.runWhenAndByDate();
    EXPECT_EQ(when, in.runWhen());
    EXPECT_EQ(byDate, in.runByDate());
  }
  EXPECT_THROW(input(5, {}, 0).runWhenAndByDate(), ForecastServiceError);
}

}  // namespace
}  // namespace orvane
