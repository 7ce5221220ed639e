#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace orvane::Backup {

// What a restore created, and the items it had to drop.
struct Report {
  std::int64_t projects = 0;
  std::int64_t tickets = 0;
  std::int64_t people = 0;  // new people only; merged ones are not counted
  std::int64_t forecasts = 0;
  std::int64_t iterations = 0;
  std::int64_t milestones = 0;
  std::int64_t epicDependencies = 0;
  std::vector<std::string> warnings;  // in the order met

  friend bool operator==(const Report&, const Report&) = default;
};

}  // namespace orvane::Backup
