#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "core/forecast/ForecastInput.h"
#include "core/forecast/IterationForecast.h"
#include "core/forecast/RoadmapForecast.h"
#include "core/model/ForecastRecord.h"

namespace orvane::cli {

// The forecast result records for scripts, with the records' own field
// names. Days are YYYY-MM-DD, maps by confidence level are keyed "50", "70",
// "85", "95", and an absent optional value is null.

// [{start, end, count, provenance}], oldest first; provenance is the raw tier.
nlohmann::json historyJson(const std::vector<PeriodCount>& history);
nlohmann::json whenJson(const WhenForecast& forecast);
nlohmann::json byDateJson(const ByDateForecast& forecast);
// The record's fields plus `outlook` (its raw value) and `actualPeriods`.
nlohmann::json iterationJson(const IterationForecast& forecast);
// `idText` names an epic or milestone in the output (its own id, or the
// caller's). Each epic carries its schedule's fields plus `isAtRisk`.
nlohmann::json roadmapJson(const RoadmapForecast& forecast, const std::function<std::string(const Uuid&)>& idText);
// A logged run; runAt is a UTC date-time, 2026-03-05T10:00:00Z.
nlohmann::json forecastRecordJson(const ForecastRecord& record);

// An instant as a UTC date-time to the whole second: 2026-03-05T10:00:00Z.
std::string utcDateTimeText(Timestamp instant);

}  // namespace orvane::cli
