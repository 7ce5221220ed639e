#include "core/board/BoardError.h"

namespace orvane {
namespace {

std::string messageFor(BoardError::Case kind, const std::string& payload) {
  switch (kind) {
    case BoardError::Case::duplicateName:
      return "\"" + payload + "\" is already in use.";
    case BoardError::Case::columnNotEmpty:
      return "Column \"" + payload + "\" still has tickets. Move or delete them first.";
    case BoardError::Case::lastColumnOfType:
      return std::string("The board needs at least one ") +
             (payload == rawValue(ColumnType::done) ? "Done" : "Backlog") + " column.";
    case BoardError::Case::emptyText:
      return "A name, title or comment cannot be empty.";
    case BoardError::Case::invalidWIPLimit:
      return "A WIP limit must be 1 or more, or empty for no limit.";
    case BoardError::Case::archivedTicket:
      return "Archived tickets cannot be moved. Restore the ticket first.";
    case BoardError::Case::columnNotInProject:
      return "That column belongs to a different project.";
    case BoardError::Case::epicNotInProject:
      return "That epic belongs to a different project.";
    case BoardError::Case::noColumns:
      return "The board needs at least one Backlog column and one Done column.";
  }
  return {};
}

}  // namespace

BoardError::BoardError(Case kind, std::string payload)
    : kind_(kind), payload_(std::move(payload)), message_(messageFor(kind_, payload_)) {}

}  // namespace orvane
