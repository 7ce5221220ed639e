#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "core/board/BoardService.h"
#include "core/store/ChangeRecorder.h"
#include "core/store/Rows.h"
#include "core/store/Store.h"
#include "support/BenchStore.h"

namespace orvane {
namespace {

// Undo and redo on a store of 10 projects of 5,000 tickets, each ticket with
// a creation event, a move, a comment and a checklist item: applying a step
// checks the references of the whole file, so its cost grows with the store.
std::filesystem::path buildStore() {
  const auto path = bench::scratchStorePath("undo.sqlite");
  Store store = Store::open(path);
  Database& db = store.db();
  Transaction transaction(db);
  for (int p = 0; p < 10; ++p) {
    Project project{Uuid::random(), "Project " + std::to_string(p), "P" + std::to_string(p), Timestamp{0}};
    project.nextTicketNumber = 5001;
    rows::insert(db, project);
    const std::vector<BoardColumn> columns = bench::writeStandardColumns(db, project.id);
    std::vector<std::int64_t> nextPosition(columns.size(), 0);
    for (int n = 1; n <= 5000; ++n) {
      const auto c = static_cast<std::size_t>(n % 5);
      Ticket ticket;
      ticket.id = Uuid::random();
      ticket.number = n;
      ticket.title = "Ticket " + std::to_string(n);
      ticket.position = nextPosition[c]++;
      ticket.createdAt = Timestamp{n * 600.0};
      ticket.projectId = project.id;
      ticket.columnId = columns[c].id;
      rows::insert(db, ticket);
      rows::insert(db, TicketEvent{Uuid::random(), ticket.createdAt, std::nullopt, std::nullopt, columns[0].id,
                                   columns[0].name, ticket.id});
      rows::insert(db, TicketEvent{Uuid::random(), ticket.createdAt, columns[0].id, columns[0].name, columns[c].id,
                                   columns[c].name, ticket.id});
      rows::insert(db, TicketComment{Uuid::random(), "Looks good to me.", ticket.createdAt, ticket.id});
      rows::insert(db, ChecklistItem{Uuid::random(), "Write the tests", false, 0, ticket.id});
    }
  }
  transaction.commit();
  return path;
}

struct Fixture {
  std::filesystem::path path = buildStore();
  Store store = Store::open(path);
  BoardService service{store};
  ChangeRecorder recorder{store.db()};
  Uuid project = service.projects().front().id;
  std::vector<BoardColumn> columns = service.snapshot(project)->columns;
  Ticket ticket = rows::select<Ticket>(store.db(), "WHERE column_id = ?1 LIMIT 1", columns[1].id).front();
};

Fixture& fixture() {
  static Fixture f;
  return f;
}

// Recording costs the step itself plus SQLite's session bookkeeping.
void BM_RecordMoveStep(benchmark::State& state) {
  Fixture& f = fixture();
  double now = 1e9;
  std::size_t i = 0;
  for (auto _ : state) {
    const Uuid column = f.columns[2 + (i++ % 2)].id;
    benchmark::DoNotOptimize(
        f.recorder.record([&] { f.service.moveTicket(f.ticket.id, column, 0, Timestamp{now += 1}); }));
  }
}
BENCHMARK(BM_RecordMoveStep)->Unit(benchmark::kMillisecond);

// One undo and one redo of a move (the store ends as it began).
void BM_UndoAndRedoMove(benchmark::State& state) {
  Fixture& f = fixture();
  // Recorded once: the benchmark function runs more than once.
  static const Changeset step =
      f.recorder.record([&] { f.service.moveTicket(f.ticket.id, f.columns[4].id, 0, Timestamp{2e9}); });
  if (step.empty()) state.SkipWithError("the move changed nothing");
  for (auto _ : state) {
    f.recorder.revert(step);
    f.recorder.reapply(step);
  }
}
BENCHMARK(BM_UndoAndRedoMove)->Unit(benchmark::kMillisecond);

// Deleting a project of 5,000 tickets and its 20,000 dependent rows, undone
// and redone.
void BM_UndoAndRedoDeleteProject(benchmark::State& state) {
  Fixture& f = fixture();
  static const Changeset step = f.recorder.record([&] { f.service.deleteProject(f.service.projects().back().id); });
  for (auto _ : state) {
    f.recorder.revert(step);
    f.recorder.reapply(step);
  }
}
BENCHMARK(BM_UndoAndRedoDeleteProject)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace orvane
