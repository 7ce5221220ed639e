#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <string>

#include "core/files/FileError.h"
#include "core/files/FileWriter.h"
#include "core/support/FileChecks.h"
#include "core/support/TempStore.h"

namespace orvane::testing {
namespace {

using std::filesystem::path;

// The pid of a process that has ended (and been reaped).
pid_t endedProcess() {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(0);
  ::waitpid(child, nullptr, 0);
  return child;
}

std::string writeError(const path& target, const std::string& bytes, FileContent content) {
  try {
    replaceFile(target, bytes, content);
  } catch (const FileError& error) {
    return error.what();
  }
  return "written";
}

TEST(FileWriter, ReplacedFileKeepsItsModeAndOwner) {
  TempDir dir;
  for (const FileContent content : {FileContent::backup, FileContent::tickets}) {
    for (const mode_t mode : {0600, 0640, 0604, 0664}) {
      SCOPED_TRACE(mode);
      const path target = dir.path() / "kept";
      put(target, "old");
      ASSERT_EQ(::chmod(target.c_str(), mode), 0);
      replaceFile(target, "new", content);
      EXPECT_EQ(contentOf(target), "new");
      EXPECT_EQ(modeOf(target), mode);
    }
  }
  EXPECT_TRUE(hiddenNames(dir.path()).empty());

  if (::geteuid() != 0) GTEST_SKIP() << "only root may give a file to another owner";
  const path owned = dir.path() / "owned.json";
  put(owned, "old");
  ASSERT_EQ(::chown(owned.c_str(), 4242, 4343), 0);
  replaceFile(owned, "new", FileContent::backup);
  struct stat info {};
  ASSERT_EQ(::stat(owned.c_str(), &info), 0);
  EXPECT_EQ(info.st_uid, 4242u);
  EXPECT_EQ(info.st_gid, 4343u);
}

TEST(FileWriter, NewBackupIsPrivateAndNewTicketFileFollowsTheUmask) {
  TempDir dir;
  const mode_t saved = ::umask(022);
  replaceFile(dir.path() / "new.json", "{}", FileContent::backup);
  replaceFile(dir.path() / "new.csv", "title\n", FileContent::tickets);
  ::umask(027);
  replaceFile(dir.path() / "other.csv", "title\n", FileContent::tickets);
  ::umask(saved);
  EXPECT_EQ(modeOf(dir.path() / "new.json"), 0600u);
  EXPECT_EQ(modeOf(dir.path() / "new.csv"), 0644u);
  EXPECT_EQ(modeOf(dir.path() / "other.csv"), 0640u);
}

TEST(FileWriter, WritesThroughLinksToTheFinalTarget) {
  TempDir dir;
  const path folder = dir.path();
  std::filesystem::create_directories(folder / "store");
  std::filesystem::create_directories(folder / "links");
  const path real = folder / "store" / "backup.json";
  put(real, "old");
  ASSERT_EQ(::chmod(real.c_str(), 0600), 0);
  // A chain: relative, absolute, and relative to another folder.
  std::filesystem::create_symlink("store/backup.json", folder / "first");
  std::filesystem::create_symlink(folder / "first", folder / "links" / "second");
  std::filesystem::create_symlink("../links/second", folder / "store" / "third");

  for (const char* entry : {"first", "links/second", "store/third"}) {
    SCOPED_TRACE(entry);
    const std::string bytes = std::string("via ") + entry;
    replaceFile(folder / entry, bytes, FileContent::backup);
    EXPECT_EQ(contentOf(real), bytes);
    EXPECT_EQ(modeOf(real), 0600u);
  }
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "first"));
  EXPECT_EQ(std::filesystem::read_symlink(folder / "first"), "store/backup.json");
  EXPECT_EQ(std::filesystem::read_symlink(folder / "links" / "second"), folder / "first");
  EXPECT_EQ(std::filesystem::read_symlink(folder / "store" / "third"), "../links/second");

  // A link to a file still to be made: the file is made, the link stays.
  std::filesystem::create_symlink("store/made.csv", folder / "ahead.csv");
  replaceFile(folder / "ahead.csv", "title\n", FileContent::tickets);
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "ahead.csv"));
  EXPECT_EQ(contentOf(folder / "store" / "made.csv"), "title\n");

  for (const char* sub : {".", "store", "links"}) EXPECT_TRUE(hiddenNames(folder / sub).empty()) << sub;
}

TEST(FileWriter, RefusesWhatItCannotReplaceAndLeavesNothing) {
  TempDir dir;
  const path folder = dir.path();
  std::filesystem::create_directory(folder / "d.csv");
  ASSERT_EQ(::mkfifo((folder / "pipe.csv").c_str(), 0600), 0);
  std::filesystem::create_symlink("b", folder / "a");
  std::filesystem::create_symlink("a", folder / "b");
  put(folder / "plain", "x");
  const struct {
    path target;
    FileContent content;
    std::string sentence;
  } cases[] = {
      {folder / "d.csv", FileContent::tickets,
       "The file could not be written: " + (folder / "d.csv").string() + ". It is a folder, not a file."},
      {folder / "pipe.csv", FileContent::tickets,
       "The file could not be written: " + (folder / "pipe.csv").string() + ". It is not a regular file."},
      {folder / "missing" / "b.json", FileContent::backup,
       "The backup could not be written: " + (folder / "missing" / "b.json").string() + ". The folder does not exist."},
      {folder / "plain" / "b.json", FileContent::backup,
       "The backup could not be written: " + (folder / "plain" / "b.json").string() +
           ". A part of the path is not a folder."},
      {folder / "a", FileContent::backup,
       "The backup could not be written: " + (folder / "a").string() + ". Its links lead round in a circle."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.target);
    EXPECT_EQ(writeError(c.target, "new", c.content), c.sentence);
  }
  EXPECT_TRUE(std::filesystem::is_directory(folder / "d.csv"));
  EXPECT_TRUE(std::filesystem::is_empty(folder / "d.csv"));
  EXPECT_TRUE(hiddenNames(folder).empty());
}

TEST(FileWriter, RemovesOnlyTheTemporaryFilesOfEndedWriters) {
  TempDir dir;
  const path folder = dir.path();
  const std::string ended = std::to_string(endedProcess());
  const std::string running = std::to_string(::getpid());
  const std::string stale = ".x.json.orvane-tmp-" + ended + "-Ab3dE9";
  const std::vector<std::string> kept = {
      ".x.json.orvane-tmp-" + running + "-Ab3dE9",  // its writer still runs
      ".x.json.orvane-tmp-" + ended + "-Ab3dE",     // not the pattern: five letters
      ".x.json.orvane-tmp-" + ended + "-Ab3dE9~",
      ".x.json.orvane-tmp-" + ended + "x-Ab3dE9",
      ".x.json.orvane-tmp--Ab3dE9",
      ".y.json.orvane-tmp-" + ended + "-Ab3dE9",  // another target's
      ".x.json." + ended + "-Ab3dE9",
      "x.json.orvane-tmp-" + ended + "-Ab3dE9",
  };
  put(folder / stale, "half a backup");
  for (const std::string& name : kept) put(folder / name, "someone's");
  const std::string staleFolder = ".x.json.orvane-tmp-" + ended + "-Zz9Zz9";
  std::filesystem::create_directory(folder / staleFolder);

  replaceFile(folder / "x.json", "{}", FileContent::backup);

  EXPECT_FALSE(std::filesystem::exists(folder / stale));
  for (const std::string& name : kept) EXPECT_EQ(contentOf(folder / name), "someone's") << name;
  EXPECT_TRUE(std::filesystem::is_directory(folder / staleFolder));
  EXPECT_EQ(contentOf(folder / "x.json"), "{}");
}

TEST(FileWriter, AFileSizeLimitIsAnErrorAndLeavesTheOldFile) {
  TempDir dir;
  const path target = dir.path() / "tickets.csv";
  put(target, "old");
  int pipeEnds[2];
  ASSERT_EQ(::pipe(pipeEnds), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    // As the front ends do at start-up.
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{4096, 4096};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    const std::string message = writeError(target, std::string(64 * 1024, 'x'), FileContent::tickets);
    const ssize_t written = ::write(pipeEnds[1], message.data(), message.size());
    ::_exit(written == static_cast<ssize_t>(message.size()) ? 0 : 1);
  }
  ::close(pipeEnds[1]);
  std::string message;
  char buffer[512];
  for (ssize_t n; (n = ::read(pipeEnds[0], buffer, sizeof buffer)) > 0;) message.append(buffer, n);
  ::close(pipeEnds[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  ASSERT_TRUE(WIFEXITED(status)) << "the writer died of signal " << WTERMSIG(status);
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(message, "The file could not be written: " + target.string() +
                         ". It would be larger than the file size limit allows.");
  EXPECT_EQ(contentOf(target), "old");
  EXPECT_TRUE(hiddenNames(dir.path()).empty());
}

}  // namespace
}  // namespace orvane::testing
