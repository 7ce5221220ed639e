#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "engine/CivilDate.h"

namespace orvane {

// The confidence band a histogram bin falls in.
enum class HistogramBand { p50, p70, p85, p95, tail };

std::string_view rawValue(HistogramBand band);  // "p50", ..., "tail"
std::optional<HistogramBand> histogramBandFromRaw(std::string_view raw);

struct HistogramBin {
  std::int64_t period = 0;    // a number of periods some simulations needed
  std::int64_t count = 0;     // how many needed exactly that many
  double probabilityPct = 0;  // count as a percentage of all, two decimals
  double cumulativePct = 0;   // share finished within `period`, two decimals
  HistogramBand band = HistogramBand::p50;
  CivilDate date;             // runAt + period x periodDays

  friend bool operator==(const HistogramBin&, const HistogramBin&) = default;
};

// One bin per distinct number of periods, ascending. A bin's band is decided
// by the share of simulations before it, so the bin that crosses a level
// still belongs to the lower band.
std::vector<HistogramBin> buildHistogram(std::span<const std::int64_t> periodsDistribution,
                                         std::int64_t iterations, CivilDate runAt, std::int64_t periodDays);

}  // namespace orvane
