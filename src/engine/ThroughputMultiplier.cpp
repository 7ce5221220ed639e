#include "engine/ThroughputMultiplier.h"

#include "engine/ForecastError.h"

namespace orvane {

std::vector<double> applyThroughputMultiplier(std::span<const double> samples, double percent) {
  if (!(percent > -100.0)) throw ForecastFailure(ForecastError::invalidMultiplier);
  const double factor = percent / 100.0 + 1.0;
  std::vector<double> adjusted;
  adjusted.reserve(samples.size());
  for (const double sample : samples) adjusted.push_back(factor * sample);
  return adjusted;
}

}  // namespace orvane
