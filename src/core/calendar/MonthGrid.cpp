#include "core/calendar/MonthGrid.h"

#include <memory>

#include "engine/LocalCivilDate.h"

namespace orvane::MonthGrid {
namespace {

UDate toUDate(Timestamp t) { return t.secondsSince1970 * 1000.0; }
Timestamp fromUDate(UDate d) { return Timestamp{d / 1000.0}; }

// Midnight, or the first moment of the day where a time-zone change skips
// midnight (ICU moves a skipped wall time forward).
void toStartOfDay(icu::Calendar& cal) {
  cal.set(UCAL_HOUR_OF_DAY, 0);
  cal.set(UCAL_MINUTE, 0);
  cal.set(UCAL_SECOND, 0);
  cal.set(UCAL_MILLISECOND, 0);
}

bool sameMonth(icu::Calendar& cal, std::int32_t era, std::int32_t year, std::int32_t month, UErrorCode& status) {
  return cal.get(UCAL_ERA, status) == era && cal.get(UCAL_YEAR, status) == year && cal.get(UCAL_MONTH, status) == month;
}

}  // namespace

std::vector<CalendarDay> days(Timestamp date, const icu::Calendar& calendar) {
  UErrorCode status = U_ZERO_ERROR;
  // Months and weekdays of civil days, which are Gregorian whatever
  // calendar the user's locale prefers; only the zone and the week rules
  // come from `calendar`.
  const std::unique_ptr<icu::Calendar> cal = gregorianCalendarLike(calendar);
  if (!cal) return {};
  cal->setTime(toUDate(date), status);
  cal->set(UCAL_DATE, 1);
  toStartOfDay(*cal);
  const UDate monthStart = cal->getTime(status);
  const std::int32_t era = cal->get(UCAL_ERA, status);
  const std::int32_t year = cal->get(UCAL_YEAR, status);
  const std::int32_t month = cal->get(UCAL_MONTH, status);
  const std::int32_t weekday = cal->get(UCAL_DAY_OF_WEEK, status);
  if (U_FAILURE(status)) return {};

  const std::int32_t leading = (weekday - static_cast<std::int32_t>(cal->getFirstDayOfWeek()) + 7) % 7;
  std::int32_t inMonth = cal->getActualMaximum(UCAL_DATE, status);
  if (U_FAILURE(status) || inMonth < 1) {
    status = U_ZERO_ERROR;
    inMonth = 30;  // a calendar that cannot tell
  }
  const std::int32_t cells = (leading + inMonth + 6) / 7 * 7;

  cal->setTime(monthStart, status);
  cal->add(UCAL_DATE, -leading, status);
  if (U_FAILURE(status)) return {};
  const UDate gridStart = cal->getTime(status);

  std::vector<CalendarDay> grid;
  grid.reserve(static_cast<std::size_t>(cells));
  for (std::int32_t i = 0; i < cells; ++i) {
    // Each cell from the grid start, so one odd day cannot shift the rest.
    UErrorCode cellStatus = U_ZERO_ERROR;
    cal->setTime(gridStart, cellStatus);
    cal->add(UCAL_DATE, i, cellStatus);
    toStartOfDay(*cal);
    const UDate day = cal->getTime(cellStatus);
    const bool isInMonth = sameMonth(*cal, era, year, month, cellStatus);
    if (U_FAILURE(cellStatus)) continue;
    grid.push_back({fromUDate(day), isInMonth});
  }
  return grid;
}

}  // namespace orvane::MonthGrid
