#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/model/ColumnType.h"
#include "core/model/Uuid.h"

namespace orvane {

struct BoardColumn {
  Uuid id;
  std::string name;        // unique within the project, ignoring case
  std::int64_t position = 0;  // 0-based, contiguous, left to right
  std::string typeRaw;     // fixed at creation
  std::optional<std::int64_t> wipLimit;  // at least 1 when present
  Uuid projectId;

  std::optional<ColumnType> type() const { return columnTypeFromRaw(typeRaw); }
  // The type that decides flow and openness; an unknown raw value acts as a
  // backlog column.
  ColumnType effectiveType() const { return type().value_or(ColumnType::backlog); }

  friend bool operator==(const BoardColumn&, const BoardColumn&) = default;
};

}  // namespace orvane
