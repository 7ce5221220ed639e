#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "core/board/BoardService.h"
#include "core/store/Rows.h"
#include "core/store/Store.h"
#include "support/BenchStore.h"

namespace orvane {
namespace {

// A store as a heavy user might have it, written row by row in one
// transaction: `projects` projects of `ticketsEach` tickets, each ticket with
// a creation event and, for most, two moves, a comment and a checklist item.
// One column of every project holds `bigColumn` tickets.
std::filesystem::path buildStore(const std::string& name, int projects, int ticketsEach, int bigColumn) {
  const auto path = bench::scratchStorePath(name);
  Store store = Store::open(path);
  Database& db = store.db();
  Transaction transaction(db);
  for (int p = 0; p < projects; ++p) {
    Project project{Uuid::random(), "Project " + std::to_string(p), "P" + std::to_string(p), Timestamp{0}};
    project.nextTicketNumber = ticketsEach + 1;
    rows::insert(db, project);
    const std::vector<BoardColumn> columns = bench::writeStandardColumns(db, project.id);
    std::vector<std::int64_t> nextPosition(columns.size(), 0);
    for (int n = 1; n <= ticketsEach; ++n) {
      // The first `bigColumn` tickets fill "To Do"; the rest spread out.
      const std::size_t c = n <= bigColumn ? 1 : static_cast<std::size_t>(n % 5);
      bench::writeTicket(db, project.id, p, n, columns, c, nextPosition);
    }
  }
  transaction.commit();
  return path;
}

void BM_OpenStoreOf50000Tickets(benchmark::State& state) {
  static const auto path = buildStore("open.sqlite", 10, 5000, 500);
  for (auto _ : state) {
    Store store = Store::open(path);
    BoardService service(store);
    benchmark::DoNotOptimize(service.projects());
  }
}
BENCHMARK(BM_OpenStoreOf50000Tickets)->Unit(benchmark::kMillisecond);

// The worst move in a column of 500: top to bottom renumbers every card.
void BM_MoveTicketInColumnOf500(benchmark::State& state) {
  static const auto path = buildStore("move.sqlite", 1, 700, 500);
  Store store = Store::open(path);
  BoardService service(store);
  const Project project = service.projects().front();
  const auto snapshot = *service.snapshot(project.id);
  const BoardColumn& toDo = snapshot.columns[1];
  double now = 1e9;
  for (auto _ : state) {
    const auto top = rows::select<Ticket>(store.db(), "WHERE column_id = ?1 AND position = 0", toDo.id).front();
    benchmark::DoNotOptimize(service.moveTicket(top.id, toDo.id, std::nullopt, Timestamp{now += 1}));
  }
}
BENCHMARK(BM_MoveTicketInColumnOf500)->Unit(benchmark::kMillisecond);

void BM_LoadSnapshotOf10000Tickets(benchmark::State& state) {
  static const auto path = buildStore("snapshot.sqlite", 1, 10000, 500);
  Store store = Store::open(path);
  BoardService service(store);
  const Uuid project = service.projects().front().id;
  for (auto _ : state) benchmark::DoNotOptimize(service.snapshot(project));
}
BENCHMARK(BM_LoadSnapshotOf10000Tickets)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace orvane
