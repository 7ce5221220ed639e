#pragma once

#include <filesystem>
#include <string_view>

#include "core/files/FileContent.h"

namespace orvane {

// Puts `bytes` at `path` so that the file there is, at every moment, either
// the old one whole or the new one whole: the bytes go to a temporary file
// beside the target, which is flushed to disk and renamed over it, and the
// folder is flushed too.
//
// A link is written through: the final target of a chain of links gets the
// new content and the links stay as they were. A replaced file keeps its
// permission bits, and its owner and group where the process may set them.
// A new file gets newFileMode(content) less the umask.
//
// Temporary files that a killed writer left beside the same target are
// removed first. On any failure the temporary file is removed, the old file
// is untouched, and FileError carries the reason ("The disk is full.").
// With SIGXFSZ ignored, a file-size limit is such a failure too.
void replaceFile(const std::filesystem::path& path, std::string_view bytes, FileContent content);

}  // namespace orvane
