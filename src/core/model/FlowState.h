#pragma once

#include <optional>

#include "engine/Timestamp.h"

namespace orvane {

// A ticket's started and completed instants, as the flow rules stamp them.
struct FlowState {
  std::optional<Timestamp> startedAt;
  std::optional<Timestamp> completedAt;

  // (completed - started) in days; absent unless both are set.
  std::optional<double> cycleTimeDays() const {
    if (!startedAt || !completedAt) return std::nullopt;
    return (completedAt->secondsSince1970 - startedAt->secondsSince1970) / 86400.0;
  }

  friend bool operator==(const FlowState&, const FlowState&) = default;
};

}  // namespace orvane
