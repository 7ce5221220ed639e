// How quickly the desktop window answers with big projects: two projects of
// 5,000 tickets each (with epics, people, checklists and links), the window
// drawn on the offscreen platform. Each timed step includes the reload of the
// snapshot, the models and the repaint the user would wait for.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <QApplication>
#include <filesystem>
#include <memory>
#include <string>

#include "app/board/BoardColumnModel.h"
#include "app/board/BoardColumnWidget.h"
#include "app/board/BoardView.h"
#include "app/shell/AppContext.h"
#include "app/shell/MainWindow.h"
#include "app/shell/ProjectPane.h"
#include "core/board/BoardService.h"
#include "core/store/Rows.h"
#include "core/store/Store.h"
#include "support/BenchStore.h"

namespace orvane {
namespace {

constexpr int ticketsPerProject = 5000;

// Writes one project row by row in one transaction: the standard board, 12
// epics, tickets spread over the columns with a creation event each, a
// checklist item on every third, a blocking link on every fiftieth.
Uuid writeProject(Database& db, const std::string& name, const std::vector<Person>& people) {
  Project project{Uuid::random(), name, name.substr(0, 3), Timestamp{0}};
  project.nextTicketNumber = ticketsPerProject + 1;
  rows::insert(db, project);
  const std::vector<BoardColumn> columns = bench::writeStandardColumns(db, project.id);
  std::vector<Epic> epics;
  for (int e = 0; e < 12; ++e) {
    epics.push_back(Epic{Uuid::random(), "Epic " + std::to_string(e), "#3366cc", Timestamp{e * 86400.0 * 7},
                         Timestamp{(e + 4) * 86400.0 * 7}, "", project.id});
    rows::insert(db, epics.back());
  }
  std::vector<std::int64_t> nextPosition(columns.size(), 0);
  Uuid previous;
  for (int n = 1; n <= ticketsPerProject; ++n) {
    const std::size_t c = static_cast<std::size_t>(n % 5);
    Ticket ticket;
    ticket.id = Uuid::random();
    ticket.number = n;
    ticket.title = "Ticket number " + std::to_string(n) + " with a title of ordinary length";
    ticket.position = nextPosition[c]++;
    ticket.createdAt = Timestamp{n * 600.0};
    if (c >= 2) ticket.startedAt = Timestamp{n * 600.0 + 86400};
    if (c == 4) ticket.completedAt = Timestamp{n * 600.0 + 3 * 86400};
    if (n % 7 == 0) ticket.dueDate = Timestamp{1.77e9 + n * 3600.0};
    ticket.tags = {"web", n % 2 ? "backend" : "frontend"};
    ticket.projectId = project.id;
    ticket.columnId = columns[c].id;
    ticket.epicId = epics[static_cast<std::size_t>(n % 12)].id;
    ticket.assigneeId = people[static_cast<std::size_t>(n % people.size())].id;
    rows::insert(db, ticket);
    rows::insert(db, TicketEvent{Uuid::random(), ticket.createdAt, std::nullopt, std::nullopt, columns[c].id,
                                 columns[c].name, ticket.id});
    if (n % 3 == 0) rows::insert(db, ChecklistItem{Uuid::random(), "Write the tests", n % 2 == 0, 0, ticket.id});
    if (n % 50 == 0) rows::insert(db, TicketLink{Uuid::random(), "blocked_by", ticket.createdAt, ticket.id, previous});
    previous = ticket.id;
  }
  return project.id;
}

struct Window {
  std::filesystem::path path =
      std::filesystem::temp_directory_path() / ("orvane-app-bench-" + std::to_string(getpid()) + ".sqlite");
  std::optional<Store> store;
  std::unique_ptr<app::AppContext> context;
  std::unique_ptr<app::MainWindow> window;
  Uuid first;
  Uuid second;

  Window() {
    std::filesystem::remove(path);
    store.emplace(Store::open(path));
    {
      Transaction transaction(store->db());
      std::vector<Person> people;
      for (int p = 0; p < 8; ++p) {
        people.push_back(Person{Uuid::random(), "Person " + std::to_string(p), std::nullopt, "", ""});
        rows::insert(store->db(), people.back());
      }
      first = writeProject(store->db(), "Alpha", people);
      second = writeProject(store->db(), "Beta", people);
      transaction.commit();
    }
    context = std::make_unique<app::AppContext>(*store);
    window = std::make_unique<app::MainWindow>(*context);
    window->resize(1600, 1000);
    window->show();
    window->selectProject(first);
    QApplication::processEvents();
  }
  ~Window() {
    window.reset();
    context.reset();
    store.reset();
    std::filesystem::remove(path);
  }
};

Window& shared() {
  static Window window;
  return window;
}

void BM_SwitchProject(benchmark::State& state) {
  Window& w = shared();
  w.window->setViewMode(static_cast<app::ProjectViewMode>(state.range(0)));
  bool toSecond = true;
  for (auto _ : state) {
    w.window->selectProject(toSecond ? w.second : w.first);
    QApplication::processEvents();
    toSecond = !toSecond;
  }
  state.SetLabel(app::title(static_cast<app::ProjectViewMode>(state.range(0))).toStdString());
}
BENCHMARK(BM_SwitchProject)->Arg(0)->Arg(1)->Arg(2)->Arg(8)->Unit(benchmark::kMillisecond);

// Switching to a view that must reload (the store changed since it was last
// shown): the worst case of a view switch.
void BM_SwitchToStaleView(benchmark::State& state) {
  Window& w = shared();
  w.window->selectProject(w.first);
  const auto target = static_cast<app::ProjectViewMode>(state.range(0));
  // Not the roadmap: its simulations would still run in the pool while the
  // switch is timed.
  const auto other = target == app::ProjectViewMode::epics ? app::ProjectViewMode::board : app::ProjectViewMode::epics;
  for (auto _ : state) {
    state.PauseTiming();
    w.window->setViewMode(other);
    w.context->notifyStoreChanged();
    QApplication::processEvents();
    state.ResumeTiming();
    w.window->setViewMode(target);
    QApplication::processEvents();
  }
  state.SetLabel(app::title(target).toStdString());
}
BENCHMARK(BM_SwitchToStaleView)->Arg(0)->Arg(1)->Arg(2)->Arg(8)->Unit(benchmark::kMillisecond);

// A card dropped into the next column and back: the service move (one
// transaction with its undo record), then the reload of the board.
void BM_DropCard(benchmark::State& state) {
  Window& w = shared();
  w.window->selectProject(w.first);
  w.window->setViewMode(app::ProjectViewMode::board);
  QApplication::processEvents();
  app::BoardView* board = w.window->pane()->boardView();
  bool forward = true;
  for (auto _ : state) {
    const std::size_t from = forward ? 1 : 2;
    app::BoardColumnModel* source = board->columnWidgets()[from]->model();
    const Uuid ticket = source->card(0).id;
    const Uuid target = board->columnWidgets()[forward ? 2 : 1]->model()->column();
    if (!board->moveCard(ticket, target, 0)) state.SkipWithError("the move was refused");
    QApplication::processEvents();
    forward = !forward;
  }
}
BENCHMARK(BM_DropCard)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace orvane
