#pragma once

#include <optional>
#include <string_view>

namespace orvane {

// blockedBy: the source cannot finish until the target is done.
// relatedTo: symmetric in meaning.
enum class LinkKind { blockedBy, relatedTo };

std::string_view rawValue(LinkKind kind);  // "blocked_by", "related_to"
std::string_view displayLabel(LinkKind kind);  // "Blocked by", "Related to"
std::optional<LinkKind> linkKindFromRaw(std::string_view raw);

}  // namespace orvane
