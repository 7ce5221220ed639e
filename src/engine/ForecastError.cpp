#include "engine/ForecastError.h"

#include <array>

namespace orvane {

std::string_view caseName(ForecastError error) {
  static constexpr std::array<const char*, 7> names{
      "nonPositiveIterations", "negativeBacklog", "emptySamples",  "invalidHorizon",
      "invalidMultiplier",     "invalidLambda",   "invalidPeriods",
  };
  return names[static_cast<std::size_t>(error)];
}

const char* ForecastFailure::what() const noexcept { return caseName(error_).data(); }

}  // namespace orvane
