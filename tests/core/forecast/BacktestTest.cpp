#include <gtest/gtest.h>

#include "core/forecast/Backtest.h"
#include "core/support/StoreDump.h"
#include "core/support/TempStore.h"

namespace orvane {
namespace {

using testing::at;

// A project created on Monday 5 January 2026, backtested as of Monday
// 2 February 2026 and looked at on 5 March 2026.
class BacktestTest : public ::testing::Test {
 protected:
  testing::TempStore t;
  BoardService& board = t.service;
  Project project = board.createProject("Shop", std::nullopt, at(2026, 1, 5));
  const CivilDate day{2026, 2, 2};
  const CivilDate today{2026, 3, 5};

  Uuid ticket(Timestamp created, std::optional<Timestamp> doneAt = {}) {
    const Uuid id = board.createTicket(project.id, NewTicket{.title = "Card"}, created).id;
    if (doneAt) board.moveTicket(id, board.snapshot(project.id)->columns.back().id, std::nullopt, *doneAt);
    return id;
  }
  // What the forecast service gives on `day` for a backlog of `backlog`.
  WhenForecast expectedForecast(std::int64_t backlog) {
    ForecastInput input;
    input.asOf = day;
    input.backlog = backlog;
    input.history = ForecastService(t.store).history(project.id, day);
    return input.runWhen();
  }
};

TEST_F(BacktestTest, forecastsFromTheTicketsOfThatDayAndComparesWithTheirRealFinish) {
  ticket(at(2026, 1, 6), at(2026, 1, 20));                // done before the day: history, not backlog
  ticket(at(2026, 1, 6), at(2026, 2, 2, 15));             // done on the day: still backlog
  ticket(at(2026, 1, 10), at(2026, 2, 16));               // done later
  const Uuid late = ticket(at(2026, 2, 2, 23));           // created on the day, open
  ticket(at(2026, 2, 3), at(2026, 2, 4));                 // created after the day: not part of it
  board.archive(ticket(at(2026, 1, 6)), at(2026, 1, 7));  // archived: nowhere

  const Backtest open = runBacktest(t.store, project.id, day, today);
  EXPECT_EQ(open.forecast, expectedForecast(3));
  EXPECT_EQ(open.stillOpen, 1);
  EXPECT_EQ(open.finishedOn, std::nullopt);
  EXPECT_TRUE(open.levelsMet.empty());

  board.moveTicket(late, board.snapshot(project.id)->columns.back().id, std::nullopt, at(2026, 2, 20));
  const Backtest finished = runBacktest(t.store, project.id, day, today);
  EXPECT_EQ(finished.forecast, expectedForecast(3));
  EXPECT_EQ(finished.stillOpen, 0);
  EXPECT_EQ(finished.finishedOn, (CivilDate{2026, 2, 20}));
  ASSERT_EQ(finished.levelsMet.size(), 4u);
  for (const auto& [level, met] : finished.levelsMet) {
    EXPECT_EQ(met, !(finished.forecast.dates.at(level) < CivilDate{2026, 2, 20})) << level;
  }
}

TEST_F(BacktestTest, anEmptyBacklogWasFinishedOnTheDayItself) {
  ticket(at(2026, 1, 6), at(2026, 1, 20));
  const Backtest result = runBacktest(t.store, project.id, day, today);
  EXPECT_EQ(result.forecast.backlog, 0);
  EXPECT_EQ(result.finishedOn, day);
  for (const auto& [level, met] : result.levelsMet) EXPECT_TRUE(met) << level;
}

TEST_F(BacktestTest, refusesAFutureDayOrOneBeforeTheProjectBeganLeavingTheStoreAsItWas) {
  ForecastService(t.store).history(project.id, today);  // the filler is in place before the dump
  const std::string before = testing::dumpStore(t.store.db());
  const struct {
    CivilDate day;
    std::string message;
  } refusals[]{
      {CivilDate{2026, 3, 6}, "Choose a day on or before today; a backtest looks at the past."},
      {CivilDate{2026, 1, 4}, "Choose a day on or after 5 Jan 2026, when the project began."},
  };
  for (const auto& r : refusals) {
    try {
      runBacktest(t.store, project.id, r.day, today);
      ADD_FAILURE() << "accepted " << r.day.description();
    } catch (const BacktestError& error) {
      EXPECT_EQ(std::string(error.what()), r.message);
    }
  }
  EXPECT_NO_THROW(runBacktest(t.store, project.id, today, today));
  EXPECT_NO_THROW(runBacktest(t.store, project.id, CivilDate{2026, 1, 5}, today));
  EXPECT_EQ(testing::dumpStore(t.store.db()), before);
  EXPECT_THROW(runBacktest(t.store, Uuid::random(), day, today), MissingRecordError);
}

}  // namespace
}  // namespace orvane
