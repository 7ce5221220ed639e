#pragma once

#include <QColor>
#include <QString>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "core/forecast/ForecastService.h"
#include "core/forecast/RoadmapForecast.h"
#include "core/reports/ReportData.h"
#include "engine/CivilDate.h"

namespace orvane::app {

// One epic's row on the time line.
struct RoadmapBar {
  Uuid id;
  QString name;
  QColor colour;
  CivilDate start;  // the planned start, or today without one
  bool hasPlannedStart = false;
  std::optional<CivilDate> p50;  // absent with nothing open
  std::optional<CivilDate> p85;
  std::optional<CivilDate> due;
  std::optional<double> chanceByDue;  // percent
  std::int64_t open = 0;
  bool atRisk = false;
  bool onLongestChain = false;
  QString status;  // the epic's status label
  QString note;    // what is written beside the bar
  QString detail;  // the bar's tooltip, the command line's lines for it

  bool isDone() const { return open <= 0 || !p50; }
};

struct RoadmapArrow {
  Uuid predecessor;
  Uuid successor;
  bool onLongestChain = false;
};

struct RoadmapMarker {
  Uuid id;
  QString name;
  CivilDate day;
  std::optional<double> chance;  // percent; absent when done or unforecast
  bool done = false;
  QString label;
};

// A line of the list under the time line; choosing it selects `epic`.
struct RoadmapIssue {
  Uuid epic;
  QString text;
  bool conflict = false;  // an overlap of planned dates, else a risk
};

// Everything the roadmap screen draws, in plain values: built on the
// user-interface thread from the forecast and the project's rows, so the
// scene only lays it out.
struct RoadmapPicture {
  CivilDate today;
  std::int64_t iterations = 0;
  std::vector<RoadmapBar> bars;  // by start, then by 50% date
  std::vector<RoadmapArrow> arrows;
  std::vector<RoadmapMarker> milestones;
  std::map<int, CivilDate> projectDates;
  std::vector<RoadmapIssue> issues;  // risks, then conflicts
  bool inconclusive = false;

  const RoadmapBar* bar(const Uuid& id) const;
  // The first and the last day anything is drawn on.
  CivilDate firstDay() const;
  CivilDate lastDay() const;
};

struct RoadmapSources {
  const RoadmapForecastInput& input;
  const RoadmapForecast& forecast;
  const std::vector<EpicStatusRow>& statuses;
  const std::vector<Epic>& epics;
  const std::map<Uuid, std::string>& milestoneNames;
  const std::vector<EpicScheduleConflict>& conflicts;
};

RoadmapPicture roadmapPicture(const RoadmapSources& sources);

}  // namespace orvane::app
