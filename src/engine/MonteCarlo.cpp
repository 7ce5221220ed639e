#include "engine/MonteCarlo.h"

#include <algorithm>

#include "engine/Fatal.h"
#include "engine/ForecastError.h"
#include "engine/Pcg64.h"
#include "engine/Percentile.h"
#include "engine/SeedDerivation.h"

namespace orvane::MonteCarlo {
namespace {

void validate(std::span<const double> samples, std::int64_t backlogSize, std::int64_t iterations,
              std::int64_t maxPeriods, std::optional<std::int64_t> horizon) {
  if (iterations < 1) throw ForecastFailure(ForecastError::nonPositiveIterations);
  if (backlogSize < 0) throw ForecastFailure(ForecastError::negativeBacklog);
  if (samples.empty()) throw ForecastFailure(ForecastError::emptySamples);
  if (horizon && (*horizon < 0 || *horizon > maxPeriods)) throw ForecastFailure(ForecastError::invalidHorizon);
  ORVANE_REQUIRE(maxPeriods >= 0, "MonteCarlo::run: negative maxPeriods");
  ORVANE_REQUIRE(samples.size() <= (std::size_t{1} << 32), "MonteCarlo::run: more than 2^32 samples");
}

// Percentiles of the periods needed. The values lie in 0...maxPeriods, so a
// counting sort orders them in linear time.
void fillPercentiles(ForecastResult& result, std::int64_t maxPeriods) {
  std::vector<std::int64_t> perPeriod(static_cast<std::size_t>(maxPeriods) + 1, 0);
  for (const std::int64_t periods : result.periodsDistribution) ++perPeriod[static_cast<std::size_t>(periods)];
  std::vector<double> sorted;
  sorted.reserve(result.periodsDistribution.size());
  for (std::size_t periods = 0; periods < perPeriod.size(); ++periods) {
    sorted.insert(sorted.end(), static_cast<std::size_t>(perPeriod[periods]), static_cast<double>(periods));
  }
  result.p50 = percentile(sorted, 50);
  result.p70 = percentile(sorted, 70);
  result.p85 = percentile(sorted, 85);
  result.p95 = percentile(sorted, 95);
}

}  // namespace

ForecastResult run(std::span<const double> throughputSamples, std::int64_t backlogSize, std::int64_t iterations,
                   std::int64_t maxPeriods, std::optional<std::uint64_t> seed, std::optional<std::int64_t> horizon) {
  validate(throughputSamples, backlogSize, iterations, maxPeriods, horizon);

  ForecastResult result;
  result.iterations = iterations;
  result.backlogSize = backlogSize;
  result.periodsDistribution.assign(static_cast<std::size_t>(iterations), 0);
  if (horizon) result.completedByHorizon.emplace(static_cast<std::size_t>(iterations), 0.0);

  if (!horizon && backlogSize == 0) return result;  // nothing to simulate, nothing drawn

  PCG64 generator(seed ? *seed : deriveSeed(throughputSamples, backlogSize));
  const double* samples = throughputSamples.data();
  const std::uint64_t sampleCount = throughputSamples.size();
  const auto backlog = static_cast<double>(backlogSize);
  // With an empty backlog and a horizon, only the horizon's throughput is
  // asked for; such simulations need 0 periods and are never unfinished.
  const bool checkFinish = !(horizon && backlogSize == 0);
  const std::int64_t horizonPeriods = horizon.value_or(0);
  std::int64_t* periodsOut = result.periodsDistribution.data();
  double* atHorizonOut = horizon ? result.completedByHorizon->data() : nullptr;
  bool inconclusive = false;

  for (std::int64_t t = 0; t < iterations; ++t) {
    double cumulative = 0.0;
    double atHorizon = 0.0;
    std::int64_t p = 0;
    std::int64_t needed = checkFinish ? -1 : 0;
    if (checkFinish) {
      while (p < maxPeriods) {
        cumulative += samples[generator.nextBounded(sampleCount)];
        ++p;
        if (p == horizonPeriods) atHorizon = cumulative;
        if (cumulative >= backlog) {
          needed = p;
          break;
        }
      }
    }
    if (p < horizonPeriods) {
      while (p < horizonPeriods) {
        cumulative += samples[generator.nextBounded(sampleCount)];
        ++p;
      }
      atHorizon = cumulative;
    }
    // The rest of this simulation's draws are consumed unused, so every
    // simulation starts at the same point of the stream.
    if (sampleCount > 1) {
      for (; p < maxPeriods; ++p) generator.nextBounded(sampleCount);
    }
    if (needed < 0) {
      needed = maxPeriods;
      inconclusive = true;
    }
    periodsOut[t] = needed;
    if (atHorizonOut) atHorizonOut[t] = atHorizon;
  }
  result.inconclusive = inconclusive;
  fillPercentiles(result, maxPeriods);
  return result;
}

}  // namespace orvane::MonteCarlo
