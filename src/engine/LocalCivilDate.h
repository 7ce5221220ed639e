#pragma once

#include <unicode/calendar.h>

#include "engine/CivilDate.h"

namespace orvane {

// The year, month and day of an instant in the given calendar and its time
// zone (the user's calendar for epic status and reports). The calendar is
// not changed: the computation works on a clone.
CivilDate civilDateFromLocal(Timestamp instant, const icu::Calendar& calendar);

}  // namespace orvane
