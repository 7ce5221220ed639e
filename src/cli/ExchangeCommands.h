#pragma once

#include <span>
#include <string>

#include "cli/Command.h"

namespace orvane::cli {

// `orvane-cli export PROJECT FILE.csv|FILE.xlsx`: every ticket of the
// project, archived ones included, written atomically.
int runExport(std::span<const std::string> args, const CommandContext& context);

// `orvane-cli import PROJECT FILE.csv|FILE.xlsx [--dry-run] [--extend-history]`:
// adds the file's tickets to the project in one transaction and lists every
// row issue. A file that cannot be read at all changes nothing (exit 2).
int runImport(std::span<const std::string> args, const CommandContext& context);

// `orvane-cli template FILE.xlsx`: an empty ticket workbook to fill in.
int runTemplate(std::span<const std::string> args, const CommandContext& context);

}  // namespace orvane::cli
