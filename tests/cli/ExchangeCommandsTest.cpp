#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "cli/CliRun.h"
#include "cli/StoreFileTest.h"
#include "core/support/FileChecks.h"
#include "core/support/StoreDump.h"
#include "core/support/TempStore.h"

namespace orvane::cli::testing {
namespace {

class ExchangeCommands : public StoreFileTest {
 protected:
  std::string file(const std::string& name, const std::string& bytes) {
    const std::string path = (dir.path() / name).string();
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }
  std::string folder(const std::string& name) {
    std::filesystem::create_directory(dir.path() / name);
    return (dir.path() / name).string();
  }
  std::string link(const std::string& name, const std::string& target) {
    std::filesystem::create_symlink(target, dir.path() / name);
    return (dir.path() / name).string();
  }
  std::string read(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
  }
  std::string dump() {
    Store opened = Store::open(path);
    return orvane::testing::dumpStore(opened.db());
  }
};

TEST_F(ExchangeCommands, ExportedFilesImportIntoAnotherProject) {
  ok({"project", "create", "Shop"});
  ok({"project", "create", "Copy"});
  ok({"ticket", "add", "Shop", "Checkout", "--column", "In Progress"});
  ok({"ticket", "add", "Shop", "Refunds"});
  for (const char* kind : {"csv", "xlsx"}) {
    SCOPED_TRACE(kind);
    const std::string path = (dir.path() / (std::string("shop.") + kind)).string();
    EXPECT_EQ(ok({"export", "Shop", path}), "Exported 2 tickets of Shop to " + path + ".\n");
    const std::string target = std::string("Copy-") + kind;
    ok({"project", "create", target});
    EXPECT_EQ(ok({"import", target, path}), "Imported 2 tickets into " + target + ".\n");
    const std::string copy = (dir.path() / "copy.csv").string();
    ok({"export", target, copy});
    EXPECT_EQ(read(copy), read((dir.path() / "shop.csv").string()));
  }
}

TEST_F(ExchangeCommands, ListsEveryRowIssueAndWhatWasCreated) {
  ok({"project", "create", "Shop"});
  const std::string path = file("tickets.csv",
                                "title;column;epic;assignee;blocked;created_at\n"
                                "A;Backlog;Billing;Ana;No;2025-06-01\n"
                                ";Backlog;;;;\n"
                                "B;Nowhere;;;;\n"
                                "C;Done;Billing;Bo;;\n");
  const std::string before = dump();
  const std::string dryRun = ok({"import", "Shop", path, "--dry-run", "--extend-history"});
  EXPECT_EQ(dump(), before);
  EXPECT_EQ(ok({"import", "Shop", path, "--extend-history"}),
            "Row 2: warning: Blocked \"No\" is not recognised; use Yes or leave it empty. The ticket was not flagged.\n"
            "Row 3: error: The title is empty. Row skipped.\n"
            "Row 4: error: Unknown column \"Nowhere\". Row skipped.\n"
            "Row 5: warning: No completed_at for a ticket in a Done column; created_at was used.\n"
            "Imported 2 tickets into Shop, creating 1 epic and 2 people.\n"
            "2 rows skipped, 2 warnings.\n"
            "The project's history now starts on 2025-06-01.\n");
  EXPECT_NE(dryRun.find("Would import 2 tickets into Shop, creating 1 epic and 2 people.\n"), std::string::npos);
  EXPECT_NE(dryRun.find("Nothing was changed (--dry-run).\n"), std::string::npos);
}

TEST_F(ExchangeCommands, WorkbookIssuesNameTheSheetsRows) {
  ok({"project", "create", "Shop"});
  const std::string path = std::string(ORVANE_TEST_DATA_DIR) + "/xlsx/styled_gaps_tickets.xlsx";
  const std::string out = ok({"import", "Shop", path, "--dry-run"});
  EXPECT_NE(out.find("Row 4: error: created_at \"someday\""), std::string::npos) << out;
  EXPECT_NE(out.find("Row 7: error: The title is empty. Row skipped.\n"), std::string::npos) << out;
  EXPECT_NE(out.find("Row 10: warning: Priority \"soonish\""), std::string::npos) << out;
}

TEST_F(ExchangeCommands, RefusesAnExportThatWouldCutAText) {
  ok({"project", "create", "Shop"});
  ok({"import", "Shop", file("long.csv", "title,description\nLong," + std::string(40000, 'x') + "\n")});
  const std::string path = (dir.path() / "shop.xlsx").string();
  const CliRun result = run({"export", "Shop", path});
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.err,
            "The \"description\" cell of SHOP-1 has 40,000 characters, more than the 32,767 an Excel cell can hold. "
            "Nothing was exported; CSV export keeps every character.\n");
  EXPECT_FALSE(std::filesystem::exists(path));
  ok({"export", "Shop", (dir.path() / "shop.csv").string()});
  EXPECT_NE(read((dir.path() / "shop.csv").string()).find(std::string(40000, 'x')), std::string::npos);
}

TEST_F(ExchangeCommands, RefusesUnreadableFilesWithoutWriting) {
  ok({"project", "create", "Shop"});
  const std::string before = dump();
  const struct {
    std::string path;
    std::string sentence;
  } cases[] = {
      {file("empty.csv", "\xEF\xBB\xBF\n"), "The file is empty.\n"},
      {file("names.csv", "name\nx\n"), "The first row must contain a \"title\" column.\n"},
      {file("open.csv", "title\n\"x\n"), "The file ends inside a quoted field. A closing quote is missing.\n"},
      {file("text.xlsx", "title\nx\n"), ""},  // the workbook reader's own sentence
      {(dir.path() / "missing.csv").string(),
       "The file could not be read: " + (dir.path() / "missing.csv").string() + ". There is no such file.\n"},
      {folder("d.csv"),
       "The file could not be read: " + (dir.path() / "d.csv").string() + ". It is a folder, not a file.\n"},
      {link("zero.csv", "/dev/zero"),
       "The file could not be read: " + (dir.path() / "zero.csv").string() + ". It is not a regular file.\n"},
      {file("tickets.txt", "title\n"),
       "The file name must end in .csv or .xlsx: " + (dir.path() / "tickets.txt").string() + "\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.path);
    const CliRun result = run({"import", "Shop", c.path});
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.out, "");
    if (!c.sentence.empty()) {
      EXPECT_EQ(result.err, c.sentence);
    }
    EXPECT_FALSE(result.err.empty());
  }
  EXPECT_EQ(dump(), before);
}

TEST_F(ExchangeCommands, WritesTheTemplateAndLeavesNoTemporaryFiles) {
  const std::string path = (dir.path() / "template.xlsx").string();
  EXPECT_EQ(ok({"template", path}), "Wrote the import template to " + path + ".\n");
  EXPECT_EQ(read(path).substr(0, 2), "PK");
  EXPECT_EQ(run({"template", (dir.path() / "t.csv").string()}).code, 2);
  ok({"project", "create", "Shop"});
  EXPECT_EQ(run({"export", "Shop", (dir.path() / "no-such-folder" / "x.csv").string()}).code, 1);
  for (const auto& entry : std::filesystem::directory_iterator(dir.path())) {
    EXPECT_NE(entry.path().filename().string().front(), '.') << entry.path();
  }
}

TEST_F(ExchangeCommands, ExportsKeepTheModeOfTheFileTheyReplace) {
  ok({"project", "create", "Shop"});
  const mode_t saved = ::umask(022);
  const std::string fresh = (dir.path() / "fresh.csv").string();
  ok({"export", "Shop", fresh});
  ::umask(saved);
  EXPECT_EQ(orvane::testing::modeOf(fresh), 0644u);

  const std::string shared = file("shared.csv", "old");
  ASSERT_EQ(::chmod(shared.c_str(), 0600), 0);
  const std::string viaLink = link("latest.csv", "shared.csv");
  ok({"export", "Shop", viaLink});
  EXPECT_TRUE(std::filesystem::is_symlink(viaLink));
  EXPECT_EQ(read(shared), read(fresh));
  EXPECT_EQ(orvane::testing::modeOf(shared), 0600u);
}

}  // namespace
}  // namespace orvane::cli::testing
