#pragma once

#include <span>
#include <string>

#include "cli/Command.h"

namespace orvane::cli {

// `orvane-cli report summary|epics|risk|workload|completed PROJECT [--json]`:
// the tables behind the printable reports, on the day of now in the user's
// calendar. `completed` also takes --from and --to (YYYY-MM-DD, both ends
// inclusive; the last 14 days through today by default). `pdf` writes the
// printable report for --audience client or internal to --out, drawn by the
// renderer registered at start (none without Qt: a refusal, exit 1).
int runReport(std::span<const std::string> args, const CommandContext& context);

}  // namespace orvane::cli
