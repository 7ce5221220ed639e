#include <gtest/gtest.h>

#include "core/accuracy/ForecastAccuracy.h"
#include "core/forecast/ForecastService.h"
#include "core/model/ProjectSnapshot.h"
#include "core/support/TempStore.h"

namespace orvane {
namespace {

const CivilDate runDay{2026, 3, 2};

Timestamp on(std::int64_t daysAfterRun, int hour = 12) {
  return Timestamp{static_cast<double>(runDay.addingDays(daysAfterRun).daysSinceEpoch() * 86400 + hour * 3600)};
}

Ticket ticket(std::int64_t createdDay, std::optional<std::int64_t> completedDay = {},
              std::optional<std::int64_t> archivedDay = {}) {
  Ticket t;
  t.id = Uuid::random();
  t.createdAt = on(createdDay);
  if (completedDay) t.completedAt = on(*completedDay);
  if (archivedDay) t.archivedAt = on(*archivedDay);
  return t;
}

// Run at noon on runDay with level dates 10, 14, 20 and 30 days later.
ForecastRecord whenRecord(std::int64_t backlog) {
  ForecastRecord r;
  r.id = Uuid::random();
  r.runAt = on(0);
  r.asOfDay = runDay.description();
  r.backlog = backlog;
  for (int offset : {10, 14, 20, 30}) r.resultDays.push_back(runDay.addingDays(offset).description());
  return r;
}

ForecastRecord byDateRecord(std::int64_t targetDay, std::vector<std::int64_t> counts) {
  ForecastRecord r;
  r.id = Uuid::random();
  r.runAt = on(0);
  r.kindRaw = "by_date";
  r.asOfDay = runDay.description();
  r.targetDay = runDay.addingDays(targetDay).description();
  r.resultCounts = std::move(counts);
  return r;
}

TEST(WhenOutcome, VerdictByTheDayTheCoveredWorkFinished) {
  struct Case {
    std::optional<std::int64_t> lastDone;  // day of the second completion
    std::int64_t today;
    WhenVerdict expected;
    std::string label;
  };
  using K = WhenVerdict::Kind;
  const std::vector<Case> cases{
      {10, 40, WhenVerdict::finished(K::withinP50), "By the 50% date"},  // exactly on the 50% date
      {11, 40, WhenVerdict::finished(K::withinP70), "By the 70% date"},
      {20, 40, WhenVerdict::finished(K::withinP85), "By the 85% date"},
      {30, 40, WhenVerdict::finished(K::withinP95), "By the 95% date"},
      {31, 40, WhenVerdict::finished(K::later), "Later than the 95% date"},
      {std::nullopt, 30, WhenVerdict::stillOpen(1), "Still open, 1 left"},
      {std::nullopt, 31, WhenVerdict::pastP95(1), "Past the 95% date, 1 left"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.label);
    ProjectSnapshot s;
    s.tickets = {ticket(-5, 3), ticket(-5, c.lastDone), ticket(-9, -1)};  // the last was done before the run
    s.forecasts = {whenRecord(2)};
    const AccuracyReport report = accuracyReport(s, on(c.today));
    ASSERT_EQ(report.whenOutcomes.size(), 1u);
    const WhenOutcome& outcome = report.whenOutcomes[0];
    EXPECT_EQ(outcome.verdict, c.expected);
    EXPECT_EQ(outcome.verdict.label(), c.label);
    EXPECT_EQ(outcome.finishedOn, c.lastDone ? std::optional(runDay.addingDays(*c.lastDone)) : std::nullopt);
  }
}

TEST(WhenOutcome, ScopeGrowsWithAdditionsUntilTheWorkIsCaughtUp) {
  ProjectSnapshot s;
  s.tickets = {
      ticket(-5, 2),                // covered
      ticket(-5, std::nullopt, 4),  // covered, archived unfinished: leaves the scope
      ticket(1, 6),                 // added, then done: the work is caught up on day 6
      ticket(8),                    // added after the finish: later work
  };
  s.forecasts = {whenRecord(2), whenRecord(0)};
  const AccuracyReport report = accuracyReport(s, on(40));
  ASSERT_EQ(report.whenOutcomes.size(), 2u);
  EXPECT_EQ(report.whenOutcomes[0].addedSince, 1);
  EXPECT_EQ(report.whenOutcomes[0].finishedOn, runDay.addingDays(6));
  EXPECT_EQ(report.whenOutcomes[1].finishedOn, runDay);  // nothing was left

  // The same project seen on day 5: one added ticket still open.
  const WhenOutcome early = accuracyReport(s, on(5)).whenOutcomes[0];
  EXPECT_EQ(early.verdict, WhenVerdict::stillOpen(1));
  EXPECT_EQ(early.addedSince, 1);
}

TEST(WhenOutcome, WorkThatLeftTheProjectLeavesTheScope) {
  // Deleted tickets leave no rows: each case lists only the tickets still
  // stored, and the logged backlog says how many were open at the run.
  struct Case {
    std::string name;
    std::int64_t backlog;
    std::vector<Ticket> tickets;
    std::optional<std::int64_t> finishedDay;
    WhenVerdict verdict;
    std::int64_t leftSince;
  };
  using K = WhenVerdict::Kind;
  const std::vector<Case> cases{
      {"open at the run, deleted since", 2, {ticket(-5, 3)}, 3, WhenVerdict::finished(K::withinP50), 1},
      {"the whole backlog deleted", 1, {}, 0, WhenVerdict::finished(K::withinP50), 1},
      {"the rest still open", 3, {ticket(-5), ticket(-5, 3)}, std::nullopt, WhenVerdict::pastP95(1), 1},
      {"archived and deleted: each leaves once",
       3,
       {ticket(-5, 3), ticket(-5, std::nullopt, 5)},
       3,
       WhenVerdict::finished(K::withinP50),
       2},
      {"finished, then archived: judged on the rest",
       2,
       {ticket(-5, 3, 25), ticket(-5, 12)},
       12,
       WhenVerdict::finished(K::withinP70),
       1},
      // Done before the run: never part of the backlog, so nothing left it.
      {"nothing left", 2, {ticket(-9, -1), ticket(-5, 3), ticket(-5, 12)}, 12, WhenVerdict::finished(K::withinP70), 0},
      {"added since and archived: counts nowhere",
       1,
       {ticket(-5, 12), ticket(2, 4, 6)},
       12,
       WhenVerdict::finished(K::withinP70),
       0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ProjectSnapshot s;
    s.tickets = c.tickets;
    s.forecasts = {whenRecord(c.backlog)};
    const std::vector<WhenOutcome> outcomes = accuracyReport(s, on(40)).whenOutcomes;
    ASSERT_EQ(outcomes.size(), 1u);
    EXPECT_EQ(outcomes[0].backlogThen, c.backlog);
    EXPECT_EQ(outcomes[0].leftSince, c.leftSince);
    EXPECT_EQ(outcomes[0].addedSince, 0);
    EXPECT_EQ(outcomes[0].finishedOn, c.finishedDay ? std::optional(runDay.addingDays(*c.finishedDay)) : std::nullopt);
    EXPECT_EQ(outcomes[0].verdict, c.verdict);
  }
}

TEST(AccuracyReport, CalibrationCountsOnlyJudgedForecasts) {
  ProjectSnapshot unjudged;
  unjudged.tickets = {ticket(-3)};
  unjudged.forecasts = {whenRecord(1), byDateRecord(10, {5, 4, 3, 2})};
  const AccuracyReport none = accuracyReport(unjudged, on(5));  // open, and before the target
  ASSERT_EQ(none.whenCalibration.size(), 4u);
  for (const auto* table : {&none.whenCalibration, &none.byDateCalibration}) {
    for (const CalibrationRow& row : *table) {
      EXPECT_EQ(row.total, 0);
      EXPECT_EQ(row.hitPct(), 0.0);
    }
  }
  EXPECT_TRUE(none.byDateOutcomes.empty());

  ProjectSnapshot s;
  s.tickets = {ticket(-3, 0), ticket(-3, 1), ticket(-3, 10), ticket(-3, 11), ticket(-3, 12, 13)};
  ForecastRecord lateRun = whenRecord(1);
  lateRun.runAt = on(0, 13);  // after the first completion
  s.forecasts = {whenRecord(1), lateRun, byDateRecord(10, {3, 2, 1}), byDateRecord(10, {4, 3, 3, 2}),
                 byDateRecord(11, {9, 9, 9, 9})};
  // Noon of day 0 is the run: done after it and by day 10 are days 1 and 10.
  const AccuracyReport report = accuracyReport(s, on(11));
  ASSERT_EQ(report.byDateOutcomes.size(), 2u);  // the day-11 target has not passed
  EXPECT_EQ(report.byDateOutcomes[0].actual, 2);
  EXPECT_EQ(report.byDateOutcomes[0].wholeWeeks, 1);
  EXPECT_EQ(report.byDateOutcomes[0].levelsReached(), (std::vector<int>{70, 85}));
  EXPECT_EQ(report.byDateOutcomes[1].levelsReached(), (std::vector<int>{95}));
  EXPECT_EQ(report.byDateCalibration, (std::vector<CalibrationRow>{{50, 0, 2}, {70, 1, 2}, {85, 1, 2}, {95, 1, 2}}));
  EXPECT_EQ(report.byDateCalibration[1].hitPct(), 50.0);
  // Both "When" runs finished on day 1, by every level's date.
  EXPECT_EQ(report.whenCalibration[0], (CalibrationRow{50, 2, 2}));
}

TEST(ForecastHistory, WhenRunsWithAllFourDatesByRunTime) {
  ProjectSnapshot s;
  ForecastRecord later = whenRecord(7);
  later.runAt = on(3);
  later.commitmentDay = "2026-04-01";
  later.confidencePct = 61.5;
  ForecastRecord short3 = whenRecord(7);
  short3.resultDays.pop_back();
  s.forecasts = {later, short3, whenRecord(5), byDateRecord(10, {1, 1, 1, 1})};
  const auto points = forecastHistory(s);
  ASSERT_EQ(points.size(), 2u);
  EXPECT_EQ(points[0].backlog, 5);
  EXPECT_EQ(latestBefore(points, on(3)), points[0]);  // strictly before: not the run itself
  EXPECT_EQ(latestBefore(points, on(0)), std::nullopt);
  EXPECT_EQ(points[1], (ForecastHistoryPoint{later.id, on(3), runDay, 7, runDay.addingDays(10), runDay.addingDays(20),
                                             runDay.addingDays(30), CivilDate{2026, 4, 1}, 61.5}));
}

// A project with two open tickets and one "When" run logged on runDay over
// both, its levels 5, 7, 9 and 12 days later.
struct LoggedRun {
  testing::TempStore t;
  Uuid project;
  std::vector<Uuid> tickets;

  LoggedRun() {
    project = t.service.createProject("Shop", std::nullopt, on(-30)).id;
    for (const char* title : {"A", "B"})
      tickets.push_back(t.service.createTicket(project, {.title = title}, on(-20)).id);
    WhenForecast forecast;
    forecast.asOf = runDay;
    forecast.backlog = 2;
    for (auto [level, offset] : {std::pair{50, 5}, {70, 7}, {85, 9}, {95, 12}})
      forecast.dates[level] = runDay.addingDays(offset);
    ForecastService(t.store).log(forecast, project, "", on(0));
  }
};

TEST(AccuracyReport, JudgesALoggedRunAgainstTheBoard) {
  LoggedRun run;
  auto& [t, project, tickets] = run;
  const Uuid done = t.service.snapshot(project)->columns.back().id;
  t.service.moveTicket(tickets[0], done, std::nullopt, on(2));
  t.service.moveTicket(tickets[1], done, std::nullopt, on(8));

  const AccuracyReport report = accuracyReport(*t.service.snapshot(project), on(20));
  ASSERT_EQ(report.whenOutcomes.size(), 1u);
  EXPECT_EQ(report.whenOutcomes[0].finishedOn, runDay.addingDays(8));
  EXPECT_EQ(report.whenOutcomes[0].verdict.label(), "By the 85% date");
  EXPECT_EQ(report.whenCalibration, (std::vector<CalibrationRow>{{50, 0, 1}, {70, 0, 1}, {85, 1, 1}, {95, 1, 1}}));
}

TEST(AccuracyReport, ATicketDeletedAfterTheRunLeavesTheForecastsScope) {
  LoggedRun run;
  auto& [t, project, tickets] = run;
  t.service.moveTicket(tickets[0], t.service.snapshot(project)->columns.back().id, std::nullopt, on(6));
  t.service.deleteTicket(tickets[1]);

  const WhenOutcome outcome = accuracyReport(*t.service.snapshot(project), on(40)).whenOutcomes.at(0);
  EXPECT_EQ(outcome.leftSince, 1);
  EXPECT_EQ(outcome.finishedOn, runDay.addingDays(6));
  EXPECT_EQ(outcome.verdict.label(), "By the 70% date");
}

}  // namespace
}  // namespace orvane
