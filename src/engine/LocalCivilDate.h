#pragma once

#include <unicode/calendar.h>
#include <unicode/gregocal.h>

#include <memory>

#include "engine/CivilDate.h"

namespace orvane {

// A civil day is a proleptic Gregorian day. The user's calendar contributes
// its time zone (and, for month grids, its first weekday), never its own
// year, month and day numbers: under an Islamic or Persian default calendar
// a ticket due 2024-02-29 is still due 2024-02-29.

// The civil day of an instant in the calendar's time zone: the UTC day of
// the instant moved by the zone's offset at that instant. The calendar is
// not changed.
CivilDate civilDateFromLocal(Timestamp instant, const icu::Calendar& calendar);

// Noon of `day` in the calendar's time zone: an instant safely inside that
// day whatever the daylight-saving shifts; civilDateFromLocal gives `day`
// back. UTC noon when the zone cannot tell its offset.
Timestamp localNoon(const CivilDate& day, const icu::Calendar& calendar);

// A proleptic Gregorian calendar with the time zone, first weekday and
// minimal days of the first week of `calendar`: what month and weekday
// arithmetic on civil days runs on. Null when ICU cannot make one.
std::unique_ptr<icu::GregorianCalendar> gregorianCalendarLike(const icu::Calendar& calendar);

// The user's calendar: proleptic Gregorian, in `zone`, with the week rules
// (first weekday, minimal days of the first week) of `locale`. Null when
// ICU cannot make one.
std::unique_ptr<icu::Calendar> userCalendar(const icu::TimeZone& zone, const icu::Locale& locale);

}  // namespace orvane
