#pragma once

#include <span>
#include <vector>

namespace orvane {

// The what-if adjustment: every sample times (percent / 100 + 1).
// Throws ForecastFailure(invalidMultiplier) unless percent > -100.
std::vector<double> applyThroughputMultiplier(std::span<const double> samples, double percent);

}  // namespace orvane
