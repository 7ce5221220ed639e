#pragma once

#include <ostream>

#include "cli/SimulateReport.h"

namespace orvane::cli {

// The forecast as a summary for people, at most 80 columns wide: the inputs,
// the confidence levels in weeks and dates, a warning when the result is
// inconclusive, the tickets done by the horizon, and the histogram of weeks.
void writeSimulateText(const SimulateReport& report, std::ostream& out);

}  // namespace orvane::cli
