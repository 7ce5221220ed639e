#include <gtest/gtest.h>
#include <unicode/gregocal.h>
#include <unicode/timezone.h>

#include <algorithm>

#include "core/board/RoadmapSample.h"
#include "core/forecast/ForecastService.h"
#include "core/support/TempStore.h"

namespace orvane {
namespace {

using testing::at;

const Timestamp now = at(2026, 3, 4, 10);

// What makes the plan worth drawing: 40 epics with chains of dependencies,
// overlapping plans, risks and safe epics, a done epic and milestones; and a
// second copy that schedules to the same days.
TEST(RoadmapSample, isALargePlanWithEveryKindOfEpicAndSchedulesTheSameTwice) {
  testing::TempStore t;
  UErrorCode status = U_ZERO_ERROR;
  const icu::GregorianCalendar utc(icu::TimeZone::createTimeZone("UTC"), status);
  ForecastService forecasts(t.store);
  const CivilDate today = ForecastService::todayUTC(now);

  const Project first = createRoadmapSample(t.service, t.store, now);
  const Project second = createRoadmapSample(t.service, t.store, now);
  EXPECT_EQ(first.name, "Plan of 40 epics");
  EXPECT_EQ(second.name, "Plan of 40 epics 2");

  const ProjectSnapshot s = *t.service.snapshot(first.id);
  EXPECT_EQ(s.epics.size(), 40u);
  EXPECT_EQ(s.epicDependencies.size(), 39u);
  EXPECT_EQ(s.milestones.size(), 6u);
  EXPECT_EQ(std::count_if(s.milestones.begin(), s.milestones.end(), [](const Milestone& m) { return m.isDone(); }), 1);
  const auto conflicts = forecasts.scheduleConflicts(first.id, utc);
  EXPECT_FALSE(conflicts.empty());
  for (const EpicScheduleConflict& conflict : conflicts) EXPECT_EQ(conflict.overlapDays, 7);

  const RoadmapForecast a = forecasts.roadmapInput(first.id, today, utc).run();
  const RoadmapForecast b = forecasts.roadmapInput(second.id, today, utc).run();
  int done = 0, atRisk = 0, safe = 0;
  for (const auto& [id, schedule] : a.epics) {
    done += schedule.open == 0;
    atRisk += schedule.isAtRisk();
    safe += schedule.dueDay && !schedule.isAtRisk();
  }
  EXPECT_EQ(done, 1);
  EXPECT_GT(atRisk, 0);
  EXPECT_GT(safe, 0);
  EXPECT_GE(a.longestChain.size(), 4u);
  EXPECT_FALSE(a.inconclusive);

  // Epics are matched by name: the copy has other ids, the same days.
  const ProjectSnapshot copy = *t.service.snapshot(second.id);
  for (std::size_t i = 0; i < s.epics.size(); ++i) {
    ASSERT_EQ(s.epics[i].name, copy.epics[i].name);
    EXPECT_EQ(a.epics.at(s.epics[i].id).p85, b.epics.at(copy.epics[i].id).p85) << s.epics[i].name;
  }
  EXPECT_EQ(a.projectDates, b.projectDates);
}

}  // namespace
}  // namespace orvane
