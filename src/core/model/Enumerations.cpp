#include <array>

#include "core/model/ColumnType.h"
#include "core/model/ForecastRecord.h"
#include "core/model/Iteration.h"
#include "core/model/LinkKind.h"
#include "core/model/TicketPriority.h"

namespace orvane {
namespace {

template <typename Enum, std::size_t N>
std::optional<Enum> fromRaw(const std::array<std::string_view, N>& raws, std::string_view raw) {
  for (std::size_t i = 0; i < N; ++i) {
    if (raws[i] == raw) return static_cast<Enum>(i);
  }
  return std::nullopt;
}

constexpr std::array<std::string_view, 3> columnRaws{"backlog", "in_progress", "done"};
constexpr std::array<std::string_view, 3> columnLabels{"Backlog (not started)", "In progress",
                                                       "Done (counts as throughput)"};
constexpr std::array<std::string_view, 4> priorityLabels{"Low", "Medium", "High", "Urgent"};
constexpr std::array<std::string_view, 4> priorityRaws{"low", "medium", "high", "urgent"};
constexpr std::array<std::string_view, 2> linkRaws{"blocked_by", "related_to"};
constexpr std::array<std::string_view, 2> linkLabels{"Blocked by", "Related to"};
constexpr std::array<std::string_view, 3> iterationRaws{"planned", "active", "closed"};
constexpr std::array<std::string_view, 3> iterationLabels{"Planned", "Active", "Closed"};
constexpr std::array<std::string_view, 2> forecastKindRaws{"when", "by_date"};

}  // namespace

std::string_view rawValue(ColumnType type) { return columnRaws[static_cast<std::size_t>(type)]; }
std::string_view formLabel(ColumnType type) { return columnLabels[static_cast<std::size_t>(type)]; }
std::optional<ColumnType> columnTypeFromRaw(std::string_view raw) { return fromRaw<ColumnType>(columnRaws, raw); }

std::string_view displayLabel(TicketPriority priority) { return priorityLabels[static_cast<std::size_t>(priority)]; }
std::optional<TicketPriority> ticketPriorityFromRaw(std::int64_t raw) {
  if (raw < 0 || raw > 3) return std::nullopt;
  return static_cast<TicketPriority>(raw);
}
std::optional<TicketPriority> ticketPriorityFromText(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
  return fromRaw<TicketPriority>(priorityRaws, lower);
}

std::string_view rawValue(LinkKind kind) { return linkRaws[static_cast<std::size_t>(kind)]; }
std::string_view displayLabel(LinkKind kind) { return linkLabels[static_cast<std::size_t>(kind)]; }
std::optional<LinkKind> linkKindFromRaw(std::string_view raw) { return fromRaw<LinkKind>(linkRaws, raw); }

std::string_view rawValue(IterationState state) { return iterationRaws[static_cast<std::size_t>(state)]; }
std::string_view displayLabel(IterationState state) { return iterationLabels[static_cast<std::size_t>(state)]; }

std::string_view rawValue(ForecastKind kind) { return forecastKindRaws[static_cast<std::size_t>(kind)]; }
ForecastKind forecastKindFromRaw(std::string_view raw) { return raw == "by_date" ? ForecastKind::byDate : ForecastKind::when; }

}  // namespace orvane
