// A printable report of a project of 5,000 tickets, from the store to the
// PDF's bytes: the inputs read (snapshot, forecast and roadmap inputs,
// epic statuses, completed work, risks and workload), the "When" forecast
// and the roadmap of 12 epics simulated, flow health and forecast accuracy
// computed, every page laid out and painted with its charts. Client and
// internal report. Target: under 2 s each. The offscreen platform draws it.

#include <benchmark/benchmark.h>

#include <QByteArray>
#include <QFile>
#include <memory>
#include <optional>
#include <random>

#include "app/reports/ReportContent.h"
#include "app/reports/ReportDocument.h"
#include "core/forecast/ForecastService.h"
#include "core/store/Rows.h"
#include "core/store/Store.h"
#include "engine/LocalCivilDate.h"
#include "support/BenchStore.h"

namespace orvane {
namespace {

constexpr int tickets = 5000;
constexpr double day = 86400.0;
// Wednesday 4 March 2026, 10:00 UTC: the pinned "now" of every run.
constexpr double now = 1772618400;

// A year of work on the standard board: 12 epics due a month apart around
// now, 8 people, two thirds of the tickets done, a tenth in progress (some
// blocked), the rest waiting; a ticket in seven with a due date.
Uuid writeProject(Database& db) {
  Project project{Uuid::random(), "Report bench", "REP", Timestamp{now - 380 * day}};
  project.nextTicketNumber = tickets + 1;
  project.clientName = "Client Name";
  project.internalName = "Team Lead";
  rows::insert(db, project);
  const std::vector<BoardColumn> columns = bench::writeStandardColumns(db, project.id);
  std::vector<Person> people;
  for (int p = 0; p < 8; ++p) {
    people.push_back(Person{Uuid::random(), "Person " + std::to_string(p), std::nullopt, "", ""});
    rows::insert(db, people.back());
  }
  std::vector<Epic> epics;
  for (int e = 0; e < 12; ++e) {
    epics.push_back(Epic{Uuid::random(), "Epic " + std::to_string(e), "#3366cc", Timestamp{now - (200 - e * 20) * day},
                         Timestamp{now + (e - 6) * 30 * day}, "", project.id});
    rows::insert(db, epics.back());
  }
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> created(now - 365 * day, now - day);
  std::exponential_distribution<double> wait(1.0 / (3 * day));
  std::vector<std::int64_t> nextPosition(columns.size(), 0);
  for (int n = 1; n <= tickets; ++n) {
    const int kind = static_cast<int>(random() % 30);
    const std::size_t c = kind < 20 ? 4 : kind < 23 ? 2 + static_cast<std::size_t>(kind % 2) : kind % 2;
    Ticket ticket;
    ticket.id = Uuid::random();
    ticket.number = n;
    ticket.title = "Ticket number " + std::to_string(n) + " with a title of ordinary length";
    ticket.position = nextPosition[c]++;
    ticket.createdAt = Timestamp{created(random)};
    if (c >= 2) ticket.startedAt = Timestamp{std::min(ticket.createdAt.secondsSince1970 + wait(random), now)};
    if (c == 4) ticket.completedAt = Timestamp{std::min(ticket.startedAt->secondsSince1970 + wait(random), now)};
    if (n % 7 == 0) ticket.dueDate = Timestamp{now + (n % 60 - 30) * day};
    ticket.blocked = c == 2 && n % 5 == 0;
    ticket.projectId = project.id;
    ticket.columnId = columns[c].id;
    ticket.epicId = epics[static_cast<std::size_t>(n % 12)].id;
    ticket.assigneeId = people[static_cast<std::size_t>(n % 8)].id;
    rows::insert(db, ticket);
    rows::insert(db, TicketEvent{Uuid::random(), ticket.createdAt, std::nullopt, std::nullopt, columns[c].id,
                                 columns[c].name, ticket.id});
  }
  return project.id;
}

struct Bench {
  std::filesystem::path path = bench::scratchStorePath("report.sqlite");
  std::optional<Store> store;
  std::unique_ptr<BoardService> board;
  std::unique_ptr<icu::Calendar> calendar;
  Uuid project;

  Bench() {
    store.emplace(Store::open(path));
    {
      Transaction transaction(store->db());
      project = writeProject(store->db());
      transaction.commit();
    }
    board = std::make_unique<BoardService>(*store);
    std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createTimeZone("UTC"));
    calendar = userCalendar(*zone, icu::Locale::getUK());
  }
  ~Bench() {
    board.reset();
    store.reset();
    bench::removeStore(path);
  }
};

Bench& shared() {
  static Bench bench;
  return bench;
}

void BM_ReportPdf(benchmark::State& state) {
  Bench& b = shared();
  const auto audience = static_cast<app::ReportAudience>(state.range(0));
  std::int64_t bytes = 0;
  QByteArray last;
  for (auto _ : state) {
    ForecastService forecasts(*b.store);
    auto snapshot = std::make_shared<const ProjectSnapshot>(*b.board->snapshot(b.project));
    const app::ReportReading reading =
        app::readReport(forecasts, std::move(snapshot), audience, app::periodEndingOn(CivilDate(2026, 3, 4), 7),
                        Timestamp{now}, *b.calendar);
    const QByteArray pdf = app::reportPdf(app::computeReport(reading), ReportBranding{});
    bytes = pdf.size();
    last = pdf;
    benchmark::DoNotOptimize(pdf.data());
  }
  state.SetLabel(std::string(app::rawValue(audience)) + " report, " + std::to_string(bytes / 1024) + " KB");
  // ORVANE_REPORT_BENCH_DIR keeps the last PDF of each report, to look at.
  if (const QByteArray folder = qgetenv("ORVANE_REPORT_BENCH_DIR"); !folder.isEmpty()) {
    QFile file(QString::fromLocal8Bit(folder) + "/" + QString::fromUtf8(app::rawValue(audience).data()) + ".pdf");
    if (file.open(QIODevice::WriteOnly)) file.write(last);
  }
}
BENCHMARK(BM_ReportPdf)
    ->Arg(static_cast<int>(app::ReportAudience::client))
    ->Arg(static_cast<int>(app::ReportAudience::internal))
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
}  // namespace orvane
