#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace orvane {

// A new file is written under a hidden name beside its target and renamed
// over it once complete. The name ties it to the target and to the writing
// process: ".<target name>.orvane-tmp-<pid>-<6 letters or digits>", so a
// later write can recognise what a killed writer left behind.
class TemporaryFile {
 public:
  // Creates the file exclusively in `folder` with `mode` (the umask applies)
  // and opens it for writing. Returns the system error number on failure,
  // leaving `created` without a file.
  static int create(const std::filesystem::path& folder, std::string_view targetName, mode_t mode,
                    TemporaryFile& created);

  TemporaryFile() = default;
  // Closes the file and removes it unless it was renamed into place.
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  int descriptor() const { return fd_; }
  const std::filesystem::path& path() const { return path_; }

  // Closes the descriptor; returns 0 or the system error number.
  int close();
  // Renames the closed file to `target`; afterwards it is no longer removed.
  // Returns 0 or the system error number.
  int renameTo(const std::filesystem::path& target);

 private:
  int fd_ = -1;
  std::filesystem::path path_;
};

// The part of a temporary file's name before the pid, for `targetName`.
std::string temporaryNamePrefix(std::string_view targetName);

// Removes from `folder` the temporary files of `targetName` whose writing
// process no longer runs. Only regular files whose names match the pattern
// exactly are touched; anything else, and any failure, is left alone.
void removeStaleTemporaryFiles(const std::filesystem::path& folder, std::string_view targetName);

}  // namespace orvane
