#include <gtest/gtest.h>

#include "core/metrics/FlowAnalysis.h"
#include "core/metrics/ProcessBehaviour.h"
#include "core/model/ProjectSnapshot.h"

namespace orvane {
namespace {

constexpr double day = 86400.0;

Timestamp midnight(CivilDate date) { return date.utcMidnight(); }
Timestamp plus(Timestamp t, double seconds) { return Timestamp{t.secondsSince1970 + seconds}; }

FlowTicket ticket(std::string reference, std::optional<Timestamp> started, std::optional<Timestamp> completed) {
  FlowTicket t;
  t.id = Uuid::random();
  t.reference = std::move(reference);
  t.createdAt = midnight(CivilDate{2026, 1, 1});
  t.startedAt = started;
  t.completedAt = completed;
  if (started && completed) t.cycleDays = (completed->secondsSince1970 - started->secondsSince1970) / day;
  return t;
}

std::vector<std::string> labels(std::size_t n) {
  std::vector<std::string> out;
  for (std::size_t i = 1; i <= n; ++i) out.push_back("w" + std::to_string(i));
  return out;
}

// Limits by hand: mean 3.6, moving ranges 2, 1, 2, 1 (average 1.5), so the
// limits are 3.6 +/- 3.99 and the moving-range limit 4.902.
TEST(ProcessBehaviour, LimitsFromTheAverageMovingRange) {
  const std::vector<double> values{2, 4, 3, 5, 4};
  const std::optional<XmRChart> chart = xmrChart(values);
  ASSERT_TRUE(chart.has_value());
  EXPECT_DOUBLE_EQ(chart->mean, 3.6);
  EXPECT_EQ(chart->movingRanges, (std::vector<double>{2, 1, 2, 1}));
  EXPECT_DOUBLE_EQ(chart->averageMovingRange, 1.5);
  EXPECT_NEAR(chart->upperLimit, 7.59, 1e-12);
  EXPECT_NEAR(chart->lowerLimit, -0.39, 1e-12);
  EXPECT_NEAR(chart->movingRangeLimit, 4.902, 1e-12);
  EXPECT_TRUE(chart->detected.empty());
  EXPECT_EQ(xmrSentences(chart, "Weekly throughput", labels(5)),
            (std::vector<std::string>{"Weekly throughput: no signal; the values vary between 0.0 and 7.6 by routine "
                                      "variation alone, so read no trend into them."}));

  const std::vector<double> one{5};
  EXPECT_FALSE(xmrChart(one).has_value());
  EXPECT_EQ(xmrSentences(std::nullopt, "Cycle time", {}),
            (std::vector<std::string>{"Cycle time: too few values for a process behaviour chart."}));
}

// Each rule on a series worked out by hand; signals come ordered by their
// first value.
TEST(ProcessBehaviour, SignalsOfEachRuleInWords) {
  using Kind = XmRSignal::Kind;
  const struct {
    const char* name;
    std::vector<double> values;
    std::vector<XmRSignal> detected;
    std::vector<std::string> sentences;
  } cases[] = {
      // Mean 3.9, average moving range 1: limits 6.56 and 1.24, moving-range
      // limit 3.268. Nine 3s below the mean, then a jump of 9 to 12.
      {"run, jump and point beyond",
       {3, 3, 3, 3, 3, 3, 3, 3, 3, 12},
       {{Kind::runOfEight, 0, 8, false}, {Kind::movingRangeBeyondLimit, 8, 9, true}, {Kind::beyondLimit, 9, 9, true}},
       {"M: 9 values in a row, from w1 to w9, are below the mean of 3.9.",
        "M: the change from w9 to w10 (9) is above the moving-range limit of 3.3.",
        "M: w10 (12) is above the upper natural process limit of 6.6."}},
      // Mean 7/3, average moving range 8/11: upper limit 4.268, moving-range
      // limit 2.377, lower midline 1.366. Ten 1s below the mean and near
      // the lower limit (said by the run alone), then a jump to two 9s beyond
      // the upper limit, said together.
      {"points beyond a limit are said together",
       {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 9, 9},
       {{Kind::runOfEight, 0, 9, false},
        {Kind::nearLimit, 0, 9, false},
        {Kind::movingRangeBeyondLimit, 9, 10, true},
        {Kind::beyondLimit, 10, 10, true},
        {Kind::beyondLimit, 11, 11, true}},
       {"M: 10 values in a row, from w1 to w10, are below the mean of 2.3.",
        "M: the change from w10 to w11 (8) is above the moving-range limit of 2.4.",
        "M: 2 values are above the upper natural process limit of 4.3: w11 to w12."}},
      // Mean 26/9, average moving range 1.25: upper limit 6.214, midline
      // 4.551; only the window 5..8 holds three values past it; the jump of
      // 4 stays under the moving-range limit 4.085.
      {"three of four near the upper limit",
       {1, 2, 1, 2, 1, 5, 5, 4, 5},
       {{Kind::nearLimit, 5, 8, true}},
       {"M: 3 of the 4 values from w6 to w9 are nearer the upper limit than the mean."}},
      // One more 5: mean 3.1, average moving range 10/9, midline 4.578; the
      // windows 5..8 and 6..9 join; the jump of 4 passes the limit 3.631.
      {"overlapping windows join",
       {1, 2, 1, 2, 1, 5, 5, 4, 5, 5},
       {{Kind::movingRangeBeyondLimit, 4, 5, true}, {Kind::nearLimit, 5, 9, true}},
       {"M: the change from w5 to w6 (4) is above the moving-range limit of 3.6.",
        "M: 4 of the 5 values from w6 to w10 are nearer the upper limit than the mean."}},
      // Mean 4, average moving range 30/19: limits 8.2 and -0.2, midlines
      // 6.1 and 1.9. Eight values above the mean and ten below, each eight
      // broken by a value on the mean, so no run; no other rule holds.
      {"a value on the mean breaks a run",
       {8, 5, 8, 5, 4, 8, 5, 8, 5, 2, 2, 2, 2, 2, 4, 2, 2, 2, 2, 2},
       {},
       {"M: no signal; the values vary between 0.0 and 8.2 by routine variation alone, so read no trend into them."}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const std::optional<XmRChart> chart = xmrChart(c.values);
    ASSERT_TRUE(chart.has_value());
    EXPECT_EQ(chart->detected, c.detected);
    EXPECT_EQ(xmrSentences(chart, "M", labels(c.values.size())), c.sentences);
  }
}

TEST(FlowAnalyses, ArrivalsAndDeparturesWithTheRunningGap) {
  // Weeks 20..26 Feb and 27 Feb..5 Mar.
  const CivilDate asOf{2026, 3, 5};
  const std::vector<FlowTicket> tickets = {
      ticket("A", midnight({2026, 2, 21}), midnight({2026, 2, 28})),
      ticket("B", midnight({2026, 2, 22}), std::nullopt),
      ticket("C", plus(midnight({2026, 3, 1}), 3600), plus(midnight({2026, 3, 5}), day - 1)),
      ticket("D", std::nullopt, midnight({2026, 2, 25})),
      ticket("E", midnight({2026, 2, 10}), std::nullopt),
  };
  EXPECT_EQ(FlowAnalyses::arrivalsAndDepartures(tickets, asOf, 2),
            (std::vector<WeekFlow>{{{2026, 2, 20}, {2026, 2, 26}, 2, 1, 1}, {{2026, 2, 27}, asOf, 1, 2, 0}}));
}

// Weeks and days before the project began are no process's output: the
// behaviour charts start at the project's first day, the weekly flow does not.
TEST(FlowAnalyses, BehaviourChartsStartWhenTheProjectBegan) {
  const CivilDate asOf{2026, 3, 5};
  const std::vector<FlowTicket> tickets = {
      ticket("A", midnight({2026, 2, 21}), midnight({2026, 2, 28})),
      ticket("B", midnight({2026, 2, 22}), midnight({2026, 3, 2})),
      ticket("C", midnight({2026, 3, 1}), std::nullopt),
  };
  const FlowScreen::Figures figures = FlowScreen::figures(tickets, plus(midnight(asOf), 3600), 4);
  struct Case {
    CivilDate began;
    std::size_t weeks;  // values of the weekly charts
    std::size_t days;   // values of the daily WIP chart
  };
  // 4 weeks are 6 Feb..5 Mar; a week counts when it ends on or after the day.
  for (const Case c : {Case{{2025, 1, 1}, 4, 28}, Case{{2026, 2, 6}, 4, 28}, Case{{2026, 2, 20}, 2, 14},
                       Case{{2026, 2, 26}, 2, 8}, Case{asOf, 1, 1}}) {
    SCOPED_TRACE(c.began.description());
    const FlowAnalysis a = FlowAnalyses::analyse(tickets, figures, std::nullopt, c.began);
    EXPECT_EQ(a.weeks.size(), 4u);
    EXPECT_EQ(a.throughput.labels.size(), c.weeks);
    EXPECT_EQ(a.arrivals.labels.size(), c.weeks);
    EXPECT_EQ(a.wip.labels.size(), c.days);
    EXPECT_EQ(a.wip.chart.has_value(), c.days >= 2);
  }
}

TEST(FlowAnalyses, WipLimitSumOfInProgressColumns) {
  ProjectSnapshot project;
  const auto column = [](const char* type, std::optional<std::int64_t> limit) {
    BoardColumn c;
    c.typeRaw = type;
    c.wipLimit = limit;
    return c;
  };
  project.columns = {column("backlog", 10), column("in_progress", std::nullopt), column("done", 5)};
  EXPECT_EQ(FlowAnalyses::wipLimitSum(project), std::nullopt);
  project.columns.push_back(column("in_progress", 3));
  project.columns.push_back(column("in_progress", 2));
  EXPECT_EQ(FlowAnalyses::wipLimitSum(project), 5);
}

// Seven days from 23 Feb 2026; every figure below is worked out by hand.
TEST(FlowAnalyses, LittlesLawAgainstTheAverageCycleTime) {
  const CivilDate d0{2026, 2, 23};
  const CivilDate d6 = d0.addingDays(6);
  const struct {
    const char* name;
    std::vector<FlowTicket> tickets;
    std::optional<double> implied;
    std::optional<double> average;
    std::string sentence;
  } cases[] = {
      // In progress 1, 2, 1, 1, 2, 2, 1 (average 10/7); 2 finished, 2/7 a
      // day, imply 5 days; they took 5 days 1 hour and 1.5 days.
      {"piling up",
       {ticket("A", midnight(d0.addingDays(-3)), plus(midnight(d0.addingDays(2)), 3600)),
        ticket("B", plus(midnight(d0.addingDays(1)), 60), std::nullopt),
        ticket("C", plus(midnight(d0.addingDays(4)), day / 2), midnight(d6))},
       5.0,
       (5 + 1.0 / 24 + 1.5) / 2,
       "Little's law is off by 52.9% over these days: 1.4 tickets in progress at 0.3 finished a day imply 5.0 days "
       "per ticket, against an average cycle time of 3.3 days. Work in progress is piling up faster than it is "
       "finished, so the flow is not stable and forecasts drawn from this throughput are likely too optimistic."},
      // In progress 6 days of 7, one finished: 6 days against 6.5.
      {"stable",
       {ticket("X", midnight(d0), plus(midnight(d6), day / 2))},
       6.0,
       6.5,
       "Little's law holds over these days: 0.9 tickets in progress at 0.1 finished a day imply 6.0 days per ticket, "
       "against an average cycle time of 6.5 days, a gap of 7.7%. The flow is stable, so forecasts drawn from its "
       "throughput rest on firm ground."},
      // An old ticket cleared on d1: one day in progress, 21 days of cycle.
      {"clearing old work",
       {ticket("Y", midnight(d0.addingDays(-20)), midnight(d0.addingDays(1)))},
       1.0,
       21.0,
       "Little's law is off by 95.2% over these days: 0.1 tickets in progress at 0.1 finished a day imply 1.0 days "
       "per ticket, against an average cycle time of 21.0 days. Old work is being cleared or work in progress is "
       "shrinking, so the flow is not stable and forecasts drawn from this throughput may not hold once that ends."},
      {"nothing finished",
       {ticket("Z", midnight(d0), std::nullopt)},
       std::nullopt,
       std::nullopt,
       "Little's law cannot be checked over these days: it needs tickets that were started and finished in them."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const LittlesLaw law = FlowAnalyses::littlesLaw(c.tickets, *flowRange(c.tickets, d0, d6));
    ASSERT_EQ(law.impliedCycleDays.has_value(), c.implied.has_value());
    if (c.implied) EXPECT_NEAR(*law.impliedCycleDays, *c.implied, 1e-9);
    ASSERT_EQ(law.averageCycleDays.has_value(), c.average.has_value());
    if (c.average) EXPECT_NEAR(*law.averageCycleDays, *c.average, 1e-9);
    EXPECT_EQ(FlowAnalyses::littlesLawSentence(law), c.sentence);
  }
}

TEST(FlowAnalyses, PredictabilityFromTheRatioOf85To50) {
  const auto summary = [](double p50, double p85) {
    CycleTimeSummary s;
    s.count = 10;
    s.p50 = p50;
    s.p85 = p85;
    return std::optional<CycleTimeSummary>(s);
  };
  const struct {
    std::optional<CycleTimeSummary> summary;
    std::string sentence;
  } cases[] = {
      {summary(4, 8),
       "Cycle time is predictable: the 85% cycle time (8.0 days) is 2.0 times the median (4.0 days), so a promise of "
       "8.0 days per ticket holds 85% of the time with little padding."},
      {summary(2, 5),
       "Cycle time is fairly predictable: the 85% cycle time (5.0 days) is 2.5 times the median (2.0 days); promise "
       "by the 85% figure, never by the median, which half of the tickets take longer than."},
      {summary(1, 4.5),
       "Cycle time is unpredictable: the 85% cycle time (4.5 days) is 4.5 times the median (1.0 days), so a few "
       "tickets take far longer than most; promises made at the median will often be broken, and even the 85% "
       "figure is fragile until the slow tickets are understood."},
      {summary(0, 1),
       "Half of the tickets finished in no time, so the ratio of the 85% to the 50% cycle time says nothing."},
      {std::nullopt, "No ticket has finished in these weeks, so how predictable cycle time is cannot be said."},
  };
  for (const auto& c : cases) EXPECT_EQ(FlowAnalyses::predictabilitySentence(c.summary), c.sentence);
}

}  // namespace
}  // namespace orvane
