#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/model/Uuid.h"

namespace orvane {

struct ProjectSnapshot;

// A column holding more active tickets than its WIP limit allows.
struct WIPBreach {
  Uuid id;  // the column's
  std::string columnName;
  std::int64_t count = 0;  // active (non-archived) tickets in the column
  std::int64_t limit = 0;

  friend bool operator==(const WIPBreach&, const WIPBreach&) = default;
};

// In board order, every column with a WIP limit whose active tickets number
// more than the limit. A column exactly at its limit is no breach.
std::vector<WIPBreach> wipBreaches(const ProjectSnapshot& project);

}  // namespace orvane
