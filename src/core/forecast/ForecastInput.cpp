#include "core/forecast/ForecastInput.h"

#include <algorithm>
#include <limits>

#include "core/forecast/ForecastServiceError.h"
#include "engine/MonteCarlo.h"
#include "engine/ThroughputMultiplier.h"

namespace orvane {

ForecastInput ForecastInput::withWhatIf(double whatIfPercent, std::int64_t backlogChange) const {
  ForecastInput changed = *this;
  changed.whatIfPercent = whatIfPercent;
  std::int64_t sum = 0;
  if (__builtin_add_overflow(backlog, backlogChange, &sum)) {
    sum = backlogChange > 0 ? std::numeric_limits<std::int64_t>::max() : 0;
  }
  changed.backlog = std::max<std::int64_t>(sum, 0);
  return changed;
}

std::vector<double> simulatedSamples(const std::vector<PeriodCount>& history, double whatIfPercent) {
  std::vector<double> samples = ThroughputHistory::samples(history);
  // A what-if of exactly 0 leaves the samples untouched; anything else,
  // including NaN, goes through the engine's check.
  if (whatIfPercent != 0) samples = applyThroughputMultiplier(samples, whatIfPercent);
  return samples;
}

namespace {

WhenForecast whenFrom(const ForecastInput& input, const ForecastResult& result) {
  const CivilDate& asOf = input.asOf;
  const std::optional<CivilDate>& commitment = input.commitment;
  WhenForecast forecast;
  forecast.asOf = asOf;
  forecast.backlog = input.backlog;
  forecast.whatIfPercent = input.whatIfPercent;
  forecast.history = input.history;
  forecast.iterations = result.iterations;
  forecast.periods = result.percentiles();
  forecast.dates = result.dates(asOf, ForecastSettings::periodDays);
  forecast.histogram =
      buildHistogram(result.periodsDistribution, result.iterations, asOf, ForecastSettings::periodDays);
  forecast.inconclusive = result.inconclusive;
  forecast.commitment = commitment;
  if (commitment) {
    if (input.backlog == 0) {
      forecast.commitmentConfidencePct = 100.0;
    } else if (const std::int64_t days = commitment->daysSince(asOf); days < 0) {
      forecast.commitmentConfidencePct = 0.0;
    } else {
      // Only whole weeks are simulated: a commitment 13 days away scores the
      // simulations that finished within one week.
      const std::int64_t weeks = days / ForecastSettings::periodDays;
      const auto finished = std::count_if(result.periodsDistribution.begin(), result.periodsDistribution.end(),
                                          [weeks](std::int64_t periods) { return periods <= weeks; });
      forecast.commitmentConfidencePct =
          static_cast<double>(finished) / static_cast<double>(result.periodsDistribution.size()) * 100.0;
    }
  }
  return forecast;
}

// The whole weeks to the target. Throws the service's refusals of a target.
std::int64_t wholePeriodsTo(const ForecastInput& input) {
  if (!input.target) throw ForecastServiceError(ForecastServiceError::Case::missingTarget);
  const std::int64_t days = input.target->daysSince(input.asOf);
  if (days <= 0) throw ForecastServiceError(ForecastServiceError::Case::targetNotInFuture);
  if (days > ForecastSettings::maxTargetDays) throw ForecastServiceError(ForecastServiceError::Case::horizonTooFar);
  return days / ForecastSettings::periodDays;
}

ByDateForecast byDateFrom(const ForecastInput& input, const ForecastResult& result, std::int64_t wholePeriods) {
  const std::int64_t backlog = input.backlog;
  ByDateForecast forecast;
  forecast.asOf = input.asOf;
  forecast.target = *input.target;
  forecast.wholePeriods = wholePeriods;
  forecast.backlog = backlog;
  forecast.whatIfPercent = input.whatIfPercent;
  forecast.history = input.history;
  forecast.iterations = result.iterations;
  forecast.counts = result.ticketsByHorizon().value_or(std::map<int, std::int64_t>{});
  if (backlog == 0) {
    forecast.backlogDonePct = 100.0;
  } else {
    const std::vector<double>& done = *result.completedByHorizon;
    const double needed = static_cast<double>(backlog);
    const auto finished =
        std::count_if(done.begin(), done.end(), [needed](double completed) { return completed >= needed; });
    forecast.backlogDonePct = static_cast<double>(finished) / static_cast<double>(done.size()) * 100.0;
  }
  return forecast;
}

}  // namespace

WhenForecast ForecastInput::runWhen() const {
  const std::vector<double> samples = simulatedSamples(history, whatIfPercent);
  return whenFrom(*this, MonteCarlo::run(samples, backlog, ForecastSettings::iterations, ForecastSettings::maxPeriods,
                                         std::nullopt, std::nullopt));
}

ByDateForecast ForecastInput::runByDate() const {
  const std::int64_t wholePeriods = wholePeriodsTo(*this);
  const std::vector<double> samples = simulatedSamples(history, whatIfPercent);
  return byDateFrom(*this,
                    MonteCarlo::run(samples, backlog, ForecastSettings::iterations, ForecastSettings::maxPeriods,
                                    std::nullopt, wholePeriods),
                    wholePeriods);
}

std::pair<WhenForecast, ByDateForecast> ForecastInput::runWhenAndByDate() const {
  const std::int64_t wholePeriods = wholePeriodsTo(*this);
  const std::vector<double> samples = simulatedSamples(history, whatIfPercent);
  const ForecastResult result = MonteCarlo::run(samples, backlog, ForecastSettings::iterations,
                                                ForecastSettings::maxPeriods, std::nullopt, wholePeriods);
  return {whenFrom(*this, result), byDateFrom(*this, result, wholePeriods)};
}

}  // namespace orvane
