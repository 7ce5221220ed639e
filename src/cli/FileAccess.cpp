#include "cli/FileAccess.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "cli/CliError.h"

namespace orvane::cli {

std::string readFile(const std::string& path, std::istream& standardInput) {
  if (path == "-") return std::string(std::istreambuf_iterator<char>(standardInput), {});
  std::ifstream in(path, std::ios::binary);
  if (!in) throw CliError("The file could not be read: " + path);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  if (in.bad()) throw CliError("The file could not be read: " + path);
  return bytes.str();
}

void writeAtomically(const std::string& path, std::string_view bytes) {
  const std::filesystem::path target(path);
  const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : ".";
  std::string temporary = (folder / ("." + target.filename().string() + ".XXXXXX")).string();
  const auto fail = [&](int error) {
    throw CliError("The file could not be written: " + path + " (" + std::strerror(error) + ").", exitFailure);
  };
  const int fd = ::mkstemp(temporary.data());
  if (fd < 0) fail(errno);
  std::size_t written = 0;
  while (written < bytes.size()) {
    const ssize_t n = ::write(fd, bytes.data() + written, bytes.size() - written);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      const int error = n < 0 ? errno : EIO;
      ::close(fd);
      ::unlink(temporary.c_str());
      fail(error);
    }
    written += static_cast<std::size_t>(n);
  }
  // mkstemp makes the file private; the backup gets the usual mode.
  const mode_t mask = ::umask(0);
  ::umask(mask);
  ::fchmod(fd, 0666 & ~mask);
  if (::fsync(fd) != 0) {
    const int error = errno;
    ::close(fd);
    ::unlink(temporary.c_str());
    fail(error);
  }
  if (::close(fd) != 0 || std::rename(temporary.c_str(), path.c_str()) != 0) {
    const int error = errno;
    ::unlink(temporary.c_str());
    fail(error);
  }
}

}  // namespace orvane::cli
