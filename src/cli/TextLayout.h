#pragma once

#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "engine/CivilDate.h"
#include "engine/Histogram.h"

namespace orvane::cli {

// Pieces shared by the readable outputs, which stay within 80 columns.

// "10,000 simulations", "1 week": the noun takes "s" unless n is 1.
std::string counted(std::int64_t n, std::string_view noun);
// Terminal columns of UTF-8 text, one per code point: close enough for the
// names people give projects and epics.
std::size_t widthOf(std::string_view utf8);
std::string padLeft(std::string text, std::size_t width);
std::string padRight(std::string_view utf8, std::size_t width);
// The shortest text that reads back as the same double: "2.5", "-20".
std::string shortestNumber(double value);
// A percentage with a fixed number of decimals: "78.4%".
std::string percentText(double pct, int decimals);
// Words wrapped at 78 columns, ending with a line break.
void writeWrapped(std::ostream& out, std::string_view paragraph);

// One row per confidence level: weeks (whole ones bare, others with one
// decimal) and the finish day, under a "Confidence Weeks Finish date" head.
void writeLevelTable(const std::map<int, double>& weeks, const std::map<int, CivilDate>& dates, std::ostream& out);
// "   85% confidence: at least 12 tickets", one line per level.
void writeCountsByLevel(const std::map<int, std::int64_t>& counts, std::ostream& out);
// The warning for a result some of whose simulations never finished.
void writeInconclusive(std::int64_t maxPeriods, std::ostream& out);
// The weeks needed as a table with bars scaled to the largest bin; nothing
// for an empty histogram.
void writeHistogram(const std::vector<HistogramBin>& bins, std::int64_t iterations, std::ostream& out);

}  // namespace orvane::cli
