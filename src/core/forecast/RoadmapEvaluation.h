#pragma once

#include <cstddef>

#include "core/forecast/RoadmapForecast.h"

namespace orvane {

// The roadmap forecast on at most `workers` threads (0 counts as 1).
// RoadmapForecastInput::run() is this with engineThreads() workers (one per
// hardware thread unless ORVANE_THREADS says otherwise); the result is the
// same, bit for bit, whatever the number. Throws ForecastFailure.
RoadmapForecast evaluateRoadmap(const RoadmapForecastInput& input, std::size_t workers);

}  // namespace orvane
