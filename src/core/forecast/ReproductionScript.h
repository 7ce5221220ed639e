#pragma once

#include <string>

#include "core/forecast/ForecastInput.h"

namespace orvane {

// A self-contained Python/NumPy program that rebuilds the "When will it be
// done?" forecast of `input` from its simulated samples (after the what-if
// change), backlog and derived seed, with the engine's draws, simulation
// loop and percentile rule, so anyone can check the numbers without this
// program. It prints reproductionOutput() of the same forecast.
// Throws ForecastFailure as runWhen() does (e.g. a what-if of -100%).
std::string reproductionScript(const ForecastInput& input);

// The lines the script prints: "50% 6.0 weeks" for 50, 70, 85 and 95, the
// weeks as Python writes the float.
std::string reproductionOutput(const WhenForecast& forecast);

}  // namespace orvane
