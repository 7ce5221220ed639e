#pragma once

#include <ostream>
#include <span>
#include <string>

#include "engine/Timestamp.h"

namespace orvane::cli {

// Runs orvane-cli with `args` (the arguments after the program name) and
// returns its exit code: 0 on success, 1 when the work failed (the store
// cannot be opened or written), 2 for a bad command line, something it
// names that does not exist, or an operation the board's rules refuse
// (nothing was changed). A command's output reaches `out` only when it
// succeeds; every refusal is one sentence on `err`. `now` is the clock for
// anything that defaults to today, unless --now replaces it.
int runCli(std::span<const std::string> args, std::ostream& out, std::ostream& err, Timestamp now);

}  // namespace orvane::cli
