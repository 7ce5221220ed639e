#pragma once

#include <span>
#include <string>

#include "cli/Command.h"

namespace orvane::cli {

// `orvane-cli ticket add|move|archive|restore ...`: one change to one
// ticket, made through the board service, so the board's rules apply.
int runTicket(std::span<const std::string> args, const CommandContext& context);

}  // namespace orvane::cli
