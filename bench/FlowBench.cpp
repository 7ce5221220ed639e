// Every figure of the Flow screen for one project of 10,000 tickets: the flow
// tickets taken from a snapshot, 12 weeks of throughput, cycle times and their
// summary, ages and 84 days of cumulative flow. Target: 20 ms. Then what one
// redraw of the Flow view computes over a year of weeks: the same figures for
// 52 weeks, flow health and the analyses (arrivals, four process behaviour
// charts, Little's law). Target: 200 ms, so a store change redraws well
// within a second.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>

#include "core/accuracy/FlowHealth.h"
#include "core/metrics/FlowAnalysis.h"
#include "core/metrics/FlowScreen.h"
#include "core/model/ProjectSnapshot.h"

namespace orvane {
namespace {

constexpr double day = 86400.0;
const Timestamp now = CivilDate(2026, 3, 5).utcMidnight();

// A year of work on the standard board, built in memory: a third of the
// tickets done, a tenth in progress, a few archived.
ProjectSnapshot project(int tickets) {
  ProjectSnapshot s;
  s.project.id = Uuid::random();
  s.project.key = "BENCH";
  const char* names[] = {"Backlog", "To Do", "In Progress", "Review", "Done"};
  const char* types[] = {"backlog", "backlog", "in_progress", "in_progress", "done"};
  for (int i = 0; i < 5; ++i) {
    BoardColumn c;
    c.id = Uuid::random();
    c.name = names[i];
    c.position = i;
    c.typeRaw = types[i];
    c.projectId = s.project.id;
    s.columns.push_back(c);
  }
  std::mt19937_64 random(42);
  std::uniform_real_distribution<double> created(now.secondsSince1970 - 365 * day, now.secondsSince1970);
  std::exponential_distribution<double> wait(1.0 / (3 * day));
  std::uniform_int_distribution<int> state(0, 9);
  for (int n = 1; n <= tickets; ++n) {
    Ticket t;
    t.id = Uuid::random();
    t.number = n;
    t.title = "Ticket " + std::to_string(n);
    t.projectId = s.project.id;
    t.createdAt = Timestamp{created(random)};
    const int kind = state(random);
    if (kind >= 3) {
      const double started = std::min(t.createdAt.secondsSince1970 + wait(random), now.secondsSince1970);
      t.startedAt = Timestamp{started};
      if (kind >= 5) {
        t.completedAt = Timestamp{std::min(started + wait(random), now.secondsSince1970)};
        t.columnId = s.columns[4].id;
      } else {
        t.columnId = s.columns[2 + kind % 2].id;
      }
    } else {
      t.columnId = s.columns[kind % 2].id;
    }
    if (n % 97 == 0) t.archivedAt = now;
    s.tickets.push_back(std::move(t));
  }
  return s;
}

void flowScreen(benchmark::State& state) {
  const ProjectSnapshot snapshot = project(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    const std::vector<FlowTicket> tickets = flowTickets(snapshot);
    FlowScreen::Figures figures = FlowScreen::figures(tickets, now, FlowScreen::defaultWeeks);
    benchmark::DoNotOptimize(figures);
  }
}

BENCHMARK(flowScreen)
    ->Arg(10'000)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(15)
    ->ComputeStatistics("min", [](const std::vector<double>& v) { return *std::min_element(v.begin(), v.end()); });

void flowViewYear(benchmark::State& state) {
  const ProjectSnapshot snapshot = project(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    const std::vector<FlowTicket> tickets = flowTickets(snapshot);
    const FlowScreen::Figures figures = FlowScreen::figures(tickets, now, 52);
    FlowHealth health = flowHealth(snapshot, now);
    FlowAnalysis analysis = FlowAnalyses::analyse(tickets, figures, FlowAnalyses::wipLimitSum(snapshot),
                                                    CivilDate::fromUtc(snapshot.project.createdAt));
    benchmark::DoNotOptimize(health);
    benchmark::DoNotOptimize(analysis);
  }
}

BENCHMARK(flowViewYear)
    ->Arg(10'000)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ComputeStatistics("min", [](const std::vector<double>& v) { return *std::min_element(v.begin(), v.end()); });

}  // namespace
}  // namespace orvane
