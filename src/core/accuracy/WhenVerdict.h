#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace orvane {

// How a logged "When will it be done?" forecast turned out. The first two
// kinds are not judged yet (the covered work is still open) and carry the
// number of tickets left; the others say by which level's date it finished.
struct WhenVerdict {
  enum class Kind { stillOpen, pastP95, withinP50, withinP70, withinP85, withinP95, later };

  Kind kind = Kind::stillOpen;
  std::int64_t remaining = 0;  // stillOpen and pastP95 only; 0 otherwise

  static WhenVerdict stillOpen(std::int64_t remaining) { return {Kind::stillOpen, remaining}; }
  static WhenVerdict pastP95(std::int64_t remaining) { return {Kind::pastP95, remaining}; }
  static WhenVerdict finished(Kind kind) { return {kind, 0}; }

  // "Still open, 3 left", "Past the 95% date, 3 left", "By the 50% date" ...
  // "Later than the 95% date".
  std::string label() const;
  bool isFinished() const { return kind != Kind::stillOpen && kind != Kind::pastP95; }

  friend bool operator==(const WhenVerdict&, const WhenVerdict&) = default;
};

// The case name: "stillOpen", "pastP95", "withinP50" ... "later".
std::string_view rawValue(WhenVerdict::Kind kind);

}  // namespace orvane
