#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "cli/CliRun.h"
#include "core/reports/ReportData.h"
#include "core/support/TempStore.h"

namespace orvane::cli::testing {
namespace {

using nlohmann::json;

class ReportCommand : public ::testing::Test {
 protected:
  orvane::testing::TempStore t;
  Project demo = t.service.loadDemoProject(fixedNow);

  CliRun run(std::vector<std::string> args) {
    args.insert(args.begin(), {"--store", (t.dir.path() / "orvane.sqlite").string()});
    return runWith(args);
  }
  json jsonOf(std::vector<std::string> args) {
    args.push_back("--json");
    const CliRun result = run(std::move(args));
    EXPECT_EQ(result.code, 0) << result.err;
    return json::parse(result.out);
  }
};

TEST_F(ReportCommand, JsonMatchesTheReportData) {
  const ProjectSnapshot snap = *t.service.snapshot(demo.id);
  const json summary = jsonOf({"report", "summary", demo.key});
  const ProjectSummary expected = projectSummary(snap, fixedNow);
  EXPECT_EQ(summary["total"], expected.total);
  EXPECT_EQ(summary["remaining"], expected.remaining());
  EXPECT_EQ(summary["archived"], expected.archived);

  const json epics = jsonOf({"report", "epics", demo.key})["epics"];
  const std::vector<EpicStatusRow> rows = epicStatuses(snap, fixedNow, utcCalendar());
  ASSERT_EQ(epics.size(), rows.size());
  EXPECT_EQ(epics[0]["name"], rows[0].name);
  EXPECT_EQ(epics[0]["status"], rawValue(rows[0].status));
  EXPECT_EQ(epics[0]["statusLabel"], label(rows[0].status));

  const json risk = jsonOf({"report", "risk", demo.key});
  const RiskReport expectedRisk = riskReport(snap, fixedNow, utcCalendar());
  EXPECT_EQ(risk["blocked"].size(), expectedRisk.blocked.size());
  EXPECT_EQ(risk["ageing"].size(), expectedRisk.ageing.size());
  EXPECT_EQ(risk["isClear"], expectedRisk.isClear());
  EXPECT_EQ(risk["p85CycleDays"], *expectedRisk.p85CycleDays);

  const json people = jsonOf({"report", "workload", demo.key});
  EXPECT_EQ(people["recentDays"], 14);
  EXPECT_EQ(people["people"].size(), workload(snap, fixedNow, 14, utcCalendar()).size());
}

TEST_F(ReportCommand, CompletedDefaultsToTheLastFourteenDays) {
  const json recent = jsonOf({"report", "completed", demo.key});
  EXPECT_EQ(recent["from"], "2026-02-20");
  EXPECT_EQ(recent["to"], "2026-03-05");
  std::size_t items = 0;
  for (const json& group : recent["groups"]) items += group["items"].size();
  EXPECT_EQ(recent["total"], items);

  EXPECT_EQ(jsonOf({"report", "completed", demo.key, "--to", "2026-02-27"})["from"], "2026-02-14");
  const json reversed = jsonOf({"report", "completed", demo.key, "--from", "2026-03-01", "--to", "2026-02-01"});
  EXPECT_EQ(reversed["groups"], json::array());
  EXPECT_EQ(reversed["total"], 0);
}

TEST_F(ReportCommand, TextReportsAndRefusals) {
  for (const char* kind : {"summary", "epics", "risk", "workload", "completed"}) {
    const CliRun result = run({"report", kind, demo.key});
    EXPECT_EQ(result.code, 0) << kind << ": " << result.err;
    EXPECT_NE(result.out.find("\"Demo: Web Shop\""), std::string::npos) << kind;
  }
  const struct {
    std::vector<std::string> args;
    const char* message;
  } cases[] = {
      {{"report", "velocity", demo.key},
       "Unknown report \"velocity\"; the reports are summary, epics, risk, workload, completed and pdf.\n"},
      {{"report", "completed", demo.key, "--from", "2026-02-30"},
       "--from needs a day like 2026-04-30; \"2026-02-30\" is not one.\n"},
  };
  for (const auto& c : cases) {
    const CliRun result = run(c.args);
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.err, c.message);
  }
  EXPECT_EQ(run({"report", "summary", demo.key, "--from", "2026-02-01"}).code, 2);
  // Without the report drawing registered (a build without Qt), a PDF is
  // refused in a sentence and no file appears.
  const std::string out = (t.dir.path() / "report.pdf").string();
  const CliRun pdf = run({"report", "pdf", demo.key, "--audience", "client", "--out", out});
  EXPECT_EQ(pdf.code, 1);
  EXPECT_EQ(pdf.err, "This orvane-cli was built without Qt, so it cannot draw PDF reports.\n");
  EXPECT_FALSE(std::filesystem::exists(out));
  // Development packs likewise: no folder is made.
  const std::filesystem::path packs = t.dir.path() / "packs";
  const CliRun pack = run({"pack", demo.key, "--out", packs.string()});
  EXPECT_EQ(pack.code, 1);
  EXPECT_EQ(pack.err, "This orvane-cli was built without Qt, so it cannot draw development packs.\n");
  EXPECT_FALSE(std::filesystem::exists(packs));
  EXPECT_EQ(run({"report", "risk", "Nope"}).code, 2);
}

}  // namespace
}  // namespace orvane::cli::testing
