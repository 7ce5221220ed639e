#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/accuracy/ForecastAccuracy.h"
#include "core/forecast/ForecastInput.h"

namespace orvane {

// A "When" forecast explained in sentences, dates in their display form
// ("5 Mar 2026").
namespace ForecastNarrative {

// Nothing left, or not enough finished work: one line. Otherwise, in order:
// a warning when the history is thin (HistoryDepth::isThin), the 85% date,
// the 50% and 95% dates, the agreed date's chance when there is one, and how
// far the 85% date moved since `previous`. Screens pass as `previous` the
// latest logged run before the one shown (latestBefore), or nothing.
std::vector<std::string> lines(const WhenForecast& forecast,
                               const std::optional<ForecastHistoryPoint>& previous = std::nullopt);

}  // namespace ForecastNarrative
}  // namespace orvane
