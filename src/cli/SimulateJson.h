#pragma once

#include <nlohmann/json.hpp>

#include "cli/SimulateReport.h"

namespace orvane::cli {

// The machine-readable form of a forecast, for scripts. Field names follow
// the engine's ForecastResult; level-keyed maps use "50", "70", "85", "95";
// dates are YYYY-MM-DD; completedByHorizon and ticketsByHorizon are null
// without a horizon.
nlohmann::json simulateJson(const SimulateReport& report);

}  // namespace orvane::cli
