#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/model/Uuid.h"
#include "engine/Timestamp.h"

namespace orvane {

// Follows from the dates; never stored.
enum class IterationState { planned, active, closed };

std::string_view rawValue(IterationState state);      // "planned", "active", "closed"
std::string_view displayLabel(IterationState state);  // "Planned", "Active", "Closed"

// A named, dated box of tickets with a goal (a sprint).
struct Iteration {
  Uuid id;
  std::string name;
  std::string goal;
  Timestamp startDate;
  Timestamp endDate;  // never before startDate
  std::optional<Timestamp> startedAt;
  std::optional<Timestamp> closedAt;
  std::int64_t committedCount = 0;    // its tickets (not archived) when started
  std::int64_t finishedCount = 0;     // done tickets at the close
  std::int64_t carriedOverCount = 0;  // open tickets moved on at the close
  Uuid projectId;

  IterationState state() const {
    if (closedAt) return IterationState::closed;
    return startedAt ? IterationState::active : IterationState::planned;
  }

  friend bool operator==(const Iteration&, const Iteration&) = default;
};

}  // namespace orvane
