#include "support/BaselineMonteCarlo.h"

#include <algorithm>
#include <vector>

#include "engine/Fatal.h"
#include "engine/ForecastError.h"
#include "engine/Pcg64.h"
#include "engine/Percentile.h"
#include "engine/SeedDerivation.h"

namespace orvane::baseline {

// Bounded draws in [0, n) from a PCG64, exactly as its nextBounded(n) gives
// them, made for the Monte Carlo loop. The generator's 32-bit words are made
// ahead in blocks by interleaved copies of the generator, each stepping
// `lanes` states at a time so that their multiplications overlap; each block
// also notes whether any of its words could start a Lemire rejection, so that
// draws whose values are not needed can be skipped by counting alone. Words made ahead and never used are dropped with
// the stream, so only a generator that lives for one run may be read this way.
class BoundedDrawStream {
 public:
  // Interleaved copies of the generator that make the words.
  static constexpr int lanes = 2;

  // REQUIRES: the generator holds no buffered half; 2 <= n <= 2^32.
  BoundedDrawStream(const PCG64& generator, std::uint64_t n);

  std::uint64_t next() {
    std::uint64_t m = std::uint64_t{nextWord()} * n_;
    if (static_cast<std::uint32_t>(m) < n_) [[unlikely]] {
      while (static_cast<std::uint32_t>(m) < threshold_) m = std::uint64_t{nextWord()} * n_;
    }
    return m >> 32;
  }

  // Consumes `count` draws whose values are not needed.
  void skip(std::int64_t count);

 private:
  static constexpr int blockOutputs = 256;
  static constexpr int blockWords = 2 * blockOutputs;

  std::uint32_t nextWord() {
    if (position_ == blockWords) refill();
    return words_[position_++];
  }
  void refill();

  std::uint64_t n_;
  std::uint64_t threshold_;  // (2^32 - n) mod n
  uint128 laneStates_[lanes];
  uint128 laneIncrement_;  // the increment of `lanes` steps composed into one
  int position_ = blockWords;
  bool blockMayReject_ = false;
  std::uint32_t words_[blockWords];
};

namespace {

constexpr uint128 multiplierPower(int steps) {
  uint128 m = 1;
  for (int i = 0; i < steps; ++i) m *= PCG64::multiplier;
  return m;
}
// `lanes` steps of the generator compose into one affine step s -> M s + C.
constexpr uint128 laneMultiplier = multiplierPower(BoundedDrawStream::lanes);

}  // namespace

BoundedDrawStream::BoundedDrawStream(const PCG64& generator, std::uint64_t n)
    : n_(n), threshold_(((std::uint64_t{1} << 32) - n) % n) {
  ORVANE_REQUIRE(!generator.hasBuffered(), "BoundedDrawStream: generator holds a buffered half");
  ORVANE_REQUIRE(n >= 2 && n <= (std::uint64_t{1} << 32), "BoundedDrawStream: bound outside 2...2^32");
  // Output k of the generator comes from the state after k + 1 steps; lane
  // j makes outputs j, j + lanes, j + 2 lanes, ...
  uint128 state = generator.state();
  const uint128 increment = generator.increment();
  laneIncrement_ = 0;
  for (auto& laneState : laneStates_) {
    state = state * PCG64::multiplier + increment;
    laneState = state;
    laneIncrement_ = laneIncrement_ * PCG64::multiplier + increment;
  }
}

void BoundedDrawStream::refill() {
  uint128 states[lanes];
  for (int j = 0; j < lanes; ++j) states[j] = laneStates_[j];
  const uint128 c = laneIncrement_;
  const auto n32 = static_cast<std::uint32_t>(n_);  // 0 for n = 2^32, which never rejects
  for (int k = 0; k < blockOutputs; k += lanes) {
    for (int j = 0; j < lanes; ++j) {
      const std::uint64_t x = PCG64::output(states[j]);
      states[j] = states[j] * laneMultiplier + c;
      words_[2 * (k + j)] = static_cast<std::uint32_t>(x);
      words_[2 * (k + j) + 1] = static_cast<std::uint32_t>(x >> 32);
    }
  }
  for (int j = 0; j < lanes; ++j) laneStates_[j] = states[j];
  position_ = 0;
  // A separate pass over the block vectorises.
  std::uint32_t mayReject = 0;
  for (const std::uint32_t word : words_) mayReject |= static_cast<std::uint32_t>(word * n32 < n32);
  blockMayReject_ = mayReject != 0;
}

void BoundedDrawStream::skip(std::int64_t count) {
  while (count > 0) {
    if (position_ == blockWords) refill();
    if (blockMayReject_) {
      // Some draw of this block may take more than one word: go one by one.
      next();
      --count;
      continue;
    }
    const int chunk = static_cast<int>(std::min<std::int64_t>(count, blockWords - position_));
    position_ += chunk;
    count -= chunk;
  }
}

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
  static std::uint64_t next() { return 0; }
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

// Runs every simulation, filling the result's arrays; returns whether any
// simulation did not finish.
template <typename Draws>
bool simulateAll(const Simulation& sim, Draws& draws, std::span<std::int64_t> periodsOut, double* atHorizonOut) {
  const double* samples = sim.samples.data();
  bool inconclusive = false;
  for (std::size_t t = 0; t < periodsOut.size(); ++t) {
    double cumulative = 0.0;
    double atHorizon = 0.0;
    std::int64_t p = 0;
    std::int64_t needed = sim.checkFinish ? -1 : 0;
    if (sim.checkFinish) {
      while (p < sim.maxPeriods) {
        cumulative += samples[draws.next()];
        ++p;
        if (p == sim.horizon) atHorizon = cumulative;
        if (cumulative >= sim.backlog) {
          needed = p;
          break;
        }
      }
    }
    if (p < sim.horizon) {
      while (p < sim.horizon) {
        cumulative += samples[draws.next()];
        ++p;
      }
      atHorizon = cumulative;
    }
    // The rest of the simulation's draws are consumed unused, so that every
    // simulation starts at the same point of the stream.
    draws.skip(sim.maxPeriods - p);
    if (needed < 0) {
      needed = sim.maxPeriods;
      inconclusive = true;
    }
    periodsOut[t] = needed;
    if (atHorizonOut) atHorizonOut[t] = atHorizon;
  }
  return inconclusive;
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

ForecastResult runMonteCarlo(std::span<const double> throughputSamples, std::int64_t backlogSize,
                             std::int64_t iterations, std::int64_t maxPeriods, std::optional<std::uint64_t> seed,
                             std::optional<std::int64_t> horizon) {
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
    result.inconclusive = simulateAll(sim, draws, result.periodsDistribution, atHorizonOut);
  } else {
    const PCG64 generator(seed ? *seed : deriveSeed(throughputSamples, backlogSize));
    BoundedDrawStream draws(generator, throughputSamples.size());
    result.inconclusive = simulateAll(sim, draws, result.periodsDistribution, atHorizonOut);
  }
  fillPercentiles(result, maxPeriods);
  return result;
}

}  // namespace orvane::baseline
