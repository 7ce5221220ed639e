#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "engine/CivilDate.h"
#include "engine/Histogram.h"
#include "engine/ThroughputHistory.h"

namespace orvane {

// Every project, epic and iteration forecast simulates 10,000 futures of at
// most 520 weeks of 7 days, with a seed derived from its inputs.
namespace ForecastSettings {
inline constexpr std::int64_t iterations = 10000;
inline constexpr std::int64_t maxPeriods = 520;
inline constexpr std::int64_t periodDays = 7;
// The last distance in days whose whole weeks (520) fit the simulation.
inline constexpr std::int64_t maxTargetDays = 3646;
}  // namespace ForecastSettings

// "When will it be done?": weeks and dates at each confidence level.
struct WhenForecast {
  CivilDate asOf;
  std::int64_t backlog = 0;
  double whatIfPercent = 0;
  std::vector<PeriodCount> history;
  std::int64_t iterations = 0;
  std::map<int, double> periods;   // level -> weeks
  std::map<int, CivilDate> dates;  // level -> finish day
  std::vector<HistogramBin> histogram;
  bool inconclusive = false;
  std::optional<CivilDate> commitment;
  std::optional<double> commitmentConfidencePct;

  friend bool operator==(const WhenForecast&, const WhenForecast&) = default;
};

// "How many by a date?": tickets done by the target at each confidence level.
struct ByDateForecast {
  CivilDate asOf;
  CivilDate target;
  std::int64_t wholePeriods = 0;
  std::int64_t backlog = 0;
  double whatIfPercent = 0;
  std::vector<PeriodCount> history;
  std::int64_t iterations = 0;
  std::map<int, std::int64_t> counts;  // level -> tickets
  double backlogDonePct = 0;

  friend bool operator==(const ByDateForecast&, const ByDateForecast&) = default;
};

// What a project or epic forecast starts from. Pure: running it touches no
// store.
struct ForecastInput {
  CivilDate asOf;
  std::int64_t backlog = 0;
  double whatIfPercent = 0;
  std::vector<PeriodCount> history;  // the 12 weeks, oldest first
  std::optional<CivilDate> commitment;
  std::optional<CivilDate> target;

  // The same forecast with the team's throughput changed by `whatIfPercent`
  // and `backlogChange` tickets added (removed when negative; the backlog
  // never goes below 0 and saturates instead of overflowing).
  ForecastInput withWhatIf(double whatIfPercent, std::int64_t backlogChange) const;

  // Throws ForecastFailure (e.g. a what-if of -100% or less).
  WhenForecast runWhen() const;
  // Throws ForecastServiceError: missingTarget, targetNotInFuture,
  // horizonTooFar; or ForecastFailure.
  ByDateForecast runByDate() const;
  // Both forecasts from one simulation, equal to runWhen() and runByDate():
  // a run with a horizon replays the very futures of the run without one
  // (the seed follows from the samples and the backlog alone), so the
  // screen that shows both pays for one. Throws as runByDate().
  std::pair<WhenForecast, ByDateForecast> runWhenAndByDate() const;

  friend bool operator==(const ForecastInput&, const ForecastInput&) = default;
};

// The samples a forecast simulates: the history's counts, changed by the
// what-if percent when it is not 0. Throws ForecastFailure.
std::vector<double> simulatedSamples(const std::vector<PeriodCount>& history, double whatIfPercent);

}  // namespace orvane
