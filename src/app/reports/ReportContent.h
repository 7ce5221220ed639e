#pragma once

#include <unicode/utypes.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/roadmap/RoadmapPicture.h"
#include "core/accuracy/FlowHealth.h"
#include "core/accuracy/ForecastAccuracy.h"
#include "core/forecast/ForecastService.h"
#include "core/metrics/FlowScreen.h"
#include "core/model/ProjectSnapshot.h"
#include "core/reports/ReportData.h"

U_NAMESPACE_BEGIN
class Calendar;
U_NAMESPACE_END

namespace orvane::app {

// Who a report is for. A client report leaves out everything internal:
// blockers, ticket titles and people.
enum class ReportAudience { client, internal };

std::string_view rawValue(ReportAudience audience);  // "client", "internal"
std::optional<ReportAudience> audienceNamed(std::string_view raw);

// The days of the completed work a report covers, both included.
struct ReportPeriod {
  CivilDate from;
  CivilDate to;
};

// The last `days` days ending on `today`.
ReportPeriod periodEndingOn(CivilDate today, std::int64_t days);

// The days the workload table counts as recent.
inline constexpr std::int64_t reportRecentDays = 14;

// What a report starts from, read on the user-interface thread (the store
// and the calendar live there). Everything in it is a plain value, so the
// simulations can run in the pool.
struct ReportReading {
  ReportAudience audience = ReportAudience::client;
  ReportPeriod period;
  Timestamp now;
  CivilDate today;  // in the user's calendar
  std::shared_ptr<const ProjectSnapshot> project;
  std::optional<ForecastInput> when;
  std::string whenError;  // the sentence when no input could be made
  std::optional<ForecastHistoryPoint> previous;
  std::optional<RoadmapForecastInput> roadmap;
  std::vector<EpicScheduleConflict> conflicts;
  std::map<Uuid, std::string> milestoneNames;
  ProjectSummary summary;
  std::vector<EpicStatusRow> statuses;
  CompletedReport completed;
  RiskReport risk;                    // internal only
  std::vector<WorkloadRow> workload;  // internal only
};

// Reads the inputs of a report of `project` (a snapshot taken now). May
// save the project's cold-start filler, as every forecast does.
ReportReading readReport(ForecastService& forecasts, std::shared_ptr<const ProjectSnapshot> project,
                         ReportAudience audience, ReportPeriod period, Timestamp now, const icu::Calendar& calendar);

// One completed-work group as a client sees it: the epic and its count.
struct CompletedCount {
  std::string epicName;
  std::int64_t count = 0;
};

// Everything a report page shows, computed: the simulations run here, so
// call it in the pool. A section that could not be computed carries the
// sentence that says why instead.
struct ReportContent {
  ReportAudience audience = ReportAudience::client;
  ReportPeriod period;
  CivilDate today;
  std::string projectName;
  std::string addressee;  // the client's name and company, or the internal recipient
  ProjectSummary summary;
  std::vector<EpicStatusRow> epics;
  std::optional<WhenForecast> when;
  std::string whenError;
  std::vector<std::string> narrative;
  std::optional<RoadmapPicture> roadmap;
  std::string roadmapError;
  std::vector<CompletedCount> completedCounts;
  std::int64_t completedTotal = 0;

  // Internal only.
  std::vector<CompletedGroup> completedGroups;
  RiskReport risk;
  std::vector<WorkloadRow> workload;
  std::optional<FlowHealth> health;
  std::optional<FlowScreen::Figures> flow;
  std::string flowError;
  std::optional<AccuracyReport> accuracy;
};

ReportContent computeReport(const ReportReading& reading);

}  // namespace orvane::app
