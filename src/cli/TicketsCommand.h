#pragma once

#include <span>
#include <string>

#include "cli/Command.h"

namespace orvane::cli {

// `orvane-cli tickets PROJECT [filters] [--json]`: the project's tickets
// narrowed by the same filter the ticket views use.
int runTickets(std::span<const std::string> args, const CommandContext& context);

}  // namespace orvane::cli
