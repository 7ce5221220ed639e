#include "engine/ForecastResult.h"

#include <algorithm>
#include <cmath>

#include "engine/ForecastDate.h"
#include "engine/Percentile.h"

namespace orvane {

std::map<int, double> ForecastResult::percentiles() const { return {{50, p50}, {70, p70}, {85, p85}, {95, p95}}; }

std::map<int, CivilDate> ForecastResult::dates(CivilDate runAt, std::int64_t periodDays) const {
  std::map<int, CivilDate> result;
  for (const auto& [level, periods] : percentiles()) result.emplace(level, forecastDate(runAt, periods, periodDays));
  return result;
}

std::optional<std::map<int, std::int64_t>> ForecastResult::ticketsByHorizon() const {
  if (!completedByHorizon) return std::nullopt;
  std::vector<double> sorted = *completedByHorizon;
  std::sort(sorted.begin(), sorted.end());
  std::map<int, std::int64_t> result;
  for (const int level : confidenceLevels) {
    result.emplace(level, static_cast<std::int64_t>(std::floor(percentile(sorted, 100.0 - level))));
  }
  return result;
}

}  // namespace orvane
