#include "app/reports/ReportContent.h"

#include <exception>
#include <utility>

#include "core/accuracy/ForecastNarrative.h"
#include "core/metrics/FlowTicket.h"
#include "engine/LocalCivilDate.h"

namespace orvane::app {

std::string_view rawValue(ReportAudience audience) {
  return audience == ReportAudience::client ? "client" : "internal";
}

std::optional<ReportAudience> audienceNamed(std::string_view raw) {
  if (raw == "client") return ReportAudience::client;
  if (raw == "internal") return ReportAudience::internal;
  return std::nullopt;
}

ReportPeriod periodEndingOn(CivilDate today, std::int64_t days) { return {today.addingDays(-(days - 1)), today}; }

ReportReading readReport(ForecastService& forecasts, std::shared_ptr<const ProjectSnapshot> project,
                         ReportAudience audience, ReportPeriod period, Timestamp now, const icu::Calendar& calendar) {
  ReportReading r;
  r.audience = audience;
  r.period = period;
  r.now = now;
  r.today = civilDateFromLocal(now, calendar);
  r.project = std::move(project);
  const ProjectSnapshot& p = *r.project;
  const CivilDate utcToday = ForecastService::todayUTC(now);
  try {
    r.when = forecasts.input(p.project.id, utcToday);
    r.previous = latestBefore(forecastHistory(p), now);
  } catch (const std::exception& error) {
    r.whenError = error.what();
  }
  if (!p.epics.empty()) {
    try {
      r.roadmap = forecasts.roadmapInput(p.project.id, utcToday, calendar);
      r.conflicts = forecasts.scheduleConflicts(p.project.id, calendar);
    } catch (const std::exception&) {
      r.roadmap.reset();  // the report says the roadmap could not be drawn
    }
  }
  for (const Milestone& milestone : p.milestones) r.milestoneNames[milestone.id] = milestone.name;
  r.summary = projectSummary(p, now);
  r.statuses = epicStatuses(p, now, calendar);
  r.completed = completedReport(p, period.from, period.to, calendar);
  if (audience == ReportAudience::internal) {
    r.risk = riskReport(p, now, calendar);
    r.workload = workload(p, now, reportRecentDays, calendar);
  }
  return r;
}

namespace {

std::string addresseeOf(const Project& project, ReportAudience audience) {
  if (audience == ReportAudience::client) return project.clientLine();
  return project.internalName.empty() ? project.internalEmail : project.internalName;
}

void computeForecasts(const ReportReading& reading, ReportContent& content) {
  if (reading.when) {
    try {
      content.when = reading.when->runWhen();
      content.narrative = ForecastNarrative::lines(*content.when, reading.previous);
    } catch (const std::exception& error) {
      content.whenError = error.what();
    }
  } else {
    content.whenError = reading.whenError;
  }
  if (reading.roadmap) {
    try {
      const RoadmapForecast forecast = reading.roadmap->run();
      content.roadmap =
          roadmapPicture(RoadmapSources{*reading.roadmap, forecast, reading.statuses, reading.project->epics,
                                        reading.milestoneNames, reading.conflicts});
    } catch (const std::exception& error) {
      content.roadmapError = error.what();
    }
  } else if (!reading.project->epics.empty()) {
    content.roadmapError = "The roadmap could not be scheduled.";
  }
}

void computeFlow(const ReportReading& reading, ReportContent& content) {
  try {
    const std::vector<FlowTicket> tickets = flowTickets(*reading.project);
    content.health = flowHealth(*reading.project, reading.now);
    content.flow = FlowScreen::figures(tickets, reading.now, FlowScreen::defaultWeeks);
    content.accuracy = accuracyReport(*reading.project, reading.now);
  } catch (const std::exception& error) {
    content.flowError = error.what();
  }
}

}  // namespace

ReportContent computeReport(const ReportReading& reading) {
  ReportContent content;
  content.audience = reading.audience;
  content.period = reading.period;
  content.today = reading.today;
  content.projectName = reading.project->project.name;
  content.addressee = addresseeOf(reading.project->project, reading.audience);
  content.summary = reading.summary;
  content.epics = reading.statuses;
  computeForecasts(reading, content);
  for (const CompletedGroup& group : reading.completed.groups)
    content.completedCounts.push_back({group.epicName, static_cast<std::int64_t>(group.items.size())});
  content.completedTotal = reading.completed.total;
  if (reading.audience == ReportAudience::internal) {
    content.completedGroups = reading.completed.groups;
    content.risk = reading.risk;
    content.workload = reading.workload;
    computeFlow(reading, content);
  }
  return content;
}

}  // namespace orvane::app
