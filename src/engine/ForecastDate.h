#pragma once

#include <cstdint>

#include "engine/CivilDate.h"

namespace orvane {

// The day a fractional number of periods after runAt ends on: periods x
// periodDays days, snapped to the microsecond and then floored, so that
// 2.9999999999 periods of 7 days still lands on runAt + 21.
CivilDate forecastDate(CivilDate runAt, double periods, std::int64_t periodDays);

}  // namespace orvane
