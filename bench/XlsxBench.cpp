#include <benchmark/benchmark.h>
#include <unistd.h>
#include <zlib.h>

#include <filesystem>
#include <string>
#include <vector>

#include "core/board/BoardService.h"
#include "core/exchange/TicketCsv.h"
#include "core/exchange/TicketImport.h"
#include "core/exchange/TicketXlsx.h"
#include "core/exchange/XlsxWriter.h"
#include "core/exchange/ZipArchive.h"
#include "core/exchange/ZipReader.h"
#include "core/store/Store.h"

namespace orvane {
namespace {

constexpr int kRows = 10'000;

void put16(std::string& out, unsigned v) {
  out += static_cast<char>(v & 0xFF);
  out += static_cast<char>((v >> 8) & 0xFF);
}
void put32(std::string& out, std::uint32_t v) {
  put16(out, v & 0xFFFF);
  put16(out, v >> 16);
}

// The archive again with every member deflated, as spreadsheet programs
// write them.
std::string deflated(const std::string& storedZip) {
  std::string out, directory;
  std::uint16_t count = 0;
  for (const auto& [name, data] : ZipReader::entries(storedZip)) {
    z_stream z{};
    deflateInit2(&z, 6, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY);
    std::string packed(deflateBound(&z, data.size()), '\0');
    z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));
    z.avail_in = static_cast<uInt>(data.size());
    z.next_out = reinterpret_cast<Bytef*>(packed.data());
    z.avail_out = static_cast<uInt>(packed.size());
    deflate(&z, Z_FINISH);
    packed.resize(z.total_out);
    deflateEnd(&z);
    const auto offset = static_cast<std::uint32_t>(out.size());
    const std::uint32_t crc = ZipArchive::crc32(data);
    for (std::string* header : {&out, &directory}) {
      const bool central = header == &directory;
      put32(*header, central ? 0x02014B50u : 0x04034B50u);
      if (central) put16(*header, 20);
      put16(*header, 20);
      put16(*header, 0x0800);
      put16(*header, 8);
      put16(*header, 0);
      put16(*header, 0x5C21);
      put32(*header, crc);
      put32(*header, static_cast<std::uint32_t>(packed.size()));
      put32(*header, static_cast<std::uint32_t>(data.size()));
      put16(*header, static_cast<unsigned>(name.size()));
      put16(*header, 0);
      if (central) {
        for (int i = 0; i < 3; ++i) put16(*header, 0);  // comment, disk, internal
        put32(*header, 0);
        put32(*header, offset);
      }
      *header += name;
    }
    out += packed;
    ++count;
  }
  const auto directoryOffset = static_cast<std::uint32_t>(out.size());
  out += directory;
  put32(out, 0x06054B50u);
  put32(out, 0);
  put16(out, count);
  put16(out, count);
  put32(out, static_cast<std::uint32_t>(directory.size()));
  put32(out, directoryOffset);
  put16(out, 0);
  return out;
}

// A deflated workbook of kRows tickets in the export layout, with dates as
// spreadsheet dates, spread over the standard board's columns.
const std::string& ticketWorkbook() {
  static const std::string bytes = [] {
    using XlsxWriter::Cell;
    XlsxWriter::Sheet sheet{.name = "Tickets"};
    sheet.rows.emplace_back();
    for (auto header : TicketCSV::headers) sheet.rows.back().push_back(Cell::ofText(std::string(header)));
    const char* columns[] = {"Backlog", "To Do", "In Progress", "Review", "Done"};
    const char* priorities[] = {"Low", "Medium", "High", "Urgent"};
    const double day = 86400, start = 1'767'225'600;  // 2026-01-01
    for (int i = 0; i < kRows; ++i) {
      const int c = i % 5;
      const double created = start + (i % 300) * day + 9 * 3600;
      std::vector<Cell> row{
          Cell::ofText("Ticket " + std::to_string(i) + ": improve the checkout flow for returning customers"),
          Cell::ofText(i % 3 == 0 ? "Customers report that the page reloads twice; check the session handling." : ""),
          Cell::ofText(columns[c]),
          Cell::ofText(priorities[i % 4]),
          Cell::ofText("Epic " + std::to_string(i % 20)),
          Cell::ofText(i % 2 ? "web|checkout" : "api"),
          Cell::ofDateTime(Timestamp{created}),
          c >= 2 ? Cell::ofDateTime(Timestamp{created + 2 * day}) : Cell{},
          c == 4 ? Cell::ofDateTime(Timestamp{created + 5 * day}) : Cell{},
          Cell{},
          i % 7 == 0 ? Cell::ofDate(Timestamp{created + 30 * day}) : Cell{},
          Cell::ofText("Person " + std::to_string(i % 15)),
          Cell::ofText(i % 11 == 0 ? "Yes" : ""),
      };
      sheet.rows.push_back(std::move(row));
    }
    return deflated(XlsxWriter::workbook(std::vector<XlsxWriter::Sheet>{sheet}));
  }();
  return bytes;
}

// The workbook's first sheet as ticket CSV text.
void BM_XlsxToCsv(benchmark::State& state) {
  const std::string& xlsx = ticketWorkbook();
  for (auto _ : state) benchmark::DoNotOptimize(TicketXlsx::csv(xlsx));
  state.counters["bytes"] = static_cast<double>(xlsx.size());
}
BENCHMARK(BM_XlsxToCsv)->Unit(benchmark::kMillisecond);

// Reading for the import screen: parsed rows with their issues, as the
// import reads a workbook.
void BM_XlsxToParsedImport(benchmark::State& state) {
  const std::string& xlsx = ticketWorkbook();
  for (auto _ : state) {
    const ParsedImport parsed = TicketXlsx::parse(xlsx);
    if (parsed.rows.size() != kRows) state.SkipWithError("rows lost");
    benchmark::DoNotOptimize(parsed);
  }
}
BENCHMARK(BM_XlsxToParsedImport)->Unit(benchmark::kMillisecond);

// The whole import: read, parse, and add the 10,000 tickets to a fresh
// project in a real store file (store creation not timed).
void BM_XlsxWholeImport(benchmark::State& state) {
  const std::string& xlsx = ticketWorkbook();
  const auto path = std::filesystem::temp_directory_path() / ("orvane-bench-xlsx-" + std::to_string(getpid()));
  for (auto _ : state) {
    state.PauseTiming();
    std::filesystem::remove_all(path);
    std::filesystem::create_directories(path);
    {
      Store store = Store::open(path / "orvane.sqlite");
      BoardService service(store);
      const Project project = service.createProject("Import", std::nullopt, Timestamp{1'767'225'600});
      state.ResumeTiming();
      const ParsedImport parsed = TicketXlsx::parse(xlsx);
      const ImportReport report = importTickets(store, parsed, project.id, Timestamp{1'800'000'000}, true);
      if (report.imported != kRows) state.SkipWithError("tickets lost");
      state.PauseTiming();
    }
    state.ResumeTiming();
  }
  std::filesystem::remove_all(path);
}
BENCHMARK(BM_XlsxWholeImport)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
}  // namespace orvane
