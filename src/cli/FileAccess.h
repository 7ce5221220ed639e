#pragma once

#include <istream>
#include <string>
#include <string_view>

namespace orvane::cli {

// The whole file as bytes; "-" reads `standardInput`. Throws CliError
// ("The file could not be read: PATH") when it cannot be read.
std::string readFile(const std::string& path, std::istream& standardInput);

// Writes to a temporary file beside `path`, flushes it to disk, then renames
// it over `path`: the folder holds the old file or the whole new one, never
// a part of it. Throws CliError (exit code 1) naming the system's reason.
void writeAtomically(const std::string& path, std::string_view bytes);

}  // namespace orvane::cli
