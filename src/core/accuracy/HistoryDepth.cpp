#include "core/accuracy/HistoryDepth.h"

#include <algorithm>
#include <vector>

#include "core/model/ProjectSnapshot.h"
#include "engine/ColdStart.h"

namespace orvane::HistoryDepth {

std::int64_t realWeeks(std::span<const PeriodCount> history) {
  return std::count_if(history.begin(), history.end(),
                       [](const PeriodCount& period) { return period.provenance == ProvenanceTier::actual; });
}

bool isThin(std::span<const PeriodCount> history) { return realWeeks(history) < cautionBelowWeeks; }

std::int64_t realWeeks(const ProjectSnapshot& project, CivilDate asOf) {
  const std::vector<std::int64_t> anyFiller(static_cast<std::size_t>(ColdStart::defaultPeriods), 0);
  // Counts do not change a period's provenance, so no completions are needed.
  const std::vector<PeriodCount> history =
      ThroughputHistory::build({}, asOf, CivilDate::fromUtc(project.project.createdAt), anyFiller,
                               ProvenanceTier::systemDefault, ColdStart::defaultPeriods, ColdStart::defaultPeriodDays);
  return realWeeks(history);
}

}  // namespace orvane::HistoryDepth
