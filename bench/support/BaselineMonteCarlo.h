#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "engine/ForecastResult.h"

// The Monte Carlo run as the engine did it before its stream was vectorised
// and split over threads: one thread, one plain loop, two interleaved copies
// of the generator. Kept verbatim as the yardstick the benchmarks measure the
// engine against, in the same run; its results are bit for bit the engine's.
namespace orvane::baseline {

ForecastResult runMonteCarlo(std::span<const double> throughputSamples, std::int64_t backlogSize,
                             std::int64_t iterations, std::int64_t maxPeriods, std::optional<std::uint64_t> seed,
                             std::optional<std::int64_t> horizon);

}  // namespace orvane::baseline
