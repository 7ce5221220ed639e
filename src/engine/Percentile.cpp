#include "engine/Percentile.h"

#include <algorithm>
#include <cmath>

#include "engine/Fatal.h"

namespace orvane {

double percentile(std::span<const double> sorted, double q) {
  ORVANE_REQUIRE(!sorted.empty(), "percentile: empty list");
  const std::size_t n = sorted.size();
  const double h = q / 100.0 * static_cast<double>(n - 1);
  const double lowFloor = std::floor(h);
  const auto lo = static_cast<std::size_t>(lowFloor);
  const std::size_t hi = std::min(lo + 1, n - 1);
  const double f = h - lowFloor;
  const double a = sorted[lo];
  const double b = sorted[hi];
  // Interpolating from the nearer end decides the last bits; both forms are
  // part of the result's definition.
  return f >= 0.5 ? b - (1.0 - f) * (b - a) : a + f * (b - a);
}

}  // namespace orvane
