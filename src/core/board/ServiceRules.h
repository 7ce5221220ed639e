#pragma once

// Checks shared by the operations of BoardService.

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/board/BoardError.h"
#include "core/board/PMError.h"
#include "core/store/Rows.h"
#include "core/text/Text.h"

namespace orvane::rules {

// The trimmed text; throws `onEmpty` when nothing is left.
template <typename Error>
std::string requireText(std::string_view text, const Error& onEmpty) {
  std::string trimmed = text::trimmed(text);
  if (trimmed.empty()) throw onEmpty;
  return trimmed;
}

// Whether a row other than `self` already carries `name`: the same name once
// lower-cased (text::sameName).
template <typename Row>
bool nameTaken(const std::vector<Row>& rows, std::string_view name, const std::optional<Uuid>& self = std::nullopt) {
  return std::any_of(rows.begin(), rows.end(),
                     [&](const Row& row) { return row.id != self && text::sameName(row.name, name); });
}

// The trimmed name of a person, epic or iteration among `others`: empty is
// emptyText, taken (by another than `self`) is duplicateName.
template <typename Row>
std::string requireUniqueName(std::string_view name, const std::vector<Row>& others,
                              const std::optional<Uuid>& self = std::nullopt) {
  std::string trimmed = requireText(name, PMError(PMError::Case::emptyText));
  if (nameTaken(others, trimmed, self)) throw PMError(PMError::Case::duplicateName, trimmed);
  return trimmed;
}

// A trimmed colour; nothing left means no colour.
std::optional<std::string> trimmedColor(const std::optional<std::string>& colorHex);

// The column's tickets that are not archived: the position a ticket added
// at the bottom takes.
std::int64_t activeCount(Database& db, const Uuid& column);

// The number the project's next ticket takes: its counter, unless a store
// written elsewhere left the counter at or below a number already in use,
// or past maxTicketNumber; then one above the highest number in use. Never
// reuses a number, never overflows.
std::int64_t nextFreeTicketNumber(Database& db, const Project& project);

// Whether `goal` is reached from `from` along the edges. Each node is
// visited once, so the walk ends even on a graph that holds a cycle.
bool reaches(const std::unordered_map<Uuid, std::vector<Uuid>>& edges, const Uuid& from, const Uuid& goal);

// The current row, or MissingRecordError: "That <what> no longer exists."
template <typename T>
T requireRow(Database& db, const Uuid& id, const char* what) {
  auto row = rows::find<T>(db, id);
  if (!row) throw MissingRecordError(std::string("That ") + what + " no longer exists.");
  return std::move(*row);
}

}  // namespace orvane::rules
