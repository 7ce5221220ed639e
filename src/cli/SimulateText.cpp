#include "cli/SimulateText.h"

#include <string>

#include "cli/TextLayout.h"

namespace orvane::cli {
namespace {

void writeHeader(const SimulateReport& report, std::ostream& out) {
  const SimulateOptions& options = report.options;
  out << "Forecast: " << counted(options.backlog, "ticket") << ", "
      << counted(static_cast<std::int64_t>(options.samples.size()), "sample") << ", "
      << counted(report.result.iterations, "simulation") << ", seed " << report.seed << '\n';
  out << "As of " << options.asOf.displayText() << " (" << options.asOf.description() << "), up to "
      << counted(options.maxPeriods, "week") << " simulated.\n";
  if (options.whatIfPercent) {
    const double percent = *options.whatIfPercent;
    out << "What-if: every sample changed by " << (percent >= 0 ? "+" : "") << shortestNumber(percent)
        << "% before simulating.\n";
  }
}

void writeLevels(const SimulateReport& report, std::ostream& out) {
  out << "\nWhen will it be done?\n";
  writeLevelTable(report.result.percentiles(), report.dates, out);
  if (report.result.inconclusive) {
    out << '\n';
    writeInconclusive(report.options.maxPeriods, out);
  }
}

void writeHorizon(const SimulateReport& report, std::ostream& out) {
  if (!report.ticketsByHorizon || !report.options.horizon) return;
  const std::int64_t horizon = *report.options.horizon;
  const CivilDate by = report.options.asOf.addingDays(horizon * simulatePeriodDays);
  out << "\nBy " << by.displayText() << " (" << counted(horizon, "week") << "):\n";
  writeCountsByLevel(*report.ticketsByHorizon, out);
}

}  // namespace

void writeSimulateText(const SimulateReport& report, std::ostream& out) {
  writeHeader(report, out);
  writeLevels(report, out);
  writeHorizon(report, out);
  if (!report.histogram.empty()) {
    out << '\n';
    writeHistogram(report.histogram, report.result.iterations, out);
  }
}

}  // namespace orvane::cli
