#include <gtest/gtest.h>

#include <algorithm>

#include "core/forecast/ForecastServiceError.h"
#include "core/forecast/IterationForecast.h"
#include "engine/MonteCarlo.h"

namespace orvane {
namespace {

const CivilDate today(2026, 3, 2);
const std::vector<double> weekly{7, 14};

IterationForecastInput input(std::int64_t lastDay, std::int64_t open, std::optional<std::int64_t> firstDay = {}) {
  IterationForecastInput in{today, today.addingDays(lastDay),
                            {},    open,
                            0,     {{{}, 7, ProvenanceTier::actual}, {{}, 14, ProvenanceTier::systemDefault}}};
  if (firstDay) in.firstDay = today.addingDays(*firstDay);
  return in;
}

std::vector<double> progressAfter(std::int64_t weeks, std::int64_t open) {
  return *MonteCarlo::run(weekly, open, 10000, 520, {}, weeks).completedByHorizon;
}

double shareAtLeast(const std::vector<double>& progress, double open) {
  return std::count_if(progress.begin(), progress.end(), [&](double v) { return v >= open; }) / 1e4 * 100;
}

TEST(IterationForecast, nothingRunsWhenNothingIsOpenOrTheIterationIsOver) {
  const struct {
    IterationForecastInput in;
    std::int64_t daysLeft;
    double probability;
    IterationOutlook outlook;
  } cases[]{
      {input(-1, 3), 0, 0, IterationOutlook::offTrack},  // ended yesterday
      {input(-1, 0), 0, 100, IterationOutlook::done},
      {input(20, 0, 5), 16, 100, IterationOutlook::done},  // not begun: counted from its first day
  };
  for (const auto& c : cases) {
    const IterationForecast forecast = c.in.run();
    EXPECT_EQ(std::tuple(forecast.daysLeft, forecast.probabilityPct, forecast.outlook(), forecast.iterations),
              std::tuple(c.daysLeft, c.probability, c.outlook, 0));
    EXPECT_TRUE(forecast.counts.empty());
    EXPECT_EQ(forecast.actualPeriods(), 1);
  }
}

TEST(IterationForecast, anEndInsideAWeekBlendsTheProgressOfTheWeeksAroundIt) {
  // Ending today: a seventh of the first week, so 1 or 2 tickets per future.
  const IterationForecast lastDay = input(0, 2).run();
  EXPECT_EQ(lastDay.daysLeft, 1);
  EXPECT_EQ(lastDay.probabilityPct, shareAtLeast(progressAfter(1, 2), 14));
  const std::int64_t median = lastDay.probabilityPct > 50 ? 2 : 1;  // more than half drew 14
  EXPECT_EQ(lastDay.counts, (std::map<int, std::int64_t>{{50, median}, {70, 1}, {85, 1}, {95, 1}}));

  // Exactly 14 days: a single run.
  EXPECT_EQ(input(13, 30).run().probabilityPct, shareAtLeast(progressAfter(2, 30), 30));

  // Planned from day 7 to day 16: one week and 3/7 of the next.
  const auto a = progressAfter(1, 20), b = progressAfter(2, 20);
  std::vector<double> blended(a.size());
  for (std::size_t t = 0; t < a.size(); ++t) blended[t] = a[t] + 3.0 / 7 * (b[t] - a[t]);
  EXPECT_EQ(input(16, 20, 7).run().probabilityPct, shareAtLeast(blended, 20));
}

TEST(IterationForecast, theLongestIterationEndsInTheLastSimulatedWeek) {
  EXPECT_EQ(input(3638, 5).run().daysLeft, 3639);
  try {
    input(3639, 5).run();
    ADD_FAILURE() << "accepted";
  } catch (const ForecastServiceError& error) {
    EXPECT_EQ(std::string(error.what()), "That date is more than ten years away.");
  }
}

TEST(IterationForecast, outlookFollowsTheChanceOfFinishing) {
  using enum IterationOutlook;
  for (const auto& [pct, outlook] : {std::pair{85.0, onTrack}, {84.99, atRisk}, {50.0, atRisk}, {49.99, offTrack}}) {
    EXPECT_EQ((IterationForecast{.open = 4, .probabilityPct = pct}).outlook(), outlook) << pct;
  }
  EXPECT_EQ(displayLabel(offTrack), "Unlikely");
}

}  // namespace
}  // namespace orvane
