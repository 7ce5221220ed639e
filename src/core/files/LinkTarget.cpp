#include "core/files/LinkTarget.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace orvane {

std::filesystem::path finalLinkTarget(const std::filesystem::path& path, int& error) {
  // As many links as the system itself follows before it gives up.
  constexpr int maxLinks = 40;
  error = 0;
  std::filesystem::path current = path;
  for (int hops = 0; hops <= maxLinks; ++hops) {
    struct stat info {};
    if (::lstat(current.c_str(), &info) != 0) {
      if (errno == ENOENT) return current;
      error = errno;
      return {};
    }
    if (!S_ISLNK(info.st_mode)) return current;
    std::string target(static_cast<std::size_t>(info.st_size > 0 ? info.st_size : 4096) + 1, '\0');
    const ssize_t length = ::readlink(current.c_str(), target.data(), target.size());
    if (length < 0) {
      error = errno;
      return {};
    }
    target.resize(static_cast<std::size_t>(length));
    // A relative link is relative to the folder that holds the link.
    const std::filesystem::path next(target);
    current = next.is_absolute() ? next : current.parent_path() / next;
  }
  error = ELOOP;
  return {};
}

}  // namespace orvane
