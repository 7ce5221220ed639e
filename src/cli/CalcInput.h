#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "core/forecast/ForecastInput.h"
#include "core/forecast/IterationForecast.h"
#include "core/forecast/RoadmapForecast.h"

namespace orvane::cli {

// The JSON objects `orvane-cli calc` reads. Every field is checked before
// anything runs; the first one that is missing, of the wrong type or not
// known throws CliError with one sentence naming it by its path, such as
// `Field "epics[2].open" must be a whole number of 0 or more.`
//
// "history" lists weekly counts, oldest first; they become actual periods of
// 7 days, the last one ending on "asOf".

// {asOf, backlog, whatIfPercent?, history, commitment?, target?}. A field
// marked ? may be absent or null; a by-date run without a target is refused
// when it runs (ForecastServiceError missingTarget), not here.
ForecastInput parseProjectCalcInput(const nlohmann::json& object);

// {asOf, lastDay, firstDay?, open, whatIfPercent?, history}.
IterationForecastInput parseIterationCalcInput(const nlohmann::json& object);

// {asOf, history, epics: [{id, name?, open, startOffsetDays?, dueDay?,
// predecessors?}], milestones?: [{id, day, epicID?, isDone?}]}. The caller's
// ids are any strings; each epic and milestone gets an id of ours, ordered
// as the caller listed them, and `callerIds` leads back. Epic ids must be
// unique and form no cycle of predecessors; a predecessor that is not among
// the epics is ignored, while a milestone's epicID must name one of them.
struct RoadmapCalcInput {
  RoadmapForecastInput input;
  std::map<Uuid, std::string> callerIds;
};
RoadmapCalcInput parseRoadmapCalcInput(const nlohmann::json& object);

}  // namespace orvane::cli
