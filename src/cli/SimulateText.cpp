#include "cli/SimulateText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <string>
#include <string_view>

namespace orvane::cli {
namespace {

constexpr std::size_t lineWidth = 78;
constexpr std::size_t histogramBarWidth = 35;

// "10,000 simulations", "1 week". Counts here are never negative.
std::string counted(std::int64_t n, std::string_view noun) {
  const std::string digits = std::to_string(n);
  std::string text;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0) text.push_back(',');
    text.push_back(digits[i]);
  }
  text.append(" ").append(noun);
  if (n != 1) text.push_back('s');
  return text;
}

std::string padLeft(std::string text, std::size_t width) {
  return text.size() >= width ? text : std::string(width - text.size(), ' ') + text;
}

std::string shortest(double value) {
  char buffer[32];
  const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, end);
}

// Whole weeks print bare and fractional ones with one decimal, padded so
// that the units line up in a right-aligned column.
std::string weeksText(double weeks) {
  if (weeks == std::floor(weeks)) return shortest(weeks) + "  ";
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%.1f", weeks);
  return buffer;
}

std::string percentText(double pct) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%.2f%%", pct);
  return buffer;
}

void writeWrapped(std::ostream& out, std::string_view paragraph) {
  std::size_t column = 0;
  while (!paragraph.empty()) {
    const std::size_t space = paragraph.find(' ');
    const std::string_view word = paragraph.substr(0, space);
    if (column > 0 && column + 1 + word.size() > lineWidth) {
      out << '\n';
      column = 0;
    }
    if (column > 0) {
      out << ' ';
      ++column;
    }
    out << word;
    column += word.size();
    paragraph.remove_prefix(space == std::string_view::npos ? paragraph.size() : space + 1);
  }
  out << '\n';
}

void writeHeader(const SimulateReport& report, std::ostream& out) {
  const SimulateOptions& options = report.options;
  out << "Forecast: " << counted(options.backlog, "ticket") << ", "
      << counted(static_cast<std::int64_t>(options.samples.size()), "sample") << ", "
      << counted(report.result.iterations, "simulation") << ", seed " << report.seed << '\n';
  out << "As of " << options.asOf.displayText() << " (" << options.asOf.description() << "), up to "
      << counted(options.maxPeriods, "week") << " simulated.\n";
  if (options.whatIfPercent) {
    const double percent = *options.whatIfPercent;
    out << "What-if: every sample changed by " << (percent >= 0 ? "+" : "") << shortest(percent)
        << "% before simulating.\n";
  }
}

void writeLevels(const SimulateReport& report, std::ostream& out) {
  out << "\nWhen will it be done?\n"
      << "  Confidence     Weeks   Finish date\n";
  for (const auto& [level, weeks] : report.result.percentiles()) {
    const CivilDate& date = report.dates.at(level);
    out << "  " << padLeft(std::to_string(level) + "%", 10) << "  " << padLeft(weeksText(weeks), 8) << "   "
        << date.description() << "  " << date.displayText() << '\n';
  }
  if (report.result.inconclusive) {
    out << '\n';
    writeWrapped(out, "Inconclusive: some simulations did not finish within " +
                          counted(report.options.maxPeriods, "week") +
                          "; levels at or near that limit are only lower bounds.");
  }
}

void writeHorizon(const SimulateReport& report, std::ostream& out) {
  if (!report.ticketsByHorizon || !report.options.horizon) return;
  const std::int64_t horizon = *report.options.horizon;
  const CivilDate by = report.options.asOf.addingDays(horizon * simulatePeriodDays);
  out << "\nBy " << by.displayText() << " (" << counted(horizon, "week") << "):\n";
  for (const auto& [level, tickets] : *report.ticketsByHorizon) {
    out << "  " << padLeft(std::to_string(level) + "%", 3) << " confidence: at least "
        << counted(tickets, "ticket") << '\n';
  }
}

void writeHistogram(const SimulateReport& report, std::ostream& out) {
  if (report.histogram.empty()) return;
  std::int64_t largest = 0;
  for (const HistogramBin& bin : report.histogram) largest = std::max(largest, bin.count);
  out << "\nWeeks needed across the " << counted(report.result.iterations, "simulation") << ":\n"
      << "   Weeks  Finish date    Share  Cumulative\n";
  for (const HistogramBin& bin : report.histogram) {
    const double scaled = static_cast<double>(bin.count) / static_cast<double>(largest) * histogramBarWidth;
    const auto bar = std::max<std::size_t>(static_cast<std::size_t>(std::lround(scaled)), 1);
    out << "  " << padLeft(std::to_string(bin.period), 6) << "  " << bin.date.description() << "  "
        << padLeft(percentText(bin.probabilityPct), 7) << "  " << padLeft(percentText(bin.cumulativePct), 10)
        << "  " << std::string(bar, '#') << '\n';
  }
}

}  // namespace

void writeSimulateText(const SimulateReport& report, std::ostream& out) {
  writeHeader(report, out);
  writeLevels(report, out);
  writeHorizon(report, out);
  writeHistogram(report, out);
}

}  // namespace orvane::cli
