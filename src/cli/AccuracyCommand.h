#pragma once

#include <span>
#include <string>

#include "cli/Command.h"

namespace orvane::cli {

// `orvane-cli accuracy PROJECT [--json]`: the logged forecasts judged
// against what happened, the calibration of each kind, and the history of
// the "When" dates.
int runAccuracy(std::span<const std::string> args, const CommandContext& context);

}  // namespace orvane::cli
