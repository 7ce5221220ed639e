#pragma once

#include <span>

namespace orvane {

// Linear interpolation between closest ranks at position q/100 x (n - 1) of
// an ascending list; q in percent (0...100). Every percentile of the system
// goes through this one function. REQUIRES: sorted is not empty.
double percentile(std::span<const double> sorted, double q);

}  // namespace orvane
