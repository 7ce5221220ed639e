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

}  // namespace orvane::FlowRules
