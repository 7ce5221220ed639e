#pragma once

#include <span>
#include <string>

#include "cli/Command.h"

namespace orvane::cli {

// `orvane-cli projects [--json]`: every project with its key, open tickets
// and tickets on the board (archived ones left out).
int runProjects(std::span<const std::string> args, const CommandContext& context);

// `orvane-cli demo`: loads the demo project and prints its name.
int runDemo(std::span<const std::string> args, const CommandContext& context);

// `orvane-cli project create NAME [--key PREFIX]`.
int runProject(std::span<const std::string> args, const CommandContext& context);

}  // namespace orvane::cli
