#pragma once

#include <string>
#include <string_view>

#include "core/exchange/TicketCsv.h"
#include "core/model/ProjectSnapshot.h"

namespace orvane::TicketXlsx {

// The first sheet of the workbook in `xlsxBytes` read as a ticket file: the
// first row that holds anything gives the headers, and every row keeps the
// sheet's own row number in its issues, whatever rows lie between (styled
// but empty rows and rows the file leaves out are skipped, not renumbered).
// Cells are read as csv() writes them. The rows are read one at a time, so
// memory grows with the tickets read, not with the sheet's size.
// Throws XLSXReadError, or TicketCSVError (empty for a sheet without any
// cell, missingTitleColumn, tooManyRows); what() is the sentence to show.
ParsedImport parse(std::string_view xlsxBytes);

// The first sheet of the workbook in `xlsxBytes` as ticket CSV text (comma
// delimiter), ready for TicketCSV::parse: the first row holds the headers;
// in a date column (one whose normalised header is a date field or its alias)
// spreadsheet date serials become ISO dates ("2025-10-01" for a whole day,
// "2025-10-01T12:00:00Z" otherwise; 0 is 1899-12-30 and negative serials
// earlier days, down to 0001-01-01), serials beyond the years 1 to 9999 stay
// numbers; other numbers are written as integers when whole and below 1e15
// in magnitude, else in their shortest form. Rows without any cell that
// holds something are left out (so CSV row numbers may differ from the
// sheet's; parse() keeps the sheet's). An empty sheet gives empty text.
// Throws XLSXReadError; what() is the sentence to show.
std::string csv(std::string_view xlsxBytes);

// The .xlsx bytes of the project's tickets: the ticket CSV header row and the
// same rows, in the same order, as the CSV export, with the five dates as
// real spreadsheet dates (UTC; a whole day at midnight shows as a date alone).
// One sheet, "Tickets", its header bold and frozen. Nothing is lost on the
// way: a text longer than a cell holds (32,767 UTF-16 units) or holding a
// control character XML cannot carry throws XLSXWriteError naming the ticket
// and the field, before anything is built.
std::string exportWorkbook(const ProjectSnapshot& project);

// The .xlsx bytes of an import template: a "Tickets" sheet with the headers
// and one example row, and a "Columns" sheet that explains every column and
// the values it accepts.
std::string importTemplate();

}  // namespace orvane::TicketXlsx

namespace orvane {
// The same namespace under the format's usual spelling.
namespace TicketXLSX = TicketXlsx;
}  // namespace orvane
