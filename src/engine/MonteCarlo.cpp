#include "engine/MonteCarlo.h"

#include <algorithm>
#include <vector>

#include "engine/BoundedDrawStream.h"
#include "engine/Fatal.h"
#include "engine/ForecastError.h"
#include "engine/Pcg64.h"
#include "engine/Percentile.h"
#include "engine/SeedDerivation.h"
#include "engine/GuessedStarts.h"
#include "engine/ThreadCount.h"

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

// With a single sample every draw is index 0 and consumes nothing.
struct SingleSampleDraws {
  template <typename Visit>
  static std::int64_t drawUntil(std::int64_t limit, Visit&& visit) {
    for (std::int64_t made = 0; made < limit;) {
      ++made;
      if (visit(std::uint64_t{0})) return made;
    }
    return std::max<std::int64_t>(limit, 0);
  }
  static void skip(std::int64_t) {}
};

struct Simulation {
  std::span<const double> samples;
  double backlog;
  std::int64_t maxPeriods;
  std::int64_t horizon;  // 0 without a horizon
  // False with an empty backlog and a horizon: only the horizon's throughput
  // is asked for, and such simulations need 0 periods.
  bool checkFinish;
};

// Runs the simulations of `periodsOut` (and `atHorizonOut`, when given, of
// the same length), one after another from the draws' current position;
// returns whether any of them did not finish.
template <typename Draws>
bool simulateRange(const Simulation& sim, Draws& draws, std::span<std::int64_t> periodsOut, double* atHorizonOut) {
  // Locals, so that the loops keep them in registers.
  const double* samples = sim.samples.data();
  const double backlog = sim.backlog;
  const std::int64_t maxPeriods = sim.maxPeriods;
  const std::int64_t horizon = sim.horizon;
  const bool checkFinish = sim.checkFinish;
  bool inconclusive = false;
  for (std::size_t t = 0; t < periodsOut.size(); ++t) {
    double cumulative = 0.0;
    double atHorizon = 0.0;
    std::int64_t p = 0;
    std::int64_t needed = checkFinish ? -1 : 0;
    if (checkFinish) {
      bool finished = false;
      std::int64_t drawn = 0;
      p = draws.drawUntil(maxPeriods, [&](std::uint64_t i) {
        cumulative += samples[i];
        if (++drawn == horizon) atHorizon = cumulative;
        finished = cumulative >= backlog;
        return finished;
      });
      if (finished) needed = p;
    }
    if (p < horizon) {
      p += draws.drawUntil(horizon - p, [&](std::uint64_t i) {
        cumulative += samples[i];
        return false;
      });
      atHorizon = cumulative;
    }
    // The rest of the simulation's draws are consumed unused, so that every
    // simulation starts at the same point of the stream.
    draws.skip(maxPeriods - p);
    if (needed < 0) {
      needed = maxPeriods;
      inconclusive = true;
    }
    periodsOut[t] = needed;
    if (atHorizonOut) atHorizonOut[t] = atHorizon;
  }
  return inconclusive;
}

// Fewer simulations than this are not worth a block of their own.
constexpr std::int64_t minSimulationsPerBlock = 256;
// A few blocks per thread, so that a thread the system holds back leaves
// its share to the others.
constexpr std::int64_t blocksPerThread = 4;

// The simulations split into consecutive blocks shared by the threads. Without a
// rejected word, simulation t starts at word t * maxPeriods of the stream, so
// every block starts there at once; the blocks after a rejection run again
// from the corrected word (see runFromGuessedStarts), which leaves the result
// exactly that of one stream read from start to end.
bool simulateBlocks(const Simulation& sim, const PCG64& generator, std::size_t threads,
                    std::span<std::int64_t> periodsOut, double* atHorizonOut) {
  const auto iterations = static_cast<std::int64_t>(periodsOut.size());
  const auto wanted = threads <= 1 ? 1 : static_cast<std::int64_t>(threads) * blocksPerThread;
  const auto blocks =
      static_cast<std::size_t>(std::max<std::int64_t>(1, std::min(wanted, iterations / minSimulationsPerBlock)));
  const auto n = static_cast<std::uint64_t>(sim.samples.size());
  if (blocks == 1 || sim.maxPeriods == 0) {
    BoundedDrawStream draws(generator, n);
    return simulateRange(sim, draws, periodsOut, atHorizonOut);
  }
  const auto firstOf = [&](std::size_t b) {
    return static_cast<std::size_t>(iterations * static_cast<std::int64_t>(b) / static_cast<std::int64_t>(blocks));
  };
  std::vector<std::uint64_t> plannedStarts(blocks);
  for (std::size_t b = 0; b < blocks; ++b) {
    plannedStarts[b] = static_cast<std::uint64_t>(firstOf(b)) * static_cast<std::uint64_t>(sim.maxPeriods);
  }
  std::vector<char> inconclusive(blocks, 0);
  runFromGuessedStarts(std::move(plannedStarts), threads, [&](std::size_t b, std::uint64_t startWord) {
    const std::size_t first = firstOf(b);
    BoundedDrawStream draws(generator, n, startWord);
    inconclusive[b] = simulateRange(sim, draws, periodsOut.subspan(first, firstOf(b + 1) - first),
                                    atHorizonOut ? atHorizonOut + first : nullptr);
    return draws.wordsUsed();
  });
  return std::find(inconclusive.begin(), inconclusive.end(), 1) != inconclusive.end();
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
  return run(throughputSamples, backlogSize, iterations, maxPeriods, seed, horizon, engineThreads());
}

ForecastResult run(std::span<const double> throughputSamples, std::int64_t backlogSize, std::int64_t iterations,
                   std::int64_t maxPeriods, std::optional<std::uint64_t> seed, std::optional<std::int64_t> horizon,
                   std::size_t threads) {
  validate(throughputSamples, backlogSize, iterations, maxPeriods, horizon);

  ForecastResult result;
  result.iterations = iterations;
  result.backlogSize = backlogSize;
  result.periodsDistribution.assign(static_cast<std::size_t>(iterations), 0);
  if (horizon) result.completedByHorizon.emplace(static_cast<std::size_t>(iterations), 0.0);

  if (!horizon && backlogSize == 0) return result;  // nothing to simulate, nothing drawn

  const Simulation sim{throughputSamples, static_cast<double>(backlogSize), maxPeriods, horizon.value_or(0),
                       !(horizon && backlogSize == 0)};
  double* atHorizonOut = horizon ? result.completedByHorizon->data() : nullptr;
  if (throughputSamples.size() == 1) {
    SingleSampleDraws draws;
    result.inconclusive = simulateRange(sim, draws, result.periodsDistribution, atHorizonOut);
  } else {
    const PCG64 generator(seed ? *seed : deriveSeed(throughputSamples, backlogSize));
    result.inconclusive = simulateBlocks(sim, generator, threads, result.periodsDistribution, atHorizonOut);
  }
  fillPercentiles(result, maxPeriods);
  return result;
}

}  // namespace orvane::MonteCarlo
