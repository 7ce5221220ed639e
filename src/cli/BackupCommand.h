#pragma once

#include <span>
#include <string>

#include "cli/Command.h"

namespace orvane::cli {

// `orvane-cli backup FILE`: every person and project of the store as one
// backup document, written atomically ("-": standard output).
int runBackup(std::span<const std::string> args, const CommandContext& context);

// `orvane-cli restore FILE [--json]`: adds a backup's projects beside the
// ones in the store and prints what was restored. A file that cannot be
// restored changes nothing (exit 2).
int runRestore(std::span<const std::string> args, const CommandContext& context);

}  // namespace orvane::cli
