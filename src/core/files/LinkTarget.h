#pragma once

#include <filesystem>

namespace orvane {

// The file that `path` finally names once every symbolic link on the way
// (chains included) is followed; `path` itself when it is no link. The
// result may not exist yet (a link to a file still to be made). Returns the
// system error number in `error` (ELOOP for a circle of links) and an empty
// path when the chain cannot be followed.
std::filesystem::path finalLinkTarget(const std::filesystem::path& path, int& error);

}  // namespace orvane
