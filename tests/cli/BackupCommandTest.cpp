#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/CliRun.h"
#include "core/support/FileChecks.h"
#include "core/support/StoreDump.h"
#include "core/support/TempStore.h"

namespace orvane::cli::testing {
namespace {

class BackupCommand : public ::testing::Test {
 protected:
  orvane::testing::TempDir dir;

  CliRun run(const std::string& store, std::vector<std::string> args, std::string_view input = {}) {
    args.insert(args.begin(), {"--store", (dir.path() / store).string(), "--now", "2026-03-05T10:00:00Z"});
    return runWith(args, fixedNow, input);
  }
  std::string ok(const std::string& store, std::vector<std::string> args) {
    const CliRun result = run(store, std::move(args));
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.err, "");
    return result.out;
  }
  std::string dump(const std::string& store) {
    Store opened = Store::open(dir.path() / store);
    return orvane::testing::dumpStore(opened.db());
  }
};

TEST_F(BackupCommand, backsUpAndRestoresWithAReport) {
  ok("a.sqlite", {"project", "create", "Shop"});
  ok("a.sqlite", {"ticket", "add", "Shop", "Checkout"});
  const std::string path = (dir.path() / "all.json").string();
  EXPECT_EQ(ok("a.sqlite", {"backup", path}), "Backed up 1 project with 1 ticket, and 0 people, to " + path + ".\n");
  const auto document = nlohmann::json::parse(std::ifstream(path));
  EXPECT_EQ(document["createdAt"], 1772704800.0);  // --now
  for (const auto& entry : std::filesystem::directory_iterator(dir.path())) {
    EXPECT_FALSE(entry.path().filename().string().starts_with(".all.json")) << "temporary file left behind";
  }

  EXPECT_EQ(ok("a.sqlite", {"restore", path}),
            "Restored 1 project with 1 ticket, 0 saved forecasts, 0 iterations, 0 milestones and 0 epic "
            "dependencies; 0 people added.\n"
            "2 warnings:\n"
            "  SHOP2: \"Shop\" is already in use; restored as \"Shop (restored)\".\n"
            "  SHOP2: the key SHOP is already in use; the tickets are numbered SHOP2-1, SHOP2-2 and so on.\n");
  EXPECT_NE(ok("a.sqlite", {"projects"}).find("Shop (restored)"), std::string::npos);

  const auto json = nlohmann::json::parse(ok("b.sqlite", {"restore", "--json", path}));
  EXPECT_EQ(json["projects"], 1);
  EXPECT_EQ(json["warnings"], nlohmann::json::array());
}

TEST_F(BackupCommand, listsTheWarnings) {
  EXPECT_EQ(ok("a.sqlite", {"restore", std::string(ORVANE_TEST_DATA_DIR) + "/backup/v4_dangling.json"}),
            "Restored 1 project with 1 ticket, 0 saved forecasts, 0 iterations, 0 milestones and 0 epic "
            "dependencies; 0 people added.\n"
            "2 warnings:\n"
            "  LSE: an epic dependency referred to a missing epic and was dropped.\n"
            "  LSE-7: a column move referred to a missing column and was dropped.\n");
}

TEST_F(BackupCommand, refusesAFileItCannotRestoreAndChangesNothing) {
  ok("a.sqlite", {"project", "create", "Shop"});
  const std::string before = dump("a.sqlite");
  const struct {
    std::vector<std::string> args;
    std::string input;
    std::string sentence;
  } cases[] = {
      {{"restore", "-"},
       R"({"format": "orvane-backup", "version": 9})",
       "This backup was made by a newer version of Orvane (format 9). Update the app to restore it.\n"},
      {{"restore", "-"}, R"({"format": "csv"})", "This file is not a Orvane backup.\n"},
      {{"restore", (dir.path() / "missing.json").string()},
       "",
       "The backup could not be read: " + (dir.path() / "missing.json").string() + ". There is no such file.\n"},
      {{"restore", dir.path().string()},
       "",
       "The backup could not be read: " + dir.path().string() + ". It is a folder, not a file.\n"},
      {{"restore", "/dev/zero"}, "", "The backup could not be read: /dev/zero. It is not a regular file.\n"},
      {{"backup", (dir.path() / "no-such-folder" / "x.json").string()},
       "",
       "The backup could not be written: " + (dir.path() / "no-such-folder" / "x.json").string() +
           ". The folder does not exist.\n"},
  };
  for (const auto& c : cases) {
    const CliRun result = run("a.sqlite", c.args, c.input);
    EXPECT_NE(result.code, 0);
    EXPECT_EQ(result.out, "");
    if (!c.sentence.empty()) {
      EXPECT_EQ(result.err, c.sentence);
    }
    EXPECT_EQ(dump("a.sqlite"), before);
  }
}

TEST_F(BackupCommand, keepsWhoMayReadTheBackupAndWritesThroughLinks) {
  ok("a.sqlite", {"project", "create", "Shop"});
  const std::filesystem::path fresh = dir.path() / "fresh.json";
  ok("a.sqlite", {"backup", fresh.string()});
  EXPECT_EQ(orvane::testing::modeOf(fresh), 0600u);  // it holds people's addresses

  const std::filesystem::path shared = dir.path() / "shared.json";
  orvane::testing::put(shared, "old");
  ASSERT_EQ(::chmod(shared.c_str(), 0640), 0);
  std::filesystem::create_symlink("shared.json", dir.path() / "latest.json");
  ok("a.sqlite", {"backup", (dir.path() / "latest.json").string()});
  EXPECT_TRUE(std::filesystem::is_symlink(dir.path() / "latest.json"));
  EXPECT_EQ(orvane::testing::contentOf(shared), orvane::testing::contentOf(fresh));
  EXPECT_EQ(orvane::testing::modeOf(shared), 0640u);
  EXPECT_TRUE(orvane::testing::hiddenNames(dir.path()).empty());
}

TEST_F(BackupCommand, refusesAValueNoStoreMayHoldAndLaterCommandsWork) {
  ok("a.sqlite", {"project", "create", "Shop"});
  ok("a.sqlite", {"ticket", "add", "Shop", "Checkout"});
  auto document = nlohmann::json::parse(ok("a.sqlite", {"backup", "-"}));
  document["projects"][0]["createdAt"] = 1e300;
  const CliRun refused = run("b.sqlite", {"restore", "-"}, document.dump());
  EXPECT_EQ(refused.code, 2);
  EXPECT_EQ(refused.err,
            "This backup cannot be restored: project \"Shop\" has a createdAt outside the years 0000 to 9999. Nothing "
            "was restored.\n");
  EXPECT_EQ(ok("b.sqlite", {"projects"}), ok("c.sqlite", {"projects"}));  // as empty as a new store

  document["projects"][0]["createdAt"] = 1772668800.0;
  document["projects"][0]["nextTicketNumber"] = 9223372036854775807;
  const CliRun repaired = run("b.sqlite", {"restore", "-"}, document.dump());
  EXPECT_EQ(repaired.code, 0) << repaired.err;
  EXPECT_NE(repaired.out.find("\n  SHOP: the next ticket number was beyond 999999999 and was lowered to 2.\n"),
            std::string::npos)
      << repaired.out;
  EXPECT_EQ(ok("b.sqlite", {"ticket", "add", "Shop", "Next"}), "SHOP-2\n");
  EXPECT_EQ(run("b.sqlite", {"health", "Shop"}).code, 0);
}

}  // namespace
}  // namespace orvane::cli::testing
