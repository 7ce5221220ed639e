#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "core/board/BoardService.h"
#include "core/exchange/CsvCodec.h"
#include "core/exchange/IsoDateTime.h"
#include "core/exchange/TicketCsv.h"
#include "core/exchange/TicketImport.h"
#include "core/store/Store.h"

namespace orvane {
namespace {

// A ticket file as another tool would write it: `count` rows spread over the
// standard columns, with descriptions (some quoted, with line breaks), tags,
// dates, 20 epics and 12 people, and one row in fifty with a warning.
std::string ticketFile(int count) {
  const char* columns[] = {"Backlog", "To Do", "In Progress", "Review", "Done"};
  CSV::Document rows;
  rows.emplace_back(TicketCSV::headers.begin(), TicketCSV::headers.end());
  const double start = 1767225600.0;  // 2026-01-01
  for (int i = 0; i < count; ++i) {
    const int c = i % 5;
    const double created = start + i * 900.0;
    const std::string started = c >= 2 ? ISODateTime::format(Timestamp{created + 86400}) : "";
    const std::string completed = c == 4 ? ISODateTime::format(Timestamp{created + 3 * 86400}) : "";
    rows.push_back({"Ticket " + std::to_string(i) + ": make the checkout faster",
                    i % 3 == 0 ? "First line, with a comma\nsecond line \"quoted\"" : "Plain details", columns[c],
                    i % 50 == 0 ? "Someday" : "High", "Epic " + std::to_string(i % 20), "web|checkout",
                    ISODateTime::format(Timestamp{created}), started, completed, "", i % 7 == 0 ? "2026-06-30" : "",
                    "Person " + std::to_string(i % 12), i % 11 == 0 ? "Yes" : ""});
  }
  return CSV::encode(rows);
}

// Parse and import of a 10,000-row file into a fresh store file each time
// (creating the store and the project is not timed).
void BM_ImportTenThousandRows(benchmark::State& state) {
  const std::string text = ticketFile(static_cast<int>(state.range(0)));
  const auto path = std::filesystem::temp_directory_path() / ("orvane-import-bench-" + std::to_string(getpid()));
  for (auto _ : state) {
    state.PauseTiming();
    std::filesystem::remove(path);
    std::filesystem::remove(path.string() + "-wal");
    std::filesystem::remove(path.string() + "-shm");
    {
      Store store = Store::open(path);
      BoardService service(store);
      const Project project = service.createProject("Bench", std::nullopt, Timestamp{1767225600.0});
      state.ResumeTiming();
      const ImportReport report =
          importTickets(store, TicketCSV::parse(text), project.id, Timestamp{1780000000.0}, true);
      benchmark::DoNotOptimize(report.imported);
      state.PauseTiming();
      if (report.imported != state.range(0)) state.SkipWithError("not every row was imported");
    }
    state.ResumeTiming();
  }
  std::filesystem::remove(path);
  std::filesystem::remove(path.string() + "-wal");
  std::filesystem::remove(path.string() + "-shm");
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_ImportTenThousandRows)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();

// The parse alone, to see how the time divides.
void BM_ParseTenThousandRows(benchmark::State& state) {
  const std::string text = ticketFile(static_cast<int>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(TicketCSV::parse(text).rows.size());
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(BM_ParseTenThousandRows)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace orvane
