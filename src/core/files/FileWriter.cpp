#include "core/files/FileWriter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>

#include "core/files/FileError.h"
#include "core/files/LinkTarget.h"
#include "core/files/TemporaryFile.h"

namespace orvane {

namespace {

int writeAll(int fd, std::string_view bytes) {
  std::size_t written = 0;
  while (written < bytes.size()) {
    const ssize_t n = ::write(fd, bytes.data() + written, bytes.size() - written);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return errno;
    if (n == 0) return EIO;
    written += static_cast<std::size_t>(n);
  }
  return 0;
}

// Gives the new file the owner, group and permission bits of the one it
// replaces. Changing the owner needs privileges the process may lack; then
// the file stays the writer's, without set-user-ID or set-group-ID bits that
// would otherwise be granted in the writer's name.
int takeOver(int fd, const struct stat& old) {
  mode_t mode = old.st_mode & 07777;
  if (::fchown(fd, old.st_uid, old.st_gid) != 0) {
    if (errno != EPERM) return errno;
    struct stat now {};
    if (::fstat(fd, &now) != 0) return errno;
    if (now.st_uid != old.st_uid || now.st_gid != old.st_gid) mode &= ~static_cast<mode_t>(S_ISUID | S_ISGID);
  }
  return ::fchmod(fd, mode) == 0 ? 0 : errno;
}

// Makes the rename itself durable. The new file is in place whatever
// happens here, so a failure is not reported.
void flushFolder(const std::filesystem::path& folder) {
  const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  ::fsync(fd);
  ::close(fd);
}

}  // namespace

void replaceFile(const std::filesystem::path& path, std::string_view bytes, FileContent content) {
  const auto fail = [&](std::string_view reason) { throw FileError::writing(content, path, reason); };

  int error = 0;
  const std::filesystem::path target = finalLinkTarget(path, error);
  if (error != 0) fail(writeProblem(error));

  std::optional<struct stat> old;
  struct stat info {};
  if (::lstat(target.c_str(), &info) == 0) {
    if (S_ISDIR(info.st_mode)) fail(folderProblem);
    if (!S_ISREG(info.st_mode)) fail(notRegularProblem);
    old = info;
  } else if (errno != ENOENT) {
    fail(writeProblem(errno));
  }

  const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : ".";
  const std::string name = target.filename().string();
  removeStaleTemporaryFiles(folder, name);

  TemporaryFile temporary;
  // Private while it is written; a replaced file's mode is applied once
  // its content is complete.
  if (const int created = TemporaryFile::create(folder, name, old ? 0600 : newFileMode(content), temporary)) {
    fail(writeProblem(created));
  }
  if ((error = writeAll(temporary.descriptor(), bytes)) != 0) fail(writeProblem(error));
  if (old && (error = takeOver(temporary.descriptor(), *old)) != 0) fail(writeProblem(error));
  if (::fsync(temporary.descriptor()) != 0) fail(writeProblem(errno));
  if ((error = temporary.close()) != 0) fail(writeProblem(error));
  if ((error = temporary.renameTo(target)) != 0) fail(writeProblem(error));
  flushFolder(folder);
}

}  // namespace orvane
