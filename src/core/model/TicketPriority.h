#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace orvane {

enum class TicketPriority : std::int64_t { low = 0, medium = 1, high = 2, urgent = 3 };

std::string_view displayLabel(TicketPriority priority);  // "Low", "Medium", "High", "Urgent"
// 0...3; anything else maps to no priority (shown and sorted as medium).
std::optional<TicketPriority> ticketPriorityFromRaw(std::int64_t raw);
std::optional<TicketPriority> ticketPriorityFromText(std::string_view text);  // "low", "High", ...

}  // namespace orvane
