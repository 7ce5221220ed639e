#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "core/accuracy/WhenVerdict.h"
#include "core/model/Uuid.h"
#include "engine/CivilDate.h"
#include "engine/Timestamp.h"

namespace orvane {

struct ProjectSnapshot;

// One logged "When" forecast set against what happened.
//
// The work a forecast covers is the backlog it was run for, less the
// tickets of it that have left the project since (leftSince), plus every
// ticket added after the run until that work is first caught up
// (addedSince). A ticket has left once it is archived or deleted; work that
// left is judged nowhere, neither as scope nor as a completion. Archived
// tickets keep their rows, so those of the backlog are counted; deleted ones
// leave none, so the backlog is also capped at the tickets open at the run
// that are still stored: the difference was deleted (or was a what-if
// change to the backlog that no ticket stands for). Walking the tickets
// created and completed after the run in time order (an addition before a
// completion at the same instant), the covered work is finished at the
// first moment the completions since the run equal the remaining backlog
// plus the additions so far; finishedOn is that moment's UTC day (the run's
// asOf when nothing was left). Tickets added after that moment belong to
// later work, so a judged forecast stays judged.
struct WhenOutcome {
  Uuid id;  // the logged record's
  CivilDate asOf;
  std::vector<CivilDate> dates;  // at 50, 70, 85 and 95%
  std::int64_t backlogThen = 0;  // the logged backlog
  std::int64_t addedSince = 0;   // until finishedOn, or until now while open
  std::optional<CivilDate> finishedOn;
  WhenVerdict verdict;
  std::int64_t leftSince = 0;  // of backlogThen: archived or deleted since the run

  friend bool operator==(const WhenOutcome&, const WhenOutcome&) = default;
};

// One logged "How many by a date?" forecast whose target day has passed
// (today after target): only then is it judged and listed.
//
// `actual` counts the tickets completed after the run's moment and on or
// before the target day (UTC). Tickets finished earlier on the run's day were
// already out of the backlog the forecast simulated; those finished later
// that day are work it predicted; the target day counts in full, since "by a
// date" includes the date.
struct ByDateOutcome {
  Uuid id;
  CivilDate asOf;
  CivilDate target;
  std::int64_t wholeWeeks = 0;
  std::vector<std::int64_t> counts;  // at 50, 70, 85 and 95%
  std::int64_t actual = 0;

  // The levels 50, 70, 85, 95 (as far as counts go) whose count is at most
  // actual, in that order.
  std::vector<int> levelsReached() const;

  friend bool operator==(const ByDateOutcome&, const ByDateOutcome&) = default;
};

// How often forecasts came true at one confidence level.
struct CalibrationRow {
  int level = 0;  // 50, 70, 85 or 95
  std::int64_t hits = 0;
  std::int64_t total = 0;

  // hits / total x 100; 0 when nothing was judged.
  double hitPct() const { return total == 0 ? 0.0 : static_cast<double>(hits) / static_cast<double>(total) * 100.0; }

  friend bool operator==(const CalibrationRow&, const CalibrationRow&) = default;
};

struct AccuracyReport {
  std::vector<WhenOutcome> whenOutcomes;      // by run time
  std::vector<ByDateOutcome> byDateOutcomes;  // by run time, judged only
  // One row per level 50, 70, 85, 95. When: total = finished outcomes, hits =
  // those finished on or before the level's date. By date: total = judged
  // outcomes, hits = those that reached the level.
  std::vector<CalibrationRow> whenCalibration;
  std::vector<CalibrationRow> byDateCalibration;

  friend bool operator==(const AccuracyReport&, const AccuracyReport&) = default;
};

// Every logged forecast of the project judged as of `now` (today = its UTC
// day). "When" records without four readable level dates, and records whose
// days cannot be read, are left out.
AccuracyReport accuracyReport(const ProjectSnapshot& project, Timestamp now);

// One logged "When" forecast as a point of the dates-over-time chart.
struct ForecastHistoryPoint {
  Uuid id;
  Timestamp runAt;
  CivilDate asOf;
  std::int64_t backlog = 0;
  CivilDate p50;
  CivilDate p85;
  CivilDate p95;
  std::optional<CivilDate> commitment;  // the agreed date, when one was given
  std::optional<double> confidencePct;  // the chance of meeting it

  friend bool operator==(const ForecastHistoryPoint&, const ForecastHistoryPoint&) = default;
};

// The logged "When" forecasts with four readable dates, by run time.
std::vector<ForecastHistoryPoint> forecastHistory(const ProjectSnapshot& project);

// The point a forecast run at `runAt` is compared with: the latest one run
// strictly before it. Absent when there is none.
std::optional<ForecastHistoryPoint> latestBefore(const std::vector<ForecastHistoryPoint>& history, Timestamp runAt);

}  // namespace orvane
