#pragma once

#include <cstdint>
#include <vector>

#include "engine/CivilDate.h"

namespace orvane::ColdStart {

inline constexpr double defaultLambda = 5.0;
inline constexpr std::int64_t defaultPeriods = 12;
inline constexpr std::int64_t defaultPeriodDays = 7;

// `periods` rolling windows of `periodDays` days, oldest first; the last one
// ends on endingOn itself, and consecutive windows touch without a gap.
// REQUIRES: periods >= 0, periodDays >= 1.
std::vector<PeriodWindow> windows(CivilDate endingOn, std::int64_t periods, std::int64_t periodDays);

// `periods` Poisson counts with mean lambda, drawn by Knuth's method in
// slices of at most 30 so that e^-slice never underflows.
// Throws ForecastFailure: invalidLambda (negative or NaN, checked first),
// then invalidPeriods (periods < 1).
std::vector<std::int64_t> syntheticThroughput(double lambda, std::int64_t periods, std::uint64_t seed);

// The seed of a project's filler at a rate: the first eight bytes of the
// project's id (big-endian) xor the rate's IEEE-754 bits times
// 0x9E3779B97F4A7C15, wrapping. The filler changes only when the rate does.
std::uint64_t fillerSeed(std::uint64_t projectIdLeadingWord, double rate);

}  // namespace orvane::ColdStart
