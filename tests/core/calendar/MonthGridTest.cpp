#include <gtest/gtest.h>
#include <unicode/gregocal.h>
#include <unicode/timezone.h>

#include <memory>
#include <string>

#include "core/calendar/MonthGrid.h"
#include "engine/CivilDate.h"
#include "engine/LocalCivilDate.h"

namespace orvane {
namespace {

std::unique_ptr<icu::Calendar> calendarIn(const char* zone, UCalendarDaysOfWeek firstWeekday) {
  UErrorCode status = U_ZERO_ERROR;
  auto calendar = std::make_unique<icu::GregorianCalendar>(icu::TimeZone::createTimeZone(zone), status);
  calendar->setFirstDayOfWeek(firstWeekday);
  EXPECT_TRUE(U_SUCCESS(status));
  return calendar;
}

Timestamp utc(CivilDate day, int hour) {
  return Timestamp{static_cast<double>(day.daysSinceEpoch() * 86400 + hour * 3600)};
}

// Midnight of `day` in the calendar's zone (no zone here shifts at midnight).
Timestamp localMidnight(CivilDate day, const icu::Calendar& calendar) {
  return Timestamp{localNoon(day, calendar).secondsSince1970 - 12 * 3600};
}

struct Shape {
  std::size_t cells;
  std::size_t leading;   // cells before the first in-month day
  std::size_t trailing;  // cells after the last in-month day
};

Shape shapeOf(const std::vector<CalendarDay>& grid) {
  Shape shape{grid.size(), 0, 0};
  while (shape.leading < grid.size() && !grid[shape.leading].isInMonth) ++shape.leading;
  while (shape.trailing < grid.size() && !grid[grid.size() - 1 - shape.trailing].isInMonth) ++shape.trailing;
  return shape;
}

TEST(MonthGrid, WholeWeeksFromTheCalendarsFirstWeekday) {
  struct Case {
    std::string label;
    UCalendarDaysOfWeek first;
    CivilDate inMonth;
    Shape expected;
  };
  const std::vector<Case> cases{
      // February 2026 has 28 days and starts on a Sunday; March 2026 has 31
      // and starts on a Sunday; May 2026 starts on a Friday.
      {"28-day month on the first weekday", UCAL_SUNDAY, {2026, 2, 14}, {28, 0, 0}},
      {"same month, Monday first", UCAL_MONDAY, {2026, 2, 14}, {35, 6, 1}},
      {"31 days from the last weekday", UCAL_MONDAY, {2026, 3, 31}, {42, 6, 5}},
      {"31 days from the first weekday", UCAL_SUNDAY, {2026, 3, 1}, {35, 0, 4}},
      {"Friday start, Sunday first", UCAL_SUNDAY, {2026, 5, 20}, {42, 5, 6}},
      {"Friday start, Monday first", UCAL_MONDAY, {2026, 5, 20}, {35, 4, 0}},
      {"leap February", UCAL_MONDAY, {2028, 2, 29}, {35, 1, 5}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.label);
    const auto calendar = calendarIn("UTC", c.first);
    const auto grid = MonthGrid::days(utc(c.inMonth, 12), *calendar);
    const Shape shape = shapeOf(grid);
    EXPECT_EQ(shape.cells, c.expected.cells);
    EXPECT_EQ(shape.leading, c.expected.leading);
    EXPECT_EQ(shape.trailing, c.expected.trailing);
    const CivilDate first{c.inMonth.year, c.inMonth.month, 1};
    ASSERT_FALSE(grid.empty());
    EXPECT_EQ(grid[shape.leading].date, utc(first, 0));
    for (std::size_t i = shape.leading; i + shape.trailing < grid.size(); ++i) EXPECT_TRUE(grid[i].isInMonth);
  }
}

TEST(MonthGrid, DaysStartAtLocalMidnightInTheCalendarsZone) {
  const auto calendar = calendarIn("America/New_York", UCAL_MONDAY);
  UErrorCode status = U_ZERO_ERROR;
  const UDate before = calendar->getTime(status);

  // 03:00 UTC on 1 March is still 28 February in New York: February's grid.
  const auto february = MonthGrid::days(utc({2026, 3, 1}, 3), *calendar);
  ASSERT_EQ(february.size(), 35u);
  EXPECT_EQ(february.front(), (CalendarDay{utc({2026, 1, 26}, 5), false}));
  EXPECT_EQ(february.back(), (CalendarDay{utc({2026, 3, 1}, 5), false}));

  // Summer time begins on 8 March 2026 at 02:00: later midnights are at 04:00 UTC.
  const auto march = MonthGrid::days(utc({2026, 3, 15}, 12), *calendar);
  ASSERT_EQ(march.size(), 42u);
  const CivilDate gridStart{2026, 2, 23};
  for (std::size_t i = 0; i < march.size(); ++i) {
    const CivilDate day = gridStart.addingDays(static_cast<std::int64_t>(i));
    const int offsetHours = day > CivilDate{2026, 3, 8} ? 4 : 5;
    EXPECT_EQ(march[i], (CalendarDay{utc(day, offsetHours), day.month == 3})) << day.description();
  }

  EXPECT_EQ(calendar->getTime(status), before);  // the caller's calendar is left alone
}

TEST(MonthGrid, GregorianMonthsUnderAnIslamicOrPersianCalendar) {
  // The calendar ICU gives each locale by default, which numbers its own
  // years and months: the grid keeps to Gregorian months and takes only the
  // zone and the first weekday from it.
  const struct {
    const char* locale;
    const char* zone;
    CivilDate gridStart;  // the first weekday on or before 1 February 2024
  } cases[] = {{"ar_SA", "Asia/Riyadh", {2024, 1, 28}}, {"fa_IR", "Asia/Tehran", {2024, 1, 27}}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.locale);
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::Calendar> calendar(
        icu::Calendar::createInstance(icu::TimeZone::createTimeZone(c.zone), icu::Locale(c.locale), status));
    ASSERT_TRUE(U_SUCCESS(status));
    ASSERT_STRNE(calendar->getType(), "gregorian");
    const auto grid = MonthGrid::days(utc({2024, 2, 29}, 12), *calendar);
    ASSERT_EQ(grid.size(), 35u);
    for (std::size_t i = 0; i < grid.size(); ++i) {
      const CivilDate day = c.gridStart.addingDays(static_cast<std::int64_t>(i));
      EXPECT_EQ(civilDateFromLocal(grid[i].date, *calendar), day);
      EXPECT_EQ(grid[i].date, localMidnight(day, *calendar)) << day.description();
      EXPECT_EQ(grid[i].isInMonth, day.month == 2) << day.description();
    }
  }
}

}  // namespace
}  // namespace orvane
