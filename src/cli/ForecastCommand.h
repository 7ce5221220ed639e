#pragma once

#include <span>
#include <string>

#include "cli/Command.h"

namespace orvane::cli {

// `orvane-cli forecast when|by-date|epic|iteration|roadmap|log|estimate|
// commit ...`: the forecast service over a project in the store, as a
// readable summary or (--json) the result record.
int runForecast(std::span<const std::string> args, const CommandContext& context);

}  // namespace orvane::cli
