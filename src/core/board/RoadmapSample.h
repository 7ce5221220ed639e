#pragma once

#include "core/board/BoardService.h"
#include "core/store/Store.h"

namespace orvane {

// A large plan to try the roadmap on: `epicCount` epics (10 areas, each
// worked through its phases, so 40 gives four phases per area) that wait for
// their area's previous phase and, for some, for another area's earlier
// phase; planned starts and due dates three weeks apart, some of which
// overlap their predecessor's; a dozen weeks of finished work behind it, one
// epic already done, and six milestones. Made through the service's own
// operations in one transaction of `store` (all of it or nothing); dates
// are UTC noons counted from the UTC day of `now`, so the same `now` gives
// the same plan. The project is called "Plan of 40 epics" (numbered when
// that name is taken).
Project createRoadmapSample(BoardService& board, Store& store, Timestamp now, int epicCount = 40);

}  // namespace orvane
