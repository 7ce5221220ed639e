#pragma once

#include "core/model/ColumnType.h"
#include "core/model/FlowState.h"
#include "engine/Timestamp.h"

namespace orvane::FlowRules {

// The started and completed instants of a ticket that moves into a column of
// type `movingTo` at `now`:
// - done: a ticket already completed keeps its first completion; otherwise it
//   is completed at `now`, and started at `now` too if it never was.
// - inProgress: started at `now` if it never was; no longer completed.
// - backlog: no longer completed.
// A started date, once set, is never cleared by a move.
FlowState apply(FlowState state, ColumnType movingTo, Timestamp now);

}  // namespace orvane::FlowRules
