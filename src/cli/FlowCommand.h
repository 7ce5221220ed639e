#pragma once

#include <span>
#include <string>

#include "cli/Command.h"

namespace orvane::cli {

// `orvane-cli flow PROJECT [--weeks W] [--json]`: the Flow screen's figures
// for the W weeks (4, 8, 12, 26 or 52; 12 by default) ending on the UTC day
// of now: the four tiles, weekly throughput, cycle times with their summary,
// the age of the work in progress and the cumulative flow; then the flow
// analyses of the same weeks (FlowAnalyses).
int runFlow(std::span<const std::string> args, const CommandContext& context);

}  // namespace orvane::cli
