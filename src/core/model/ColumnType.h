#pragma once

#include <optional>
#include <string_view>

namespace orvane {

// What a move into a column means for a ticket's started and completed dates.
enum class ColumnType { backlog, inProgress, done };

std::string_view rawValue(ColumnType type);  // "backlog", "in_progress", "done"
// The add-column form's label: "Backlog (not started)", "In progress",
// "Done (counts as throughput)".
std::string_view formLabel(ColumnType type);
// An unknown raw value maps to no type; such a column counts as a backlog
// column (nothing started, nothing done) wherever a type is needed.
std::optional<ColumnType> columnTypeFromRaw(std::string_view raw);

}  // namespace orvane
