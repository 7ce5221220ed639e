#pragma once

#include <unicode/utypes.h>

#include <istream>
#include <ostream>
#include <span>
#include <string>

#include "engine/Timestamp.h"

U_NAMESPACE_BEGIN
class Calendar;
U_NAMESPACE_END

namespace orvane::cli {

// Runs orvane-cli with `args` (the arguments after the program name) and
// returns its exit code: 0 on success, 1 when the work failed (the store
// cannot be opened or written), 2 for a bad command line, something it
// names that does not exist, or an operation the board's rules refuse
// (nothing was changed). A command's output reaches `out` only when it
// succeeds; every refusal is one sentence on `err`. `now` is the clock for
// anything that defaults to today, unless --now replaces it.
// Standard input is std::cin and the calendar the user's (userCalendar of
// ICU's default time zone and locale: Gregorian days in the machine's zone).
int runCli(std::span<const std::string> args, std::ostream& out, std::ostream& err, Timestamp now);

// As above, reading `in` as standard input and taking the days of epics and
// iterations in `calendar`.
int runCli(std::span<const std::string> args, std::istream& in, std::ostream& out, std::ostream& err, Timestamp now,
           const icu::Calendar& calendar);

}  // namespace orvane::cli
