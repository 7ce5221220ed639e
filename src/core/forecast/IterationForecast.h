#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string_view>
#include <vector>

#include "engine/CivilDate.h"
#include "engine/ThroughputHistory.h"

namespace orvane {

enum class IterationOutlook { done, onTrack, atRisk, offTrack };

std::string_view rawValue(IterationOutlook outlook);      // "done", "onTrack", "atRisk", "offTrack"
std::string_view displayLabel(IterationOutlook outlook);  // "Nothing open", "On track", "At risk", "Unlikely"

struct IterationForecast {
  CivilDate asOf;
  CivilDate lastDay;
  std::int64_t daysLeft = 0;  // both ends counted, never below 0
  std::int64_t open = 0;
  std::vector<PeriodCount> history;
  std::int64_t iterations = 0;
  double probabilityPct = 0;  // all open tickets done by lastDay
  std::map<int, std::int64_t> counts;  // level -> tickets done by lastDay; empty when nothing ran

  std::int64_t actualPeriods() const;
  // done when nothing is open; else onTrack from 85%, atRisk from 50%.
  IterationOutlook outlook() const;

  friend bool operator==(const IterationForecast&, const IterationForecast&) = default;
};

// The chance that an iteration's open tickets are done by the end of its last
// day. An iteration rarely ends on a whole week, so the progress of the whole
// weeks is blended with that of the week in which the end falls.
struct IterationForecastInput {
  CivilDate asOf;
  CivilDate lastDay;
  std::optional<CivilDate> firstDay;  // only for an iteration not yet started
  std::int64_t open = 0;
  double whatIfPercent = 0;
  std::vector<PeriodCount> history;

  // Throws ForecastServiceError(horizonTooFar) beyond 3639 days, or
  // ForecastFailure.
  IterationForecast run() const;

  friend bool operator==(const IterationForecastInput&, const IterationForecastInput&) = default;
};

}  // namespace orvane
