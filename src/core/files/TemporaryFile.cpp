#include "core/files/TemporaryFile.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <random>

namespace orvane {

namespace {

constexpr std::string_view marker = ".orvane-tmp-";
constexpr std::size_t randomLength = 6;
// Room for the marker, the pid and the random part within a file name of
// 255 bytes; longer target names are cut (the same way on every write).
constexpr std::size_t nameBytesKept = 200;
constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";

std::string randomPart() {
  static thread_local std::mt19937_64 generator{std::random_device{}()};
  std::uniform_int_distribution<std::size_t> pick(0, alphabet.size() - 1);
  std::string text(randomLength, ' ');
  for (char& c : text) c = alphabet[pick(generator)];
  return text;
}

bool isAlphanumeric(char c) { return alphabet.find(c) != std::string_view::npos; }

// The writing process's pid when `rest` (what follows the prefix) is
// "<digits>-<6 letters or digits>" and nothing else; 0 otherwise.
pid_t ownerOf(std::string_view rest) {
  const std::size_t dash = rest.find('-');
  if (dash == 0 || dash == std::string_view::npos || dash > 9) return 0;
  pid_t pid = 0;
  for (const char c : rest.substr(0, dash)) {
    if (c < '0' || c > '9') return 0;
    pid = pid * 10 + (c - '0');
  }
  const std::string_view random = rest.substr(dash + 1);
  if (random.size() != randomLength) return 0;
  for (const char c : random) {
    if (!isAlphanumeric(c)) return 0;
  }
  return pid;
}

bool isRunning(pid_t pid) { return ::kill(pid, 0) == 0 || errno != ESRCH; }

}  // namespace

std::string temporaryNamePrefix(std::string_view targetName) {
  return "." + std::string(targetName.substr(0, nameBytesKept)) + std::string(marker);
}

int TemporaryFile::create(const std::filesystem::path& folder, std::string_view targetName, mode_t mode,
                          TemporaryFile& created) {
  const std::string prefix = temporaryNamePrefix(targetName) + std::to_string(::getpid()) + "-";
  for (int attempt = 0; attempt < 100; ++attempt) {
    std::filesystem::path path = folder / (prefix + randomPart());
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode);
    if (fd >= 0) {
      created.fd_ = fd;
      created.path_ = std::move(path);
      return 0;
    }
    if (errno != EEXIST) return errno;
  }
  return EEXIST;
}

TemporaryFile::~TemporaryFile() {
  if (fd_ >= 0) ::close(fd_);
  if (!path_.empty()) ::unlink(path_.c_str());
}

int TemporaryFile::close() {
  const int fd = fd_;
  fd_ = -1;
  return ::close(fd) == 0 ? 0 : errno;
}

int TemporaryFile::renameTo(const std::filesystem::path& target) {
  if (::rename(path_.c_str(), target.c_str()) != 0) return errno;
  path_.clear();
  return 0;
}

void removeStaleTemporaryFiles(const std::filesystem::path& folder, std::string_view targetName) {
  const std::string prefix = temporaryNamePrefix(targetName);
  DIR* listing = ::opendir(folder.c_str());
  if (listing == nullptr) return;
  while (const dirent* entry = ::readdir(listing)) {
    const std::string_view name = entry->d_name;
    if (!name.starts_with(prefix)) continue;
    const pid_t owner = ownerOf(name.substr(prefix.size()));
    if (owner <= 0 || isRunning(owner)) continue;
    struct stat info {};
    if (::fstatat(::dirfd(listing), entry->d_name, &info, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISREG(info.st_mode)) {
      continue;
    }
    ::unlinkat(::dirfd(listing), entry->d_name, 0);
  }
  ::closedir(listing);
}

}  // namespace orvane
