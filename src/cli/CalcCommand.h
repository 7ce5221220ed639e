#pragma once

#include <span>
#include <string>

#include "cli/Command.h"

namespace orvane::cli {

// `orvane-cli calc when|by-date|iteration|roadmap [FILE|-]`: one forecast
// from plain numbers, with no store: a JSON object in, the forecast's result
// record out as JSON.
int runCalc(std::span<const std::string> args, const CommandContext& context);

}  // namespace orvane::cli
