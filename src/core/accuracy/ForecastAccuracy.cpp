#include "core/accuracy/ForecastAccuracy.h"

#include <algorithm>
#include <array>

#include "core/model/ProjectSnapshot.h"
#include "engine/ForecastResult.h"

namespace orvane {
namespace {

// Four readable level dates, or nothing.
std::optional<std::vector<CivilDate>> levelDates(const ForecastRecord& record) {
  if (record.resultDays.size() < confidenceLevels.size()) return std::nullopt;
  std::vector<CivilDate> dates;
  for (std::size_t i = 0; i < confidenceLevels.size(); ++i) {
    const auto day = CivilDate::fromIso(record.resultDays[i]);
    if (!day) return std::nullopt;
    dates.push_back(*day);
  }
  return dates;
}

std::optional<CivilDate> optionalDay(const std::optional<std::string>& text) {
  return text ? CivilDate::fromIso(*text) : std::nullopt;
}

// Archived by `now`: out of the board and of every count since then.
bool hasLeft(const Ticket& t, Timestamp now) { return t.archivedAt && *t.archivedAt <= now; }

// Part of the open backlog a forecast run at `runAt` simulated.
bool wasOpenAt(const Ticket& t, Timestamp runAt) {
  return t.createdAt <= runAt && !(t.completedAt && *t.completedAt <= runAt) &&
         !(t.archivedAt && *t.archivedAt <= runAt);
}

// The logged backlog less the tickets of it that have left: those archived
// since, and those deleted since, which leave no row and show only as a
// backlog larger than the tickets open at the run still stored.
std::int64_t backlogStillThere(const ProjectSnapshot& project, std::int64_t logged, Timestamp runAt, Timestamp now) {
  std::int64_t archived = 0;
  std::int64_t stored = 0;
  for (const Ticket& t : project.tickets) {
    if (!wasOpenAt(t, runAt)) continue;
    ++(hasLeft(t, now) ? archived : stored);
  }
  return std::clamp<std::int64_t>(logged - archived, 0, stored);
}

// What happened to the project's scope after a forecast ran.
struct ScopeEvent {
  enum Kind { added, completed };  // the order of events at one instant
  Timestamp at;
  Kind kind;
};

std::vector<ScopeEvent> eventsBetween(const ProjectSnapshot& project, Timestamp runAt, Timestamp now) {
  std::vector<ScopeEvent> events;
  const auto within = [&](Timestamp t) { return runAt < t && t <= now; };
  for (const Ticket& t : project.tickets) {
    if (hasLeft(t, now)) continue;
    if (within(t.createdAt)) events.push_back({t.createdAt, ScopeEvent::added});
    if (t.completedAt && within(*t.completedAt)) events.push_back({*t.completedAt, ScopeEvent::completed});
  }
  std::stable_sort(events.begin(), events.end(), [](const ScopeEvent& a, const ScopeEvent& b) {
    return a.at < b.at || (a.at == b.at && a.kind < b.kind);
  });
  return events;
}

WhenVerdict verdictFor(const std::vector<CivilDate>& dates, std::optional<CivilDate> finishedOn, CivilDate today,
                       std::int64_t remaining) {
  if (!finishedOn) return today > dates[3] ? WhenVerdict::pastP95(remaining) : WhenVerdict::stillOpen(remaining);
  constexpr std::array kinds{WhenVerdict::Kind::withinP50, WhenVerdict::Kind::withinP70, WhenVerdict::Kind::withinP85,
                             WhenVerdict::Kind::withinP95};
  for (std::size_t i = 0; i < kinds.size(); ++i) {
    if (dates[i] >= *finishedOn) return WhenVerdict::finished(kinds[i]);
  }
  return WhenVerdict::finished(WhenVerdict::Kind::later);
}

WhenOutcome judgeWhen(const ForecastRecord& record, CivilDate asOf, std::vector<CivilDate> dates,
                      const ProjectSnapshot& project, Timestamp now) {
  WhenOutcome outcome{record.id,    asOf, std::move(dates), std::max<std::int64_t>(record.backlog, 0), 0,
                      std::nullopt, {}};
  const std::int64_t covered = backlogStillThere(project, outcome.backlogThen, record.runAt, now);
  outcome.leftSince = outcome.backlogThen - covered;
  std::int64_t done = 0;
  const auto caughtUp = [&] { return done >= covered + outcome.addedSince; };
  if (caughtUp()) {
    outcome.finishedOn = asOf;
  } else {
    for (const ScopeEvent& event : eventsBetween(project, record.runAt, now)) {
      if (event.kind == ScopeEvent::added) {
        ++outcome.addedSince;
        continue;
      }
      ++done;
      if (caughtUp()) {
        outcome.finishedOn = CivilDate::fromUtc(event.at);
        break;
      }
    }
  }
  const std::int64_t remaining = std::max<std::int64_t>(covered + outcome.addedSince - done, 0);
  outcome.verdict = verdictFor(outcome.dates, outcome.finishedOn, CivilDate::fromUtc(now), remaining);
  return outcome;
}

std::int64_t finishedBetween(const ProjectSnapshot& project, Timestamp runAt, CivilDate lastDay) {
  return std::count_if(project.tickets.begin(), project.tickets.end(), [&](const Ticket& t) {
    return !t.isArchived() && t.completedAt && *t.completedAt > runAt && CivilDate::fromUtc(*t.completedAt) <= lastDay;
  });
}

std::int64_t floorDiv(std::int64_t a, std::int64_t b) { return a / b - ((a % b != 0) && ((a < 0) != (b < 0))); }

std::vector<CalibrationRow> emptyRows() {
  std::vector<CalibrationRow> rows;
  for (int level : confidenceLevels) rows.push_back({level, 0, 0});
  return rows;
}

}  // namespace

std::vector<int> ByDateOutcome::levelsReached() const {
  std::vector<int> reached;
  for (std::size_t i = 0; i < confidenceLevels.size() && i < counts.size(); ++i) {
    if (counts[i] <= actual) reached.push_back(confidenceLevels[i]);
  }
  return reached;
}

AccuracyReport accuracyReport(const ProjectSnapshot& project, Timestamp now) {
  const CivilDate today = CivilDate::fromUtc(now);
  AccuracyReport report{{}, {}, emptyRows(), emptyRows()};
  for (const ForecastRecord& record : project.forecasts) {
    const auto asOf = CivilDate::fromIso(record.asOfDay);
    if (!asOf) continue;
    if (record.kind() == ForecastKind::when) {
      auto dates = levelDates(record);
      if (dates) report.whenOutcomes.push_back(judgeWhen(record, *asOf, std::move(*dates), project, now));
      continue;
    }
    const auto target = optionalDay(record.targetDay);
    if (!target || !(today > *target)) continue;
    report.byDateOutcomes.push_back({record.id, *asOf, *target, floorDiv(target->daysSince(*asOf), 7),
                                     record.resultCounts, finishedBetween(project, record.runAt, *target)});
  }

  for (const WhenOutcome& outcome : report.whenOutcomes) {
    if (!outcome.finishedOn) continue;
    for (std::size_t i = 0; i < report.whenCalibration.size(); ++i) {
      ++report.whenCalibration[i].total;
      if (*outcome.finishedOn <= outcome.dates[i]) ++report.whenCalibration[i].hits;
    }
  }
  for (const ByDateOutcome& outcome : report.byDateOutcomes) {
    const std::vector<int> reached = outcome.levelsReached();
    for (CalibrationRow& row : report.byDateCalibration) {
      ++row.total;
      if (std::find(reached.begin(), reached.end(), row.level) != reached.end()) ++row.hits;
    }
  }
  return report;
}

std::vector<ForecastHistoryPoint> forecastHistory(const ProjectSnapshot& project) {
  std::vector<ForecastHistoryPoint> points;
  for (const ForecastRecord& record : project.forecasts) {
    if (record.kind() != ForecastKind::when) continue;
    const auto asOf = CivilDate::fromIso(record.asOfDay);
    const auto dates = levelDates(record);
    if (!asOf || !dates) continue;
    points.push_back({record.id, record.runAt, *asOf, record.backlog, (*dates)[0], (*dates)[2], (*dates)[3],
                      optionalDay(record.commitmentDay), record.confidencePct});
  }
  std::stable_sort(points.begin(), points.end(),
                   [](const ForecastHistoryPoint& a, const ForecastHistoryPoint& b) { return a.runAt < b.runAt; });
  return points;
}

std::optional<ForecastHistoryPoint> latestBefore(const std::vector<ForecastHistoryPoint>& history, Timestamp runAt) {
  std::optional<ForecastHistoryPoint> latest;
  for (const ForecastHistoryPoint& point : history) {
    if (point.runAt < runAt && (!latest || latest->runAt <= point.runAt)) latest = point;
  }
  return latest;
}

}  // namespace orvane
