#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "cli/CliApp.h"
#include "engine/Timestamp.h"

namespace orvane::cli::testing {

// 2026-03-05T23:30:00Z: late in the UTC day, so a local-time slip shows.
inline constexpr Timestamp fixedNow{1772753400.0};

struct CliRun {
  int code = -1;
  std::string out;
  std::string err;
};

inline CliRun runWith(const std::vector<std::string>& args, Timestamp now = fixedNow) {
  std::ostringstream out;
  std::ostringstream err;
  const int code = runCli(args, out, err, now);
  return {code, out.str(), err.str()};
}

}  // namespace orvane::cli::testing
