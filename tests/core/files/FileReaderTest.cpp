#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <optional>

#include "core/files/FileError.h"
#include "core/files/FileReader.h"
#include "core/support/FileChecks.h"
#include "core/support/TempStore.h"

namespace orvane::testing {
namespace {

// A file of `size` bytes that takes no room on disk.
void sparse(const std::filesystem::path& path, off_t size) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  ASSERT_GE(fd, 0);
  ASSERT_EQ(::ftruncate(fd, size), 0);
  ::close(fd);
}

TEST(FileReader, ReadsOnlyRegularFilesWithinTheLimit) {
  TempDir dir;
  const std::filesystem::path folder = dir.path();
  constexpr off_t megabyte = 1024 * 1024;
  const struct {
    const char* name;
    std::function<void(const std::filesystem::path&)> make;
    FileContent content;
    std::optional<std::string> reason;  // none: read
  } cases[] = {
      {"d.csv", [](const auto& p) { std::filesystem::create_directory(p); }, FileContent::tickets,
       "It is a folder, not a file."},
      {"folder.json", [](const auto& p) { std::filesystem::create_directory(p); }, FileContent::backup,
       "It is a folder, not a file."},
      {"fifo.csv", [](const auto& p) { ASSERT_EQ(::mkfifo(p.c_str(), 0600), 0); }, FileContent::tickets,
       "It is not a regular file."},
      {"zero.csv", [](const auto& p) { std::filesystem::create_symlink("/dev/zero", p); }, FileContent::tickets,
       "It is not a regular file."},
      {"gone.json", [](const auto& p) { std::filesystem::create_symlink("nowhere.json", p); }, FileContent::backup,
       "It is a link to a file that does not exist."},
      {"missing.csv", [](const auto&) {}, FileContent::tickets, "There is no such file."},
      {"big.csv", [](const auto& p) { sparse(p, 50 * megabyte + 1); }, FileContent::tickets,
       "It is larger than 50 MB, the largest ticket file that can be read."},
      {"big.json", [](const auto& p) { sparse(p, 1024 * megabyte + 1); }, FileContent::backup,
       "It is larger than 1 GB, the largest backup that can be restored."},
      {"good.csv", [](const auto& p) { put(p, "title\nA\n"); }, FileContent::tickets, std::nullopt},
      {"linked.csv", [](const auto& p) { std::filesystem::create_symlink("good.csv", p); }, FileContent::tickets,
       std::nullopt},
      {"empty.json", [](const auto& p) { put(p, ""); }, FileContent::backup, std::nullopt},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const std::filesystem::path path = folder / c.name;
    c.make(path);
    if (c.reason) {
      const std::string noun = c.content == FileContent::backup ? "The backup" : "The file";
      try {
        readRegularFile(path, c.content);
        ADD_FAILURE() << "read";
      } catch (const FileError& error) {
        EXPECT_EQ(std::string(error.what()), noun + " could not be read: " + path.string() + ". " + *c.reason);
      }
    } else {
      const std::string bytes = readRegularFile(path, c.content);
      EXPECT_EQ(bytes.size(), std::filesystem::file_size(path));
      EXPECT_EQ(bytes, contentOf(path));
    }
  }
}

TEST(FileReader, NamesAFileItMayNotRead) {
  TempDir dir;
  const std::filesystem::path path = dir.path() / "secret.csv";
  put(path, "title\n");
  ::chmod(path.c_str(), 0);
  if (::access(path.c_str(), R_OK) == 0) GTEST_SKIP() << "this user may read any file";
  try {
    readRegularFile(path, FileContent::tickets);
    ADD_FAILURE() << "read";
  } catch (const FileError& error) {
    EXPECT_EQ(std::string(error.what()),
              "The file could not be read: " + path.string() + ". You do not have permission to read it.");
  }
}

}  // namespace
}  // namespace orvane::testing
