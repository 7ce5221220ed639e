#include "engine/ThroughputHistory.h"

#include <algorithm>

#include "engine/ColdStart.h"
#include "engine/Fatal.h"

namespace orvane::ThroughputHistory {

std::vector<PeriodCount> build(std::span<const CivilDate> completionDatesUTC, CivilDate asOf,
                               CivilDate projectCreatedUTC, std::span<const std::int64_t> filler,
                               ProvenanceTier fillerTier, std::int64_t periods, std::int64_t periodDays) {
  ORVANE_REQUIRE(periods >= 0 && filler.size() == static_cast<std::size_t>(periods),
                 "ThroughputHistory::build: filler must hold one count per period");
  const auto windows = ColdStart::windows(asOf, periods, periodDays);
  std::vector<PeriodCount> history;
  history.reserve(windows.size());
  for (std::size_t k = 0; k < windows.size(); ++k) {
    const PeriodWindow& window = windows[k];
    if (window.start < projectCreatedUTC) {
      history.push_back({window, filler[k], fillerTier});
      continue;
    }
    const auto count = std::count_if(completionDatesUTC.begin(), completionDatesUTC.end(),
                                     [&](const CivilDate& date) { return window.start <= date && date <= window.end; });
    history.push_back({window, static_cast<std::int64_t>(count), ProvenanceTier::actual});
  }
  return history;
}

std::vector<double> samples(std::span<const PeriodCount> history) {
  std::vector<double> values;
  values.reserve(history.size());
  for (const auto& period : history) values.push_back(static_cast<double>(period.count));
  return values;
}

}  // namespace orvane::ThroughputHistory
