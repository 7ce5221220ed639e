#pragma once

#include "core/model/BoardColumn.h"
#include "core/model/ColumnType.h"
#include "core/model/FlowState.h"
#include "core/model/Ticket.h"
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

// The event of `ticket` entering `to` at `at`, from `from` (none when the
// ticket is created into `to`); column names are kept as they are now, so
// the history reads right after a rename.
TicketEvent moveEvent(const Ticket& ticket, const BoardColumn* from, const BoardColumn& to, Timestamp at);

}  // namespace orvane::FlowRules
