#pragma once

#include <string>
#include <string_view>

#include "core/backup/BackupError.h"
#include "core/backup/BackupReport.h"
#include "core/store/Store.h"
#include "engine/Timestamp.h"

namespace orvane::Backup {

// The whole store as one JSON document: every person and every project with
// all it owns. Keys are sorted and indented by two spaces; dates are seconds
// since 1970; identifiers are upper-case UUID text. People and projects come
// in natural name order (numbers by value, case ignored). Reads everything
// in one read transaction, so the document is consistent; changes nothing.
// Throws only when the store cannot be read (SqliteError).
std::string makeBackup(Store& store, Timestamp now);

// Adds the content of a backup document (versions 1 to currentVersion) to
// the store beside what is there, in one transaction: new identifiers for
// everything, people merged by name ignoring case, a project whose id is
// already in the store, or whose name is taken, named with " (restored)"
// (then " (restored 2)" and so on), a key in use given a digit (SHOP2).
// Never deletes or changes an existing row. Dangling references inside a
// project are dropped with a warning or left unset; values with one right
// form are repaired with a warning (BackupRepair.h); anything else wrong
// with the file throws BackupError (what() is the sentence for the user)
// and inserts nothing.
// A failure of the store itself throws SqliteError, also inserting nothing.
Report restoreBackup(Store& store, std::string_view bytes);

}  // namespace orvane::Backup
