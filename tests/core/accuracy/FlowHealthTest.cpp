#include <gtest/gtest.h>

#include "core/accuracy/FlowHealth.h"
#include "core/model/ProjectSnapshot.h"
#include "core/model/SupportedDates.h"

namespace orvane {
namespace {

const CivilDate today{2026, 3, 2};

Timestamp daysAgo(double days) {
  return Timestamp{static_cast<double>(today.daysSinceEpoch() * 86400 + 12 * 3600) - days * 86400};
}

struct Board {
  ProjectSnapshot s;
  Uuid doing = Uuid::random();
  Uuid done = Uuid::random();

  explicit Board(double createdDaysAgo) {
    s.project.createdAt = daysAgo(createdDaysAgo);
    s.columns = {{doing, "Doing", 0, "in_progress", 1, {}}, {done, "Done", 1, "done", std::nullopt, {}}};
  }
  void finished(double daysAgoDone, double cycleDays = 2) {
    Ticket t;
    t.id = Uuid::random();
    t.columnId = done;
    t.startedAt = daysAgo(daysAgoDone + cycleDays);
    t.completedAt = daysAgo(daysAgoDone);
    s.tickets.push_back(t);
  }
  void started(double daysAgoStarted) {
    Ticket t;
    t.id = Uuid::random();
    t.columnId = doing;
    t.startedAt = daysAgo(daysAgoStarted);
    s.tickets.push_back(t);
  }
};

TEST(FlowHealth, FiguresAndNotesOfABusyProject) {
  Board board(34);                                           // five whole weeks of real history
  for (double d : {1, 3, 8, 10, 15, 20}) board.finished(d);  // last four weeks: 1.5 a week
  for (double d : {30, 35, 40, 50}) board.finished(d);       // the four before: 1.0 a week
  board.finished(90);                                        // outside the 12 weeks
  board.started(5);
  board.started(1);
  const FlowHealth h = flowHealth(board.s, daysAgo(0));
  EXPECT_EQ(h.recentThroughput, 1.5);
  EXPECT_EQ(h.priorThroughput, 1.0);
  EXPECT_EQ(h.trend, ThroughputTrend::up);
  ASSERT_TRUE(h.cycle);
  EXPECT_EQ(h.cycle->count, 10);
  EXPECT_EQ(h.inProgress, 2);
  EXPECT_EQ(h.ageingOverP85, 1);
  EXPECT_EQ(h.realWeeks, 5);
  EXPECT_EQ(h.notes,
            (std::vector<std::string>{
                "Throughput is rising: 1.5 tickets a week over the last four weeks, against 1.0 in the four before.",
                "Half of the tickets finished in the last 12 weeks took 2.0 days or less from start to finish, and 85% "
                "took 2.0 days or less (10 tickets).",
                "Work item age shows 1 of the 2 tickets in progress to be older than 85% of finished work and probably "
                "need attention.",
                "Doing holds 2 tickets against a limit of 1.",
                "Only 5 weeks of real history exist, so read the trends with caution.",
            }));
}

TEST(FlowHealth, NothingFinishedMeansNoCycleTimeAndNoAgeingWork) {
  Board board(200);
  board.started(60);
  const FlowHealth h = flowHealth(board.s, daysAgo(0));
  EXPECT_FALSE(h.cycle);
  EXPECT_EQ(h.inProgress, 1);
  EXPECT_EQ(h.ageingOverP85, 0);
  EXPECT_EQ(h.trend, ThroughputTrend::level);
  EXPECT_EQ(h.realWeeks, 12);
  EXPECT_EQ(h.notes, (std::vector<std::string>{
                         "Throughput is steady at about 0.0 tickets a week over the last four weeks (0.0 in the four "
                         "before).",
                         "No ticket has finished in the last 12 weeks, so there is no cycle time yet.",
                         "No in-progress ticket is older than 85% of finished work.",
                     }));
}

TEST(FlowHealth, ADateNoCalendarDayHoldsIsRefusedWithASentence) {
  // Written by a version that did not check restored dates.
  for (const double createdAt : {1e300, -1e300, 253402300800.0}) {
    Board board(200);
    board.finished(3);
    board.s.project.name = "Shop";
    board.s.project.createdAt = Timestamp{createdAt};
    try {
      flowHealth(board.s, daysAgo(0));
      ADD_FAILURE() << createdAt;
    } catch (const UnsupportedDateError& error) {
      EXPECT_STREQ(error.what(),
                   "\"Shop\" holds a date outside the years 0000 to 9999 (its creation date), so it cannot be "
                   "forecast or measured.");
    }
  }
}

TEST(FlowHealth, TrendBoundsAreStrict) {
  struct Case {
    double recent, prior;
    ThroughputTrend expected;
  };
  const std::vector<Case> cases{
      {0, 0, ThroughputTrend::level},   {0.25, 0, ThroughputTrend::up},     {3.0, 2.5, ThroughputTrend::level},
      {3.25, 2.5, ThroughputTrend::up}, {2.0, 2.5, ThroughputTrend::level}, {1.75, 2.5, ThroughputTrend::down},
      {0, 0.25, ThroughputTrend::down},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(throughputTrend(c.recent, c.prior), c.expected) << c.recent << " against " << c.prior;
  }
  // Exactly 1.2 x prior through real counts: 12 in the last four weeks, 10 before.
  Board board(200);
  for (int i = 0; i < 12; ++i) board.finished(i % 28);
  for (int i = 0; i < 10; ++i) board.finished(28 + i % 28);
  EXPECT_EQ(flowHealth(board.s, daysAgo(0)).trend, ThroughputTrend::level);
  EXPECT_EQ(displayLabel(ThroughputTrend::level), "Steady");
}

}  // namespace
}  // namespace orvane
