#include "core/files/FileReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

#include "core/files/FileError.h"

namespace orvane {

namespace {

std::string megabytes(std::uint64_t bytes) {
  constexpr std::uint64_t megabyte = 1024 * 1024;
  if (bytes % (1024 * megabyte) == 0) return std::to_string(bytes / (1024 * megabyte)) + " GB";
  return std::to_string(bytes / megabyte) + " MB";
}

std::string tooLargeProblem(FileContent content) {
  const std::string limit = megabytes(readLimit(content));
  return content == FileContent::backup ? "It is larger than " + limit + ", the largest backup that can be restored."
                                        : "It is larger than " + limit + ", the largest ticket file that can be read.";
}

// Refuses anything but a regular file within the limit.
void checkKind(const struct stat& info, FileContent content, const std::filesystem::path& path) {
  if (S_ISDIR(info.st_mode)) throw FileError::reading(content, path, folderProblem);
  if (!S_ISREG(info.st_mode)) throw FileError::reading(content, path, notRegularProblem);
  if (static_cast<std::uint64_t>(info.st_size) > readLimit(content)) {
    throw FileError::reading(content, path, tooLargeProblem(content));
  }
}

class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int get() const { return fd_; }

 private:
  int fd_;
};

}  // namespace

std::string readRegularFile(const std::filesystem::path& path, FileContent content) {
  // Looked at before it is opened: opening a device can have effects of its
  // own, and opening a FIFO waits for a writer.
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) {
    const int error = errno;
    struct stat link {};
    if (error == ENOENT && ::lstat(path.c_str(), &link) == 0 && S_ISLNK(link.st_mode)) {
      throw FileError::reading(content, path, danglingLinkProblem);
    }
    throw FileError::reading(content, path, readProblem(error));
  }
  checkKind(info, content, path);

  // O_NONBLOCK keeps a file swapped for a FIFO since the look from blocking;
  // fstat then judges what was really opened.
  Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
  if (file.get() < 0) throw FileError::reading(content, path, readProblem(errno));
  if (::fstat(file.get(), &info) != 0) throw FileError::reading(content, path, readProblem(errno));
  checkKind(info, content, path);

  // The file may grow while it is read; the limit holds for what is read.
  const std::uint64_t limit = readLimit(content);
  std::string bytes;
  bytes.reserve(static_cast<std::size_t>(info.st_size));
  char buffer[1 << 16];
  for (;;) {
    const ssize_t n = ::read(file.get(), buffer, sizeof buffer);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) throw FileError::reading(content, path, readProblem(errno));
    if (n == 0) break;
    if (bytes.size() + static_cast<std::size_t>(n) > limit) {
      throw FileError::reading(content, path, tooLargeProblem(content));
    }
    bytes.append(buffer, static_cast<std::size_t>(n));
  }
  return bytes;
}

}  // namespace orvane
