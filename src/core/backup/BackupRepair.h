#pragma once

// What a restore does with values that the board's own operations would
// never have written. Nothing a backup carries may make a later command
// stop: a value with no sensible reading refuses the whole file, a value
// with one obvious right form is put right and reported.

#include <cstdint>
#include <string>
#include <vector>

#include "core/backup/BackupDocument.h"
#include "core/model/Ticket.h"

namespace orvane::Backup {

using orvane::maxTicketNumber;

// Refuses, before anything is added, a file that holds any of:
// - a date outside the years 0000 to 9999 (the days the calendar supports);
// - a person, project, column, epic, milestone or iteration without a name,
//   or a ticket without a title (after trimming);
// - a ticket number below 1 or above maxTicketNumber, or two tickets of one
//   project with the same number.
// Throws BackupError::unsupportedValue naming the project and the field.
void requireRestorable(const File& file);

// Puts right, in one project, the values that have one obvious right form,
// adding one warning per kind of repair, counted, in the form
// "<key>: <what was done>." (the name and key are settled before):
// - a column type the system does not know becomes a backlog column;
// - a WIP limit below 1 is removed (no limit);
// - column positions, the positions of the active tickets of each column and
//   the checklist positions of each ticket that are not 0..n-1 are
//   renumbered in their order (ties in file order);
// - a next ticket number not above the highest ticket number is raised to
//   the number after it (at least 1).
// Expects a project that passed requireRestorable.
void repairProject(ProjectRecord& project, std::vector<std::string>& warnings);

}  // namespace orvane::Backup
