#pragma once

#include <map>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "core/forecast/ForecastInput.h"
#include "core/forecast/ForecastService.h"
#include "core/forecast/IterationForecast.h"
#include "core/forecast/RoadmapForecast.h"
#include "core/model/ForecastRecord.h"

namespace orvane::cli {

// The readable forecasts of `orvane-cli forecast`, below the heading the
// command writes. Each says where its numbers come from.

// "History: 9 of the 12 weeks are real; 3 are filler (the default
// estimate)." and the weekly counts, oldest first.
void writeHistory(const std::vector<PeriodCount>& history, std::ostream& out);

// The weeks and finish days at each level, the chance of meeting the
// commitment under `commitmentName` ("Committed date", "Due date") when there
// is one, the history, an inconclusive warning and the histogram of weeks.
void writeWhenText(const WhenForecast& forecast, std::string_view commitmentName, std::ostream& out);
// The tickets done by the target at each level and the chance the whole
// backlog is done.
void writeByDateText(const ByDateForecast& forecast, std::ostream& out);
// The outlook, its probability, the days left and the tickets done by the
// last day.
void writeIterationText(const IterationForecast& forecast, std::ostream& out);

// What the roadmap shows beyond the forecast itself: the input (epics in the
// order to list them, with their names; milestones), the milestones' names,
// and the dependencies whose planned dates overlap.
struct RoadmapContext {
  const RoadmapForecastInput& input;
  const std::map<Uuid, std::string>& milestoneNames;
  const std::vector<EpicScheduleConflict>& conflicts;
};
void writeRoadmapText(const RoadmapForecast& forecast, const RoadmapContext& context, std::ostream& out);

// One entry per logged run, oldest first.
void writeForecastLog(const std::vector<ForecastRecord>& records, std::ostream& out);

}  // namespace orvane::cli
