#include "cli/TextLayout.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace orvane::cli {
namespace {

constexpr std::size_t lineWidth = 78;
constexpr std::size_t histogramBarWidth = 35;

// Whole weeks print bare and fractional ones with one decimal, padded so
// that the units line up in a right-aligned column.
std::string weeksText(double weeks) {
  if (weeks == std::floor(weeks)) return shortestNumber(weeks) + "  ";
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%.1f", weeks);
  return buffer;
}

}  // namespace

std::string counted(std::int64_t n, std::string_view noun) {
  const std::string digits = std::to_string(n < 0 ? -n : n);
  std::string text = n < 0 ? "-" : "";
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0) text.push_back(',');
    text.push_back(digits[i]);
  }
  text.append(" ").append(noun);
  if (n != 1) text.push_back('s');
  return text;
}

std::size_t widthOf(std::string_view utf8) {
  return static_cast<std::size_t>(
      std::count_if(utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string padLeft(std::string text, std::size_t width) {
  return text.size() >= width ? text : std::string(width - text.size(), ' ') + text;
}

std::string padRight(std::string_view utf8, std::size_t width) {
  const std::size_t used = widthOf(utf8);
  return std::string(utf8) + std::string(width > used ? width - used : 0, ' ');
}

std::string shortestNumber(double value) {
  char buffer[32];
  const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, end);
}

std::string percentText(double pct, int decimals) {
  char buffer[48];
  std::snprintf(buffer, sizeof buffer, "%.*f%%", decimals, pct);
  return buffer;
}

void writeWrapped(std::ostream& out, std::string_view paragraph) {
  std::size_t column = 0;
  while (!paragraph.empty()) {
    const std::size_t space = paragraph.find(' ');
    const std::string_view word = paragraph.substr(0, space);
    if (column > 0 && column + 1 + widthOf(word) > lineWidth) {
      out << '\n';
      column = 0;
    }
    if (column > 0) {
      out << ' ';
      ++column;
    }
    out << word;
    column += widthOf(word);
    paragraph.remove_prefix(space == std::string_view::npos ? paragraph.size() : space + 1);
  }
  out << '\n';
}

void writeLevelTable(const std::map<int, double>& weeks, const std::map<int, CivilDate>& dates, std::ostream& out) {
  out << "  Confidence     Weeks   Finish date\n";
  for (const auto& [level, periods] : weeks) {
    const CivilDate& date = dates.at(level);
    out << "  " << padLeft(std::to_string(level) + "%", 10) << "  " << padLeft(weeksText(periods), 8) << "   "
        << date.description() << "  " << date.displayText() << '\n';
  }
}

void writeCountsByLevel(const std::map<int, std::int64_t>& counts, std::ostream& out) {
  for (const auto& [level, tickets] : counts) {
    out << "  " << padLeft(std::to_string(level) + "%", 3) << " confidence: at least " << counted(tickets, "ticket")
        << '\n';
  }
}

void writeInconclusive(std::int64_t maxPeriods, std::ostream& out) {
  writeWrapped(out, "Inconclusive: some simulations did not finish within " + counted(maxPeriods, "week") +
                        "; levels at or near that limit are only lower bounds.");
}

void writeHistogram(const std::vector<HistogramBin>& bins, std::int64_t iterations, std::ostream& out) {
  if (bins.empty()) return;
  std::int64_t largest = 0;
  for (const HistogramBin& bin : bins) largest = std::max(largest, bin.count);
  out << "Weeks needed across the " << counted(iterations, "simulation") << ":\n"
      << "   Weeks  Finish date    Share  Cumulative\n";
  for (const HistogramBin& bin : bins) {
    const double scaled = static_cast<double>(bin.count) / static_cast<double>(largest) * histogramBarWidth;
    const auto bar = std::max<std::size_t>(static_cast<std::size_t>(std::lround(scaled)), 1);
    out << "  " << padLeft(std::to_string(bin.period), 6) << "  " << bin.date.description() << "  "
        << padLeft(percentText(bin.probabilityPct, 2), 7) << "  " << padLeft(percentText(bin.cumulativePct, 2), 10)
        << "  " << std::string(bar, '#') << '\n';
  }
}

}  // namespace orvane::cli
