#pragma once

#include <span>
#include <string>

#include "cli/Command.h"

namespace orvane::cli {

// `orvane-cli calendar PROJECT [YYYY-MM] [--json]`: one month as whole weeks
// of the user's calendar, with the tickets due on each day.
int runCalendar(std::span<const std::string> args, const CommandContext& context);

}  // namespace orvane::cli
