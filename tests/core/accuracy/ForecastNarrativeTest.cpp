#include <gtest/gtest.h>

#include "core/accuracy/ForecastNarrative.h"

namespace orvane {
namespace {

const CivilDate asOf{2026, 3, 2};

WhenForecast forecast(std::int64_t backlog, std::int64_t realWeeks = 12) {
  WhenForecast f;
  f.asOf = asOf;
  f.backlog = backlog;
  for (std::int64_t i = 0; i < 12; ++i) {
    f.history.push_back({{}, 3, i >= 12 - realWeeks ? ProvenanceTier::actual : ProvenanceTier::systemDefault});
  }
  f.dates = {{50, {2026, 4, 1}}, {70, {2026, 4, 8}}, {85, {2026, 4, 15}}, {95, {2026, 5, 1}}};
  return f;
}

ForecastHistoryPoint previousWith85(CivilDate p85) {
  return {Uuid::random(), Timestamp{0}, CivilDate{2026, 2, 20}, 9, {2026, 3, 25}, p85, {2026, 4, 20}, {}, {}};
}

TEST(ForecastNarrative, ExplainsTheDatesAndHowTheyMoved) {
  WhenForecast f = forecast(1);
  f.commitment = CivilDate{2026, 4, 10};
  f.commitmentConfidencePct = 84.5;  // rounds away from zero, to high
  EXPECT_EQ(ForecastNarrative::lines(f, previousWith85({2026, 4, 14})),
            (std::vector<std::string>{
                "We are 85% confident the remaining 1 ticket will be finished by 15 Apr 2026.",
                "Half of the simulated outcomes finish by 1 Apr 2026, and 95% finish by 1 May 2026.",
                "The agreed date is 10 Apr 2026. The chance of meeting it is 85% (high confidence).",
                "Since the forecast of 20 Feb 2026, the 85% date has moved later by 1 day.",
            }));

  const std::vector<std::pair<CivilDate, std::string>> moves{
      {{2026, 4, 18}, "Since the forecast of 20 Feb 2026, the 85% date has moved earlier by 3 days."},
      {{2026, 4, 15}, "The 85% date has not moved since the forecast of 20 Feb 2026."},
  };
  for (const auto& [p85, sentence] : moves)
    EXPECT_EQ(ForecastNarrative::lines(forecast(2), previousWith85(p85)).back(), sentence);

  WhenForecast unsure = forecast(4, 7);
  unsure.commitment = CivilDate{2026, 4, 1};
  unsure.commitmentConfidencePct = 49.4;
  const auto lines = ForecastNarrative::lines(unsure);
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_EQ(lines[0],
            "The history holds too little finished work for a reliable date; treat the dates below as rough.");
  EXPECT_EQ(lines[1], "We are 85% confident the remaining 4 tickets will be finished by 15 Apr 2026.");
  EXPECT_EQ(lines[3], "The agreed date is 1 Apr 2026. The chance of meeting it is 49% (low confidence).");
}

TEST(ForecastNarrative, OneLineWhenThereIsNothingToForecast) {
  EXPECT_EQ(ForecastNarrative::lines(forecast(0)),
            std::vector<std::string>{"Nothing remains: all of the planned work is done."});
  WhenForecast missing = forecast(5);
  missing.dates.erase(95);
  EXPECT_EQ(ForecastNarrative::lines(missing, previousWith85({2026, 4, 1})),
            std::vector<std::string>{"There is not enough finished work yet to give a reliable date."});
}

}  // namespace
}  // namespace orvane
