#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "core/exchange/CsvCodec.h"
#include "core/exchange/IsoDateTime.h"
#include "core/exchange/TicketCsv.h"

namespace orvane {
namespace {

std::string sample(const std::string& name) {
  std::ifstream in(std::string(ORVANE_TEST_DATA_DIR) + "/csv/" + name, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

Timestamp iso(const char* text) { return *ISODateTime::parse(text); }

// The three tickets every sample file holds (see tools/make_csv_samples.py).
std::vector<ImportedRow> sampleRows() {
  ImportedRow login;
  login.rowNumber = 2;
  login.title = "Login page";
  login.details = "Users sign in with\r\nemail and password";
  login.columnName = "Done";
  login.priority = TicketPriority::high;
  login.epicName = "Accounts";
  login.tags = {"auth", "ui"};
  login.createdAt = iso("2026-01-05T09:00:00Z");
  login.startedAt = iso("2026-01-06T10:00:00Z");
  login.completedAt = iso("2026-01-09T16:30:00Z");
  login.dueDate = iso("2026-01-10");
  login.assigneeName = "Ana Souza";

  ImportedRow save;
  save.rowNumber = 3;
  save.title = "Fix \"Save\" button, again";
  save.details = "Crashes; sometimes\tright away";
  save.columnName = "In Progress";
  save.priority = TicketPriority::urgent;
  save.createdAt = iso("2026-01-07");
  save.startedAt = iso("2026-01-08T07:15:00Z");
  save.assigneeName = "J\xC3\xB6rg M\xC3\xBCller";
  save.blocked = true;

  ImportedRow menu;
  menu.rowNumber = 4;
  menu.title = "Caf\xC3\xA9 menu \xE2\x98\x95";
  menu.details = "Line one\nLine two";
  menu.columnName = "Backlog";
  menu.priority = TicketPriority::low;
  menu.epicName = "Accounts";
  menu.tags = {"menu", "ui"};  // pieces trimmed
  menu.createdAt = iso("2026-01-02T00:00:00Z");
  return {login, save, menu};
}

TEST(TicketCsvTest, ReadsEverySampleLayoutAlike) {
  for (const char* name : {"comma_crlf.csv", "semicolon_bom.csv", "tab_aliases.csv"}) {
    const ParsedImport parsed = TicketCSV::parse(sample(name));
    EXPECT_EQ(parsed.rows, sampleRows()) << name;
    EXPECT_TRUE(parsed.issues.empty()) << name;
  }
}

TEST(TicketCsvTest, NormalisesHeadersThroughTheAliases) {
  EXPECT_EQ(TicketCSV::normalizeHeader("  Assigned To "), "assigned_to");
  EXPECT_EQ(TicketCSV::normalizeHeader("Done-At"), "done_at");
  EXPECT_EQ(TicketCSV::field("Assigned To"), TicketCSV::Field::assignee);
  EXPECT_EQ(TicketCSV::field("Done-At"), TicketCSV::Field::completedAt);
  EXPECT_EQ(TicketCSV::field("LIST"), TicketCSV::Field::column);
  EXPECT_EQ(TicketCSV::field("due date"), TicketCSV::Field::dueDate);
  EXPECT_EQ(TicketCSV::field("assignee "), TicketCSV::Field::assignee);
  EXPECT_EQ(TicketCSV::field("colour"), std::nullopt);
  for (std::size_t i = 0; i < TicketCSV::headers.size(); ++i) {
    EXPECT_EQ(TicketCSV::field(TicketCSV::headers[i]), static_cast<TicketCSV::Field>(i));
  }
}

TEST(TicketCsvTest, ReportsEveryRowIssueInFileOrder) {
  const ParsedImport parsed = TicketCSV::parse(sample("issues.csv"));
  const std::vector<ImportIssue> expected = {
      {1, "Column \"colour\" is not recognised and was ignored.", false},
      {1, "Column \"Summary\" appears more than once; the first one is used.", false},
      {2, "The record has more fields than the header; the extra fields were ignored.", false},
      {3, "The title is empty. Row skipped.", true},
      {4, "due_date \"05/10/2026\" is not a valid date. Use 2026-10-05 or 2026-10-05T09:30:00Z. Row skipped.", true},
      {5, "Priority \"Someday\" is not recognised; Medium was used.", false},
      {6, "Blocked \"No\" is not recognised; use Yes or leave it empty. The ticket was not flagged.", false},
  };
  EXPECT_EQ(parsed.issues, expected);
  ASSERT_EQ(parsed.rows.size(), 4u);
  EXPECT_EQ(parsed.rows[0].title, "Too many");
  EXPECT_EQ(parsed.rows[1].priority, TicketPriority::medium);
  EXPECT_FALSE(parsed.rows[2].blocked);
  EXPECT_EQ(parsed.rows[3].title, "Short");
  EXPECT_EQ(parsed.rows[3].rowNumber, 7);
  EXPECT_EQ(parsed.rows[3].columnName, "");
}

TEST(TicketCsvTest, DatesAZoneCarriesPastTheCalendarAreRowErrors) {
  const auto parsed = TicketCSV::parse(
      "title,created_at,due_date\n"
      "late,2026-01-05,9999-12-31T23:00:00-05:00\n"
      "early,0000-01-01T00:30:00+01:00,\n"
      "edges,0000-01-01T00:00:00Z,9999-12-31T23:59:59Z\n");
  EXPECT_EQ(parsed.issues,
            (std::vector<ImportIssue>{
                {2, "due_date \"9999-12-31T23:00:00-05:00\" lies outside the years 0000 to 9999. Row skipped.", true},
                {3, "created_at \"0000-01-01T00:30:00+01:00\" lies outside the years 0000 to 9999. Row skipped.",
                 true}}));
  ASSERT_EQ(parsed.rows.size(), 1u);
  EXPECT_EQ(parsed.rows[0].title, "edges");
}

TEST(TicketCsvTest, ReadsBlockedAndPriorityWords) {
  std::string text = "title,blocked,priority\n";
  for (const char* word : {"yes", "Y", "TRUE", "1", "x"}) text += std::string("t,") + word + ",\n";
  const auto parsed = TicketCSV::parse(text);
  ASSERT_EQ(parsed.rows.size(), 5u);
  for (const auto& row : parsed.rows) EXPECT_TRUE(row.blocked) << row.rowNumber;

  const struct {
    const char* word;
    std::optional<TicketPriority> expected;
  } cases[] = {
      {"Lowest", TicketPriority::low},
      {"med", TicketPriority::medium},
      {"Normal", TicketPriority::medium},
      {"HIGH", TicketPriority::high},
      {"highest", TicketPriority::urgent},
      {"Critical", TicketPriority::urgent},
      {" urgent ", TicketPriority::urgent},
      {"p1", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& c : cases) EXPECT_EQ(TicketCSV::parsePriority(c.word), c.expected) << c.word;
}

TEST(TicketCsvTest, RefusesFilesThatCannotBeRead) {
  EXPECT_THROW(TicketCSV::parse(""), TicketCSVError);
  EXPECT_THROW(TicketCSV::parse("\xEF\xBB\xBF\r\n\n"), TicketCSVError);
  try {
    TicketCSV::parse("name,column\nx,Backlog\n");
    ADD_FAILURE();
  } catch (const TicketCSVError& error) {
    EXPECT_EQ(error, TicketCSVError::missingTitleColumn());
    EXPECT_STREQ(error.what(), "The first row must contain a \"title\" column.");
  }
  EXPECT_STREQ(TicketCSVError::empty().what(), "The file is empty.");
  EXPECT_THROW(TicketCSV::parse("title\n\"open"), CSVError);

  // One import takes at most kMaxRows data rows; blank lines do not count.
  std::string rows = "title\n\n";
  for (std::int64_t i = 0; i < TicketCSV::kMaxRows; ++i) rows += "\"\"\n";  // an empty title: one error each
  EXPECT_EQ(TicketCSV::parse(rows).issues.size(), static_cast<std::size_t>(TicketCSV::kMaxRows));
  try {
    TicketCSV::parse(rows + "x\n");
    ADD_FAILURE();
  } catch (const TicketCSVError& error) {
    EXPECT_EQ(error, TicketCSVError::tooManyRows());
    EXPECT_STREQ(error.what(), "The file has more than 100,000 rows. Import at most 100,000 tickets at a time.");
  }
}

}  // namespace
}  // namespace orvane
