#pragma once

#include <span>
#include <string>

#include "cli/Command.h"

namespace orvane::cli {

// `orvane-cli health PROJECT [--json]`: the project's recent flow in figures
// and plain sentences.
int runHealth(std::span<const std::string> args, const CommandContext& context);

}  // namespace orvane::cli
