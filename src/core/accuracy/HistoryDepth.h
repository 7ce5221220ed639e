#pragma once

#include <cstdint>
#include <span>

#include "engine/CivilDate.h"
#include "engine/ThroughputHistory.h"

namespace orvane {

struct ProjectSnapshot;

// How much of a throughput history is the team's own. A period counts as a
// real week when its provenance is "actual", i.e. the whole window lies after
// the project's creation day; filler periods (estimated, default or carried
// forward) do not. With fewer than cautionBelowWeeks real weeks out of the
// twelve, a forecast is said to rest on thin history and flow trends are
// read with caution: below two thirds of the window, the filler weighs as
// much as half of what the team did.
namespace HistoryDepth {

inline constexpr std::int64_t cautionBelowWeeks = 8;

std::int64_t realWeeks(std::span<const PeriodCount> history);
bool isThin(std::span<const PeriodCount> history);

// The real weeks of the project's forecast history ending on asOf: the same
// twelve seven-day windows the forecast service draws from. Read only: a
// period's provenance follows from the project's creation day alone, so the
// stored filler is not needed (nor written).
std::int64_t realWeeks(const ProjectSnapshot& project, CivilDate asOf);

}  // namespace HistoryDepth
}  // namespace orvane
