#pragma once

#include <unicode/calendar.h>

#include <vector>

#include "engine/Timestamp.h"

namespace orvane {

// One cell of a month view.
struct CalendarDay {
  Timestamp date;          // the start of that day in the grid's calendar
  bool isInMonth = false;  // false for the dimmed days of the neighbouring months

  friend bool operator==(const CalendarDay&, const CalendarDay&) = default;
};

// The calendar view's grid: the month as whole weeks.
namespace MonthGrid {

// The days of the Gregorian month that contains `date` in the time zone of
// `calendar`, weeks starting on its first weekday (a calendar of another
// kind, Islamic or Persian, lends only those two), preceded by the previous
// month's days that open the first week and followed by the next month's
// days that close the last one: in date order, a multiple of 7 long (4, 5 or
// 6 weeks, never a spare week). Empty when the calendar cannot place the
// month. `calendar` is not changed.
std::vector<CalendarDay> days(Timestamp date, const icu::Calendar& calendar);

}  // namespace MonthGrid
}  // namespace orvane
