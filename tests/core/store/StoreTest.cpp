#include "core/store/Store.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <functional>
#include <iterator>

#include "core/store/Rows.h"
#include "core/store/Schema.h"
#include "core/store/StorePlace.h"
#include "core/support/StoreDump.h"
#include "core/support/TempStore.h"

namespace orvane {
namespace {

using testing::bytesOf;
using testing::TempDir;

void writeFile(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

std::string openError(const std::filesystem::path& path) {
  try {
    Store::open(path);
  } catch (const StoreError& error) {
    return error.what();
  }
  return "(opened)";
}

TEST(Store, CreatesANewStoreWithItsFolderAndReopensIt) {
  TempDir dir;
  const auto path = dir.path() / "nested" / "orvane.sqlite";
  Uuid person;
  {
    Store store = Store::open(path);
    EXPECT_EQ(store.db().scalarInt("PRAGMA user_version"), Schema::currentVersion);
    EXPECT_EQ(store.db().scalarInt("PRAGMA foreign_keys"), 1);
    BoardService service(store);
    person = service.createPerson("Ada", std::nullopt).id;
  }
  Store reopened = Store::open(path);
  EXPECT_EQ(rows::find<Person>(reopened.db(), person)->name, "Ada");
}

TEST(Store, RefusesFilesItMustNotTouchAndLeavesThemAsTheyWere) {
  TempDir dir;
  const auto notADatabase = dir.path() / "notes.txt";
  writeFile(notADatabase, "These are my notes, not a database. They are long enough to look like a header.\n");

  const auto otherProgram = dir.path() / "other.sqlite";
  { Database(otherProgram.string(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE).exec("CREATE TABLE t(x); INSERT INTO t VALUES (1)"); }

  const auto newer = dir.path() / "newer.sqlite";
  {
    Store store = Store::open(newer);
    store.db().exec("PRAGMA user_version = " + std::to_string(Schema::currentVersion + 1));
    store.db().exec("PRAGMA wal_checkpoint(TRUNCATE)");
  }

  const auto damaged = dir.path() / "damaged.sqlite";
  {
    Store store = Store::open(damaged);
    BoardService service(store);
    const Uuid project = service.createProject("Damaged", std::nullopt, Timestamp{0}).id;
    for (int i = 0; i < 300; ++i) service.createTicket(project, NewTicket{"Ticket " + std::to_string(i)}, Timestamp{0});
    store.db().exec("PRAGMA journal_mode = DELETE");
  }
  std::string bytes = bytesOf(damaged);
  for (std::size_t i = 4096 * 3; i < bytes.size(); i += 97) bytes[i] = static_cast<char>(bytes[i] ^ 0x5A);
  writeFile(damaged, bytes);

  const struct {
    std::filesystem::path path;
    std::string message;
  } cases[] = {
      {notADatabase, "\"" + notADatabase.string() + "\" is not an Orvane database."},
      {otherProgram, "\"" + otherProgram.string() + "\" is not an Orvane database."},
      {newer, "\"" + newer.string() + "\" was saved by a newer version of Orvane (data format 2; this version reads format 1 and older)."},
      {damaged, "The database \"" + damaged.string() + "\" is damaged"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.path.filename().string());
    const std::string before = bytesOf(c.path);
    EXPECT_EQ(openError(c.path).substr(0, c.message.size()), c.message);
    EXPECT_EQ(bytesOf(c.path), before);
  }
}

// Runs `begin` in a child that is killed with SIGKILL once it reports that
// its transaction has written pages into the file: the file and a hot
// rollback journal stay behind, as after a crash.
void killMidTransaction(const std::filesystem::path& path, const std::function<void(Database&)>& begin) {
  int fds[2];
  ASSERT_EQ(pipe(fds), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    close(fds[0]);
    try {
      Database db(path.string(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
      // A small cache spills the transaction's pages into the file early.
      db.exec("PRAGMA cache_size = 10");
      db.exec("BEGIN IMMEDIATE");
      begin(db);
      db.exec("CREATE TABLE IF NOT EXISTS ballast (b BLOB)");
      db.exec(
          "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 400) "
          "INSERT INTO ballast SELECT randomblob(3000) FROM n");
      const char ready = 1;
      if (write(fds[1], &ready, 1) != 1) _exit(3);
      pause();
    } catch (...) {
      _exit(2);
    }
    _exit(0);
  }
  close(fds[1]);
  char ready = 0;
  ASSERT_EQ(read(fds[0], &ready, 1), 1) << "the child failed before its transaction was under way";
  close(fds[0]);
  kill(child, SIGKILL);
  int status = 0;
  waitpid(child, &status, 0);
  ASSERT_TRUE(WIFSIGNALED(status));
  std::error_code ignored;
  ASSERT_GT(std::filesystem::file_size(path.string() + "-journal", ignored), 0u) << "no hot journal was left";
  ASSERT_GT(std::filesystem::file_size(path, ignored), 0u);
}

std::string integrityOf(Store& store) {
  Statement check = store.db().prepare("PRAGMA integrity_check");
  return check.step() ? check.text(0) : "(no answer)";
}

TEST(Store, AHotJournalLeftByAKilledWriterIsRolledBackBeforeTheFileIsJudged) {
  // Killed while the very first write made the store: the file holds part of
  // the schema, the journal says it was empty. The next open starts afresh.
  {
    TempDir dir;
    const auto path = dir.path() / "orvane.sqlite";
    killMidTransaction(path, [](Database& db) { Schema::migrate(db, 0); });
    Store store = Store::open(path);
    EXPECT_EQ(store.db().scalarInt("PRAGMA user_version"), Schema::currentVersion);
    EXPECT_EQ(store.db().scalarInt("SELECT count(*) FROM sqlite_schema WHERE name = 'ballast'"), 0);
    EXPECT_EQ(integrityOf(store), "ok");
    EXPECT_EQ(BoardService(store).createProject("After", std::nullopt, Timestamp{0}).name, "After");
  }
  // Killed in a rollback-journal transaction on a whole store (as while it
  // changes to WAL): everything from before the transaction is back.
  {
    TempDir dir;
    const auto path = dir.path() / "orvane.sqlite";
    {
      Store store = Store::open(path);
      BoardService(store).createProject("Kept", std::nullopt, Timestamp{0});
      store.db().exec("PRAGMA journal_mode = DELETE");
    }
    killMidTransaction(path, [](Database& db) { db.exec("DELETE FROM projects"); });
    Store store = Store::open(path);
    EXPECT_EQ(store.db().scalarInt("SELECT count(*) FROM projects"), 1);
    EXPECT_EQ(store.db().scalarInt("SELECT count(*) FROM sqlite_schema WHERE name = 'ballast'"), 0);
    EXPECT_EQ(integrityOf(store), "ok");
  }
}

TEST(StorePlace, FailuresOfThePlaceAreToldFromDamage) {
  const struct {
    int code;
    int systemErrno;
    std::optional<PlaceProblem> problem;
  } cases[] = {
      {SQLITE_FULL, 0, PlaceProblem::diskFull},
      {SQLITE_IOERR_WRITE, ENOSPC, PlaceProblem::diskFull},
      {SQLITE_IOERR_SHMSIZE, ENOSPC, PlaceProblem::diskFull},  // a WAL reader on a full disk
      {SQLITE_IOERR_FSYNC, EDQUOT, PlaceProblem::diskFull},
      {SQLITE_READONLY, 0, PlaceProblem::readOnly},
      {SQLITE_READONLY_ROLLBACK, 0, PlaceProblem::readOnly},
      {SQLITE_CANTOPEN, EROFS, PlaceProblem::readOnly},
      {SQLITE_CANTOPEN, EACCES, PlaceProblem::readOnly},
      {SQLITE_IOERR_WRITE, EROFS, PlaceProblem::readOnly},
      {SQLITE_CANTOPEN_ISDIR, EISDIR, PlaceProblem::isFolder},
      {SQLITE_IOERR_READ, EIO, std::nullopt},  // the disk itself failed
      {SQLITE_CORRUPT, ENOSPC, std::nullopt},  // a stale errno never hides damage
      {SQLITE_NOTADB, 0, std::nullopt},
      {SQLITE_BUSY, EACCES, std::nullopt},  // another program's lock
      {SQLITE_CANTOPEN, ENOENT, std::nullopt},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.code) + "/" + std::to_string(c.systemErrno));
    EXPECT_EQ(placeProblemOf(c.code, c.systemErrno), c.problem);
  }
  // Without a telling errno the folder is asked; a writable one with room is
  // no excuse, so the failure stays what SQLite said.
  TempDir dir;
  EXPECT_EQ(placeProblemOfFolder(dir.path()), std::nullopt);
  EXPECT_EQ(placeProblemOf(SQLITE_CANTOPEN, 0, dir.path() / "orvane.sqlite"), std::nullopt);
  EXPECT_EQ(placeProblemOf(SQLITE_CANTOPEN, EROFS, dir.path() / "orvane.sqlite"), PlaceProblem::readOnly);
}

TEST(StorePlace, FoldersPipesAndDevicesAreRefusedBeforeSQLiteOpensThem) {
  TempDir dir;
  const auto fifo = dir.path() / "pipe.sqlite";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  const auto blocker = dir.path() / "notes.txt";
  writeFile(blocker, "not a folder");
  const struct {
    std::filesystem::path path;
    std::string message;
  } cases[] = {
      {dir.path(), "\"" + dir.path().string() +
                       "\" is a folder, not a database file; give the path of a file in it, such as \"" +
                       (dir.path() / "orvane.sqlite").string() + "\"."},
      {fifo,
       "\"" + fifo.string() + "\" is not a regular file (a pipe, socket or device); give the path of a database file."},
      {"/dev/null",
       "\"/dev/null\" is not a regular file (a pipe, socket or device); give the path of a database file."},
      {blocker / "store" / "orvane.sqlite", "The folder \"" + (blocker / "store").string() +
                                                "\" for the database cannot be made, because \"" + blocker.string() +
                                                "\" is a file, not a folder."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.path.string());
    EXPECT_EQ(openError(c.path), c.message);
  }
  EXPECT_EQ(bytesOf(blocker), "not a folder");
}

TEST(StorePlace, AWriteRefusedForAFullDiskSaysSoAndLeavesTheStoreAsItWas) {
  testing::TempStore t;
  const Project project = t.service.createProject("Full", std::nullopt, Timestamp{0});
  t.store.db().exec("PRAGMA wal_checkpoint(TRUNCATE)");
  const std::string before = testing::dumpStore(t.store.db());
  // The file may not grow by a single page: SQLite answers as on a full disk.
  t.store.db().exec("PRAGMA max_page_count = " + std::to_string(t.store.db().scalarInt("PRAGMA page_count")));
  try {
    t.service.createTicket(project.id, NewTicket{.title = "Big", .details = std::string(200'000, 'x')}, Timestamp{0});
    FAIL() << "the ticket was saved on a full disk";
  } catch (const SqliteError& error) {
    EXPECT_EQ(t.store.placeProblemBehind(error),
              "The disk that holds \"" + t.store.path().string() + "\" is full; free some space on it and try again.");
  }
  EXPECT_EQ(testing::dumpStore(t.store.db()), before);
}

TEST(Store, DeletingAProjectTakesEverythingButThePeople) {
  testing::TempStore t;
  const Project project = t.service.createProject("Shop", std::nullopt, Timestamp{0});
  const Person ada = t.service.createPerson("Ada", std::nullopt);
  const Ticket ticket = t.service.createTicket(project.id, NewTicket{"Checkout"}, Timestamp{0});
  t.service.setAssignee(ticket.id, ada.id);
  t.service.addComment(ticket.id, "First!", Timestamp{0});

  t.service.deleteProject(project.id);
  for (const char* table : {"projects", "board_columns", "tickets", "ticket_events", "ticket_comments"}) {
    EXPECT_EQ(t.store.db().scalarInt(std::string("SELECT count(*) FROM ") + table), 0) << table;
  }
  EXPECT_EQ(t.store.db().scalarInt("SELECT count(*) FROM people"), 1);
  EXPECT_EQ(t.store.db().scalarInt("PRAGMA foreign_key_check"), 0);
}

TEST(Store, ATransactionInsideAnotherIsASavepointOfIt) {
  testing::TempStore t;
  Database& db = t.store.db();
  const auto people = [&] { return db.scalarInt("SELECT count(*) FROM people"); };
  {
    Transaction outer(db);
    t.service.createPerson("Ann", std::nullopt);
    // A refused inner operation takes back only its own work.
    try {
      Transaction inner(db);
      t.service.createPerson("Bob", std::nullopt);
      t.service.createPerson("ann", std::nullopt);
    } catch (const PMError&) {
    }
    EXPECT_EQ(people(), 1);
    t.service.createPerson("Cy", std::nullopt);
    // Nothing is committed until the outer transaction is: it rolls back whole.
  }
  EXPECT_EQ(people(), 0);
  {
    Transaction outer(db);
    t.service.createPerson("Ann", std::nullopt);
    outer.commit();
  }
  EXPECT_EQ(people(), 1);
}

}  // namespace
}  // namespace orvane
