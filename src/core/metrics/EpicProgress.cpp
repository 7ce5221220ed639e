#include "core/metrics/EpicProgress.h"

#include <cmath>

#include "core/model/ProjectSnapshot.h"

namespace orvane {

double EpicProgress::fractionDone() const {
  return total == 0 ? 0.0 : static_cast<double>(done) / static_cast<double>(total);
}

std::int64_t EpicProgress::percentDone() const {
  return total == 0 ? 0 : static_cast<std::int64_t>(std::round(fractionDone() * 100.0));
}

std::vector<const Ticket*> activeTickets(const ProjectSnapshot& project, const Epic& epic) {
  // The snapshot keeps tickets by number, so this list is too.
  std::vector<const Ticket*> found;
  for (const Ticket& ticket : project.tickets) {
    if (!ticket.isArchived() && ticket.epicId == epic.id) found.push_back(&ticket);
  }
  return found;
}

EpicProgress progress(const ProjectSnapshot& project, const Epic& epic) {
  EpicProgress result;
  for (const Ticket* ticket : activeTickets(project, epic)) {
    ++result.total;
    const BoardColumn* column = ticket->columnId ? project.column(*ticket->columnId) : nullptr;
    const std::optional<ColumnType> type = column != nullptr ? column->type() : std::nullopt;
    if (type == ColumnType::inProgress) {
      ++result.inProgress;
    } else if (type == ColumnType::done) {
      ++result.done;
    } else {
      ++result.notStarted;
    }
    if (project.isOpen(*ticket) && project.isBlocked(*ticket)) ++result.blocked;
  }
  return result;
}

bool isLate(const ProjectSnapshot& project, const Epic& epic, Timestamp asOf) {
  return epic.dueDate && *epic.dueDate < asOf && progress(project, epic).open() > 0;
}

}  // namespace orvane
