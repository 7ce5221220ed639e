#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/model/Uuid.h"
#include "engine/Timestamp.h"

namespace orvane {

struct ProjectSnapshot;

// What the flow measures need of one non-archived ticket, taken from a
// project once and then handed to the stateless functions of FlowMetrics.
struct FlowTicket {
  Uuid id;
  std::string reference;  // "FRC-12"
  std::string title;
  Timestamp createdAt;
  std::optional<Timestamp> startedAt;
  std::optional<Timestamp> completedAt;
  // Days from the flow state's start to its finish, fractional and not
  // clamped; absent unless both ends are known.
  std::optional<double> cycleDays;
  // The ticket stands in a column of type in progress right now.
  bool inProgressNow = false;

  friend bool operator==(const FlowTicket&, const FlowTicket&) = default;
};

// The project's non-archived tickets in the snapshot's ticket order (by
// number). Works on a snapshot built in memory too: column types are looked
// up from the snapshot's column list, not its indexes.
std::vector<FlowTicket> flowTickets(const ProjectSnapshot& project);

}  // namespace orvane
