#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "engine/CivilDate.h"
#include "engine/ProvenanceTier.h"

namespace orvane {

// One period of the throughput history.
struct PeriodCount {
  PeriodWindow window;
  std::int64_t count = 0;
  ProvenanceTier provenance = ProvenanceTier::actual;

  friend bool operator==(const PeriodCount&, const PeriodCount&) = default;
};

namespace ThroughputHistory {

// The last `periods` windows of `periodDays` days ending on asOf, oldest
// first. A window that starts before the project's creation day holds the
// filler count of its index with fillerTier; every other window counts the
// completion dates inside it (zero periods are kept).
// REQUIRES: filler.size() == periods.
std::vector<PeriodCount> build(std::span<const CivilDate> completionDatesUTC, CivilDate asOf,
                               CivilDate projectCreatedUTC, std::span<const std::int64_t> filler,
                               ProvenanceTier fillerTier, std::int64_t periods, std::int64_t periodDays);

// The counts as doubles, oldest first: what the simulation draws from.
std::vector<double> samples(std::span<const PeriodCount> history);

}  // namespace ThroughputHistory
}  // namespace orvane
