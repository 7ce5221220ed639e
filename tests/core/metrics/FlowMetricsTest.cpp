#include <gtest/gtest.h>

#include <random>

#include "core/metrics/EpicProgress.h"
#include "core/metrics/FlowMetrics.h"
#include "core/metrics/FlowRange.h"
#include "core/metrics/FlowScreen.h"
#include "core/support/TempStore.h"
#include "engine/Percentile.h"

namespace orvane {
namespace {

using testing::at;

constexpr double day = 86400.0;
const CivilDate asOf{2026, 3, 5};

Timestamp midnight(CivilDate date) { return date.utcMidnight(); }
Timestamp plus(Timestamp t, double seconds) { return Timestamp{t.secondsSince1970 + seconds}; }

FlowTicket ticket(std::string reference, Timestamp created, std::optional<Timestamp> started = {},
                  std::optional<Timestamp> completed = {}, bool inProgressNow = false) {
  FlowTicket t;
  t.id = Uuid::random();
  t.reference = std::move(reference);
  t.createdAt = created;
  t.startedAt = started;
  t.completedAt = completed;
  if (started && completed) t.cycleDays = (completed->secondsSince1970 - started->secondsSince1970) / day;
  t.inProgressNow = inProgressNow;
  return t;
}

TEST(FlowMetricsThroughput, CountsUtcDaysIntoTheEngineWeeks) {
  const Timestamp created = midnight(asOf.addingDays(-100));
  const std::vector<FlowTicket> tickets = {
      // The first second of the last window's first day, and the last second
      // of the window before it.
      ticket("A", created, {}, midnight(asOf.addingDays(-6))),
      ticket("B", created, {}, plus(midnight(asOf.addingDays(-6)), -1)),
      // Finished on asOf itself, late in the day.
      ticket("C", created, {}, plus(midnight(asOf), day - 1)),
      // After asOf: in no window.
      ticket("D", created, {}, midnight(asOf.addingDays(1))),
      ticket("E", created),
  };
  const std::vector<WeekThroughput> weeks = FlowMetrics::weeklyThroughput(tickets, asOf, 3);
  ASSERT_EQ(weeks.size(), 3u);
  EXPECT_EQ(weeks[2], (WeekThroughput{asOf.addingDays(-6), asOf, 2}));
  EXPECT_EQ(weeks[1], (WeekThroughput{asOf.addingDays(-13), asOf.addingDays(-7), 1}));
  EXPECT_EQ(weeks[0], (WeekThroughput{asOf.addingDays(-20), asOf.addingDays(-14), 0}));
  EXPECT_TRUE(FlowMetrics::weeklyThroughput(tickets, asOf, 0).empty());
}

TEST(FlowMetricsCycleTime, PointsNeedBothEndsAndFollowSince) {
  const Timestamp created = midnight(asOf.addingDays(-30));
  const Timestamp since = midnight(asOf.addingDays(-6));
  const std::vector<FlowTicket> tickets = {
      ticket("late", created, created, plus(since, 3 * day)),
      ticket("no start", created, {}, plus(since, day)),
      ticket("at since", created, plus(created, day / 2), since),
      ticket("before since", created, created, plus(since, -1)),
      ticket("tie", created, created, plus(since, 3 * day)),
  };
  const std::vector<CycleTimePoint> points = FlowMetrics::cycleTimes(tickets, since);
  std::vector<std::string> order;
  for (const CycleTimePoint& p : points) order.push_back(p.reference);
  EXPECT_EQ(order, (std::vector<std::string>{"at since", "late", "tie"}));
  EXPECT_DOUBLE_EQ(points[0].days, 23.5);
  EXPECT_EQ(FlowMetrics::cycleTimes(tickets).size(), 4u);
}

TEST(FlowMetricsCycleTime, SummaryUsesTheEnginePercentile) {
  EXPECT_FALSE(FlowMetrics::summary({}).has_value());

  CycleTimePoint single{Uuid::random(), "A", "", Timestamp{}, 2.25};
  const CycleTimeSummary one = *FlowMetrics::summary(std::vector{single});
  EXPECT_EQ(one, (CycleTimeSummary{1, 2.25, 2.25, 2.25, 2.25, 2.25}));

  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> days(0.01, 40);
  std::vector<CycleTimePoint> points;
  std::vector<double> values;
  for (int i = 0; i < 37; ++i) {
    points.push_back({Uuid::random(), "", "", Timestamp{double(i)}, days(random)});
    values.push_back(points.back().days);
  }
  std::sort(values.begin(), values.end());
  const CycleTimeSummary s = *FlowMetrics::summary(points);
  EXPECT_EQ(s.count, 37);
  EXPECT_EQ(s.p50, percentile(values, 50));
  EXPECT_EQ(s.p70, percentile(values, 70));
  EXPECT_EQ(s.p85, percentile(values, 85));
  EXPECT_EQ(s.p95, percentile(values, 95));
}

TEST(FlowMetricsAges, OnlyUnfinishedWorkInProgressOldestFirst) {
  const Timestamp now = plus(midnight(asOf), 12 * 3600);
  const Timestamp created = midnight(asOf.addingDays(-30));
  const std::vector<FlowTicket> tickets = {
      ticket("young", created, plus(now, -day), {}, true),
      ticket("future start", created, plus(now, day), {}, true),
      ticket("old", created, plus(now, -5 * day), {}, true),
      ticket("finished", created, plus(now, -9 * day), now, true),
      ticket("not in progress column", created, plus(now, -9 * day), {}, false),
      ticket("no start", created, {}, {}, true),
  };
  const std::vector<AgePoint> ages = FlowMetrics::ages(tickets, now);
  ASSERT_EQ(ages.size(), 3u);
  EXPECT_EQ(ages[0].reference, "old");
  EXPECT_DOUBLE_EQ(ages[0].ageDays, 5);
  EXPECT_EQ(ages[1].reference, "young");
  EXPECT_EQ(ages[2].reference, "future start");
  EXPECT_EQ(ages[2].ageDays, 0);
}

TEST(FlowMetricsCumulative, StateAtEachUtcMidnightByStoredDates) {
  const CivilDate first = asOf.addingDays(-2);
  const std::vector<FlowTicket> tickets = {
      // Created, started and finished on three successive days.
      ticket("flow", midnight(first), plus(midnight(first.addingDays(1)), 10), plus(midnight(asOf), day - 1)),
      // Created in the first second of the last day: absent before it.
      ticket("new", midnight(asOf)),
      // Created at the very end of the first day's boundary: counts the next day.
      ticket("boundary", midnight(first.addingDays(1))),
  };
  const std::vector<FlowDay> days = FlowMetrics::cumulative(tickets, asOf, 3);
  EXPECT_EQ(days, (std::vector<FlowDay>{{first, 1, 0, 0}, {first.addingDays(1), 1, 1, 0}, {asOf, 2, 0, 1}}));
  EXPECT_EQ(days[0].total(), 1);
  EXPECT_EQ(days[2].total(), 3);
  EXPECT_TRUE(FlowMetrics::cumulative(tickets, asOf, 0).empty());
}

TEST(FlowScreenTiles, FormatsAndEmptyTexts) {
  FlowScreen::Figures empty = FlowScreen::figures({}, midnight(asOf), 12);
  EXPECT_EQ(empty.throughput.size(), 12u);
  EXPECT_EQ(empty.cumulative.size(), 84u);
  EXPECT_EQ(FlowScreen::throughputTile(empty), "0.0");
  EXPECT_EQ(FlowScreen::medianCycleTimeTile(empty), "\u2013");
  EXPECT_EQ(FlowScreen::p85CycleTimeTile(empty), "\u2013");
  EXPECT_EQ(FlowScreen::inProgressTile(empty), "0");
  EXPECT_EQ(FlowScreen::inProgressCaption(empty), "nothing started");

  const struct {
    double days;
    const char* text;
  } figures[] = {{0, "0.0 d"}, {9.94, "9.9 d"}, {10, "10 d"}, {12.5, "12 d"}, {13.5, "14 d"}};
  for (const auto& f : figures) EXPECT_EQ(FlowScreen::dayFigure(f.days), f.text) << f.days;

  // The cycle chart starts on the first day of the first week: 27 days back.
  const Timestamp now = plus(midnight(asOf), 3600);
  const Timestamp created = midnight(asOf.addingDays(-60));
  const std::vector<FlowTicket> tickets = {
      ticket("in", created, created, midnight(asOf.addingDays(-27))),
      ticket("out", created, created, plus(midnight(asOf.addingDays(-27)), -1)),
      ticket("wip", created, plus(now, -11.5 * day), {}, true),
  };
  const FlowScreen::Figures f = FlowScreen::figures(tickets, now, 4);
  ASSERT_EQ(f.cyclePoints.size(), 1u);
  EXPECT_EQ(f.cyclePoints[0].reference, "in");
  EXPECT_EQ(FlowScreen::throughputTile(f), "0.2");  // one finish over four weeks
  EXPECT_EQ(FlowScreen::medianCycleTimeTile(f), "33 d");
  EXPECT_EQ(FlowScreen::inProgressCaption(f), "oldest 12 d");
}

TEST(FlowRangeSummary, AverageWipArrivalsAndDeparturesOverChosenDays) {
  const CivilDate d0{2026, 2, 23};
  const Timestamp created = midnight(d0.addingDays(-10));
  const std::vector<FlowTicket> tickets = {
      // In progress on d0 and d1, finished on d2.
      ticket("A", created, midnight(d0.addingDays(-3)), plus(midnight(d0.addingDays(2)), 3600)),
      // Started on d1, still in progress.
      ticket("B", created, plus(midnight(d0.addingDays(1)), 60)),
      // Started at noon on d4, finished on d6.
      ticket("C", created, plus(midnight(d0.addingDays(4)), day / 2), midnight(d0.addingDays(6))),
      // Started the day after the range.
      ticket("D", created, midnight(d0.addingDays(7))),
  };
  // In progress per day: 1, 2, 1, 1, 2, 2, 1.
  const std::optional<FlowRange> week = flowRange(tickets, d0, d0.addingDays(6));
  ASSERT_TRUE(week.has_value());
  EXPECT_EQ(week->days, 7);
  EXPECT_DOUBLE_EQ(week->averageWip, 10.0 / 7.0);
  EXPECT_EQ(week->arrivals, 2);
  EXPECT_EQ(week->departures, 2);
  EXPECT_DOUBLE_EQ(week->departuresPerWeek(), 2.0);
  EXPECT_EQ(flowRangeSentence(*week),
            "From 23 Feb to 1 Mar 2026 (7 days): on average 1.4 tickets in progress; 2.0 started and 2.0 finished a "
            "week.");

  const std::optional<FlowRange> one = flowRange(tickets, d0.addingDays(1), d0.addingDays(1));
  ASSERT_TRUE(one.has_value());
  EXPECT_EQ(one->arrivals, 1);
  EXPECT_DOUBLE_EQ(one->arrivalsPerWeek(), 7.0);
  EXPECT_EQ(flowRangeSentence(*one),
            "From 24 Feb to 24 Feb 2026 (1 day): on average 2.0 tickets in progress; 7.0 started and 0.0 finished a "
            "week.");
  EXPECT_FALSE(flowRange(tickets, d0.addingDays(1), d0).has_value());
}

// flowTickets and the epic queries over a real store.
TEST(FlowMetricsProject, SnapshotToFlowTicketsAndEpicProgress) {
  testing::TempStore t;
  BoardService& s = t.service;
  const Project p = s.createProject("Shop", std::nullopt, at(2026, 1, 5));
  ProjectSnapshot snap = *s.snapshot(p.id);
  const auto column = [&](std::string_view name) {
    for (const BoardColumn& c : snap.columns) {
      if (c.name == name) return c.id;
    }
    throw std::logic_error("no column");
  };
  const Epic epic = s.createEpic(p.id, "Checkout", std::nullopt, at(2026, 2, 1));
  const auto make = [&](std::string title) {
    return s.createTicket(p.id, NewTicket{.title = std::move(title), .epic = epic.id}, at(2026, 1, 6)).id;
  };
  const Uuid waiting = make("waiting");
  const Uuid working = make("working");
  const Uuid finished = make("finished");
  const Uuid archived = make("archived");
  s.moveTicket(working, column("Review"), std::nullopt, at(2026, 1, 7));
  s.moveTicket(finished, column("In Progress"), std::nullopt, at(2026, 1, 7, 0));
  s.moveTicket(finished, column("Done"), std::nullopt, at(2026, 1, 8, 6));
  s.moveTicket(archived, column("Done"), std::nullopt, at(2026, 1, 8));
  s.archive(archived, at(2026, 1, 9));
  s.addLink(waiting, working, LinkKind::blockedBy, at(2026, 1, 9));
  snap = *s.snapshot(p.id);

  const std::vector<FlowTicket> flow = flowTickets(snap);
  ASSERT_EQ(flow.size(), 3u);
  EXPECT_EQ(flow[0].reference, "SHOP-1");
  EXPECT_FALSE(flow[0].inProgressNow);
  EXPECT_TRUE(flow[1].inProgressNow);
  EXPECT_FALSE(flow[1].cycleDays.has_value());
  EXPECT_DOUBLE_EQ(*flow[2].cycleDays, 1.25);

  const EpicProgress progress = orvane::progress(snap, snap.epics[0]);
  EXPECT_EQ(progress, (EpicProgress{3, 1, 1, 1, 1}));
  EXPECT_EQ(progress.open(), 2);
  EXPECT_EQ(progress.percentDone(), 33);
  EXPECT_EQ(activeTickets(snap, snap.epics[0]).size(), 3u);
  EXPECT_FALSE(isLate(snap, snap.epics[0], *snap.epics[0].dueDate));
  EXPECT_TRUE(isLate(snap, snap.epics[0], plus(*snap.epics[0].dueDate, 1)));

  // Once the open work is done the epic is no longer late.
  s.moveTicket(waiting, column("Done"), std::nullopt, at(2026, 2, 2));
  s.moveTicket(working, column("Done"), std::nullopt, at(2026, 2, 2));
  snap = *s.snapshot(p.id);
  EXPECT_FALSE(isLate(snap, snap.epics[0], at(2026, 3, 1)));
  EXPECT_EQ(orvane::progress(snap, snap.epics[0]).percentDone(), 100);
  EXPECT_EQ((EpicProgress{}).percentDone(), 0);
  EXPECT_EQ((EpicProgress{8, 7, 0, 1, 0}).percentDone(), 13);  // 12.5 rounds away from zero
}

}  // namespace
}  // namespace orvane
