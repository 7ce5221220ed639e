// The Roadmap view on the generated plan of 40 epics with dependencies (and
// on the demo project): the whole redraw after a store change, from the
// reload to the time line drawn (the inputs read on the window's thread,
// 40 × 10,000 simulations in the thread pool, the picture and the scene
// built and painted); the simulations alone; and what the window's thread
// itself spends, reading the inputs and building the scene, which is all
// the time the window cannot answer. The offscreen platform draws it.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QEventLoop>
#include <map>
#include <memory>
#include <optional>

#include "app/roadmap/RoadmapScene.h"
#include "app/roadmap/RoadmapView.h"
#include "app/shell/AppContext.h"
#include "core/board/RoadmapSample.h"
#include "core/forecast/ForecastService.h"
#include "core/store/Store.h"
#include "support/BenchStore.h"
#include "support/OffscreenExit.h"
#include "support/ViewScreen.h"

namespace orvane {
namespace {

// Wednesday 4 March 2026, 10:00 UTC: the pinned "now" of every run.
constexpr double now = 1772618400;

struct Screen : bench::ViewScreen<app::RoadmapView> {
  Uuid sample;

  Screen() : ViewScreen("roadmap-view.sqlite", Timestamp{now}) {
    sample = createRoadmapSample(context->board(), *store, Timestamp{now}).id;
  }

  // Returns once the view shows its newest run, drawn.
  void waitForRoadmap() { bench::awaitView(*view, &app::RoadmapView::roadmapShown); }

  const Uuid& project(const benchmark::State& state) const { return state.range(0) == 0 ? demo : sample; }
};

Screen& shared() { return bench::sharedScreen<Screen>(); }

const char* label(const benchmark::State& state) { return state.range(0) == 0 ? "demo project" : "40 epics"; }

void BM_RoadmapRedraw(benchmark::State& state) {
  Screen& s = shared();
  s.view->showProject(s.project(state));
  for (auto _ : state) {
    s.view->reloadNow();
    s.waitForRoadmap();
  }
  state.SetLabel(label(state));
}
BENCHMARK(BM_RoadmapRedraw)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

// The service's input and the simulations of every epic, without the view.
void BM_RoadmapComputeOnly(benchmark::State& state) {
  Screen& s = shared();
  ForecastService forecasts(*s.store);
  const CivilDate today = ForecastService::todayUTC(Timestamp{now});
  for (auto _ : state)
    benchmark::DoNotOptimize(forecasts.roadmapInput(s.project(state), today, s.context->calendar()).run());
  state.SetLabel(label(state));
}
BENCHMARK(BM_RoadmapComputeOnly)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

// The window's thread alone: reading the project and the inputs, and
// building the picture and the scene of a finished run, at each zoom.
void BM_RoadmapWindowThread(benchmark::State& state) {
  Screen& s = shared();
  const Uuid& project = s.project(state);
  ForecastService forecasts(*s.store);
  const CivilDate today = ForecastService::todayUTC(Timestamp{now});
  const RoadmapForecast forecast = forecasts.roadmapInput(project, today, s.context->calendar()).run();
  app::RoadmapScene scene(nullptr);
  int zoom = 0;
  for (auto _ : state) {
    const ProjectSnapshot snapshot = *s.context->board().snapshot(project);
    const RoadmapForecastInput input = forecasts.roadmapInput(project, today, s.context->calendar());
    const std::vector<EpicScheduleConflict> conflicts = forecasts.scheduleConflicts(project, s.context->calendar());
    const std::vector<EpicStatusRow> statuses = epicStatuses(snapshot, Timestamp{now}, s.context->calendar());
    std::map<Uuid, std::string> names;
    for (const Milestone& milestone : snapshot.milestones) names[milestone.id] = milestone.name;
    scene.showPicture(app::roadmapPicture({input, forecast, statuses, snapshot.epics, names, conflicts}),
                      static_cast<app::RoadmapZoom>(zoom));
    zoom = (zoom + 1) % 3;
  }
  state.SetLabel(label(state));
}
BENCHMARK(BM_RoadmapWindowThread)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace orvane
