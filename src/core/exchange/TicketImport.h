#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "core/exchange/TicketCsv.h"
#include "core/model/Uuid.h"
#include "core/store/Store.h"
#include "engine/Timestamp.h"

namespace orvane {

// What an import did. `issues` holds the parse issues, then the import's own.
struct ImportReport {
  std::int64_t imported = 0;  // tickets created
  std::int64_t createdEpics = 0;
  std::int64_t createdPeople = 0;
  std::vector<ImportIssue> issues;
  // The project's new start, when its history was extended back.
  std::optional<Timestamp> projectHistoryExtendedTo;

  std::int64_t errorCount() const;

  friend bool operator==(const ImportReport&, const ImportReport&) = default;
};

// Called before each row and once at the end with the rows handled so far
// and the total.
using ImportProgress = std::function<void(std::int64_t done, std::int64_t total)>;

struct ImportOptions {
  ImportProgress progress;
  // Everything is checked and the report made, but the transaction is rolled
  // back: the store is left as it was.
  bool dryRun = false;
};

// Adds the parsed rows to a project as new tickets, in one store transaction:
// a failure of the store (or a project that is gone: MissingRecordError)
// rolls everything back; a problem with one row is an issue and the import
// carries on with the others. Only ever adds: existing tickets, epics and
// people are never changed (except the project's start when extending).
//
// The rules a row follows, besides the board's own:
// - its column is found by name ignoring case; an empty column cell selects
//   the project's first backlog column (the board's default for a new card);
// - epic and assignee names not found create an epic of the project or a
//   person, reused by later rows;
// - a row without created date was created at `now`;
// - each new ticket goes to the bottom of its column, in file order;
// - its history is replayed through the flow rules: created into the first
//   backlog column, moved to the first In Progress column when started and
//   into its own column when completed (a ticket whose column is In
//   Progress or Backlog ends there), so charts see the file's dates;
// - with `extendProjectHistory`, a created date before the project's start
//   moves the start back to the earliest such date.
ImportReport importTickets(Store& store, const ParsedImport& parsed, const Uuid& project, Timestamp now,
                           bool extendProjectHistory, const ImportOptions& options = {});

}  // namespace orvane
