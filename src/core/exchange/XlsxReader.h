#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace orvane::XLSXReader {

// One cell of a worksheet as stored: text (shared, inline, formula text,
// booleans as "TRUE"/"FALSE", error values such as "#N/A") or a number.
// Styles are not read, so a date is the number it is stored as.
struct Cell {
  std::variant<std::string, double> value;

  static Cell text(std::string s) { return {std::move(s)}; }
  static Cell number(double n) { return {n}; }
  bool isNumber() const { return std::holds_alternative<double>(value); }
  // REQUIRES: the matching kind.
  const std::string& asText() const { return std::get<std::string>(value); }
  double asNumber() const { return std::get<double>(value); }

  friend bool operator==(const Cell&, const Cell&) = default;
};

// The first worksheet of the workbook in `data` (the bytes of an .xlsx file):
// its rows in row order, each a dense list of cells from column A to the
// row's last cell, gaps as empty text. Row numbers without any cell are left
// out, so the first row returned is the first row that has cells.
// Throws XLSXReadError: notAWorkbook (not a ZIP archive, no
// "xl/workbook.xml", or workbook parts that are not XML), noSheet (the first
// sheet's part is missing or it or the shared strings are not XML), or
// unsupported (a part that cannot be unpacked, or a sheet of more than
// 2,000,000 cells or 256 MiB of cell text: "the first sheet is too large").
std::vector<std::vector<Cell>> firstSheetRows(std::string_view data);

}  // namespace orvane::XLSXReader
