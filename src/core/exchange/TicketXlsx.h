#pragma once

#include <string>
#include <string_view>

#include "core/model/ProjectSnapshot.h"

namespace orvane::TicketXlsx {

// The first sheet of the workbook in `xlsxBytes` as ticket CSV text (comma
// delimiter), ready for TicketCSV::parse: the first row holds the headers;
// in a date column (one whose normalised header is a date field or its alias)
// spreadsheet date serials become ISO dates ("2025-10-01" for a whole day,
// "2025-10-01T12:00:00Z" otherwise); other numbers are written as integers
// when whole and below 1e15 in magnitude, else in their shortest form.
// Rows without any cell are left out, and so are empty cells past the header
// row's width (cells with text there are kept, so the import can warn about
// them). An empty sheet gives empty text.
// Throws XLSXReadError; what() is the sentence to show.
std::string csv(std::string_view xlsxBytes);

// The .xlsx bytes of the project's tickets: the ticket CSV header row and the
// same rows, in the same order, as the CSV export, with the five dates as
// real spreadsheet dates (UTC; a whole day at midnight shows as a date alone).
// One sheet, "Tickets", its header bold and frozen.
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
