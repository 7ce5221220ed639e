#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "core/exchange/CsvCodec.h"
#include "core/exchange/TicketCsv.h"
#include "core/exchange/TicketXlsx.h"
#include "core/exchange/XlsxReadError.h"
#include "core/exchange/XlsxReader.h"
#include "core/exchange/XlsxWriteError.h"
#include "core/exchange/ZipArchive.h"
#include "core/support/TempStore.h"

namespace orvane {
namespace {

using testing::at;

std::string sample(const std::string& name) {
  std::ifstream in(std::string(ORVANE_TEST_DATA_DIR) + "/xlsx/" + name, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

// A stored one-sheet workbook with the given <sheetData> content.
std::string sheetWorkbook(const std::string& sheetData) {
  const std::vector<ZipArchive::File> parts{
      {"xl/workbook.xml", "<workbook><sheets><sheet name=\"S\" sheetId=\"1\"/></sheets></workbook>"},
      {"xl/worksheets/sheet1.xml", "<worksheet><sheetData>" + sheetData + "</sheetData></worksheet>"}};
  return ZipArchive::stored(parts);
}

std::string str(const std::string& ref, const std::string& text) {
  return "<c r=\"" + ref + "\" t=\"inlineStr\"><is><t>" + text + "</t></is></c>";
}
std::string num(const std::string& ref, const std::string& value) {
  return "<c r=\"" + ref + "\"><v>" + value + "</v></c>";
}

TEST(TicketXlsx, ConvertsToolWorkbooksToTicketCsv) {
  EXPECT_EQ(TicketXlsx::csv(sample("openpyxl_tickets.xlsx")),
            "Title,Details,Status,Priority,Blocked,Created,Due date,Tags,Points\n"
            "Fix login,Crash on submit,Backlog,High,TRUE,2025-10-01,2025-10-01T12:00:00Z,ui|auth,3\n"
            ",only details,,Low\n"
            "Ünïcode ✓ title,\"line one\nline two\",Done,Urgent,FALSE,2025-09-30T08:15:30Z,,,2.5\n");
  EXPECT_EQ(TicketXlsx::csv(sample("libreoffice_tickets.xlsx")),
            "summary,status,blocked,started,done_at,estimate\n"
            "Write docs,In progress,1,2025-10-01,2025-10-01T12:00:00Z,1000000\n"
            ",sparse,,1899-12-29T18:00:00Z\n"  // a serial below 1 is a date like any other
            "Write docs,Done,0\n");

  const ParsedImport parsed = TicketCSV::parse(TicketXlsx::csv(sample("openpyxl_tickets.xlsx")));
  ASSERT_GE(parsed.rows.size(), 2u);
  EXPECT_TRUE(parsed.rows[0].blocked);  // a TRUE boolean cell flags the ticket
  EXPECT_EQ(parsed.rows[0].createdAt, at(2025, 10, 1, 0));
  EXPECT_EQ(parsed.rows[0].dueDate, at(2025, 10, 1, 12));
  EXPECT_FALSE(parsed.rows[1].blocked);
}

TEST(TicketXlsx, WritesNumbersAndDateSerialsAsText) {
  const std::string xlsx =
      sheetWorkbook("<row r=\"1\">" + str("A1", "Title") + str("B1", "Due") + str("C1", "Points") + "</row>" +  //
                    "<row r=\"2\">" + str("A2", "a") + num("B2", "45931") + num("C2", "123456789012345") + "</row>" +
                    "<row r=\"3\">" + str("A3", "b") + num("B3", "45931.5") + num("C3", "1E15") + "</row>" +
                    "<row r=\"4\">" + str("A4", "c") + str("B4", "2026-10-05") + num("C4", "0.1") + "</row>" +
                    "<row r=\"5\">" + str("A5", "d") + num("B5", "1e9") + num("C5", "-0") + "</row>" +
                    "<row r=\"6\"><c r=\"A6\"/><c r=\"F6\"/></row>" +  // styled blanks: no row at all
                    "<row r=\"7\">" + str("A7", "e") + "<c r=\"E7\"/>" + str("G7", "extra") + "<c r=\"H7\"/></row>" +
                    // Serials of 0 and below follow the same rule as any other.
                    "<row r=\"8\">" + str("A8", "f") + num("B8", "0") + "</row>" + "<row r=\"9\">" + str("A9", "g") +
                    num("B9", "-1") + "</row>" + "<row r=\"10\">" + str("A10", "h") + num("B10", "-0.5") + "</row>" +
                    "<row r=\"11\">" + str("A11", "i") + num("B11", "-693593") + "</row>" + "<row r=\"12\">" +
                    str("A12", "j") + num("B12", "-693594") + "</row>");
  EXPECT_EQ(TicketXlsx::csv(xlsx),
            "Title,Due,Points\n"
            "a,2025-10-01,123456789012345\n"
            "b,2025-10-01T12:00:00Z,1e+15\n"
            "c,2026-10-05,0.1\n"
            "d,1000000000,0\n"
            "e,,,,,,extra\n"
            "f,1899-12-30\n"
            "g,1899-12-29\n"
            "h,1899-12-29T12:00:00Z\n"
            "i,0001-01-01\n"
            "j,-693594\n");  // before the year 1: no ISO date, so the import refuses it
  EXPECT_EQ(TicketXlsx::csv(sheetWorkbook("")), "");
  try {
    TicketXlsx::csv("PK not really");
    ADD_FAILURE();
  } catch (const XLSXReadError& e) {
    EXPECT_STREQ(e.what(), "The file is not an Excel workbook (.xlsx).");
  }
}

// Blank but styled rows, rows that only set a height and rows the file leaves
// out must not shift the row numbers of later issues.
TEST(TicketXlsx, IssuesCarryTheSheetsOwnRowNumbers) {
  const ParsedImport parsed = TicketXlsx::parse(sample("styled_gaps_tickets.xlsx"));
  const std::vector<ImportIssue> expected{
      {1, "Column \"points\" is not recognised and was ignored.", false},
      {4, "created_at \"someday\" is not a valid date. Use 2026-10-05 or 2026-10-05T09:30:00Z. Row skipped.", true},
      {7, "The title is empty. Row skipped.", true},
      {10, "Priority \"soonish\" is not recognised; Medium was used.", false},
  };
  EXPECT_EQ(parsed.issues, expected);
  ASSERT_EQ(parsed.rows.size(), 3u);
  EXPECT_EQ(parsed.rows[0].rowNumber, 2);
  EXPECT_EQ(parsed.rows[1].rowNumber, 8);
  EXPECT_EQ(parsed.rows[1].createdAt, at(1899, 12, 29, 0));
  EXPECT_EQ(parsed.rows[1].dueDate, at(1899, 12, 30, 0));
  EXPECT_EQ(parsed.rows[2].rowNumber, 10);

  // A header below empty rows numbers its own warnings.
  const ParsedImport late = TicketXlsx::parse(sheetWorkbook("<row r=\"3\">" + str("A3", "Title") + str("B3", "Size") +
                                                            "</row><row r=\"5\">" + str("A5", "x") + "</row>"));
  EXPECT_EQ(late.issues, (std::vector<ImportIssue>{{3, "Column \"Size\" is not recognised and was ignored.", false}}));
  ASSERT_EQ(late.rows.size(), 1u);
  EXPECT_EQ(late.rows[0].rowNumber, 5);
  EXPECT_THROW(TicketXlsx::parse(sheetWorkbook("<row r=\"1\"><c r=\"A1\" s=\"1\"/></row>")), TicketCSVError);
}

struct DemoProject {
  testing::TempStore t;
  ProjectSnapshot snapshot = *t.service.snapshot(t.service.loadDemoProject(at(2026, 3, 2)).id);
};

TEST(TicketXlsx, ExportedWorkbookImportsLikeTheCsvExport) {
  DemoProject demo;
  const std::string xlsx = TicketXlsx::exportWorkbook(demo.snapshot);
  EXPECT_EQ(xlsx, TicketXlsx::exportWorkbook(demo.snapshot));
  const ParsedImport fromCsv = TicketCSV::parse(TicketCSV::exportText(demo.snapshot));
  ASSERT_GT(fromCsv.rows.size(), 10u);
  EXPECT_EQ(TicketCSV::parse(TicketXlsx::csv(xlsx)), fromCsv);
}

// A cell holds 32,767 UTF-16 units. Export writes every text whole or
// refuses before writing, naming the ticket and the field.
TEST(TicketXlsx, ExportNeverCutsAText) {
  DemoProject demo;
  Ticket& ticket = demo.snapshot.tickets.front();
  const std::string reference = demo.snapshot.referenceCode(ticket);
  const std::string emoji = "\xF0\x9F\x98\x80";  // two units
  std::string halfEmoji;
  for (int i = 0; i < 16383; ++i) halfEmoji += emoji;
  struct Case {
    const char* what;
    std::string details;
    std::string refusal;  // empty: written whole
  };
  const std::vector<Case> cases{
      {"exactly a cell", std::string(32767, 'x'), ""},
      {"a cell of two-unit characters", halfEmoji + "x", ""},
      {"one unit more", halfEmoji + "xy",
       "The \"description\" cell of " + reference +
           " has 32,768 characters, more than the 32,767 an Excel cell can hold. "
           "Nothing was exported; CSV export keeps every character."},
      {"far more", std::string(100000, 'z'),
       "The \"description\" cell of " + reference +
           " has 100,000 characters, more than the 32,767 an Excel cell can "
           "hold. Nothing was exported; CSV export keeps every character."},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    ticket.details = c.details;
    try {
      const ParsedImport back = TicketXlsx::parse(TicketXlsx::exportWorkbook(demo.snapshot));
      EXPECT_EQ(back, TicketCSV::parse(TicketCSV::exportText(demo.snapshot)));
      EXPECT_TRUE(c.refusal.empty());
    } catch (const XLSXWriteError& error) {
      EXPECT_EQ(error.what(), c.refusal);
    }
  }
  ticket.details.clear();
  ticket.tags = {std::string(20000, 'a'), std::string(20000, 'b')};
  try {
    TicketXlsx::exportWorkbook(demo.snapshot);
    ADD_FAILURE();
  } catch (const XLSXWriteError& error) {
    EXPECT_NE(std::string(error.what()).find("The \"tags\" cell of " + reference + " has 40,001 characters"),
              std::string::npos);
  }
}

TEST(TicketXlsx, TemplateReadsBackAsOneCleanRow) {
  const std::string xlsx = TicketXlsx::importTemplate();
  const auto rows = XLSXReader::firstSheetRows(xlsx);
  ASSERT_EQ(rows.size(), 2u);
  for (std::size_t c = 0; c < TicketCSV::headers.size(); ++c) {
    EXPECT_EQ(rows[0].at(c), XLSXReader::Cell::text(std::string(TicketCSV::headers[c])));
  }
  const ParsedImport parsed = TicketCSV::parse(TicketXlsx::csv(xlsx));
  EXPECT_TRUE(parsed.issues.empty());
  ASSERT_EQ(parsed.rows.size(), 1u);
  EXPECT_EQ(parsed.rows[0].startedAt, Timestamp{at(2026, 10, 6, 9).secondsSince1970 + 30 * 60});
  EXPECT_EQ(parsed.rows[0].tags, (std::vector<std::string>{"ci", "build"}));
}

// openpyxl, an independent reader, must see the same cells in our workbooks.
TEST(TicketXlsx, OpenpyxlReadsWhatWeWrite) {
  DemoProject demo;
  testing::TempDir dir;
  const std::string tools = std::string(ORVANE_TEST_DATA_DIR) + "/../../tools/";
  struct Book {
    std::string name;
    std::string bytes;
    std::vector<std::string> sheets;
  };
  const std::vector<Book> books{{"export", TicketXlsx::exportWorkbook(demo.snapshot), {"Tickets"}},
                                {"template", TicketXlsx::importTemplate(), {"Tickets", "Columns"}}};
  for (const Book& book : books) {
    const auto xlsxPath = dir.path() / (book.name + ".xlsx");
    const auto jsonPath = dir.path() / (book.name + ".json");
    std::ofstream(xlsxPath, std::ios::binary) << book.bytes;
    nlohmann::json rows = nlohmann::json::array();
    for (CSV::Record record : CSV::parse(TicketXlsx::csv(book.bytes), ',')) {
      while (!record.empty() && record.back().empty()) record.pop_back();
      rows.push_back(record);
    }
    std::ofstream(jsonPath) << nlohmann::json{{"sheets", book.sheets}, {"rows", rows}}.dump();
    const std::string command =
        "/usr/bin/python3 " + tools + "check_xlsx_with_openpyxl.py " + xlsxPath.string() + " " + jsonPath.string();
    const int status = std::system(command.c_str());
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == 77 || WEXITSTATUS(status) == 127)
      GTEST_SKIP() << "/usr/bin/python3 with openpyxl is missing";
    EXPECT_EQ(WEXITSTATUS(status), 0) << book.name;
  }
}

}  // namespace
}  // namespace orvane
