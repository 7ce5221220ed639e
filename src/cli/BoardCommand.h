#pragma once

#include <span>
#include <string>

#include "cli/Command.h"

namespace orvane::cli {

// `orvane-cli board PROJECT [--json]`: the columns in board order, each with
// its type, ticket count and WIP limit, and its active tickets.
int runBoard(std::span<const std::string> args, const CommandContext& context);

}  // namespace orvane::cli
