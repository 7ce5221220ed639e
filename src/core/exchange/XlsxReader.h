#pragma once

#include <cstdint>
#include <functional>
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

// A cell as the reader hands it over, its text pointing into the reader's
// own buffer; blank when it is not a number and its text is empty.
struct CellView {
  bool isNumber = false;
  double number = 0;
  std::string_view text;

  bool isBlank() const { return !isNumber && text.empty(); }
  Cell cell() const { return isNumber ? Cell::number(number) : Cell::text(std::string(text)); }
};

// The rows of the first worksheet of the workbook in `data` (the bytes of an
// .xlsx file), handed to `handler` one at a time in row order with their
// sheet row numbers (from 1): each row's cells from column A to its last
// cell that holds something, gaps blank. Rows without such a cell are not
// handed over at all (a styled but empty row is skipped, and its number with
// it). The cell views live until the handler returns. Only the parts needed
// are unpacked, and the sheet's XML is read as it is unpacked: memory grows
// with the cells that hold something, within the reader's bounds.
// Throws XLSXReadError: notAWorkbook (not a ZIP archive, no
// "xl/workbook.xml", or workbook parts that are not XML), noSheet (the first
// sheet's part is missing or it or the shared strings are not XML), or
// unsupported (a part that cannot be unpacked, or one past the reader's
// bounds: nesting deeper than 256 levels, more than 4,000,000 shared strings
// or 128 MB of their text, more than 2,000,000 cells or 128 MB of cell text
// in the first sheet). An exception from the handler passes through.
using RowHandler = std::function<void(std::uint32_t rowNumber, const std::vector<CellView>& cells)>;
void forEachFirstSheetRow(std::string_view data, const RowHandler& handler);

// The same rows as forEachFirstSheetRow, gathered: each a dense list of cells,
// gaps as empty text, without their row numbers. Also throws
// unsupported("the first sheet is too large") when the dense rows would hold
// more than 2,000,000 cells.
std::vector<std::vector<Cell>> firstSheetRows(std::string_view data);

}  // namespace orvane::XLSXReader
