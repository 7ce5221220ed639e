#pragma once

#include <istream>
#include <string>
#include <string_view>

#include "core/files/FileContent.h"

namespace orvane::cli {

// The whole file as bytes; "-" reads `standardInput`. Only regular files
// within readLimit(content) are read. Throws CliError (exit code 2) with
// FileError's sentence ("The file could not be read: PATH. It is a folder,
// not a file.").
std::string readFile(const std::string& path, std::istream& standardInput, FileContent content);

// Replaces the file at `path` whole (see replaceFile). Throws CliError
// (exit code 1) with FileError's sentence.
void writeAtomically(const std::string& path, std::string_view bytes, FileContent content);

}  // namespace orvane::cli
