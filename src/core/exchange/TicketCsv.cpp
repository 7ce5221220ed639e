#include "core/exchange/TicketCsv.h"

#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <tuple>
#include <unordered_map>

#include "core/exchange/CsvCodec.h"
#include "core/exchange/IsoDateTime.h"
#include "core/model/SupportedDates.h"
#include "core/text/Text.h"

namespace orvane {

const char* TicketCSVError::what() const noexcept {
  switch (kind_) {
    case Case::empty:
      return "The file is empty.";
    case Case::missingTitleColumn:
      return "The first row must contain a \"title\" column.";
    case Case::tooManyRows:
      return "The file has more than 100,000 rows. Import at most 100,000 tickets at a time.";
  }
  return "";
}

namespace TicketCSV {

const std::array<std::string_view, 13> headers = {
    "title",      "description",  "column",      "priority", "epic",     "tags",    "created_at",
    "started_at", "completed_at", "archived_at", "due_date", "assignee", "blocked",
};

namespace {

const std::unordered_map<std::string_view, Field>& aliases() {
  static const std::unordered_map<std::string_view, Field> table = {
      {"title", Field::title},
      {"summary", Field::title},
      {"description", Field::description},
      {"details", Field::description},
      {"column", Field::column},
      {"status", Field::column},
      {"list", Field::column},
      {"priority", Field::priority},
      {"epic", Field::epic},
      {"tags", Field::tags},
      {"labels", Field::tags},
      {"created_at", Field::createdAt},
      {"created", Field::createdAt},
      {"started_at", Field::startedAt},
      {"started", Field::startedAt},
      {"completed_at", Field::completedAt},
      {"completed", Field::completedAt},
      {"done_at", Field::completedAt},
      {"archived_at", Field::archivedAt},
      {"archived", Field::archivedAt},
      {"due_date", Field::dueDate},
      {"due", Field::dueDate},
      {"assignee", Field::assignee},
      {"assigned_to", Field::assignee},
      {"owner", Field::assignee},
      {"blocked", Field::blocked},
  };
  return table;
}

std::string_view headerOf(Field field) { return headers[static_cast<std::size_t>(field)]; }

std::string priorityWord(const Ticket& ticket) {
  const auto priority = ticket.priority();
  return priority ? std::string(displayLabel(*priority)) : std::string();
}

std::string joinedTags(const std::vector<std::string>& tags) {
  std::string out;
  for (const auto& tag : tags) {
    if (!out.empty()) out += '|';
    out += tag;
  }
  return out;
}

std::string dateCell(const std::optional<Timestamp>& instant) {
  return instant ? ISODateTime::format(*instant) : std::string();
}

}  // namespace

std::string normalizeHeader(std::string_view header) {
  std::string normal = text::lowered(text::trimmed(header));
  std::replace(normal.begin(), normal.end(), ' ', '_');
  std::replace(normal.begin(), normal.end(), '-', '_');
  return normal;
}

std::optional<Field> field(std::string_view header) {
  const std::string normal = normalizeHeader(header);
  const auto found = aliases().find(normal);
  if (found == aliases().end()) return std::nullopt;
  return found->second;
}

std::optional<TicketPriority> parsePriority(std::string_view text) {
  const std::string word = text::lowered(text::trimmed(text));
  if (word == "low" || word == "lowest") return TicketPriority::low;
  if (word == "medium" || word == "med" || word == "normal") return TicketPriority::medium;
  if (word == "high") return TicketPriority::high;
  if (word == "urgent" || word == "highest" || word == "critical") return TicketPriority::urgent;
  return std::nullopt;
}

RowReader::RowReader(const CSV::Record& header, std::int64_t headerRow) : headerSize_(header.size()) {
  for (std::size_t i = 0; i < header.size(); ++i) {
    const auto mapped = field(header[i]);
    if (!mapped) {
      parsed_.issues.push_back({headerRow, "Column \"" + header[i] + "\" is not recognised and was ignored.", false});
      continue;
    }
    auto& slot = cellOf_[static_cast<std::size_t>(*mapped)];
    if (slot) {
      parsed_.issues.push_back(
          {headerRow, "Column \"" + header[i] + "\" appears more than once; the first one is used.", false});
      continue;
    }
    slot = i;
  }
  if (!cellOf_[static_cast<std::size_t>(Field::title)]) throw TicketCSVError::missingTitleColumn();
}

// Rules for a data row, in the order they are checked:
// - more cells than the header: a warning, the extra cells ignored;
// - an empty title: an error, and nothing else about the row is reported;
// - each date the parser rejects: an error; a row with any of these is
//   skipped, without the warnings below (they would be about a row that is
//   not imported);
// - an unknown priority or blocked value: a warning, with medium / not
//   flagged used instead.
void RowReader::add(const CSV::Record& record, std::int64_t rowNumber) {
  if (++rows_ > kMaxRows) throw TicketCSVError::tooManyRows();
  ParsedImport& parsed = parsed_;
  const auto& cellOf = cellOf_;
  auto warn = [&](std::string message) { parsed.issues.push_back({rowNumber, std::move(message), false}); };
  auto fail = [&](std::string message) { parsed.issues.push_back({rowNumber, std::move(message), true}); };
  auto value = [&](Field f) -> std::string {
    const auto cell = cellOf[static_cast<std::size_t>(f)];
    if (!cell || *cell >= record.size()) return {};
    return text::trimmed(record[*cell]);
  };

  if (record.size() > headerSize_) {
    warn("The record has more fields than the header; the extra fields were ignored.");
  }

  ImportedRow row;
  row.rowNumber = rowNumber;
  row.title = value(Field::title);
  if (row.title.empty()) {
    fail("The title is empty. Row skipped.");
    return;
  }

  bool skipped = false;
  auto date = [&](Field f, std::optional<Timestamp>& target) {
    const std::string text = value(f);
    if (text.empty()) return;
    target = ISODateTime::parse(text);
    if (!target) {
      fail(std::string(headerOf(f)) + " \"" + text +
           "\" is not a valid date. Use 2026-10-05 or 2026-10-05T09:30:00Z. Row skipped.");
      skipped = true;
    } else if (!isSupportedDate(*target)) {
      // A zone offset can carry the first or last day of the calendar
      // past its edge.
      fail(std::string(headerOf(f)) + " \"" + text + "\" lies outside the years 0000 to 9999. Row skipped.");
      target.reset();
      skipped = true;
    }
  };
  date(Field::createdAt, row.createdAt);
  date(Field::startedAt, row.startedAt);
  date(Field::completedAt, row.completedAt);
  date(Field::archivedAt, row.archivedAt);
  date(Field::dueDate, row.dueDate);
  if (skipped) return;

  row.details = value(Field::description);
  row.columnName = value(Field::column);
  row.epicName = value(Field::epic);
  row.assigneeName = value(Field::assignee);

  if (const std::string priority = value(Field::priority); !priority.empty()) {
    row.priority = parsePriority(priority);
    if (!row.priority) {
      warn("Priority \"" + priority + "\" is not recognised; Medium was used.");
      row.priority = TicketPriority::medium;
    }
  }

  if (const std::string blocked = value(Field::blocked); !blocked.empty()) {
    const std::string word = text::lowered(blocked);
    row.blocked = word == "yes" || word == "y" || word == "true" || word == "1" || word == "x";
    if (!row.blocked) {
      warn("Blocked \"" + blocked + "\" is not recognised; use Yes or leave it empty. The ticket was not flagged.");
    }
  }

  // Tag pieces are trimmed, so "ui | api" reads as two clean tags.
  const std::string tags = value(Field::tags);
  std::size_t start = 0;
  while (start <= tags.size()) {
    const std::size_t bar = std::min(tags.find('|', start), tags.size());
    if (std::string piece = text::trimmed(std::string_view(tags).substr(start, bar - start)); !piece.empty()) {
      row.tags.push_back(std::move(piece));
    }
    start = bar + 1;
  }

  parsed.rows.push_back(std::move(row));
}

ParsedImport parse(std::string_view input) {
  std::optional<RowReader> reader;
  std::int64_t rowNumber = 0;
  CSV::forEachRecord(input, CSV::detectDelimiter(input), [&](CSV::Record& record) {
    ++rowNumber;
    if (!reader) {
      reader.emplace(record);
    } else {
      reader->add(record, rowNumber);
    }
  });
  if (!reader) throw TicketCSVError::empty();
  return std::move(*reader).take();
}

std::string exportText(const ProjectSnapshot& project) {
  // Board order: columns left to right; within a column the active tickets
  // by position, then its archived ones by when they were archived; tickets
  // without a column last. Ties fall back to the ticket number.
  std::unordered_map<Uuid, std::size_t> columnOrder;
  for (std::size_t i = 0; i < project.columns.size(); ++i) columnOrder[project.columns[i].id] = i;
  std::vector<const Ticket*> tickets;
  tickets.reserve(project.tickets.size());
  for (const auto& ticket : project.tickets) tickets.push_back(&ticket);
  auto key = [&](const Ticket* t) {
    const auto column = t->columnId ? columnOrder.find(*t->columnId) : columnOrder.end();
    const std::size_t columnIndex = column == columnOrder.end() ? project.columns.size() : column->second;
    return std::make_tuple(columnIndex, t->isArchived(), t->isArchived() ? 0 : t->position,
                           t->archivedAt.value_or(Timestamp{}).secondsSince1970, t->number);
  };
  std::stable_sort(tickets.begin(), tickets.end(), [&](const Ticket* a, const Ticket* b) { return key(a) < key(b); });

  CSV::Document rows;
  rows.reserve(tickets.size() + 1);
  rows.emplace_back(headers.begin(), headers.end());
  for (const Ticket* ticket : tickets) {
    const BoardColumn* column = ticket->columnId ? project.column(*ticket->columnId) : nullptr;
    const Epic* epic = ticket->epicId ? project.epic(*ticket->epicId) : nullptr;
    const Person* assignee = ticket->assigneeId ? project.person(*ticket->assigneeId) : nullptr;
    rows.push_back({
        ticket->title,
        ticket->details,
        column ? column->name : std::string(),
        priorityWord(*ticket),
        epic ? epic->name : std::string(),
        joinedTags(ticket->tags),
        dateCell(ticket->createdAt),
        dateCell(ticket->startedAt),
        dateCell(ticket->completedAt),
        dateCell(ticket->archivedAt),
        dateCell(ticket->dueDate),
        assignee ? assignee->name : std::string(),
        ticket->blocked ? "Yes" : "",
    });
  }
  return CSV::encode(rows, ',');
}

}  // namespace TicketCSV
}  // namespace orvane
