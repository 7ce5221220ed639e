#include "core/reports/WIPBreach.h"

#include <unordered_map>

#include "core/model/ProjectSnapshot.h"

namespace orvane {

std::vector<WIPBreach> wipBreaches(const ProjectSnapshot& project) {
  std::unordered_map<Uuid, std::int64_t> active;
  for (const Ticket& ticket : project.tickets) {
    if (!ticket.isArchived() && ticket.columnId) ++active[*ticket.columnId];
  }
  std::vector<WIPBreach> breaches;
  for (const BoardColumn& column : project.columns) {
    if (!column.wipLimit) continue;
    const auto it = active.find(column.id);
    const std::int64_t count = it == active.end() ? 0 : it->second;
    if (count > *column.wipLimit) breaches.push_back({column.id, column.name, count, *column.wipLimit});
  }
  return breaches;
}

}  // namespace orvane
