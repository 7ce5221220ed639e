#include "core/board/FlowRules.h"

namespace orvane::FlowRules {

FlowState apply(FlowState state, ColumnType movingTo, Timestamp now) {
  switch (movingTo) {
    case ColumnType::done:
      if (state.completedAt) return state;
      if (!state.startedAt) state.startedAt = now;
      state.completedAt = now;
      return state;
    case ColumnType::inProgress:
      if (!state.startedAt) state.startedAt = now;
      state.completedAt.reset();
      return state;
    case ColumnType::backlog:
      state.completedAt.reset();
      return state;
  }
  return state;
}

TicketEvent moveEvent(const Ticket& ticket, const BoardColumn* from, const BoardColumn& to, Timestamp at) {
  TicketEvent event{Uuid::random(), at, std::nullopt, std::nullopt, to.id, to.name, ticket.id};
  if (from) {
    event.fromColumnId = from->id;
    event.fromColumnName = from->name;
  }
  return event;
}

}  // namespace orvane::FlowRules
