#include "engine/ColdStart.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "engine/Fatal.h"
#include "engine/ForecastError.h"
#include "engine/Pcg64.h"

namespace orvane::ColdStart {

std::vector<PeriodWindow> windows(CivilDate endingOn, std::int64_t periods, std::int64_t periodDays) {
  ORVANE_REQUIRE(periods >= 0, "ColdStart::windows: negative number of periods");
  ORVANE_REQUIRE(periodDays >= 1, "ColdStart::windows: a period must span at least one day");
  std::vector<PeriodWindow> result;
  result.reserve(static_cast<std::size_t>(periods));
  for (std::int64_t k = 0; k < periods; ++k) {
    const CivilDate end = endingOn.addingDays(-(periods - 1 - k) * periodDays);
    result.push_back({end.addingDays(-(periodDays - 1)), end});
  }
  return result;
}

std::vector<std::int64_t> syntheticThroughput(double lambda, std::int64_t periods, std::uint64_t seed) {
  if (std::isnan(lambda) || lambda < 0) throw ForecastFailure(ForecastError::invalidLambda);
  if (periods < 1) throw ForecastFailure(ForecastError::invalidPeriods);

  PCG64 generator(seed);
  std::vector<std::int64_t> counts;
  counts.reserve(static_cast<std::size_t>(periods));
  for (std::int64_t period = 0; period < periods; ++period) {
    std::int64_t total = 0;
    // Knuth's method needs e^-lambda; slices of at most 30 keep it from
    // underflowing for large rates.
    for (double remaining = lambda; remaining > 0;) {
      const double slice = std::min(remaining, 30.0);
      const double limit = std::exp(-slice);
      double product = 1.0;
      std::int64_t k = 1;
      while (true) {
        product *= generator.nextDouble();
        if (product <= limit) break;
        ++k;
      }
      total += k - 1;
      remaining -= slice;
    }
    counts.push_back(total);
  }
  return counts;
}

std::uint64_t fillerSeed(std::uint64_t projectIdLeadingWord, double rate) {
  return projectIdLeadingWord ^ (std::bit_cast<std::uint64_t>(rate) * 0x9E3779B97F4A7C15ULL);
}

}  // namespace orvane::ColdStart
