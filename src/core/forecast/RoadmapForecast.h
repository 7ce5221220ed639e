#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "core/model/Uuid.h"
#include "engine/CivilDate.h"
#include "engine/ThroughputHistory.h"

namespace orvane {

struct RoadmapEpicNode {
  Uuid id;
  std::string name;
  std::int64_t open = 0;             // open tickets
  std::int64_t startOffsetDays = 0;  // to the planned start; <= 0 means now
  std::optional<CivilDate> dueDay;
  std::vector<Uuid> predecessors;    // the epics this one waits for

  friend bool operator==(const RoadmapEpicNode&, const RoadmapEpicNode&) = default;
};

struct RoadmapMilestoneNode {
  Uuid id;
  CivilDate day;
  std::optional<Uuid> epicID;
  bool isDone = false;

  friend bool operator==(const RoadmapMilestoneNode&, const RoadmapMilestoneNode&) = default;
};

struct EpicSchedule {
  Uuid id;
  std::int64_t open = 0;
  std::optional<CivilDate> p50;  // absent with nothing open
  std::optional<CivilDate> p85;
  std::optional<CivilDate> dueDay;
  std::optional<double> chanceByDue;         // percent; absent without a due day
  std::optional<std::int64_t> p85SlipDays;   // positive when the 85% date is after the due day
  bool isOnLongestChain = false;

  // Defined with the roadmap: see RoadmapForecast.cpp.
  bool isAtRisk() const;

  friend bool operator==(const EpicSchedule&, const EpicSchedule&) = default;
};

struct RoadmapForecast {
  CivilDate asOf;
  std::int64_t iterations = 0;  // simulations per epic
  std::map<Uuid, EpicSchedule> epics;
  std::map<int, CivilDate> projectDates;  // level -> the day the last epic is done
  std::vector<Uuid> longestChain;         // in chain order
  std::map<Uuid, double> milestoneChances;  // milestone id -> percent
  bool inconclusive = false;
  std::vector<PeriodCount> history;

  friend bool operator==(const RoadmapForecast&, const RoadmapForecast&) = default;
};

// Every epic of a project scheduled at once: each epic with open work gets its
// own simulation, and an epic starts in each simulated future when the last
// epic it waits for is done.
struct RoadmapForecastInput {
  CivilDate asOf;
  std::vector<PeriodCount> history;
  std::vector<RoadmapEpicNode> epics;  // the caller's order decides each epic's stream
  std::vector<RoadmapMilestoneNode> milestones;

  // The epics' simulations run on all cores; the result is the same, bit for
  // bit, as a serial run. Throws ForecastFailure.
  RoadmapForecast run() const;

  friend bool operator==(const RoadmapForecastInput&, const RoadmapForecastInput&) = default;
};

// Epic ids with every epic after all of its predecessors present in the list.
std::vector<Uuid> topologicalOrder(const std::vector<RoadmapEpicNode>& epics);

}  // namespace orvane
