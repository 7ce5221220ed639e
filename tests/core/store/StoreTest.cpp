#include "core/store/Store.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "core/store/Rows.h"
#include "core/store/Schema.h"
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
