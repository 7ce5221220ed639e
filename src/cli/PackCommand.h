#pragma once

#include <span>
#include <string>

#include "cli/Command.h"

namespace orvane::cli {

// `orvane-cli pack PROJECT --out DIR [--json]`: writes the week's
// development packs of a project. The packs are drawn with the desktop
// application's code (Qt); the command-line program registers that runner at
// start when it is built with Qt, so every other command runs without it.
using PackRunner = int (*)(std::span<const std::string> args, const CommandContext& context);

void setPackRunner(PackRunner runner);

// Runs the registered runner; without one, says this build cannot draw the
// packs.
int runPack(std::span<const std::string> args, const CommandContext& context);

}  // namespace orvane::cli
