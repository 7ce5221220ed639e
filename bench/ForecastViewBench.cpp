// One live recompute of the Forecast view's what-if: from the throughput
// slider's change to the levels, the narrative and the finish-weeks chart
// showing the new run (10,000 simulations in the thread pool, then the view
// update and its repaint), on the demo project and on a generated project of
// 5,000 tickets. The window is drawn on the offscreen platform.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QEventLoop>
#include <QSlider>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/forecast/ForecastView.h"
#include "app/shell/AppContext.h"
#include "core/board/BoardService.h"
#include "core/forecast/ForecastService.h"
#include "core/store/Rows.h"
#include "core/store/Store.h"
#include "support/BenchStore.h"
#include "support/OffscreenExit.h"
#include "support/ViewScreen.h"

namespace orvane {
namespace {

constexpr int generatedTickets = 5000;
constexpr double day = 86400;
// Wednesday 4 March 2026, 10:00 UTC: the pinned "now" of every run.
constexpr double now = 1772618400;

// A project with 5,000 tickets created over the last 30 weeks; one in eight
// was finished, spread over the last twelve weeks (about 52 a week), the
// rest is open across the other columns.
Uuid writeGeneratedProject(Database& db) {
  Project project{Uuid::random(), "Big", "BIG", Timestamp{now - 30 * 7 * day}};
  project.nextTicketNumber = generatedTickets + 1;
  rows::insert(db, project);
  const std::vector<BoardColumn> columns = bench::writeStandardColumns(db, project.id);
  std::vector<std::int64_t> nextPosition(columns.size(), 0);
  const std::size_t doneColumn = columns.size() - 1;
  for (int n = 1; n <= generatedTickets; ++n) {
    const bool done = n % 8 == 0;
    const std::size_t c = done ? doneColumn : static_cast<std::size_t>(n % static_cast<int>(doneColumn));
    Ticket ticket;
    ticket.id = Uuid::random();
    ticket.number = n;
    ticket.title = "Ticket number " + std::to_string(n);
    ticket.position = nextPosition[c]++;
    ticket.createdAt = Timestamp{project.createdAt.secondsSince1970 + n * (30 * 7 * day / generatedTickets) / 2};
    if (done) {
      // Finished tickets land on the 84 days before today, a few a day.
      ticket.startedAt = ticket.createdAt;
      ticket.completedAt = Timestamp{now - (1 + (n / 8) % 84) * day};
    }
    ticket.projectId = project.id;
    ticket.columnId = columns[c].id;
    rows::insert(db, ticket);
  }
  return project.id;
}

struct Screen : bench::ViewScreen<app::ForecastView> {
  Uuid generated;

  Screen() : ViewScreen("forecast-view.sqlite", Timestamp{now}) {
    Transaction transaction(store->db());
    generated = writeGeneratedProject(store->db());
    transaction.commit();
  }

  // Returns once the view shows its newest run, drawn.
  void waitForForecast() { bench::awaitView(*view, &app::ForecastView::forecastShown); }

  void open(const Uuid& project) {
    view->showProject(project);
    view->reloadNow();
    waitForForecast();
  }
};

Screen& shared() { return bench::sharedScreen<Screen>(); }

void BM_WhatIfRecompute(benchmark::State& state) {
  Screen& s = shared();
  s.open(state.range(0) == 0 ? s.demo : s.generated);
  auto* slider = s.view->findChild<QSlider*>(QStringLiteral("throughputChange"));
  // Each step moves the slider as a drag would, to a value it did not hold.
  const int values[] = {-30, -25, -20, 30, 25, 20};
  std::size_t next = 0;
  for (auto _ : state) {
    slider->setValue(values[next]);
    s.waitForForecast();
    next = (next + 1) % std::size(values);
  }
  state.SetLabel(state.range(0) == 0 ? "demo project" : "5,000 tickets");
}
BENCHMARK(BM_WhatIfRecompute)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

// The same runs without the view: the forecast service's input and the
// 10,000 simulations on this thread. The difference to the recompute above
// is the hand-over to the thread pool and the view's update.
void BM_WhatIfEngineOnly(benchmark::State& state) {
  Screen& s = shared();
  const Uuid project = state.range(0) == 0 ? s.demo : s.generated;
  ForecastService forecasts(*s.store);
  const CivilDate today = ForecastService::todayUTC(Timestamp{now});
  const int values[] = {-30, -25, -20, 30, 25, 20};
  std::size_t next = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(forecasts.input(project, today, values[next]).runWhen());
    next = (next + 1) % std::size(values);
  }
  state.SetLabel(state.range(0) == 0 ? "demo project" : "5,000 tickets");
}
BENCHMARK(BM_WhatIfEngineOnly)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace orvane
