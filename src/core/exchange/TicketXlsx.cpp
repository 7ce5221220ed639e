#include "core/exchange/TicketXlsx.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <set>

#include "core/exchange/CsvCodec.h"
#include "core/exchange/IsoDateTime.h"
#include "core/exchange/TicketCsv.h"
#include "core/exchange/XlsxReader.h"
#include "core/exchange/XlsxWriteError.h"
#include "core/exchange/XlsxWriter.h"

namespace orvane::TicketXlsx {

namespace {

constexpr double kUnixEpochSerial = 25569.0;
// Serials a date column turns into dates, all by the one rule: 0001-01-01 to
// 9999-12-31 (0 is 1899-12-30, negative serials earlier days). Beyond them no
// ISO date can be written, so the plain number is kept and the import says
// it is not a valid date.
constexpr double kFirstDateSerial = -693593.0;
constexpr double kLastDateSerial = 2958465.0;

const std::set<std::string, std::less<>>& dateHeaders() {
  static const std::set<std::string, std::less<>> headers{"created_at",   "created",   "started_at", "started",
                                                          "completed_at", "completed", "done_at",    "archived_at",
                                                          "archived",     "due_date",  "due"};
  return headers;
}

std::string numberText(double n) {
  if (n == std::floor(n) && std::fabs(n) < 1e15) return std::to_string(static_cast<std::int64_t>(n));
  char buffer[32];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, n);
  return std::string(buffer, result.ptr);
}

std::string dateText(double serial) {
  const double seconds = std::round((serial - kUnixEpochSerial) * 86400.0);
  const std::string text = ISODateTime::format(Timestamp{seconds});
  return serial == std::floor(serial) ? text.substr(0, 10) : text;
}

std::string cellText(const XLSXReader::CellView& cell, bool dateColumn) {
  if (!cell.isNumber) return std::string(cell.text);
  const double n = cell.number;
  if (dateColumn && n >= kFirstDateSerial && n < kLastDateSerial + 1.0) return dateText(n);
  return numberText(n);
}

// The fields of one sheet row as the ticket CSV reads them.
void fillRecord(const std::vector<XLSXReader::CellView>& cells, const std::vector<bool>& dateColumn,
                CSV::Record& record) {
  record.resize(cells.size());
  for (std::size_t c = 0; c < cells.size(); ++c) {
    record[c] = cellText(cells[c], c < dateColumn.size() && dateColumn[c]);
  }
}

// Which fields of the header record are date columns.
std::vector<bool> dateColumns(const CSV::Record& header) {
  std::vector<bool> dateColumn;
  dateColumn.reserve(header.size());
  for (const auto& text : header) dateColumn.push_back(dateHeaders().contains(TicketCSV::normalizeHeader(text)));
  return dateColumn;
}

// Throws XLSXWriteError for the first text of a ticket that a cell cannot
// hold whole (too long, or a character XML cannot carry), in the order of the
// ticket CSV's columns.
void checkCellsHoldEveryText(const ProjectSnapshot& project) {
  for (const Ticket& ticket : project.tickets) {
    const BoardColumn* column = ticket.columnId ? project.column(*ticket.columnId) : nullptr;
    const Epic* epic = ticket.epicId ? project.epic(*ticket.epicId) : nullptr;
    const Person* assignee = ticket.assigneeId ? project.person(*ticket.assigneeId) : nullptr;
    std::string tags;
    for (const auto& tag : ticket.tags) tags += (tags.empty() ? "" : "|") + tag;
    const std::pair<TicketCSV::Field, std::string_view> texts[] = {
        {TicketCSV::Field::title, ticket.title},
        {TicketCSV::Field::description, ticket.details},
        {TicketCSV::Field::column, column ? std::string_view(column->name) : std::string_view()},
        {TicketCSV::Field::epic, epic ? std::string_view(epic->name) : std::string_view()},
        {TicketCSV::Field::tags, tags},
        {TicketCSV::Field::assignee, assignee ? std::string_view(assignee->name) : std::string_view()},
    };
    for (const auto& [field, text] : texts) {
      const XlsxWriter::CellFit fit = XlsxWriter::cellFit(text);
      const std::string header(TicketCSV::headers[static_cast<std::size_t>(field)]);
      if (fit.units > XlsxWriter::kMaxCellUnits) {
        throw XLSXWriteError::cellTooLong(project.referenceCode(ticket), header, fit.units);
      }
      if (!fit.keepsEveryCharacter) throw XLSXWriteError::unwritableCharacter(project.referenceCode(ticket), header);
    }
  }
}

bool isDateField(std::string_view header) {
  return header == "created_at" || header == "started_at" || header == "completed_at" || header == "archived_at" ||
         header == "due_date";
}

XlsxWriter::Cell dateCell(const std::string& text) {
  const auto instant = ISODateTime::parse(text);
  if (!instant) return XlsxWriter::Cell::ofText(text);
  if (std::fmod(instant->secondsSince1970, 86400.0) == 0.0) return XlsxWriter::Cell::ofDate(*instant);
  return XlsxWriter::Cell::ofDateTime(*instant);
}

// The sheet of ticket rows given as CSV records (the header first): date
// columns as dates, everything else as text, widths fitted to the contents.
XlsxWriter::Sheet ticketSheet(const CSV::Document& records) {
  XlsxWriter::Sheet sheet{.name = "Tickets"};
  if (records.empty()) return sheet;
  const CSV::Record& header = records.front();
  std::vector<bool> dateColumn(header.size());
  for (std::size_t c = 0; c < header.size(); ++c) dateColumn[c] = isDateField(header[c]);

  std::vector<std::vector<std::string>> columnTexts(header.size());
  std::vector<bool> hasTime(header.size(), false);
  for (std::size_t r = 0; r < records.size(); ++r) {
    std::vector<XlsxWriter::Cell> row;
    for (std::size_t c = 0; c < records[r].size(); ++c) {
      const std::string& text = records[r][c];
      if (r > 0 && c < header.size() && dateColumn[c] && !text.empty()) {
        row.push_back(dateCell(text));
        hasTime[c] = hasTime[c] || row.back().kind == XlsxWriter::Cell::Kind::dateTime;
      } else {
        row.push_back(text.empty() ? XlsxWriter::Cell{} : XlsxWriter::Cell::ofText(text));
        if (c < header.size()) columnTexts[c].push_back(text);
      }
    }
    sheet.rows.push_back(std::move(row));
  }
  for (std::size_t c = 0; c < header.size(); ++c) {
    sheet.columnWidths.push_back(
        dateColumn[c] ? std::max(hasTime[c] ? 20.0 : 12.0, XlsxWriter::fittingWidth(columnTexts[c], 8, 20))
                      : XlsxWriter::fittingWidth(columnTexts[c], 8, 50));
  }
  return sheet;
}

}  // namespace

ParsedImport parse(std::string_view xlsxBytes) {
  std::optional<TicketCSV::RowReader> reader;
  std::vector<bool> dateColumn;
  CSV::Record record;
  XLSXReader::forEachFirstSheetRow(xlsxBytes, [&](std::uint32_t row, const std::vector<XLSXReader::CellView>& cells) {
    fillRecord(cells, dateColumn, record);
    if (reader) {
      reader->add(record, row);
    } else {
      dateColumn = dateColumns(record);
      reader.emplace(record, row);
    }
  });
  if (!reader) throw TicketCSVError::empty();
  return std::move(*reader).take();
}

std::string csv(std::string_view xlsxBytes) {
  std::vector<bool> dateColumn;
  bool header = true;
  CSV::Record record;
  std::string out;
  XLSXReader::forEachFirstSheetRow(xlsxBytes, [&](std::uint32_t, const std::vector<XLSXReader::CellView>& cells) {
    fillRecord(cells, dateColumn, record);
    if (header) dateColumn = dateColumns(record);
    header = false;
    out += CSV::encode({record}, ',');
  });
  return out;
}

std::string exportWorkbook(const ProjectSnapshot& project) {
  checkCellsHoldEveryText(project);
  // The CSV export decides which tickets, in which order, with which texts;
  // the workbook carries exactly those rows.
  const std::vector<XlsxWriter::Sheet> sheets{ticketSheet(CSV::parse(TicketCSV::exportText(project), ','))};
  return XlsxWriter::workbook(sheets);
}

std::string importTemplate() {
  using Field = TicketCSV::Field;
  CSV::Record header(TicketCSV::headers.begin(), TicketCSV::headers.end());
  CSV::Record example(header.size());
  const auto set = [&](Field field, std::string value) { example[static_cast<std::size_t>(field)] = std::move(value); };
  set(Field::title, "Set up the build server");
  set(Field::description, "Install the runner and connect it to the repository.");
  set(Field::column, "In Progress");
  set(Field::priority, "High");
  set(Field::epic, "Infrastructure");
  set(Field::tags, "ci|build");
  set(Field::createdAt, "2026-10-05");
  set(Field::startedAt, "2026-10-06T09:30:00Z");
  set(Field::dueDate, "2026-10-19");
  set(Field::assignee, "Alex Example");
  XlsxWriter::Sheet tickets = ticketSheet({header, example});

  const std::string dateRule =
      "A date such as 2026-10-05, or a date and time in UTC such as 2026-10-05T09:30:00Z. Spreadsheet dates work "
      "too. ";
  const std::vector<std::array<std::string, 3>> explanations{
      {"title", "The ticket's title. Required: a row without a title is skipped.", "Set up the build server"},
      {"description", "Any text describing the ticket. Optional.", "Install the runner and connect it."},
      {"column",
       "The name of one of the project's board columns, such as Backlog, In Progress or Done (upper or lower case "
       "alike). Empty means the project's first Backlog column; a row naming a column the project does not have is "
       "skipped.",
       "In Progress"},
      {"priority",
       "Low, Medium, High or Urgent (also Lowest, Med, Normal, Highest, Critical). Empty means Medium; an unknown "
       "word is imported as Medium with a warning.",
       "High"},
      {"epic", "The name of an epic. An epic that does not exist yet is created.", "Infrastructure"},
      {"tags", "Tags separated by |. Empty pieces are dropped.", "ci|build"},
      {"created_at", dateRule + "When the ticket was created.", "2026-10-05"},
      {"started_at", dateRule + "When work started; ignored for a ticket in a Backlog column.", "2026-10-06T09:30:00Z"},
      {"completed_at", dateRule + "When the ticket was done; only kept for a ticket in a Done column.", ""},
      {"archived_at", dateRule + "When the ticket was archived; leave empty to keep it on the board.", ""},
      {"due_date", dateRule + "When the ticket is due.", "2026-10-19"},
      {"assignee", "The name of the person doing the ticket. A person who does not exist yet is created.",
       "Alex Example"},
      {"blocked",
       "Yes to flag the ticket as blocked (Y, True, 1 or X work too); leave empty otherwise. Any other value, No "
       "included, leaves the ticket unflagged with a warning.",
       "Yes"},
  };
  XlsxWriter::Sheet columns{.name = "Columns", .columnWidths = {16, 80, 26}, .wrapColumns = {false, true, false}};
  columns.rows.push_back({XlsxWriter::Cell::ofText("Column"), XlsxWriter::Cell::ofText("What to enter"),
                          XlsxWriter::Cell::ofText("Example")});
  for (const auto& [name, what, sample] : explanations) {
    columns.rows.push_back({XlsxWriter::Cell::ofText(name), XlsxWriter::Cell::ofText(what),
                            sample.empty() ? XlsxWriter::Cell{} : XlsxWriter::Cell::ofText(sample)});
  }
  return XlsxWriter::workbook(std::vector<XlsxWriter::Sheet>{std::move(tickets), std::move(columns)});
}

}  // namespace orvane::TicketXlsx
