#include "engine/ProvenanceTier.h"

#include <array>

namespace orvane {
namespace {

struct TierText {
  ProvenanceTier tier;
  std::string_view raw;
  std::string_view label;
};

constexpr std::array<TierText, 4> tierTexts{{
    {ProvenanceTier::actual, "actual", "Actual"},
    {ProvenanceTier::userEstimated, "user_estimated", "Your estimate"},
    {ProvenanceTier::systemDefault, "system_default", "Default estimate"},
    {ProvenanceTier::carriedForward, "carried_forward", "Carried forward"},
}};

}  // namespace

std::string_view rawValue(ProvenanceTier tier) { return tierTexts[static_cast<std::size_t>(tier)].raw; }

std::string_view displayLabel(ProvenanceTier tier) { return tierTexts[static_cast<std::size_t>(tier)].label; }

std::optional<ProvenanceTier> provenanceTierFromRaw(std::string_view raw) {
  for (const auto& text : tierTexts) {
    if (text.raw == raw) return text.tier;
  }
  return std::nullopt;
}

}  // namespace orvane
