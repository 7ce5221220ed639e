#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/Timestamp.h"

namespace orvane::XlsxWriter {

// One cell to write. Dates are spreadsheet serials (days since 1899-12-30,
// UTC) shown with a "yyyy-mm-dd" or "yyyy-mm-dd hh:mm:ss" format, so every
// spreadsheet program treats them as real dates.
struct Cell {
  enum class Kind { empty, text, number, date, dateTime };
  Kind kind = Kind::empty;
  std::string text;
  double number = 0;  // the serial for dates

  static Cell ofText(std::string s) { return {Kind::text, std::move(s), 0}; }
  static Cell ofNumber(double n) { return {Kind::number, {}, n}; }
  // The UTC day of `at` (time of day dropped).
  static Cell ofDate(Timestamp at);
  // `at` floored to the whole second.
  static Cell ofDateTime(Timestamp at);
};

struct Sheet {
  std::string name;  // at most 31 characters, none of []:*?/\ .
  std::vector<std::vector<Cell>> rows;
  // Widths in characters, from column A; columns past the end keep the default.
  std::vector<double> columnWidths;
  // Columns whose cells wrap and align to the top.
  std::vector<bool> wrapColumns;
  // The first row bold and frozen above the others.
  bool headerRow = true;
};

// The .xlsx bytes of a workbook with `sheets` in order, the first one active.
// A minimal package (content types, relationships, workbook, styles, one part
// per sheet) with inline strings, stored in a deterministic ZIP archive: the
// same sheets always give the same bytes.
// Text is made safe for XML and spreadsheets: invalid UTF-8 becomes U+FFFD,
// control characters other than tab, line feed and carriage return are
// dropped, and a cell keeps at most 32,767 UTF-16 units (Excel's cell limit).
// A number that is not finite is written as an empty cell.
std::string workbook(std::span<const Sheet> sheets);

// The most UTF-16 units a cell holds (Excel's limit); workbook() cuts longer
// texts, so callers that must not lose text check cellFit() first.
inline constexpr std::size_t kMaxCellUnits = 32767;

// What a cell makes of `text`: the UTF-16 units it takes once made safe as
// workbook() does, and whether every character survives (false when it
// holds invalid UTF-8 or a character XML cannot carry).
struct CellFit {
  std::size_t units = 0;
  bool keepsEveryCharacter = true;
};
CellFit cellFit(std::string_view text);

// A width that fits `texts` (the longest, in characters), kept within
// [minimum, maximum].
double fittingWidth(const std::vector<std::string>& texts, double minimum, double maximum);

}  // namespace orvane::XlsxWriter
