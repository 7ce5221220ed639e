#pragma once

#include <span>
#include <string>

#include "cli/Command.h"

namespace orvane::cli {

// `orvane-cli simulate`: the forecast engine from plain numbers, as a
// readable summary or (--json) one JSON object.
int runSimulate(std::span<const std::string> args, const CommandContext& context);

}  // namespace orvane::cli
