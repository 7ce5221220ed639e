#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "engine/ForecastResult.h"

namespace orvane::MonteCarlo {

inline constexpr std::int64_t defaultIterations = 10000;
inline constexpr std::int64_t defaultMaxPeriods = 520;

// Simulates `iterations` futures of at most `maxPeriods` periods, each period
// drawing one of the throughput samples uniformly, and reports the periods
// needed to finish `backlogSize` tickets (and, with a horizon, the throughput
// of the first `horizon` periods of each simulation).
//
// Without a seed, the seed is deriveSeed(samples, backlog). Every simulation
// consumes exactly maxPeriods bounded draws, so the result is the same as
// drawing an iterations x maxPeriods matrix of indices row by row.
//
// Throws ForecastFailure, checked in this order: nonPositiveIterations,
// negativeBacklog, emptySamples, invalidHorizon (negative or > maxPeriods).
// REQUIRES: maxPeriods >= 0; at most 2^32 samples.
//
// The simulations run on engineThreads() threads (ORVANE_THREADS=1 keeps
// them on the calling thread); the result is the same, bit for bit, on any
// number of threads.
ForecastResult run(std::span<const double> throughputSamples, std::int64_t backlogSize,
                   std::int64_t iterations, std::int64_t maxPeriods, std::optional<std::uint64_t> seed,
                   std::optional<std::int64_t> horizon);

// The same on at most `threads` threads (0 counts as 1).
ForecastResult run(std::span<const double> throughputSamples, std::int64_t backlogSize,
                   std::int64_t iterations, std::int64_t maxPeriods, std::optional<std::uint64_t> seed,
                   std::optional<std::int64_t> horizon, std::size_t threads);

}  // namespace orvane::MonteCarlo
