#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "core/forecast/ForecastService.h"
#include "core/forecast/ReproductionScript.h"
#include "core/support/TempStore.h"

namespace orvane {
namespace {

using testing::at;

// The system interpreter, which carries NumPy; a user-level python3 first
// on PATH may not.
std::string python() { return std::filesystem::exists("/usr/bin/python3") ? "/usr/bin/python3" : "python3"; }

// What the script prints when run on its own, or "exit N" when it fails.
std::string runScript(const std::string& script, const std::filesystem::path& folder) {
  const std::filesystem::path file = folder / "reproduce.py";
  std::ofstream(file) << script;
  const std::string command = python() + " " + file.string() + " 2>&1";
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return "cannot start python3";
  std::string output;
  char buffer[256];
  while (std::fgets(buffer, sizeof buffer, pipe) != nullptr) output += buffer;
  const int status = pclose(pipe);
  return status == 0 ? output : output + "exit " + std::to_string(status);
}

std::vector<PeriodCount> historyOf(std::initializer_list<std::int64_t> counts) {
  std::vector<PeriodCount> history;
  for (const std::int64_t count : counts) history.push_back(PeriodCount{{}, count, ProvenanceTier::actual});
  return history;
}

TEST(ReproductionScript, rebuildsTheServicesFourLevelsWithNumPyAlone) {
  testing::TempStore t;
  const Timestamp now = at(2026, 3, 5, 10);
  const Project demo = t.service.loadDemoProject(now);
  ForecastService forecasts{t.store};
  const CivilDate today = ForecastService::todayUTC(now);

  const struct {
    const char* name;
    ForecastInput input;
  } cases[]{
      {"demo", forecasts.input(demo.id, today)},
      {"demo at -30% with 5 more tickets", forecasts.input(demo.id, today, -30, std::nullopt, 5)},
      {"demo at +33%", forecasts.input(demo.id, today, 33)},
      {"one sample", ForecastInput{.asOf = today, .backlog = 17, .history = historyOf({4})}},
      {"empty backlog", ForecastInput{.asOf = today, .backlog = 0, .history = historyOf({3, 5, 4})}},
      {"partly past 520 weeks",
       ForecastInput{.asOf = today, .backlog = 40, .history = historyOf({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1})}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const WhenForecast forecast = c.input.runWhen();
    const std::string expected = reproductionOutput(forecast);
    ASSERT_EQ(std::count(expected.begin(), expected.end(), '\n'), 4);
    EXPECT_EQ(runScript(reproductionScript(c.input), t.dir.path()), expected);
  }
}

TEST(ReproductionScript, statesTheInputsItRebuildsFrom) {
  const ForecastInput input{
      .asOf = CivilDate{2026, 3, 2}, .backlog = 30, .whatIfPercent = 50, .history = historyOf({3, 5, 4})};
  const std::string script = reproductionScript(input);
  EXPECT_NE(script.find("samples = [4.5, 7.5, 6.0]\nbacklog = 30\n"), std::string::npos) << script;
  EXPECT_NE(script.find("changed by 50.0%"), std::string::npos);
  EXPECT_NE(script.find("runs = 10000\nweeks = 520\n"), std::string::npos);
  EXPECT_EQ(reproductionOutput(input.runWhen()).substr(0, 4), "50% ");
}

}  // namespace
}  // namespace orvane
