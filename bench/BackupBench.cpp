#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "core/backup/Backup.h"
#include "core/board/BoardService.h"
#include "core/store/Rows.h"
#include "core/store/Store.h"
#include "support/BenchStore.h"

namespace orvane {
namespace {

// A heavy user's store, written row by row in one transaction: ten projects
// of 5,000 tickets (50,000 in all), each ticket with a creation event and,
// for most, a move, a comment and a checklist item; twenty people sharing
// the tickets, and a blocked-by link on every tenth ticket.
std::filesystem::path buildStore() {
  const auto path = bench::scratchStorePath("backup.sqlite");
  Store store = Store::open(path);
  Database& db = store.db();
  Transaction transaction(db);
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
      const Ticket ticket = bench::writeTicket(db, project.id, p, n, columns, c, nextPosition,
                                               people[static_cast<std::size_t>(n % 20)]);
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
    bench::removeStore(path);
    Store store = Store::open(path);
    state.ResumeTiming();
    const Backup::Report report = Backup::restoreBackup(store, document);
    benchmark::DoNotOptimize(report.tickets);
  }
  bench::removeStore(path);
}
BENCHMARK(BM_RestoreOf50000Tickets)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
}  // namespace orvane
