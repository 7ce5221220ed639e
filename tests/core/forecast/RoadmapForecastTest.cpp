#include <gtest/gtest.h>
#include <unicode/gregocal.h>
#include <unicode/timezone.h>

#include <algorithm>

#include "core/forecast/ForecastService.h"
#include "core/forecast/RoadmapEvaluation.h"
#include "core/support/TempStore.h"
#include "engine/ForecastDate.h"
#include "engine/MonteCarlo.h"
#include "engine/Percentile.h"
#include "engine/SeedDerivation.h"

namespace orvane {
namespace {

const CivilDate asOf(2026, 3, 2);
const std::vector<double> weekly{3, 5, 4, 6, 2, 7, 5, 4, 3, 6, 5, 4};
const Uuid a = Uuid::random(), b = Uuid::random(), c = Uuid::random(), d = Uuid::random();

RoadmapEpicNode node(const Uuid& id, std::int64_t open, std::vector<Uuid> predecessors = {},
                     std::int64_t startOffsetDays = 0, std::optional<CivilDate> dueDay = {}) {
  return RoadmapEpicNode{id, "", open, startOffsetDays, dueDay, std::move(predecessors)};
}

RoadmapForecastInput input(std::vector<RoadmapEpicNode> epics, std::vector<RoadmapMilestoneNode> milestones = {}) {
  std::vector<PeriodCount> history;
  for (const double count : weekly) history.push_back(PeriodCount{{}, static_cast<std::int64_t>(count)});
  return RoadmapForecastInput{asOf, history, std::move(epics), std::move(milestones)};
}

// The own durations of the epic at caller index k, simulated independently.
std::vector<double> ownDurations(std::int64_t open, std::uint64_t k) {
  const auto run = MonteCarlo::run(weekly, open, 10000, 520, deriveSeed(weekly, open) + (k + 1) * 0x9E3779B97F4A7C15ULL,
                                   std::nullopt);
  return {run.periodsDistribution.begin(), run.periodsDistribution.end()};
}

CivilDate dateAt(std::vector<double> finishes, double level) {
  std::sort(finishes.begin(), finishes.end());
  return forecastDate(asOf, percentile(finishes, level), 7);
}

// One milestone on `epic` every week from asOf: the epic's finish curve.
std::vector<RoadmapMilestoneNode> weeklyProbes(const Uuid& epic, int weeks) {
  std::vector<RoadmapMilestoneNode> probes;
  for (int w = 0; w < weeks; ++w) probes.push_back({Uuid::random(), asOf.addingDays(7 * w), epic, false});
  return probes;
}
std::vector<double> curve(const RoadmapForecast& forecast, const std::vector<RoadmapMilestoneNode>& probes) {
  std::vector<double> chances;
  for (const auto& probe : probes) chances.push_back(forecast.milestoneChances.at(probe.id));
  return chances;
}

TEST(RoadmapForecast, topologicalOrderKeepsTheCallersOrderAmongFreeEpicsAndEndsOnACycle) {
  const Uuid gone = Uuid::random();
  EXPECT_EQ(topologicalOrder({node(c, 1, {a}), node(a, 1), node(b, 1, {gone})}), (std::vector<Uuid>{a, c, b}));
  EXPECT_EQ(topologicalOrder({node(c, 1, {b}), node(b, 1, {a}), node(a, 1)}), (std::vector<Uuid>{a, b, c}));
  EXPECT_EQ(topologicalOrder({node(a, 1, {b}), node(b, 1, {a}), node(c, 1)}), (std::vector<Uuid>{c, a, b}));
  // On a cycle the first epic waits for nothing yet finished, and the run ends.
  const auto cycle = input({node(a, 5, {b}), node(b, 5, {a})}).run();
  EXPECT_EQ(cycle.epics.at(a).p85, input({node(a, 5)}).run().epics.at(a).p85);
  EXPECT_EQ(cycle.longestChain, (std::vector<Uuid>{a, b}));
}

TEST(RoadmapForecast, chainedEpicsStartWhenTheirPredecessorIsDoneInEverySimulation) {
  // Caller order C, B, A: the streams follow the caller's index, the
  // schedule the dependencies.
  const auto probes = weeklyProbes(c, 12);
  const auto forecast = input({node(c, 6, {b}, 21), node(b, 8, {a}), node(a, 10, {}, -10)}, probes).run();
  const auto finishA = ownDurations(10, 2);
  auto finishB = ownDurations(8, 1), finishC = ownDurations(6, 0);
  for (std::size_t t = 0; t < finishA.size(); ++t) {
    finishB[t] += finishA[t];
    finishC[t] += std::max(3.0, finishB[t]);
  }
  using Expected = std::pair<Uuid, std::vector<double>>;
  for (const auto& [id, finishes] : {Expected{a, finishA}, Expected{b, finishB}, Expected{c, finishC}}) {
    EXPECT_EQ(forecast.epics.at(id).p50, dateAt(finishes, 50));
    EXPECT_EQ(forecast.epics.at(id).p85, dateAt(finishes, 85));
  }
  EXPECT_LT(forecast.epics.at(a).p85, forecast.epics.at(b).p50);
  EXPECT_LT(forecast.epics.at(b).p85, forecast.epics.at(c).p50);
  // The whole distribution, not just its percentiles, comes from the streams.
  std::vector<double> expectedCurve;
  for (int w = 0; w < 12; ++w) {
    expectedCurve.push_back(
        static_cast<double>(std::count_if(finishC.begin(), finishC.end(), [&](double f) { return f <= w; })) / 10000 *
        100);
  }
  EXPECT_EQ(curve(forecast, probes), expectedCurve);
  // C ends last in every simulation, so the project ends with it.
  for (const int level : {50, 70, 85, 95}) EXPECT_EQ(forecast.projectDates.at(level), dateAt(finishC, level));
  EXPECT_EQ(forecast.longestChain, (std::vector<Uuid>{a, b, c}));
  EXPECT_FALSE(forecast.inconclusive);
}

TEST(RoadmapForecast, startsDependOnPlannedStartsAndStreamsOnTheCallersIndex) {
  // B waits only for A, which has nothing open: B starts at its own planned
  // start, two weeks ahead, and needs at least one more week.
  const auto probesB = weeklyProbes(b, 4);
  const auto waiting = input({node(a, 0), node(b, 10, {a}, 14)}, probesB).run();
  EXPECT_EQ(waiting.epics.at(b), input({node(a, 0), node(b, 10, {}, 14)}).run().epics.at(b));
  EXPECT_EQ(curve(waiting, probesB), (std::vector<double>{0, 0, 0, 0}));
  EXPECT_GE(*waiting.epics.at(b).p50, asOf.addingDays(21));

  // Equal open work, different indices: different streams.
  const auto probesA = weeklyProbes(a, 6), probesC = weeklyProbes(c, 6);
  auto probes = probesA;
  probes.insert(probes.end(), probesC.begin(), probesC.end());
  const auto twins = input({node(a, 20), node(c, 20)}, probes).run();
  EXPECT_NE(curve(twins, probesA), curve(twins, probesC));
}

TEST(RoadmapForecast, dueDaysGiveAChanceASlipAndARisk) {
  const auto forecast = input({node(a, 0, {}, 0, asOf.addingDays(-30)), node(b, 5), node(c, 5, {}, 0, asOf),
                               node(d, 5, {}, 0, asOf.addingDays(400))})
                            .run();
  const EpicSchedule done = forecast.epics.at(a);
  EXPECT_EQ(done.chanceByDue, 100.0);
  EXPECT_FALSE(done.p50 || done.p85 || done.p85SlipDays || done.isAtRisk());
  EXPECT_FALSE(forecast.epics.at(b).chanceByDue || forecast.epics.at(b).p85SlipDays);
  const EpicSchedule dueToday = forecast.epics.at(c);  // every simulation needs at least a week
  EXPECT_EQ(dueToday.chanceByDue, 0.0);
  EXPECT_EQ(dueToday.p85SlipDays, dueToday.p85->daysSince(asOf));
  EXPECT_TRUE(dueToday.isAtRisk());
  EXPECT_EQ(forecast.epics.at(d).chanceByDue, 100.0);
  EXPECT_LT(*forecast.epics.at(d).p85SlipDays, 0);

  // At risk: a due day, open work, and a chance below 85% or a slip.
  const CivilDate due(2026, 4, 1);
  const struct {
    std::int64_t open;
    std::optional<CivilDate> dueDay;
    std::optional<double> chance;
    std::optional<std::int64_t> slip;
    bool atRisk;
  } cases[] = {{3, {}, {}, {}, false},
               {0, due, 100, {}, false},
               {3, due, 84.99, -2, true},
               {3, due, 85, 0, false},
               {3, due, 90, 1, true}};
  for (const auto& k : cases) {
    EXPECT_EQ((EpicSchedule{a, k.open, {}, {}, k.dueDay, k.chance, k.slip}.isAtRisk()), k.atRisk)
        << k.open << " " << k.chance.value_or(-1) << " " << k.slip.value_or(-99);
  }
}

TEST(RoadmapForecast, longestChainFollowsTheLatestPredecessorAt85Percent) {
  // D waits for A (much work) and C (little); B stands alone.
  const auto forecast = input({node(a, 40), node(b, 30), node(c, 3), node(d, 5, {c, a})}).run();
  EXPECT_EQ(forecast.longestChain, (std::vector<Uuid>{a, d}));
  EXPECT_TRUE(forecast.epics.at(a).isOnLongestChain && forecast.epics.at(d).isOnLongestChain);
  EXPECT_FALSE(forecast.epics.at(b).isOnLongestChain || forecast.epics.at(c).isOnLongestChain);

  const auto idle = input({node(a, 0), node(b, 0, {a})}).run();
  EXPECT_TRUE(idle.longestChain.empty());
  for (const int level : {50, 70, 85, 95}) EXPECT_EQ(idle.projectDates.at(level), asOf);
  EXPECT_EQ(input({}).run().projectDates, idle.projectDates);
}

TEST(RoadmapForecast, milestoneChances) {
  const Uuid gone = Uuid::random();
  const struct {
    std::optional<Uuid> epic;
    int day;
    bool done;
    double chance;
  } cases[] = {{a, -10, true, 100},   {{}, 0, false, 100},  {{}, -1, false, 0}, {gone, -1, false, 0},
               {gone, 5, false, 100}, {b, -10, false, 100}, {a, -1, false, 0},  {a, 3650, false, 100}};
  std::vector<RoadmapMilestoneNode> milestones;
  for (const auto& k : cases) milestones.push_back({Uuid::random(), asOf.addingDays(k.day), k.epic, k.done});
  const auto forecast = input({node(a, 10), node(b, 0)}, milestones).run();
  for (std::size_t i = 0; i < milestones.size(); ++i) {
    EXPECT_EQ(forecast.milestoneChances.at(milestones[i].id), cases[i].chance) << "case " << i;
  }
}

TEST(RoadmapForecast, parallelRunIsBitIdenticalToASerialOne) {
  std::vector<RoadmapEpicNode> epics;
  std::vector<Uuid> ids;
  for (int k = 0; k < 12; ++k) {
    ids.push_back(Uuid::random());
    // Every third epic waits for all before it; every fourth has nothing open.
    std::vector<Uuid> before = k % 3 ? std::vector<Uuid>{} : std::vector<Uuid>(ids.begin(), ids.end() - 1);
    epics.push_back(node(ids.back(), k % 4 ? 5 + 3 * k : 0, before, 7 * (k % 5), asOf.addingDays(30 * k)));
  }
  const auto roadmap = input(epics, weeklyProbes(ids[5], 10));
  const RoadmapForecast serial = evaluateRoadmap(roadmap, 1);
  EXPECT_EQ(evaluateRoadmap(roadmap, 3), serial);
  EXPECT_EQ(evaluateRoadmap(roadmap, 64), serial);
  EXPECT_EQ(roadmap.run(), serial);
}

TEST(RoadmapForecast, engineRefusalsEndTheRoadmap) {
  auto empty = input({node(a, 0), node(b, 3)});
  empty.history.clear();
  EXPECT_THROW(empty.run(), ForecastFailure);
  empty.epics[1].open = 0;  // nothing to simulate, nothing to refuse
  EXPECT_NO_THROW(empty.run());
}

TEST(RoadmapService, buildsTheRoadmapAndItsConflictsFromTheStore) {
  using testing::at;
  testing::TempStore t;
  ForecastService forecasts(t.store);
  UErrorCode status = U_ZERO_ERROR;
  const icu::GregorianCalendar utc(icu::TimeZone::createTimeZone("UTC"), status);
  const Uuid project = t.service.createProject("Shop", std::nullopt, at(2026, 1, 5)).id;
  const Uuid done = t.service.snapshot(project)->columns.back().id;
  const Epic search = t.service.createEpic(project, "Search", std::nullopt, std::nullopt);
  const Epic api = t.service.createEpic(project, "API", std::nullopt, at(2026, 3, 20));
  const Epic checkout = t.service.createEpic(project, "Checkout", std::nullopt, std::nullopt);
  t.service.updateEpic(search.id, "Search", "", at(2026, 3, 20), at(2026, 4, 30), std::nullopt);
  t.service.updateEpic(checkout.id, "Checkout", "", at(2026, 2, 20), std::nullopt, std::nullopt);
  t.service.addEpicDependency(search.id, api.id, at(2026, 1, 6));
  t.service.addEpicDependency(checkout.id, api.id, at(2026, 1, 7));
  for (int i = 0; i < 4; ++i) t.service.createTicket(project, {.title = "Open", .epic = api.id}, at(2026, 1, 6));
  t.service.createTicket(project, {.title = "Done", .column = done, .epic = api.id}, at(2026, 1, 6));
  const Uuid archived = t.service.createTicket(project, {.title = "Old", .epic = api.id}, at(2026, 1, 6)).id;
  t.service.archive(archived, at(2026, 1, 7));
  t.service.createTicket(project, {.title = "Query", .epic = search.id}, at(2026, 1, 6));
  const Milestone beta = t.service.createMilestone(project, "Beta", at(2026, 4, 1), api.id, "");
  const Milestone launch = t.service.createMilestone(project, "Launch", at(2026, 5, 1), std::nullopt, "");
  t.service.setMilestone(launch.id, true, at(2026, 2, 1));

  const RoadmapForecastInput roadmap = forecasts.roadmapInput(project, asOf, utc);
  EXPECT_EQ(roadmap.history, forecasts.history(project, asOf));
  EXPECT_EQ(roadmap.epics, (std::vector<RoadmapEpicNode>{
                               {api.id, "API", 4, 0, CivilDate(2026, 3, 20), {}},
                               {checkout.id, "Checkout", 0, -10, {}, {api.id}},
                               {search.id, "Search", 1, 18, CivilDate(2026, 4, 30), {api.id}},
                           }));
  EXPECT_EQ(roadmap.milestones, (std::vector<RoadmapMilestoneNode>{{beta.id, CivilDate(2026, 4, 1), api.id, false},
                                                                   {launch.id, CivilDate(2026, 5, 1), {}, true}}));

  // The API is due on 20 March: Search, planned from that day, is fine;
  // Checkout, planned from 20 February, overlaps by 28 days.
  const auto snapshot = t.service.snapshot(project);
  EXPECT_EQ(forecasts.scheduleConflicts(project, utc),
            (std::vector<EpicScheduleConflict>{{*snapshot->epic(api.id), *snapshot->epic(checkout.id), 28}}));
}

}  // namespace
}  // namespace orvane
