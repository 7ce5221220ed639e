#pragma once

#include <compare>

namespace orvane {

// An instant: seconds since 1970-01-01T00:00:00Z, fractions allowed.
struct Timestamp {
  double secondsSince1970 = 0.0;

  friend auto operator<=>(const Timestamp&, const Timestamp&) = default;
};

}  // namespace orvane
