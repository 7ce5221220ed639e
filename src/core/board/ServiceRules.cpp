#include "core/board/ServiceRules.h"

#include <unordered_set>

namespace orvane::rules {

std::optional<std::string> trimmedColor(const std::optional<std::string>& colorHex) {
  if (!colorHex) return std::nullopt;
  std::string color = text::trimmed(*colorHex);
  if (color.empty()) return std::nullopt;
  return color;
}

std::int64_t nextFreeTicketNumber(Database& db, const Project& project) {
  Statement& highest = db.cached("SELECT coalesce(max(number), 0) FROM tickets WHERE project_id = ?1");
  highest.bindAll(project.id);
  highest.step();
  const std::int64_t inUse = highest.int64(0);
  highest.reset();
  const std::int64_t counter = project.nextTicketNumber;
  return counter > inUse && counter <= maxTicketNumber ? counter : inUse + 1;
}

std::int64_t activeCount(Database& db, const Uuid& column) {
  Statement& count = db.cached("SELECT count(*) FROM tickets WHERE column_id = ?1 AND archived_at IS NULL");
  count.bindAll(column);
  count.step();
  const std::int64_t found = count.int64(0);
  count.reset();
  return found;
}

bool reaches(const std::unordered_map<Uuid, std::vector<Uuid>>& edges, const Uuid& from, const Uuid& goal) {
  std::unordered_set<Uuid> visited{from};
  std::vector<Uuid> pending{from};
  while (!pending.empty()) {
    const Uuid node = pending.back();
    pending.pop_back();
    if (node == goal) return true;
    const auto next = edges.find(node);
    if (next == edges.end()) continue;
    for (const Uuid& neighbour : next->second) {
      if (visited.insert(neighbour).second) pending.push_back(neighbour);
    }
  }
  return false;
}

}  // namespace orvane::rules
