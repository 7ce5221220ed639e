#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "core/exchange/XlsxParsers.h"
#include "core/exchange/XlsxReadError.h"
#include "core/exchange/XlsxReader.h"
#include "core/exchange/ZipArchive.h"

namespace orvane {
namespace {

using XLSXReader::Cell;
using Rows = std::vector<std::vector<Cell>>;

Cell T(std::string s) { return Cell::text(std::move(s)); }
Cell N(double n) { return Cell::number(n); }

std::string sample(const std::string& name) {
  std::ifstream in(std::string(ORVANE_TEST_DATA_DIR) + "/xlsx/" + name, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

const char* kWorkbook =
    R"(<workbook xmlns:r="urn:r"><sheets><sheet name="S" sheetId="1" r:id="rId1"/></sheets></workbook>)";

std::string rels(const std::string& target) {
  return R"(<Relationships><Relationship Id="rId1" Type="urn:worksheet" Target=")" + target + R"("/></Relationships>)";
}

std::string sheet(const std::string& cells) { return "<worksheet><sheetData>" + cells + "</sheetData></worksheet>"; }

// A stored workbook of the given parts (name, XML).
std::string workbook(std::vector<ZipArchive::File> parts) { return ZipArchive::stored(parts); }

std::string refusal(const std::string& xlsx) {
  try {
    XLSXReader::firstSheetRows(xlsx);
  } catch (const XLSXReadError& e) {
    return e.what();
  }
  return "read";
}

TEST(XlsxReader, ReadsAWorkbookWrittenByOpenpyxl) {
  const Rows expected{
      {T("Title"), T("Details"), T("Status"), T("Priority"), T("Blocked"), T("Created"), T("Due date"), T("Tags"),
       T("Points")},
      {T("Fix login"), T("Crash on submit"), T("Backlog"), T("High"), T("TRUE"), N(45931), N(45931.5), T("ui|auth"),
       N(3)},
      {T(""), T("only details"), T(""), T("Low")},
      {T("Ünïcode ✓ title"), T("line one\nline two"), T("Done"), T("Urgent"), T("FALSE"), N(45930.34409722222), T(""),
       T(""), N(2.5)},
  };
  EXPECT_EQ(XLSXReader::firstSheetRows(sample("openpyxl_tickets.xlsx")), expected);
}

TEST(XlsxReader, ReadsAWorkbookWrittenByLibreOffice) {
  // Calc stores booleans as 1 and 0 with a boolean style; styles are not read.
  const Rows expected{
      {T("summary"), T("status"), T("blocked"), T("started"), T("done_at"), T("estimate")},
      {T("Write docs"), T("In progress"), N(1), N(45931), N(45931.5), N(1000000)},
      {T(""), T("sparse"), T(""), N(-0.25)},
      {T("Write docs"), T("Done"), N(0)},
  };
  EXPECT_EQ(XLSXReader::firstSheetRows(sample("libreoffice_tickets.xlsx")), expected);
}

TEST(XlsxReader, ReadsPrefixedPartsAnAbsoluteTargetRichTextAndErrorCells) {
  const Rows expected{
      {T("title"), T("description "), T("due")},
      {T("Tom & Jerry"), T("xy"), N(45931)},
      {T(""), T(""), T("#N/A")},
  };
  EXPECT_EQ(XLSXReader::firstSheetRows(sample("prefixed_parts.xlsx")), expected);
}

TEST(XlsxReader, CellRulesOfTheSheetParser) {
  const std::string shared =
      R"(<sst><si><t>zero</t></si><si><r><t>o</t></r><rPh><t>PHON</t><rPh><t>deep</t></rPh></rPh><r><t>ne</t></r></si></sst>)";
  struct Case {
    const char* what;
    std::string cells;
    Rows expected;
  };
  const std::vector<Case> cases{
      {"shared strings, phonetic runs skipped",
       R"(<row r="1"><c r="A1" t="s"><v>0</v></c><c r="B1" t="s"><v>1</v></c></row>)",
       {{T("zero"), T("one")}}},
      {"shared index out of range or not a number is blank",
       R"(<row r="1"><c r="A1" t="s"><v>9</v></c><c r="B1" t="s"><v>x</v></c><c r="C1" t="s"><v>0</v></c></row>)",
       {{T(""), T(""), T("zero")}}},
      {"cells without r follow the previous cell; rows without r follow the previous row",
       R"(<row r="3"><c><v>1</v></c><c r="C3"><v>2</v></c><c><v>3</v></c></row><row><c><v>4</v></c></row>)",
       {{N(1), T(""), N(2), N(3)}, {N(4)}}},
      {"booleans, str, numbers that do not parse, formulas ignored",
       R"(<row r="1"><c t="b"><v>1</v></c><c t="b"><v>0</v></c><c t="str"><f>A1</f><v>12</v></c><c><v>1e3</v></c><c><v>n/a</v></c></row>)",
       {{T("TRUE"), T("FALSE"), T("12"), N(1000), T("n/a")}}},
      {"rows in row order, cells beyond the grid dropped",
       R"(<row r="9"><c r="B9"><v>9</v></c></row><row r="2"><c r="A2"><v>2</v></c><c r="XFE2"><v>0</v></c></row>)",
       {{N(2)}, {T(""), N(9)}}},
  };
  for (const Case& c : cases) {
    const std::string xlsx = workbook({{"xl/workbook.xml", kWorkbook},
                                       {"xl/_rels/workbook.xml.rels", rels("worksheets/sheet1.xml")},
                                       {"xl/sharedStrings.xml", shared},
                                       {"xl/worksheets/sheet1.xml", sheet(c.cells)}});
    EXPECT_EQ(XLSXReader::firstSheetRows(xlsx), c.expected) << c.what;
  }
}

TEST(XlsxReader, LocatesTheFirstSheet) {
  const std::string cells = sheet(R"(<row r="1"><c r="A1" t="inlineStr"><is><t>found</t></is></c></row>)");
  const Rows found{{T("found")}};
  EXPECT_EQ(XLSXReader::firstSheetRows(workbook({{"xl/workbook.xml", kWorkbook},
                                                 {"xl/_rels/workbook.xml.rels", rels("../xl/./sheets/a.xml")},
                                                 {"xl/sheets/a.xml", cells}})),
            found);
  // No relationships part: the conventional sheet1.
  EXPECT_EQ(XLSXReader::firstSheetRows(workbook({{"xl/workbook.xml", kWorkbook}, {"xl/worksheets/sheet1.xml", cells}})),
            found);

  const std::string noSheet = "The workbook has no sheet to read.";
  const std::string notAWorkbook = "The file is not an Excel workbook (.xlsx).";
  struct Case {
    const char* what;
    std::vector<ZipArchive::File> parts;
    std::string sentence;
  };
  const std::vector<Case> cases{
      {"no workbook part", {{"xl/worksheets/sheet1.xml", cells}}, notAWorkbook},
      {"workbook not XML", {{"xl/workbook.xml", "<workbook>"}, {"xl/worksheets/sheet1.xml", cells}}, notAWorkbook},
      {"target climbs out of the package",
       {{"xl/workbook.xml", kWorkbook}, {"xl/_rels/workbook.xml.rels", rels("../../sheet1.xml")}},
       noSheet},
      {"target names a missing part",
       {{"xl/workbook.xml", kWorkbook},
        {"xl/_rels/workbook.xml.rels", rels("worksheets/gone.xml")},
        {"xl/worksheets/sheet1.xml", cells}},
       noSheet},
      {"sheet not XML", {{"xl/workbook.xml", kWorkbook}, {"xl/worksheets/sheet1.xml", "<worksheet><c>"}}, noSheet},
      {"document type declarations are refused",
       {{"xl/workbook.xml", kWorkbook},
        {"xl/worksheets/sheet1.xml",
         R"(<!DOCTYPE w [<!ENTITY a "aaaaaaaa">]><worksheet><sheetData><row><c t="str"><v>&a;</v></c></row></sheetData></worksheet>)"}},
       noSheet},
      {"broken shared strings",
       {{"xl/workbook.xml", kWorkbook}, {"xl/sharedStrings.xml", "<sst><si>"}, {"xl/worksheets/sheet1.xml", cells}},
       noSheet},
  };
  for (const Case& c : cases) EXPECT_EQ(refusal(workbook(c.parts)), c.sentence) << c.what;
}

TEST(XlsxReader, RefusesASheetThatWouldNotFitInMemory) {
  // Few cells, but each row reaches column XFD: 200 rows x 16,384 dense cells.
  std::string cells;
  for (int r = 1; r <= 200; ++r) cells += "<row><c r=\"XFD" + std::to_string(r) + "\"><v>1</v></c></row>";
  EXPECT_EQ(refusal(workbook({{"xl/workbook.xml", kWorkbook}, {"xl/worksheets/sheet1.xml", sheet(cells)}})),
            "This workbook cannot be read: the first sheet is too large");
}

// Small files that would expand into gigabytes are refused at a bound, with
// a sentence that names it.
TEST(XlsxReader, RefusesPartsPastTheReadersBounds) {
  std::string deep;
  for (int i = 0; i < 300; ++i) deep += "<a>";
  for (int i = 0; i < 300; ++i) deep += "</a>";
  std::string manyStrings = "<sst>";
  for (int i = 0; i < 4'000'001; ++i) manyStrings += "<si/>";
  manyStrings += "</sst>";
  std::string cellRow = "<row>";
  for (int i = 0; i < 200; ++i) cellRow += "<c><v>1</v></c>";
  cellRow += "</row>";
  std::string manyCells;
  for (int i = 0; i < 10'001; ++i) manyCells += cellRow;
  const std::string cells = sheet(R"(<row r="1"><c r="A1" t="inlineStr"><is><t>x</t></is></c></row>)");
  struct Case {
    const char* what;
    std::vector<ZipArchive::File> parts;
    std::string sentence;
  };
  const std::vector<Case> cases{
      {"deep sheet",
       {{"xl/workbook.xml", kWorkbook}, {"xl/worksheets/sheet1.xml", sheet("<row>" + deep + "</row>")}},
       "This workbook cannot be read: a part nests its elements more than 256 levels deep"},
      {"deep workbook",
       {{"xl/workbook.xml", "<workbook>" + deep + "</workbook>"}, {"xl/worksheets/sheet1.xml", cells}},
       "This workbook cannot be read: a part nests its elements more than 256 levels deep"},
      {"empty shared strings by the million",
       {{"xl/workbook.xml", kWorkbook}, {"xl/sharedStrings.xml", manyStrings}, {"xl/worksheets/sheet1.xml", cells}},
       "This workbook cannot be read: the workbook has more than 4,000,000 shared strings"},
      {"cells by the million",
       {{"xl/workbook.xml", kWorkbook}, {"xl/worksheets/sheet1.xml", sheet(manyCells)}},
       "This workbook cannot be read: the first sheet has more than 2,000,000 cells"},
  };
  for (const Case& c : cases) EXPECT_EQ(refusal(workbook(c.parts)), c.sentence) << c.what;

  // Blank cells cost nothing, however many: a styled range is read, not refused.
  std::string blanks;
  for (int i = 0; i < 2'100'000; ++i) blanks += "<c s=\"1\"/>";
  EXPECT_EQ(XLSXReader::firstSheetRows(
                workbook({{"xl/workbook.xml", kWorkbook},
                          {"xl/worksheets/sheet1.xml",
                           sheet(R"(<row r="1"><c r="A1"><v>7</v></c></row><row>)" + blanks + "</row>")}})),
            Rows{{N(7)}});
}

TEST(XlsxReader, CellReferences) {
  EXPECT_EQ(XLSXReader::cellReference("A1"), std::pair(std::uint64_t{1}, std::uint64_t{1}));
  EXPECT_EQ(XLSXReader::cellReference("AB12"), std::pair(std::uint64_t{28}, std::uint64_t{12}));
  EXPECT_EQ(XLSXReader::cellReference("XFD1048576"), std::pair(std::uint64_t{16384}, std::uint64_t{1048576}));
  EXPECT_EQ(XLSXReader::cellReference("12"), std::nullopt);
  EXPECT_EQ(XLSXReader::cellReference("B"), std::nullopt);
  EXPECT_EQ(XLSXReader::cellReference("B1C"), std::nullopt);
}

}  // namespace
}  // namespace orvane
