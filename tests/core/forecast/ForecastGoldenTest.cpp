// Whole forecasts, from a board built through the services at the scenario's
// instants to the numbers a user sees, against tools/make_forecast_golden.py,
// which works every value out with NumPy from the scenario text alone. Every
// comparison is exact; days are UTC days (the calendar given is UTC).

#include <gtest/gtest.h>
#include <unicode/gregocal.h>
#include <unicode/timezone.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iomanip>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/forecast/ForecastService.h"
#include "core/store/Rows.h"
#include "core/support/TempStore.h"
#include "engine/ColdStart.h"
#include "engine/SeedDerivation.h"

namespace orvane {
namespace {

using nlohmann::json;

json load(const std::string& file) {
  std::ifstream in(std::string(ORVANE_TEST_DATA_DIR) + "/forecast/" + file);
  if (!in) throw std::runtime_error("missing test data " + file + "; run tools/make_forecast_golden.py");
  return json::parse(in).at("scenarios");
}

// "2026-03-05T16:40:00Z"
Timestamp instant(const std::string& text) {
  const auto field = [&](std::size_t at) { return std::stoi(text.substr(at, 2)); };
  const std::int64_t day = CivilDate::fromIso(text).value().daysSinceEpoch();
  return Timestamp{static_cast<double>(day * 86400 + field(11) * 3600 + field(14) * 60 + field(17))};
}
std::string str(const json& value) { return value.get<std::string>(); }
CivilDate dayOf(const json& text) { return CivilDate::fromIso(str(text)).value(); }
// A day of the scenario kept as an instant: midday UTC.
Timestamp noon(const json& text) { return Timestamp{dayOf(text).utcMidnight().secondsSince1970 + 12 * 3600}; }
std::optional<Timestamp> optionalNoon(const json& owner, const char* key) {
  if (!owner.contains(key) || owner[key].is_null()) return std::nullopt;
  return noon(owner[key]);
}

json dayText(const std::optional<CivilDate>& day) { return day ? json(day->description()) : json(nullptr); }

// Exact equality, reported with every digit: a difference in the last bit
// must show.
void expectSame(double actual, double expected, const std::string& what) {
  if (actual == expected) return;
  ADD_FAILURE() << what << ": " << std::setprecision(17) << actual << " (service) != " << expected << " (NumPy)";
}
void expectSame(const std::optional<double>& actual, const json& expected, const std::string& what) {
  if (expected.is_null() || !actual) {
    EXPECT_EQ(actual.has_value(), !expected.is_null()) << what;
  } else {
    expectSame(*actual, expected.get<double>(), what);
  }
}

template <typename Value>
void expectLevels(const std::map<int, Value>& actual, const json& expected, const char* what) {
  ASSERT_EQ(actual.size(), expected.size()) << what;
  for (const auto& [level, value] : actual) {
    const json& want = expected.at(std::to_string(level));
    if constexpr (std::is_same_v<Value, CivilDate>) {
      EXPECT_EQ(value.description(), want.get<std::string>()) << what << " at " << level;
    } else if constexpr (std::is_same_v<Value, double>) {
      expectSame(value, want.get<double>(), std::string(what) + " at " + std::to_string(level));
    } else {
      EXPECT_EQ(value, want.get<Value>()) << what << " at " << level;
    }
  }
}

void expectWhen(const WhenForecast& forecast, const json& want) {
  EXPECT_EQ(forecast.backlog, want["backlog"].get<std::int64_t>());
  EXPECT_EQ(deriveSeed(simulatedSamples(forecast.history, forecast.whatIfPercent), forecast.backlog),
            want["seed"].get<std::uint64_t>());
  EXPECT_EQ(forecast.iterations, 10000);
  expectLevels(forecast.periods, want["periods"], "periods");
  expectLevels(forecast.dates, want["dates"], "dates");
  EXPECT_EQ(forecast.inconclusive, want["inconclusive"].get<bool>());
  expectSame(forecast.commitmentConfidencePct, want["commitmentConfidencePct"], "commitmentConfidencePct");
  ASSERT_EQ(forecast.histogram.size(), want["histogram"].size());
  for (std::size_t i = 0; i < forecast.histogram.size(); ++i) {
    const HistogramBin& bin = forecast.histogram[i];
    const json& w = want["histogram"][i];
    SCOPED_TRACE("bin " + std::to_string(i));
    EXPECT_EQ(bin.period, w["period"].get<std::int64_t>());
    EXPECT_EQ(bin.count, w["count"].get<std::int64_t>());
    expectSame(bin.probabilityPct, w["probabilityPct"].get<double>(), "probabilityPct");
    expectSame(bin.cumulativePct, w["cumulativePct"].get<double>(), "cumulativePct");
    EXPECT_EQ(rawValue(bin.band), w["band"].get<std::string>());
    EXPECT_EQ(bin.date.description(), w["date"].get<std::string>());
  }
}

// One scenario's project, built through the board service at its instants.
class ScenarioBoard : public ::testing::TestWithParam<std::size_t> {
 protected:
  void SetUp() override {
    scenario = load("scenarios.json").at(GetParam());
    want = load("expected.json").at(GetParam());
    ASSERT_EQ(want["name"], scenario["name"]) << "expected.json is stale; run tools/make_forecast_golden.py";
    UErrorCode status = U_ZERO_ERROR;
    utc = std::make_unique<icu::GregorianCalendar>(icu::TimeZone::createTimeZone("UTC"), status);
    ASSERT_TRUE(U_SUCCESS(status));
    build();
  }

  void build() {
    const Timestamp now = instant(str(scenario["now"]));
    // The project keeps the scenario's id, on which its filler depends.
    Project row;
    row.id = Uuid::parse(str(scenario["id"])).value();
    row.name = str(scenario["name"]);
    row.key = projectKey(row.name);
    row.createdAt = instant(str(scenario["createdAt"]));
    rows::insert(db, row);
    project = row.id;
    const auto& templates = ColumnTemplate::standard();
    for (std::size_t i = 0; i < templates.size(); ++i) {
      const BoardColumn column{Uuid::random(),
                               templates[i].name,
                               static_cast<std::int64_t>(i),
                               std::string(rawValue(templates[i].type)),
                               templates[i].wipLimit,
                               project};
      rows::insert(db, column);
      columns[column.name] = column.id;
    }

    for (const json& e : scenario["epics"]) {
      const Uuid id = board.createEpic(project, str(e["name"]), std::nullopt, optionalNoon(e, "dueDate")).id;
      if (e.contains("startDate")) {
        board.updateEpic(id, str(e["name"]), "", noon(e["startDate"]), optionalNoon(e, "dueDate"), std::nullopt);
      }
      epics[str(e["name"])] = id;
    }
    for (const json& e : scenario["epics"]) {
      for (const json& before : e["waitsFor"])
        board.addEpicDependency(epics.at(str(e["name"])), epics.at(str(before)), now);
    }

    for (const json& t : scenario["tickets"]) {
      const Uuid id = board.createTicket(project, NewTicket{.title = str(t["title"])}, instant(str(t["createdAt"]))).id;
      if (t.contains("epic")) board.assign(id, epics.at(str(t["epic"])));
      for (const json& move : t["moves"])
        board.moveTicket(id, columns.at(str(move[0])), std::nullopt, instant(str(move[1])));
      if (t.contains("archived")) board.archive(id, instant(str(t["archived"])));
      tickets[str(t["title"])] = id;
    }

    for (const json& it : scenario["iterations"]) {
      const Uuid id =
          board.createIteration(project, str(it["name"]), "", noon(it["startDate"]), noon(it["endDate"])).id;
      for (const json& title : it["tickets"]) board.setIteration(tickets.at(str(title)), id);
      if (!it["started"].is_null()) board.startIteration(id, instant(str(it["started"])));
      iterations[str(it["name"])] = id;
    }

    for (const json& m : scenario["milestones"]) {
      std::optional<Uuid> epic;
      if (m.contains("epic")) epic = epics.at(str(m["epic"]));
      const Uuid id = board.createMilestone(project, str(m["name"]), noon(m["day"]), epic, "").id;
      if (m["done"].get<bool>()) board.setMilestone(id, true, now);
      milestones[str(m["name"])] = id;
    }

    if (scenario.contains("estimate")) forecasts.setColdStartEstimate(project, scenario["estimate"].get<double>());
    asOf = ForecastService::todayUTC(now);
  }

  json scenario, want;
  testing::TempStore t;
  Database& db = t.store.db();
  BoardService& board = t.service;
  ForecastService forecasts{t.store};
  std::unique_ptr<icu::Calendar> utc;
  Uuid project;
  CivilDate asOf;
  std::map<std::string, Uuid> columns, epics, tickets, iterations, milestones;
};

TEST_P(ScenarioBoard, historyCountsTheBoardAndFillsTheWeeksBeforeTheProject) {
  EXPECT_EQ(asOf.description(), want["asOf"].get<std::string>());
  const ProjectSnapshot snapshot = *board.snapshot(project);
  EXPECT_EQ(snapshot.remainingBacklog(), want["openTickets"].get<std::int64_t>());
  std::vector<std::string> done;
  for (const CivilDate& day : snapshot.completionDatesUTC()) done.push_back(day.description());
  std::sort(done.begin(), done.end());
  EXPECT_EQ(done, want["completionDays"].get<std::vector<std::string>>());

  const std::vector<PeriodCount> history = forecasts.history(project, asOf);
  ASSERT_EQ(history.size(), want["history"].size());
  for (std::size_t k = 0; k < history.size(); ++k) {
    const json& w = want["history"][k];
    SCOPED_TRACE("week " + std::to_string(k));
    EXPECT_EQ(history[k].window.start.description(), w["start"].get<std::string>());
    EXPECT_EQ(history[k].window.end.description(), w["end"].get<std::string>());
    EXPECT_EQ(history[k].count, w["count"].get<std::int64_t>());
    EXPECT_EQ(rawValue(history[k].provenance), w["provenance"].get<std::string>());
  }
  const double rate = scenario.contains("estimate") ? scenario["estimate"].get<double>() : ColdStart::defaultLambda;
  EXPECT_EQ(ColdStart::fillerSeed(project.leadingWord(), rate), want["filler"]["seed"].get<std::uint64_t>());
  const Project saved = *rows::find<Project>(db, project);
  EXPECT_EQ(saved.fillerCounts, want["filler"]["counts"].get<std::vector<std::int64_t>>());
  EXPECT_EQ(saved.fillerTierRaw, want["filler"]["tier"].get<std::string>());
}

TEST_P(ScenarioBoard, whenAndByDateForecastsOfTheProject) {
  const json& asks = scenario["forecasts"];
  for (std::size_t i = 0; i < asks["when"].size(); ++i) {
    const json& ask = asks["when"][i];
    SCOPED_TRACE("when " + ask.dump());
    forecasts.setCommitment(project, optionalNoon(ask, "commitment"));
    const ForecastInput input = forecasts.input(project, asOf, ask["whatIfPercent"].get<double>(), std::nullopt,
                                                ask["backlogChange"].get<std::int64_t>());
    expectWhen(input.runWhen(), want["when"][i]);
  }
  forecasts.setCommitment(project, std::nullopt);
  for (std::size_t i = 0; i < asks["byDate"].size(); ++i) {
    const json& ask = asks["byDate"][i];
    const json& w = want["byDate"][i];
    SCOPED_TRACE("by date " + ask.dump());
    const ByDateForecast forecast = forecasts
                                        .input(project, asOf, ask["whatIfPercent"].get<double>(), dayOf(ask["target"]),
                                               ask["backlogChange"].get<std::int64_t>())
                                        .runByDate();
    EXPECT_EQ(forecast.backlog, w["backlog"].get<std::int64_t>());
    EXPECT_EQ(deriveSeed(simulatedSamples(forecast.history, forecast.whatIfPercent), forecast.backlog),
              w["seed"].get<std::uint64_t>());
    EXPECT_EQ(forecast.wholePeriods, w["wholePeriods"].get<std::int64_t>());
    expectLevels(forecast.counts, w["counts"], "counts");
    expectSame(forecast.backlogDonePct, w["backlogDonePct"].get<double>(), "backlogDonePct");
  }
}

TEST_P(ScenarioBoard, epicForecastsRunAtAShareOfTheThroughput) {
  const json& asks = scenario["forecasts"]["epic"];
  for (std::size_t i = 0; i < asks.size(); ++i) {
    SCOPED_TRACE("epic " + asks[i].dump());
    const Epic epic = *rows::find<Epic>(db, epics.at(str(asks[i]["epic"])));
    const ForecastInput input = forecasts.input(epic, asks[i]["share"].get<double>(), asOf, *utc);
    expectSame(input.whatIfPercent, want["epic"][i]["whatIfPercent"].get<double>(), "whatIfPercent");
    expectWhen(input.runWhen(), want["epic"][i]);
  }
}

TEST_P(ScenarioBoard, iterationForecastsBlendTheWeekInWhichTheIterationEnds) {
  const json& asks = scenario["forecasts"]["iteration"];
  for (std::size_t i = 0; i < asks.size(); ++i) {
    const json& w = want["iteration"][i];
    SCOPED_TRACE("iteration " + asks[i].dump());
    const Iteration iteration = *rows::find<Iteration>(db, iterations.at(str(asks[i]["name"])));
    const IterationForecast forecast =
        forecasts.input(iteration, asks[i]["whatIfPercent"].get<double>(), asOf, *utc).run();
    EXPECT_EQ(forecast.open, w["open"].get<std::int64_t>());
    EXPECT_EQ(forecast.daysLeft, w["daysLeft"].get<std::int64_t>());
    expectSame(forecast.probabilityPct, w["probabilityPct"].get<double>(), "probabilityPct");
    expectLevels(forecast.counts, w["counts"], "counts");
  }
}

TEST_P(ScenarioBoard, roadmapChainsTheEpicsAndJudgesTheMilestones) {
  if (!scenario["forecasts"]["roadmap"].get<bool>()) GTEST_SKIP();
  const json& w = want["roadmap"];
  const RoadmapForecast roadmap = forecasts.roadmapInput(project, asOf, *utc).run();
  EXPECT_EQ(roadmap.inconclusive, w["inconclusive"].get<bool>());
  ASSERT_EQ(roadmap.epics.size(), w["epics"].size());
  for (const json& e : w["epics"]) {
    SCOPED_TRACE("epic " + str(e["name"]));
    const EpicSchedule& schedule = roadmap.epics.at(epics.at(str(e["name"])));
    EXPECT_EQ(schedule.open, e["open"].get<std::int64_t>());
    EXPECT_EQ(dayText(schedule.p50), e["p50"]);
    EXPECT_EQ(dayText(schedule.p85), e["p85"]);
    EXPECT_EQ(dayText(schedule.dueDay), e["dueDay"]);
    expectSame(schedule.chanceByDue, e["chanceByDue"], "chanceByDue");
  }
  expectLevels(roadmap.projectDates, w["projectDates"], "projectDates");
  ASSERT_EQ(roadmap.milestoneChances.size(), w["milestoneChances"].size());
  for (const json& m : w["milestoneChances"]) {
    expectSame(roadmap.milestoneChances.at(milestones.at(str(m["name"]))), m["chance"].get<double>(),
               "milestone " + str(m["name"]));
  }
}

// Read before main(); a missing file leaves the suite uninstantiated, which
// GoogleTest reports as a failure.
std::size_t scenarioCount() {
  try {
    return load("scenarios.json").size();
  } catch (const std::exception&) {
    return 0;
  }
}

std::string scenarioName(const ::testing::TestParamInfo<std::size_t>& info) {
  std::string name = str(load("scenarios.json").at(info.param)["name"]);
  std::erase_if(name, [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); });
  return name;
}

INSTANTIATE_TEST_SUITE_P(ForecastGolden, ScenarioBoard, ::testing::Range<std::size_t>(0, scenarioCount()),
                         scenarioName);

}  // namespace
}  // namespace orvane
