#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "cli/SimulateOptions.h"
#include "engine/CivilDate.h"
#include "engine/ForecastResult.h"
#include "engine/Histogram.h"

namespace orvane::cli {

// The command line's periods are weeks.
inline constexpr std::int64_t simulatePeriodDays = 7;

// One forecast and everything derived from it that the outputs show.
struct SimulateReport {
  SimulateOptions options;
  std::vector<double> simulatedSamples;  // after the what-if, if any
  std::uint64_t seed = 0;                // the one used, given or derived
  ForecastResult result;
  std::map<int, CivilDate> dates;  // confidence level -> finish day
  std::optional<std::map<int, std::int64_t>> ticketsByHorizon;
  std::vector<HistogramBin> histogram;
};

// Runs the engine on checked options. Throws CliError should the engine
// still refuse them.
SimulateReport runSimulation(const SimulateOptions& options);

}  // namespace orvane::cli
