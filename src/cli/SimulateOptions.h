#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/CivilDate.h"
#include "engine/MonteCarlo.h"

namespace orvane::cli {

// Upper limits of the command line, far above any real use. They keep a
// typing slip from asking for hours of simulation or gigabytes of results.
inline constexpr std::int64_t maxIterationsAccepted = 10'000'000;
inline constexpr std::int64_t maxPeriodsAccepted = 100'000;

// A checked `simulate` command line: every value is one the engine accepts.
struct SimulateOptions {
  bool help = false;            // --help: print the usage, nothing else
  std::vector<double> samples;  // as given, before any what-if
  std::int64_t backlog = 0;
  std::optional<std::int64_t> horizon;  // in periods, 0...maxPeriods
  std::int64_t iterations = MonteCarlo::defaultIterations;
  std::int64_t maxPeriods = MonteCarlo::defaultMaxPeriods;
  std::optional<std::uint64_t> seed;
  std::optional<double> whatIfPercent;  // > -100
  CivilDate asOf;                       // a real day
  bool json = false;
};

extern const std::string_view simulateUsage;

// Reads the arguments after "simulate"; `today` is the default --as-of.
// Throws CliError with one sentence naming the first bad or missing value,
// checked in the order of the usage text.
SimulateOptions parseSimulateOptions(std::span<const std::string> args, CivilDate today);

}  // namespace orvane::cli
