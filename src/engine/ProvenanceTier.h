#pragma once

#include <optional>
#include <string_view>

namespace orvane {

// Where a period's count came from; stored and exchanged by its raw text.
enum class ProvenanceTier { actual, userEstimated, systemDefault, carriedForward };

std::string_view rawValue(ProvenanceTier tier);  // "actual", "user_estimated", ...
std::string_view displayLabel(ProvenanceTier tier);
std::optional<ProvenanceTier> provenanceTierFromRaw(std::string_view raw);

}  // namespace orvane
