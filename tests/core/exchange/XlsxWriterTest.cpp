#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "core/exchange/XlsxReader.h"
#include "core/exchange/XlsxWriter.h"
#include "core/exchange/ZipReader.h"

namespace orvane {
namespace {

using XLSXReader::Cell;
using W = XlsxWriter::Cell;

std::vector<std::vector<Cell>> roundTrip(std::vector<std::vector<W>> rows) {
  const std::vector<XlsxWriter::Sheet> sheets{{.name = "A&B", .rows = std::move(rows)}, {.name = "Second"}};
  return XLSXReader::firstSheetRows(XlsxWriter::workbook(sheets));
}

TEST(XlsxWriter, TextIsMadeSafeForXmlAndSpreadsheets) {
  struct Case {
    const char* what;
    std::string written;
    std::string read;
  };
  const std::vector<Case> cases{
      {"markup characters", "<a href=\"x\">&amp;</a>", "<a href=\"x\">&amp;</a>"},
      {"line breaks, tabs and surrounding spaces kept", "  one\r\ntwo\tthree  ", "  one\r\ntwo\tthree  "},
      {"control characters dropped",
       std::string("a\x01\x1F"
                   "b\0c",
                   6),
       "abc"},
      {"invalid UTF-8 replaced", "caf\xC3 \xE9t\xED\xA0\x80", "caf\uFFFD \uFFFDt\uFFFD"},
      {"non-BMP kept", "\U0001F600 ok", "\U0001F600 ok"},
      {"cut at 32,767 UTF-16 units", std::string(40000, 'x'), std::string(32767, 'x')},
  };
  for (const Case& c : cases) {
    const auto rows = roundTrip({{W::ofText(c.written)}});
    ASSERT_EQ(rows.size(), 1u) << c.what;
    EXPECT_EQ(rows[0][0], Cell::text(c.read)) << c.what;
  }
}

TEST(XlsxWriter, DatesAreSerialsAndNumbersRoundTrip) {
  const Timestamp morning{1'759'312'800.75};  // 2025-10-01T10:00:00.75Z
  const auto rows = roundTrip({{W::ofDate(morning), W::ofDateTime(morning), W::ofNumber(0.1), W::ofNumber(1e300),
                                W::ofNumber(std::numeric_limits<double>::infinity()), W{}, W::ofNumber(-3)}});
  const std::vector<std::vector<Cell>> expected{{Cell::number(45931), Cell::number(45931 + 10.0 / 24),
                                                 Cell::number(0.1), Cell::number(1e300), Cell::text(""), Cell::text(""),
                                                 Cell::number(-3)}};
  ASSERT_EQ(rows.size(), 1u);
  ASSERT_EQ(rows[0].size(), expected[0].size());
  for (std::size_t c = 0; c < expected[0].size(); ++c) {
    if (expected[0][c].isNumber()) {
      EXPECT_DOUBLE_EQ(rows[0][c].asNumber(), expected[0][c].asNumber()) << c;
    } else {
      EXPECT_EQ(rows[0][c], expected[0][c]) << c;
    }
  }
}

TEST(XlsxWriter, PackageHasEveryPartItNames) {
  const std::vector<XlsxWriter::Sheet> sheets{{.name = "One"}, {.name = "Two"}};
  const auto parts = ZipReader::entries(XlsxWriter::workbook(sheets));
  for (const char* name : {"[Content_Types].xml", "_rels/.rels", "xl/workbook.xml", "xl/_rels/workbook.xml.rels",
                           "xl/styles.xml", "xl/worksheets/sheet1.xml", "xl/worksheets/sheet2.xml"}) {
    EXPECT_TRUE(parts.contains(name)) << name;
  }
  EXPECT_NE(parts.at("[Content_Types].xml").find("/xl/worksheets/sheet2.xml"), std::string::npos);
}

}  // namespace
}  // namespace orvane
