#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/model/Uuid.h"
#include "engine/Timestamp.h"

namespace orvane {

enum class ForecastKind { when, byDate };

std::string_view rawValue(ForecastKind kind);  // "when", "by_date"
ForecastKind forecastKindFromRaw(std::string_view raw);  // anything but "by_date" is "when"

// One logged forecast run. Days are kept as YYYY-MM-DD text so a record never
// shifts with time zones; no seed is stored, since it follows from the
// samples, the what-if change and the backlog.
struct ForecastRecord {
  Uuid id;
  Timestamp runAt;
  std::string kindRaw = "when";
  std::string asOfDay;
  std::int64_t backlog = 0;
  std::optional<std::string> targetDay;
  double whatIfPercent = 0;
  std::vector<std::int64_t> samples;
  std::vector<std::string> provenance;
  std::vector<std::string> resultDays;
  std::vector<std::int64_t> resultCounts;
  bool inconclusive = false;
  std::optional<std::string> commitmentDay;
  std::optional<double> confidencePct;
  std::string note;
  std::optional<Uuid> projectId;

  ForecastKind kind() const { return forecastKindFromRaw(kindRaw); }

  friend bool operator==(const ForecastRecord&, const ForecastRecord&) = default;
};

}  // namespace orvane
