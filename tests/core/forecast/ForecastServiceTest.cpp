#include <gtest/gtest.h>
#include <unicode/gregocal.h>
#include <unicode/timezone.h>

#include <cmath>
#include <functional>

#include "core/forecast/ForecastService.h"
#include "core/model/SupportedDates.h"
#include "core/store/Rows.h"
#include "core/support/StoreDump.h"
#include "core/support/TempStore.h"
#include "engine/ColdStart.h"

namespace orvane {
namespace {

using testing::at;

icu::GregorianCalendar calendarIn(const char* zone) {
  UErrorCode status = U_ZERO_ERROR;
  return icu::GregorianCalendar(icu::TimeZone::createTimeZone(zone), status);
}

// A project created on 5 January 2026 and forecast on 2 March 2026: the
// first four of its twelve weeks began before it existed and hold filler.
class ForecastServiceTest : public ::testing::Test {
 protected:
  testing::TempStore t;
  BoardService& board = t.service;
  Database& db = t.store.db();
  ForecastService forecasts{t.store};
  Project project = board.createProject("Shop", std::nullopt, at(2026, 1, 5));
  const CivilDate today{2026, 3, 2};
  const icu::GregorianCalendar utc = calendarIn("UTC");

  Uuid ticket(std::optional<Uuid> epic = {}, std::optional<Timestamp> doneAt = {}) {
    const Uuid id = board.createTicket(project.id, NewTicket{.title = "Card", .epic = epic}, at(2026, 1, 6)).id;
    if (doneAt) board.moveTicket(id, board.snapshot(project.id)->columns.back().id, std::nullopt, *doneAt);
    return id;
  }
  Project stored() { return *rows::find<Project>(db, project.id); }
  std::vector<std::int64_t> fillerAt(double rate) {
    return ColdStart::syntheticThroughput(rate, 12, ColdStart::fillerSeed(project.id.leadingWord(), rate));
  }
};

TEST_F(ForecastServiceTest, fillerIsStableAcrossRunsAndServicesAndChangesOnlyWithTheRate) {
  const auto history = forecasts.history(project.id, today);
  EXPECT_EQ(stored().fillerCounts, fillerAt(5.0));
  EXPECT_EQ(ForecastService(t.store).history(project.id, today), history);
  EXPECT_EQ(history[3], (PeriodCount{history[3].window, fillerAt(5.0)[3], ProvenanceTier::systemDefault}));
  EXPECT_EQ(history[4].provenance, ProvenanceTier::actual);

  const struct {
    std::optional<double> estimate;
    std::vector<std::int64_t> filler;
    const char* tier;
  } steps[]{{8.0, fillerAt(8.0), "user_estimated"},
            {5.0, fillerAt(5.0), "user_estimated"},
            {std::nullopt, fillerAt(5.0), "system_default"},
            {1000.0, fillerAt(1000.0), "user_estimated"}};
  for (const auto& step : steps) {
    forecasts.setColdStartEstimate(project.id, step.estimate);
    EXPECT_EQ(std::tuple(stored().fillerLambda, stored().fillerCounts, stored().fillerTierRaw),
              std::tuple(step.estimate, step.filler, step.tier));
  }

  // A damaged row is regenerated from its stored rate; an unknown tier reads
  // as the default estimate.
  Project damaged = stored();
  damaged.fillerCounts = {1, 2};
  damaged.fillerLambda = 8.0;
  damaged.fillerTierRaw = "guessed";
  rows::update(db, damaged);
  EXPECT_EQ(forecasts.history(project.id, today)[0],
            (PeriodCount{history[0].window, fillerAt(8.0)[0], ProvenanceTier::systemDefault}));
  EXPECT_EQ(stored().fillerCounts, fillerAt(8.0));
}

TEST_F(ForecastServiceTest, refusesBadEstimatesSharesClosedIterationsAndGoneRecordsLeavingTheStoreAsItWas) {
  const std::string estimate = "The weekly estimate must be a number from 0 to 1000.";
  const std::string share = "The share of capacity must be above 0 and at most 100 per cent.";
  const Epic epic = board.createEpic(project.id, "Checkout", std::nullopt, std::nullopt);
  const Uuid sprint = board.createIteration(project.id, "S1", "", at(2026, 2, 2), at(2026, 2, 13)).id;
  board.startIteration(sprint, at(2026, 2, 2));
  board.closeIteration(sprint, IterationCarryOver::backlog(), at(2026, 2, 13));
  const Iteration closed = *rows::find<Iteration>(db, sprint);
  const Uuid gone = Uuid::random();
  const std::vector<std::pair<std::function<void()>, std::string>> refusals{
      {[&] { forecasts.setColdStartEstimate(project.id, 1000.5); }, estimate},
      {[&] { forecasts.setColdStartEstimate(project.id, -1.0); }, estimate},
      {[&] { forecasts.setColdStartEstimate(project.id, NAN); }, estimate},
      {[&] { forecasts.setColdStartEstimate(project.id, INFINITY); }, estimate},
      {[&] { forecasts.input(epic, 0.0, today, utc); }, share},
      {[&] { forecasts.input(epic, 1.01, today, utc); }, share},
      {[&] { forecasts.input(closed, 0, today, utc); },
       "This iteration is closed. Choose an iteration that is planned or active."},
      {[&] { forecasts.input(gone, today); }, "That project no longer exists."},
      {[&] { forecasts.log(WhenForecast{}, gone, "", at(2026, 3, 2)); }, "That project no longer exists."},
      {[&] { forecasts.updateNote(gone, "x"); }, "That forecast no longer exists."},
      {[&] { forecasts.deleteRecord(gone); }, "That forecast no longer exists."},
  };
  const std::string before = testing::dumpStore(db);
  for (const auto& [call, message] : refusals) {
    try {
      call();
      ADD_FAILURE() << "accepted: " << message;
    } catch (const std::exception& error) {
      EXPECT_EQ(std::string(error.what()), message);
    }
  }
  EXPECT_EQ(testing::dumpStore(db), before);
}

TEST_F(ForecastServiceTest, projectEpicAndIterationInputsCountOnlyOpenTickets) {
  const Epic epic = board.createEpic(project.id, "Checkout", std::nullopt, std::nullopt);
  // 23:00 UTC on 1 April is already 2 April in Auckland.
  board.updateEpic(epic.id, "Checkout", "", std::nullopt, at(2026, 4, 1, 23), std::nullopt);
  const Iteration planned = board.createIteration(project.id, "S1", "", at(2026, 3, 9), at(2026, 3, 20));
  for (const Uuid id : {ticket(epic.id), ticket(epic.id), ticket(epic.id, at(2026, 2, 25)), ticket()}) {
    board.setIteration(id, planned.id);
  }
  board.archive(ticket(epic.id), at(2026, 2, 26));
  forecasts.setCommitment(project.id, at(2026, 3, 20, 23));

  const ForecastInput whole = forecasts.input(project.id, today);
  EXPECT_EQ(std::tuple(whole.backlog, whole.commitment), std::tuple(3, CivilDate(2026, 3, 20)));
  EXPECT_EQ(whole.history.back(), (PeriodCount{{CivilDate(2026, 2, 24), today}, 1, ProvenanceTier::actual}));
  const ForecastInput cut = forecasts.input(project.id, today, 0, std::nullopt, -5);
  EXPECT_EQ(cut.backlog, 0);
  EXPECT_EQ(cut.runWhen().periods, (std::map<int, double>{{50, 0}, {70, 0}, {85, 0}, {95, 0}}));

  EXPECT_EQ(forecasts.input(epic, 1.0, today, calendarIn("Pacific/Auckland")),
            (ForecastInput{today, 2, 0, whole.history, CivilDate(2026, 4, 2)}));
  EXPECT_DOUBLE_EQ(forecasts.input(epic, 0.4, today, utc).whatIfPercent, -60);

  EXPECT_EQ(forecasts.input(planned, 10, today, utc),
            (IterationForecastInput{today, {2026, 3, 20}, CivilDate(2026, 3, 9), 3, 10, whole.history}));
  board.startIteration(planned.id, at(2026, 3, 2));  // the stored state counts, not the caller's copy
  EXPECT_EQ(forecasts.input(planned, 0, today, utc).firstDay, std::nullopt);
}

TEST_F(ForecastServiceTest, aLoggedRunIsRepeatedExactlyFromItsRecord) {
  forecasts.setColdStartEstimate(project.id, 3.0);
  for (int day = 10; day <= 27; day += 3) ticket(std::nullopt, at(2026, 2, day));
  for (int i = 0; i < 20; ++i) ticket();
  forecasts.setCommitment(project.id, at(2026, 4, 20));
  const ForecastInput in = forecasts.input(project.id, today, -20, CivilDate(2026, 4, 13));
  const ForecastRecord when = forecasts.log(in.runWhen(), project.id, "  first look \n", at(2026, 3, 2, 9));
  const ForecastRecord byDate = forecasts.log(in.runByDate(), project.id, "", at(2026, 3, 2, 10));
  EXPECT_EQ(board.snapshot(project.id)->forecasts, (std::vector<ForecastRecord>{when, byDate}));
  EXPECT_EQ(std::tuple(when.note, when.commitmentDay, when.confidencePct, when.resultCounts.size()),
            std::tuple("first look", "2026-04-20", in.runWhen().commitmentConfidencePct, 0u));
  EXPECT_EQ(std::tuple(byDate.kindRaw, byDate.targetDay, byDate.confidencePct, byDate.resultDays.size()),
            std::tuple("by_date", "2026-04-13", in.runByDate().backlogDonePct, 0u));
  EXPECT_EQ(std::tuple(when.provenance.front(), when.provenance.back()), std::tuple("user_estimated", "actual"));

  for (const ForecastRecord& record : {when, byDate}) {
    ForecastInput replay{*CivilDate::fromIso(record.asOfDay), record.backlog, record.whatIfPercent, {}};
    for (const auto count : record.samples) replay.history.push_back(PeriodCount{{}, count});
    std::vector<std::string> days;
    std::vector<std::int64_t> counts;
    if (record.targetDay) {
      replay.target = CivilDate::fromIso(*record.targetDay);
      for (const auto& [level, count] : replay.runByDate().counts) counts.push_back(count);
    } else {
      for (const auto& [level, date] : replay.runWhen().dates) days.push_back(date.description());
    }
    EXPECT_EQ(std::tuple(days, counts), std::tuple(record.resultDays, record.resultCounts));
  }

  forecasts.updateNote(byDate.id, "\tscope grew ");
  EXPECT_EQ(rows::find<ForecastRecord>(db, byDate.id)->note, "scope grew");
  forecasts.deleteRecord(when.id);
  EXPECT_EQ(board.snapshot(project.id)->forecasts.size(), 1u);
}

TEST_F(ForecastServiceTest, aStoredDateNoCalendarDayHoldsIsRefusedWithASentence) {
  // Values a version that did not check restored dates could have stored.
  ticket(std::nullopt, at(2026, 2, 10));
  const struct {
    std::string sql;
    std::string what;
  } cases[] = {
      {"UPDATE projects SET created_at = 1e300", "its creation date"},
      {"UPDATE projects SET committed_date = -1e300", "its committed date"},
      {"UPDATE tickets SET completed_at = 1e300", "the completed date of SHOP-1"},
      {"UPDATE ticket_events SET at = 9e15", "a column move of SHOP-1"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.sql);
    db.exec("SAVEPOINT hostile");
    db.exec(c.sql);
    const std::string sentence =
        "\"Shop\" holds a date outside the years 0000 to 9999 (" + c.what + "), so it cannot be forecast or measured.";
    for (const auto& call : std::vector<std::function<void()>>{
             [&] { forecasts.input(project.id, today); },
             [&] { forecasts.history(project.id, today); },
             [&] { forecasts.input(project.id, today, 0, CivilDate{2026, 6, 1}); },
         }) {
      try {
        call();
        ADD_FAILURE() << "forecast";
      } catch (const UnsupportedDateError& error) {
        EXPECT_EQ(error.what(), sentence);
      }
    }
    db.exec("ROLLBACK TO hostile; RELEASE hostile");
  }
  EXPECT_EQ(forecasts.input(project.id, today).backlog, 0);
}

}  // namespace
}  // namespace orvane
