#pragma once

#include <optional>
#include <string>

#include "core/model/Uuid.h"
#include "engine/Timestamp.h"

namespace orvane {

// A body of work; one with a due date is shown as a milestone.
struct Epic {
  Uuid id;
  std::string name;  // unique within the project, ignoring case
  std::optional<std::string> colorHex;
  std::optional<Timestamp> startDate;
  std::optional<Timestamp> dueDate;  // never before startDate
  std::string details;
  Uuid projectId;

  friend bool operator==(const Epic&, const Epic&) = default;
};

// The successor waits on the predecessor. The graph of a project stays free
// of cycles.
struct EpicDependency {
  Uuid id;
  Timestamp createdAt;
  Uuid predecessorId;
  Uuid successorId;

  friend bool operator==(const EpicDependency&, const EpicDependency&) = default;
};

struct Milestone {
  Uuid id;
  std::string name;
  std::string details;
  Timestamp date;
  std::optional<Timestamp> completedAt;
  Uuid projectId;
  std::optional<Uuid> epicId;

  bool isDone() const { return completedAt.has_value(); }

  friend bool operator==(const Milestone&, const Milestone&) = default;
};

}  // namespace orvane
