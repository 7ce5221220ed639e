#pragma once

#include <array>
#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/exchange/CsvCodec.h"
#include "core/model/ProjectSnapshot.h"
#include "core/model/TicketPriority.h"
#include "engine/Timestamp.h"

namespace orvane {

// A ticket file that cannot be read at all. what() is the complete sentence.
// (A quote left open surfaces as CSVError.)
class TicketCSVError : public std::exception {
 public:
  enum class Case { empty, missingTitleColumn, tooManyRows };

  static TicketCSVError empty() { return TicketCSVError(Case::empty); }
  static TicketCSVError missingTitleColumn() { return TicketCSVError(Case::missingTitleColumn); }
  // More data rows than one import takes (TicketCSV::kMaxRows).
  static TicketCSVError tooManyRows() { return TicketCSVError(Case::tooManyRows); }

  Case kind() const { return kind_; }
  const char* what() const noexcept override;

  friend bool operator==(const TicketCSVError& a, const TicketCSVError& b) { return a.kind_ == b.kind_; }

 private:
  explicit TicketCSVError(Case kind) : kind_(kind) {}
  Case kind_;
};

// One problem with one row of a ticket file. Rows count from 1 = the header.
// An error means the row was skipped; otherwise it is a warning.
struct ImportIssue {
  std::int64_t rowNumber = 0;
  std::string message;
  bool isError = false;

  friend bool operator==(const ImportIssue&, const ImportIssue&) = default;
};

// One readable data row, values trimmed; texts are empty when absent.
struct ImportedRow {
  std::int64_t rowNumber = 0;
  std::string title;
  std::string details;
  std::string columnName;
  std::optional<TicketPriority> priority;
  std::string epicName;
  std::vector<std::string> tags;
  std::optional<Timestamp> createdAt;
  std::optional<Timestamp> startedAt;
  std::optional<Timestamp> completedAt;
  std::optional<Timestamp> archivedAt;
  std::optional<Timestamp> dueDate;
  std::string assigneeName;
  bool blocked = false;

  friend bool operator==(const ImportedRow&, const ImportedRow&) = default;
};

// A ticket file read but not yet applied: the rows that can be imported and
// every issue found, in file order.
struct ParsedImport {
  std::vector<ImportedRow> rows;
  std::vector<ImportIssue> issues;

  friend bool operator==(const ParsedImport&, const ParsedImport&) = default;
};

// Tickets as delimited text with a header row: read with delimiter detection
// and header aliases, written in the canonical layout for re-import.
namespace TicketCSV {

enum class Field {
  title,
  description,
  column,
  priority,
  epic,
  tags,
  createdAt,
  startedAt,
  completedAt,
  archivedAt,
  dueDate,
  assignee,
  blocked,
};

// The canonical header names in export order, indexed by Field.
extern const std::array<std::string_view, 13> headers;

// Trimmed, lower-cased, spaces and hyphens turned into underscores:
// " Assigned To" -> "assigned_to", "Done-At" -> "done_at".
std::string normalizeHeader(std::string_view header);

// The field a header names (through the alias table), if any.
std::optional<Field> field(std::string_view header);

// "low"/"lowest", "medium"/"med"/"normal", "high", "urgent"/"highest"/
// "critical", in any case and with surrounding white space; otherwise none.
std::optional<TicketPriority> parsePriority(std::string_view text);

// The most data rows one import reads: every row becomes a ticket (or an
// issue) held until the import is confirmed, and a file with more is split
// by the user rather than read until memory runs out.
inline constexpr std::int64_t kMaxRows = 100'000;

// Reads a ticket file one record at a time: the header first, then each data
// record with its row number, so the file never has to be held as records.
// Tag pieces are trimmed and empty pieces dropped.
class RowReader {
 public:
  // Maps the header's cells to fields, adding a warning for each unknown or
  // repeated one at `headerRow`. Throws TicketCSVError::missingTitleColumn.
  explicit RowReader(const CSV::Record& header, std::int64_t headerRow = 1);
  // Reads one data record. Throws TicketCSVError::tooManyRows for the
  // record after kMaxRows.
  void add(const CSV::Record& record, std::int64_t rowNumber);
  ParsedImport take() && { return std::move(parsed_); }

 private:
  ParsedImport parsed_;
  std::size_t headerSize_ = 0;
  std::array<std::optional<std::size_t>, 13> cellOf_{};
  std::int64_t rows_ = 0;
};

// Reads a ticket file; data rows are numbered by their place among the
// records (the header being row 1, blank lines not counted). Throws
// TicketCSVError (empty, missingTitleColumn, tooManyRows) or CSVError
// (unterminatedQuote); every other problem is an ImportIssue.
ParsedImport parse(std::string_view text);

// Every ticket of the project, archived ones included (with their
// archived_at, so an archive survives the round trip), in board order:
// column position, then position within the column; archived tickets after
// the active ones of their column, oldest archive first. Comma delimiter,
// "\n" line ends, no byte order mark.
std::string exportText(const ProjectSnapshot& project);

}  // namespace TicketCSV

// The same namespace under the file's spelling.
namespace TicketCsv = TicketCSV;

}  // namespace orvane
