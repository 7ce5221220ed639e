#include "core/board/ServiceRules.h"

#include <unordered_set>

namespace orvane::rules {

std::optional<std::string> trimmedColor(const std::optional<std::string>& colorHex) {
  if (!colorHex) return std::nullopt;
  std::string color = text::trimmed(*colorHex);
  if (color.empty()) return std::nullopt;
  return color;
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
