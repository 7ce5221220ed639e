#include "core/forecast/ForecastServiceError.h"

namespace orvane {

ForecastServiceError::ForecastServiceError(Case kind) : kind_(kind) {}

const char* ForecastServiceError::what() const noexcept {
  switch (kind_) {
    case Case::targetNotInFuture:
      return "Choose a date after today.";
    case Case::horizonTooFar:
      return "That date is more than ten years away.";
    case Case::invalidEstimate:
      return "The weekly estimate must be a number from 0 to 1000.";
    case Case::missingTarget:
      return "A date is needed for this forecast.";
    case Case::invalidShare:
      return "The share of capacity must be above 0 and at most 100 per cent.";
  }
  return "";
}

// Only invalidMultiplier can reach a user through a forecast screen; the
// services rule out the others before the engine sees them, but a front end
// that calls the engine directly still gets a sentence rather than a case name.
std::string sentenceFor(ForecastError error) {
  switch (error) {
    case ForecastError::invalidMultiplier:
      return "The throughput change must be more than -100 per cent.";
    case ForecastError::nonPositiveIterations:
      return "At least one simulation is needed for a forecast.";
    case ForecastError::negativeBacklog:
      return "The backlog cannot be negative.";
    case ForecastError::emptySamples:
      return "There is no throughput history to forecast from.";
    case ForecastError::invalidHorizon:
      return "That date is more than ten years away.";
    case ForecastError::invalidLambda:
      return "The weekly estimate must be a number from 0 to 1000.";
    case ForecastError::invalidPeriods:
      return "At least one week of history is needed for a forecast.";
  }
  return {};
}

}  // namespace orvane
