#include <benchmark/benchmark.h>
#include <unicode/gregocal.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "core/accuracy/FlowHealth.h"
#include "core/accuracy/ForecastAccuracy.h"
#include "core/board/BoardService.h"
#include "core/calendar/MonthGrid.h"
#include "core/filter/TicketFilter.h"
#include "core/store/Rows.h"
#include "core/store/Store.h"
#include "support/BenchStore.h"

namespace orvane {
namespace {

constexpr double day = 86400;

// One project of 5,000 tickets, as the desktop app's largest case: every
// ticket with a comment and a checklist item, a quarter of them assigned
// (to a name with an accent), one in ten with an accent in its details,
// and 200 logged "When" forecasts, one a day.
ProjectSnapshot bigProject() {
  const auto path = bench::scratchStorePath("filter.sqlite");
  Store store = Store::open(path);
  Database& db = store.db();
  {
    Transaction transaction(db);
    Project project{Uuid::random(), "Big", "BIG", Timestamp{0}};
    project.nextTicketNumber = 5001;
    rows::insert(db, project);
    const std::vector<BoardColumn> columns = bench::writeStandardColumns(db, project.id);
    const Person emile{Uuid::random(), "Émile Durand", std::nullopt, "", ""};
    rows::insert(db, emile);
    for (int n = 1; n <= 5000; ++n) {
      const std::size_t c = static_cast<std::size_t>(n % 5);
      Ticket t;
      t.id = Uuid::random();
      t.number = n;
      t.title = "Ticket number " + std::to_string(n) + " about the checkout page";
      t.details = n % 10 == 0 ? "Details that mention a café." : "Some details that a person wrote about this ticket.";
      t.position = n;
      t.createdAt = Timestamp{n * 600.0};
      if (c >= 2) t.startedAt = Timestamp{n * 600.0 + day};
      if (c == 4) t.completedAt = Timestamp{n * 600.0 + 3 * day};
      t.tags = {"web", "checkout"};
      t.projectId = project.id;
      t.columnId = columns[c].id;
      if (n % 4 == 0) t.assigneeId = emile.id;
      rows::insert(db, t);
      rows::insert(db, TicketComment{Uuid::random(), "Looks good to me, ship it.", t.createdAt, t.id});
      rows::insert(db, ChecklistItem{Uuid::random(), "Write the tests", false, 0, t.id});
    }
    for (int r = 0; r < 200; ++r) {
      ForecastRecord record;
      record.id = Uuid::random();
      record.runAt = Timestamp{r * day};
      record.asOfDay = CivilDate::fromUtc(record.runAt).description();
      record.backlog = 3000;
      for (int offset : {60, 70, 80, 90})
        record.resultDays.push_back(CivilDate::fromUtc(record.runAt).addingDays(offset).description());
      record.projectId = project.id;
      rows::insert(db, record);
    }
    transaction.commit();
  }
  BoardService service(store);
  ProjectSnapshot snapshot = *service.snapshot(service.projects().front().id);
  std::filesystem::remove(path);
  return snapshot;
}

const ProjectSnapshot& project() {
  static const ProjectSnapshot snapshot = bigProject();
  return snapshot;
}

// A keystroke in the filter bar: two words, one with an accent folded away.
void BM_FilterTextSearch(benchmark::State& state) {
  TicketFilter filter;
  filter.text = "emile cafe";
  for (auto _ : state) benchmark::DoNotOptimize(filter.apply(std::span<const Ticket>(project().tickets), project()));
}
BENCHMARK(BM_FilterTextSearch)->Unit(benchmark::kMillisecond);

void BM_FilterFieldsOnly(benchmark::State& state) {
  TicketFilter filter;
  filter.status = StatusFilter::inProgress;
  filter.tag = "Checkout";
  for (auto _ : state) benchmark::DoNotOptimize(filter.apply(std::span<const Ticket>(project().tickets), project()));
}
BENCHMARK(BM_FilterFieldsOnly)->Unit(benchmark::kMillisecond);

void BM_MonthGrid(benchmark::State& state) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::GregorianCalendar calendar(icu::TimeZone::createTimeZone("Europe/Berlin"), status);
  for (auto _ : state) benchmark::DoNotOptimize(MonthGrid::days(Timestamp{1772753400.0}, calendar));
}
BENCHMARK(BM_MonthGrid)->Unit(benchmark::kMicrosecond);

void BM_AccuracyReport(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(accuracyReport(project(), Timestamp{400 * day}));
}
BENCHMARK(BM_AccuracyReport)->Unit(benchmark::kMillisecond);

void BM_FlowHealth(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(flowHealth(project(), Timestamp{40 * day}));
}
BENCHMARK(BM_FlowHealth)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace orvane
