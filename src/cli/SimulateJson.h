#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/SimulateReport.h"
#include "engine/Histogram.h"

namespace orvane::cli {

// The machine-readable form of a forecast, for scripts. Field names follow
// the engine's ForecastResult; level-keyed maps use "50", "70", "85", "95";
// dates are YYYY-MM-DD; completedByHorizon and ticketsByHorizon are null
// without a horizon.
nlohmann::json simulateJson(const SimulateReport& report);

// [{period, count, probabilityPct, cumulativePct, band, date}], ascending.
nlohmann::json histogramJson(const std::vector<HistogramBin>& bins);

// A map by confidence level as an object keyed "50", "70", "85", "95".
template <typename Value, typename Convert>
nlohmann::json byLevel(const std::map<int, Value>& values, Convert convert) {
  nlohmann::json object = nlohmann::json::object();
  for (const auto& [level, value] : values) object[std::to_string(level)] = convert(value);
  return object;
}

}  // namespace orvane::cli
