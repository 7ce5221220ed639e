#pragma once

#include <unicode/calendar.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/model/Uuid.h"
#include "core/reports/WIPBreach.h"
#include "engine/CivilDate.h"
#include "engine/Timestamp.h"

namespace orvane {

struct ProjectSnapshot;

// The tables behind the printable reports, computed on demand from a project
// with the current time and the user's calendar. Days of epics, of the
// completed report, of workload and of risk details are days in that
// calendar; nothing here is stored.

// Counts over the whole project. The first four count non-archived tickets
// by the type of their column (not started: a backlog column, an unknown
// type, a missing column or none); blocked and overdue count open tickets.
struct ProjectSummary {
  std::int64_t total = 0;
  std::int64_t notStarted = 0;
  std::int64_t inProgress = 0;
  std::int64_t done = 0;
  std::int64_t blocked = 0;
  std::int64_t overdue = 0;
  std::int64_t archived = 0;

  std::int64_t remaining() const { return notStarted + inProgress; }

  friend bool operator==(const ProjectSummary&, const ProjectSummary&) = default;
};

enum class EpicStatus { complete, late, atRisk, onTrack, noDate };

std::string_view rawValue(EpicStatus status);  // "complete", "late", "atRisk", "onTrack", "noDate"
std::string_view label(EpicStatus status);     // "Complete", "Late", "At risk", "On track", "No date"

struct EpicStatusRow {
  Uuid id;  // the epic's
  std::string name;
  std::optional<std::string> colorHex;
  std::int64_t total = 0;
  std::int64_t done = 0;
  std::int64_t inProgress = 0;
  std::int64_t notStarted = 0;
  std::int64_t blocked = 0;
  std::optional<CivilDate> start;  // in the user's calendar
  std::optional<CivilDate> due;
  EpicStatus status = EpicStatus::noDate;

  std::int64_t open() const { return total - done; }
  double fraction() const { return total == 0 ? 0.0 : static_cast<double>(done) / static_cast<double>(total); }

  friend bool operator==(const EpicStatusRow&, const EpicStatusRow&) = default;
};

struct CompletedItem {
  Uuid id;
  std::string reference;
  std::string title;
  std::optional<std::string> assignee;
  CivilDate completed;  // in the user's calendar

  friend bool operator==(const CompletedItem&, const CompletedItem&) = default;
};

// The group of tickets without an epic has this id and name.
inline constexpr std::string_view noEpicGroupId = "none";
inline constexpr std::string_view noEpicGroupName = "No epic";

struct CompletedGroup {
  std::string id;  // the epic's id, or noEpicGroupId
  std::string epicName;
  std::optional<std::string> colorHex;
  std::vector<CompletedItem> items;

  friend bool operator==(const CompletedGroup&, const CompletedGroup&) = default;
};

struct CompletedReport {
  CivilDate from;  // both ends inclusive
  CivilDate to;
  std::vector<CompletedGroup> groups;
  std::int64_t total = 0;

  friend bool operator==(const CompletedReport&, const CompletedReport&) = default;
};

struct RiskTicket {
  Uuid id;
  std::string reference;
  std::string title;
  std::optional<std::string> assignee;
  std::string detail;    // shown beside the ticket
  bool flagged = false;  // the ticket's own blocked flag

  friend bool operator==(const RiskTicket&, const RiskTicket&) = default;
};

struct RiskReport {
  std::vector<RiskTicket> blocked;
  std::vector<RiskTicket> overdue;
  std::vector<RiskTicket> ageing;
  std::vector<WIPBreach> wipBreaches;
  std::vector<EpicStatusRow> lateEpics;
  std::vector<EpicStatusRow> atRiskEpics;
  std::optional<double> p85CycleDays;

  bool isClear() const {
    return blocked.empty() && overdue.empty() && ageing.empty() && wipBreaches.empty() && lateEpics.empty() &&
           atRiskEpics.empty();
  }

  friend bool operator==(const RiskReport&, const RiskReport&) = default;
};

struct WorkloadRow {
  std::string id;  // the person's id
  std::string name;
  std::int64_t notStarted = 0;
  std::int64_t inProgress = 0;
  std::int64_t blocked = 0;
  std::int64_t overdue = 0;
  std::int64_t doneRecently = 0;

  std::int64_t open() const { return notStarted + inProgress; }

  friend bool operator==(const WorkloadRow&, const WorkloadRow&) = default;
};

ProjectSummary projectSummary(const ProjectSnapshot& project, Timestamp now);

// The status of one epic on the day of `now` in the calendar.
EpicStatus epicStatus(const EpicStatusRow& row, CivilDate today);

// One row per epic: earliest due day first, epics without a due day after
// those with one; ties by name ignoring case.
std::vector<EpicStatusRow> epicStatuses(const ProjectSnapshot& project, Timestamp now, const icu::Calendar& calendar);

// Non-archived tickets whose completion day in the calendar lies in from...to.
// One group per epic, ordered by epic name ignoring case, then the "No epic"
// group last; items by completion instant, ties by ticket number. from after
// to gives no groups.
CompletedReport completedReport(const ProjectSnapshot& project, CivilDate from, CivilDate to,
                                const icu::Calendar& calendar);

// Blocked and overdue tickets in ticket order; ageing work oldest first;
// breached columns in board order; late and at-risk epics in the order of
// epicStatuses. The p85 cycle time is over the tickets finished in the 12
// UTC weeks ending on the UTC day of now, the weeks of the flow measures.
RiskReport riskReport(const ProjectSnapshot& project, Timestamp now, const icu::Calendar& calendar);

// One row per person assigned to at least one non-archived ticket of the
// project; tickets without an assignee are in no row (the summary counts
// them). doneRecently counts tickets finished on the last `recentDays` days
// of the calendar, today included. Most open work first, ties by name
// ignoring case.
std::vector<WorkloadRow> workload(const ProjectSnapshot& project, Timestamp now, std::int64_t recentDays,
                                  const icu::Calendar& calendar);

}  // namespace orvane
