// The engine against the former single-thread loop (bench/support) on many
// random forecasts, on one thread and split over several: every result must
// be the same, bit for bit. Too slow for the test suite (a few hundred full
// forecasts, some over a million samples); the tests run a small variant.
//   build/bench/orvane_engine_agreement [ROUNDS [SEED]]
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <random>
#include <vector>

#include "engine/MonteCarlo.h"
#include "support/BaselineMonteCarlo.h"

int main(int argc, char** argv) {
  using namespace orvane;
  const int rounds = argc > 1 ? std::atoi(argv[1]) : 300;
  std::mt19937_64 random(argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 42);
  // A million samples: a word in about 4,400 is rejected, so split runs
  // must run blocks again.
  std::vector<double> manySamples(1'000'000);
  for (double& sample : manySamples) sample = static_cast<double>(random() % 9);
  const std::int64_t backlogs[] = {0, 1, 2, 17, 100, 999, 20000};
  int differing = 0;
  for (int round = 0; round < rounds; ++round) {
    std::vector<double> samples;
    if (round % 10 == 0) {
      samples = manySamples;
    } else {
      samples.resize(1 + random() % 80);
      for (double& sample : samples) sample = static_cast<double>(random() % 10) * (round % 3 != 0 ? 1.0 : 0.37);
    }
    const std::int64_t backlog = backlogs[random() % 7];
    const auto maxPeriods = static_cast<std::int64_t>(round % 4 == 0 ? random() % 50 : 520);
    std::optional<std::int64_t> horizon;
    if (round % 2 == 1) horizon = static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(maxPeriods + 1));
    const auto iterations = static_cast<std::int64_t>(1 + random() % 12000);
    std::optional<std::uint64_t> seed;
    if (round % 3 != 0) seed = random();
    const ForecastResult expected = baseline::runMonteCarlo(samples, backlog, iterations, maxPeriods, seed, horizon);
    for (const std::size_t threads : {1, 2, 5}) {
      if (MonteCarlo::run(samples, backlog, iterations, maxPeriods, seed, horizon, threads) != expected) {
        ++differing;
        std::printf("round %d differs on %zu threads: %zu samples, backlog %lld, %lld x %lld\n", round, threads,
                    samples.size(), static_cast<long long>(backlog), static_cast<long long>(iterations),
                    static_cast<long long>(maxPeriods));
      }
    }
  }
  std::printf("%d rounds, %d differing runs\n", rounds, differing);
  return differing == 0 ? 0 : 1;
}
