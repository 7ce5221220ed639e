#pragma once

#include <exception>
#include <string_view>

namespace orvane {

// Why the engine refused a forecast. It carries no user-facing text: the
// services that call the engine translate it into their own sentences.
enum class ForecastError {
  nonPositiveIterations,
  negativeBacklog,
  emptySamples,
  invalidHorizon,
  invalidMultiplier,
  invalidLambda,
  invalidPeriods,
};

std::string_view caseName(ForecastError error);

// The exception the engine throws for a ForecastError.
class ForecastFailure : public std::exception {
 public:
  explicit ForecastFailure(ForecastError error) : error_(error) {}
  ForecastError error() const { return error_; }
  const char* what() const noexcept override;

 private:
  ForecastError error_;
};

}  // namespace orvane
