#pragma once

#include <filesystem>
#include <string>

#include "core/files/FileContent.h"

namespace orvane {

// The whole of the regular file at `path` (links followed) as bytes.
// Folders, devices, pipes and sockets are refused without being read, so a
// link to /dev/zero or a FIFO neither fills memory nor blocks; a file larger
// than readLimit(content) is refused before it is read. Throws FileError.
std::string readRegularFile(const std::filesystem::path& path, FileContent content);

}  // namespace orvane
