#include "engine/Histogram.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

namespace orvane {
namespace {

constexpr std::array<std::string_view, 5> bandNames{"p50", "p70", "p85", "p95", "tail"};

// Two decimals, rounded the way the text form rounds them.
double roundedToHundredths(double value) {
  char text[64];
  std::snprintf(text, sizeof text, "%.2f", value);
  return std::strtod(text, nullptr);
}

HistogramBand bandForSharePassed(double percentPassed) {
  if (percentPassed < 50) return HistogramBand::p50;
  if (percentPassed < 70) return HistogramBand::p70;
  if (percentPassed < 85) return HistogramBand::p85;
  if (percentPassed < 95) return HistogramBand::p95;
  return HistogramBand::tail;
}

}  // namespace

std::string_view rawValue(HistogramBand band) { return bandNames[static_cast<std::size_t>(band)]; }

std::optional<HistogramBand> histogramBandFromRaw(std::string_view raw) {
  for (std::size_t i = 0; i < bandNames.size(); ++i) {
    if (bandNames[i] == raw) return static_cast<HistogramBand>(i);
  }
  return std::nullopt;
}

std::vector<HistogramBin> buildHistogram(std::span<const std::int64_t> periodsDistribution,
                                         std::int64_t iterations, CivilDate runAt, std::int64_t periodDays) {
  std::vector<std::int64_t> sorted(periodsDistribution.begin(), periodsDistribution.end());
  std::sort(sorted.begin(), sorted.end());
  const std::int64_t total = iterations != 0 ? iterations : static_cast<std::int64_t>(sorted.size());

  std::vector<HistogramBin> bins;
  std::int64_t before = 0;
  for (auto it = sorted.begin(); it != sorted.end();) {
    const std::int64_t period = *it;
    const auto next = std::upper_bound(it, sorted.end(), period);
    const std::int64_t count = next - it;
    HistogramBin bin;
    bin.period = period;
    bin.count = count;
    bin.date = runAt.addingDays(period * periodDays);
    if (total != 0) {
      const auto all = static_cast<double>(total);
      bin.band = bandForSharePassed(static_cast<double>(before) / all * 100.0);
      bin.probabilityPct = roundedToHundredths(static_cast<double>(count) / all * 100.0);
      bin.cumulativePct = roundedToHundredths(static_cast<double>(before + count) / all * 100.0);
    }
    bins.push_back(bin);
    before += count;
    it = next;
  }
  return bins;
}

}  // namespace orvane
