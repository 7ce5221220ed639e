#pragma once

#include <stdexcept>
#include <string>

#include "engine/ForecastError.h"

namespace orvane {

// Why a forecast was refused. what() is the complete sentence the user sees.
class ForecastServiceError : public std::exception {
 public:
  enum class Case { targetNotInFuture, horizonTooFar, invalidEstimate, missingTarget, invalidShare };

  explicit ForecastServiceError(Case kind);
  Case kind() const { return kind_; }
  const char* what() const noexcept override;

  friend bool operator==(const ForecastServiceError& a, const ForecastServiceError& b) { return a.kind_ == b.kind_; }

 private:
  Case kind_;
};

// The sentence for an engine refusal that reaches a user (a what-if of -100%
// or less, say); the engine's own errors carry no text.
std::string sentenceFor(ForecastError error);

}  // namespace orvane
