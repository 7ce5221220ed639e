#include "core/forecast/IterationForecast.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/forecast/ForecastInput.h"
#include "core/forecast/ForecastServiceError.h"
#include "engine/ForecastError.h"
#include "engine/ForecastResult.h"
#include "engine/MonteCarlo.h"
#include "engine/Percentile.h"

namespace orvane {
namespace {

struct OutlookText {
  std::string_view raw;
  std::string_view label;
};

constexpr std::array<OutlookText, 4> outlookTexts{{
    {"done", "Nothing open"},
    {"onTrack", "On track"},
    {"atRisk", "At risk"},
    {"offTrack", "Unlikely"},
}};

// The longest iteration whose whole weeks plus the week the end falls in
// (horizon w + 1) still fit the simulated 520 weeks.
constexpr std::int64_t maxIterationDays = 3639;

// Per simulation, the tickets done after `horizon` weeks.
std::vector<double> progressAfter(const std::vector<double>& samples, std::int64_t open, std::int64_t horizon) {
  ForecastResult result =
      MonteCarlo::run(samples, open, ForecastSettings::iterations, ForecastSettings::maxPeriods, std::nullopt, horizon);
  return std::move(*result.completedByHorizon);
}

}  // namespace

std::string_view rawValue(IterationOutlook outlook) { return outlookTexts[static_cast<std::size_t>(outlook)].raw; }

std::string_view displayLabel(IterationOutlook outlook) {
  return outlookTexts[static_cast<std::size_t>(outlook)].label;
}

std::int64_t IterationForecast::actualPeriods() const {
  return std::count_if(history.begin(), history.end(),
                       [](const PeriodCount& period) { return period.provenance == ProvenanceTier::actual; });
}

IterationOutlook IterationForecast::outlook() const {
  if (open == 0) return IterationOutlook::done;
  if (probabilityPct >= 85) return IterationOutlook::onTrack;
  if (probabilityPct >= 50) return IterationOutlook::atRisk;
  return IterationOutlook::offTrack;
}

IterationForecast IterationForecastInput::run() const {
  const CivilDate start = firstDay ? std::max(asOf, *firstDay) : asOf;
  const std::int64_t days = lastDay.daysSince(start) + 1;  // the last day counts

  IterationForecast forecast;
  forecast.asOf = asOf;
  forecast.lastDay = lastDay;
  forecast.daysLeft = std::max<std::int64_t>(days, 0);
  forecast.open = open;
  forecast.history = history;
  // Nothing runs when nothing is open or the iteration is over; such a
  // forecast reports 0 simulations and no counts.
  if (open == 0) {
    forecast.probabilityPct = 100.0;
    return forecast;
  }
  if (days < 1) {
    forecast.probabilityPct = 0.0;
    return forecast;
  }
  if (days > maxIterationDays) throw ForecastServiceError(ForecastServiceError::Case::horizonTooFar);

  const std::vector<double> samples = simulatedSamples(history, whatIfPercent);
  const std::int64_t wholeWeeks = days / ForecastSettings::periodDays;
  const double fraction = static_cast<double>(days - ForecastSettings::periodDays * wholeWeeks) /
                          static_cast<double>(ForecastSettings::periodDays);

  std::vector<double> progress = progressAfter(samples, open, wholeWeeks);
  if (fraction > 0) {
    // Same samples and backlog, so the same derived seed: the second run
    // replays the very same futures one week further, and each simulation's
    // progress is interpolated inside the week the iteration ends in.
    const std::vector<double> nextWeek = progressAfter(samples, open, wholeWeeks + 1);
    if (nextWeek.size() != progress.size()) throw ForecastFailure(ForecastError::invalidHorizon);
    for (std::size_t t = 0; t < progress.size(); ++t) {
      const double a = progress[t];
      const double b = nextWeek[t];
      progress[t] = a + fraction * (b - a);
    }
  }

  const double needed = static_cast<double>(open);
  const auto finished =
      std::count_if(progress.begin(), progress.end(), [needed](double done) { return done >= needed; });
  forecast.iterations = static_cast<std::int64_t>(progress.size());
  forecast.probabilityPct = static_cast<double>(finished) / static_cast<double>(progress.size()) * 100.0;

  std::sort(progress.begin(), progress.end());
  for (const int level : confidenceLevels) {
    forecast.counts.emplace(level, static_cast<std::int64_t>(std::floor(percentile(progress, 100.0 - level))));
  }
  return forecast;
}

}  // namespace orvane
