#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "engine/CivilDate.h"
#include "engine/Timestamp.h"

namespace orvane::cli {

// The options given before the command name.
struct GlobalOptions {
  std::optional<std::filesystem::path> store;  // --store PATH
  std::optional<Timestamp> now;                // --now TIME
  std::size_t consumed = 0;                    // arguments read, the command follows
};

// Reads --store and --now (as "--name value" or "--name=value") from the
// front of `args`, stopping at the first other argument. Throws CliError for
// a missing or malformed value, or an option given twice.
GlobalOptions parseGlobalOptions(std::span<const std::string> args);

// A day, "2026-03-05" (the start of that day, UTC), or a date-time
// "2026-03-05T10:00:00Z": seconds and their fraction are optional, and the
// zone is "Z" or an offset such as "+01:00". Absent for anything else,
// including days that do not exist.
std::optional<Timestamp> parseInstant(std::string_view text);

// A day that exists, written YYYY-MM-DD and nothing more.
std::optional<CivilDate> parseDay(std::string_view text);

}  // namespace orvane::cli
