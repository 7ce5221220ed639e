#pragma once

#include <span>
#include <string>

#include "cli/Command.h"

namespace orvane::cli {

// The runner of `orvane-cli pack PROJECT --out DIR [--json]`: writes the week's
// development packs of a project into DIR (created when missing): per person
// with open tickets flagged "this week", a PDF of those tickets and a ZIP of
// the files linked to them. Prints what was written and which linked files
// are missing. Like `report pdf`, it starts Qt only when run: it draws with the
// desktop application's code, on the offscreen platform unless
// QT_QPA_PLATFORM says otherwise, so it runs without a display.
int runPackWithQt(std::span<const std::string> args, const CommandContext& context);

}  // namespace orvane::cli
