#pragma once

#include <cstdint>
#include <vector>

#include "core/model/Epic.h"
#include "core/model/Ticket.h"

namespace orvane {

struct ProjectSnapshot;

// Counts over an epic's active tickets. notStarted + inProgress + done =
// total; blocked is counted independently of the column.
struct EpicProgress {
  std::int64_t total = 0;
  std::int64_t notStarted = 0;
  std::int64_t inProgress = 0;
  std::int64_t done = 0;
  std::int64_t blocked = 0;

  std::int64_t open() const { return total - done; }
  // done / total, and 0 for an epic without tickets.
  double fractionDone() const;
  // fractionDone x 100 rounded half away from zero.
  std::int64_t percentDone() const;

  friend bool operator==(const EpicProgress&, const EpicProgress&) = default;
};

// The epic's tickets that are not archived, by ticket number.
std::vector<const Ticket*> activeTickets(const ProjectSnapshot& project, const Epic& epic);

// By the type of each ticket's column: in progress, done, and everything
// else (a backlog column, an unknown type, a column that is gone, no column)
// not started. An open ticket that is flagged or waits on an open blocker
// also counts as blocked.
EpicProgress progress(const ProjectSnapshot& project, const Epic& epic);

// The epic has a due date before asOf and still has open tickets; an epic
// without tickets is never late.
bool isLate(const ProjectSnapshot& project, const Epic& epic, Timestamp asOf);

}  // namespace orvane
