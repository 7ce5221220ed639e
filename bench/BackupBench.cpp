#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "core/backup/Backup.h"
#include "core/board/BoardService.h"
#include "core/store/Rows.h"
#include "core/store/Store.h"
#include "support/BenchStore.h"

namespace orvane {
namespace {

void removeStore(const std::filesystem::path& path) {
  for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(path.string() + suffix);
}

// A heavy user's store, written row by row in one transaction: ten projects
// of 5,000 tickets (50,000 in all), each ticket with a creation event and,
// for most, a move, a comment and a checklist item; twenty people sharing
// the tickets, and a blocked-by link on every tenth ticket.
std::filesystem::path buildStore() {
  const auto path = bench::scratchStorePath("backup.sqlite");
  Store store = Store::open(path);
  Database& db = store.db();
  Transaction transaction(db);
  const double day = 86400;
  std::vector<Uuid> people;
  for (int i = 0; i < 20; ++i) {
    people.push_back(Uuid::random());
    rows::insert(db, Person{people.back(), "Person " + std::to_string(i), "#3366CC", "p@example.com", ""});
  }
  for (int p = 0; p < 10; ++p) {
    Project project{Uuid::random(), "Project " + std::to_string(p), "P" + std::to_string(p), Timestamp{0}};
    project.nextTicketNumber = 5001;
    rows::insert(db, project);
    const std::vector<BoardColumn> columns = bench::writeStandardColumns(db, project.id);
    std::vector<std::int64_t> nextPosition(columns.size(), 0);
    Uuid previous;
    for (int n = 1; n <= 5000; ++n) {
      const std::size_t c = static_cast<std::size_t>(n % 5);
      Ticket ticket;
      ticket.id = Uuid::random();
      ticket.number = n;
      ticket.title = "Ticket number " + std::to_string(n) + " of project " + std::to_string(p);
      ticket.details = "Some details that a person wrote about this ticket.";
      ticket.position = nextPosition[c]++;
      ticket.createdAt = Timestamp{n * 600.0};
      if (c >= 2) ticket.startedAt = Timestamp{n * 600.0 + day};
      if (c == 4) ticket.completedAt = Timestamp{n * 600.0 + 3 * day};
      ticket.tags = {"web", "checkout"};
      ticket.projectId = project.id;
      ticket.columnId = columns[c].id;
      ticket.assigneeId = people[static_cast<std::size_t>(n % 20)];
      rows::insert(db, ticket);
      rows::insert(db, TicketEvent{Uuid::random(), ticket.createdAt, std::nullopt, std::nullopt, columns[0].id,
                                   columns[0].name, ticket.id});
      if (c >= 2) {
        rows::insert(db, TicketEvent{Uuid::random(), *ticket.startedAt, columns[0].id, columns[0].name, columns[c].id,
                                     columns[c].name, ticket.id});
        rows::insert(db, TicketComment{Uuid::random(), "Looks good to me.", *ticket.startedAt, ticket.id});
        rows::insert(db, ChecklistItem{Uuid::random(), "Write the tests", c == 4, 0, ticket.id});
      }
      if (n % 10 == 0)
        rows::insert(db, TicketLink{Uuid::random(), "blocked_by", ticket.createdAt, ticket.id, previous});
      previous = ticket.id;
    }
  }
  transaction.commit();
  return path;
}

const std::filesystem::path& bigStore() {
  static const auto path = buildStore();
  return path;
}

void BM_BackupOf50000Tickets(benchmark::State& state) {
  Store store = Store::open(bigStore());
  std::size_t bytes = 0;
  for (auto _ : state) {
    const std::string document = Backup::makeBackup(store, Timestamp{1e9});
    bytes = document.size();
    benchmark::DoNotOptimize(document.data());
  }
  state.counters["MB"] = static_cast<double>(bytes) / 1e6;
}
BENCHMARK(BM_BackupOf50000Tickets)->Unit(benchmark::kMillisecond)->Iterations(3);

// Into an empty store each time: the whole file read, checked and written
// in one transaction, committed to disk.
void BM_RestoreOf50000Tickets(benchmark::State& state) {
  std::string document;
  {
    Store store = Store::open(bigStore());
    document = Backup::makeBackup(store, Timestamp{1e9});
  }
  const auto path = bench::scratchStorePath("restore.sqlite");
  for (auto _ : state) {
    state.PauseTiming();
    removeStore(path);
    Store store = Store::open(path);
    state.ResumeTiming();
    const Backup::Report report = Backup::restoreBackup(store, document);
    benchmark::DoNotOptimize(report.tickets);
  }
  removeStore(path);
}
BENCHMARK(BM_RestoreOf50000Tickets)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
}  // namespace orvane
