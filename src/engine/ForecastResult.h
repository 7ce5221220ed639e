#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "engine/CivilDate.h"

namespace orvane {

// The reported confidence levels, in percent, in this order.
inline constexpr std::array<int, 4> confidenceLevels{50, 70, 85, 95};

// What one Monte Carlo run found.
struct ForecastResult {
  std::int64_t iterations = 0;
  std::int64_t backlogSize = 0;
  double p50 = 0;  // periods needed at 50% confidence
  double p70 = 0;
  double p85 = 0;
  double p95 = 0;
  // At least one simulation did not finish within the simulated periods.
  bool inconclusive = false;
  // Periods each simulation needed, in simulation order (not sorted).
  std::vector<std::int64_t> periodsDistribution;
  // Per simulation, the throughput of the first `horizon` periods; absent
  // when no horizon was given.
  std::optional<std::vector<double>> completedByHorizon;

  // Level -> periods.
  std::map<int, double> percentiles() const;
  // Level -> the day the periods of that level end on (see forecastDate).
  std::map<int, CivilDate> dates(CivilDate runAt, std::int64_t periodDays) const;
  // Level L -> floor of the (100 - L)th percentile of completedByHorizon:
  // the amount that L% of simulations reached or exceeded. Absent without a
  // horizon.
  std::optional<std::map<int, std::int64_t>> ticketsByHorizon() const;

  friend bool operator==(const ForecastResult&, const ForecastResult&) = default;
};

}  // namespace orvane
