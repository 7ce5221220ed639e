#include "engine/CivilDate.h"

#include <gtest/gtest.h>
#include <unicode/gregocal.h>
#include <unicode/timezone.h>

#include <memory>

#include "engine/ColdStart.h"
#include "engine/ForecastDate.h"
#include "engine/LocalCivilDate.h"

namespace orvane {
namespace {


TEST(CivilDate, RoundTripsEveryDayOfFourCenturies) {
  for (std::int64_t days = -146097; days <= 146097 * 2; ++days) {
    const CivilDate date = CivilDate::fromDaysSinceEpoch(days);
    ASSERT_EQ(date.daysSinceEpoch(), days);
    ASSERT_TRUE(date.month >= 1 && date.month <= 12 && date.day >= 1 && date.day <= 31);
  }
}

TEST(CivilDate, ParsesIsoTextLeniently) {
  const struct {
    const char* text;
    std::optional<CivilDate> expected;
  } cases[] = {
      {"2026-03-05", CivilDate{2026, 3, 5}},
      {"2026-03-05T08:00:00Z", CivilDate{2026, 3, 5}},
      {"2026-02-30", CivilDate{2026, 2, 30}},  // not checked against the month
      {"+202-01-01", CivilDate{202, 1, 1}},
      {"-001-01-01", CivilDate{-1, 1, 1}},
      {"2026-3-5", std::nullopt},
      {"2026-13-01", std::nullopt},
      {"2026-00-10", std::nullopt},
      {"2026-01-32", std::nullopt},
      {"2026-01-00", std::nullopt},
      {"2026/01/01", std::nullopt},
      {"2026-01-0", std::nullopt},
      {"", std::nullopt},
      {"abcd-01-01", std::nullopt},
      {"+-12-01-01", std::nullopt},
      {" 026-01-01", std::nullopt},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(CivilDate::fromIso(c.text), c.expected);
  }
}

TEST(CivilDate, AnImpossibleDayOrdersLikeTheDayItRollsOverTo) {
  const CivilDate february30 = *CivilDate::fromIso("2026-02-30");
  EXPECT_GT(february30, (CivilDate{2026, 3, 1}));
  EXPECT_EQ(february30.daysSinceEpoch(), (CivilDate{2026, 3, 2}).daysSinceEpoch());
  EXPECT_NE(february30, (CivilDate{2026, 3, 2}));
  EXPECT_EQ(february30.addingDays(0), (CivilDate{2026, 3, 2}));
}

TEST(CivilDate, FormatsTextAndDisplayForms) {
  EXPECT_EQ((CivilDate{999, 3, 5}).description(), "0999-03-05");
  EXPECT_EQ((CivilDate{2026, 12, 25}).description(), "2026-12-25");
  EXPECT_EQ((CivilDate{-5, 1, 1}).description(), "00-5-01-01");
  EXPECT_EQ((CivilDate{2026, 3, 5}).displayShort(), "5 Mar");
  EXPECT_EQ((CivilDate{2026, 3, 5}).displayText(), "5 Mar 2026");
  EXPECT_EQ((CivilDate{2026, 12, 31}).displayText(), "31 Dec 2026");
}

TEST(CivilDate, ConvertsInstantsInUtcAndInALocalCalendar) {
  EXPECT_EQ(CivilDate::fromUtc(Timestamp{0}), (CivilDate{1970, 1, 1}));
  EXPECT_EQ(CivilDate::fromUtc(Timestamp{-1}), (CivilDate{1969, 12, 31}));
  EXPECT_EQ(CivilDate::fromUtc(Timestamp{86399.999}), (CivilDate{1970, 1, 1}));
  EXPECT_EQ((CivilDate{2026, 3, 5}).utcMidnight().secondsSince1970, 20517.0 * 86400);

  // 2026-03-05T23:30:00Z is already 6 March in Berlin and still 5 March in
  // New York.
  const Timestamp lateEvening{20517.0 * 86400 + 23.5 * 3600};
  UErrorCode status = U_ZERO_ERROR;
  icu::GregorianCalendar berlin(icu::TimeZone::createTimeZone("Europe/Berlin"), status);
  icu::GregorianCalendar newYork(icu::TimeZone::createTimeZone("America/New_York"), status);
  ASSERT_TRUE(U_SUCCESS(status));
  EXPECT_EQ(civilDateFromLocal(lateEvening, berlin), (CivilDate{2026, 3, 6}));
  EXPECT_EQ(civilDateFromLocal(lateEvening, newYork), (CivilDate{2026, 3, 5}));
}


// The calendar ICU gives a locale by default: Islamic for Saudi Arabia,
// Persian for Iran.
std::unique_ptr<icu::Calendar> defaultCalendarOf(const char* locale, const char* zone) {
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::Calendar> calendar(
      icu::Calendar::createInstance(icu::TimeZone::createTimeZone(zone), icu::Locale(locale), status));
  EXPECT_TRUE(U_SUCCESS(status));
  return calendar;
}

TEST(CivilDate, LocalDaysAreGregorianWhateverTheCalendar) {
  struct Case {
    const char* locale;
    const char* zone;
    const char* calendarType;  // the premise: ICU's default calendar there
    double offsetHours;
  };
  const Case cases[] = {
      {"ar_SA", "Asia/Riyadh", "islamic-umalqura", 3},
      {"fa_IR", "Asia/Tehran", "persian", 3.5},
      {"en_US", "America/New_York", "gregorian", -5},
  };
  const CivilDate leapDay{2024, 2, 29};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.locale);
    const auto calendar = defaultCalendarOf(c.locale, c.zone);
    ASSERT_NE(calendar, nullptr);
    EXPECT_STREQ(calendar->getType(), c.calendarType);
    const double utcNoon = leapDay.utcMidnight().secondsSince1970 + 12 * 3600;
    EXPECT_EQ(civilDateFromLocal(Timestamp{utcNoon}, *calendar), leapDay);
    // Eleven hours later it is the next day east of UTC, not yet west of it.
    const CivilDate nextDay{2024, 3, 1};
    EXPECT_EQ(civilDateFromLocal(Timestamp{utcNoon + 11 * 3600}, *calendar), c.offsetHours > 0 ? nextDay : leapDay);
    const Timestamp noon = localNoon(leapDay, *calendar);
    EXPECT_EQ(noon.secondsSince1970, utcNoon - c.offsetHours * 3600);
    EXPECT_EQ(civilDateFromLocal(noon, *calendar), leapDay);
  }
}

TEST(CivilDate, TheUsersCalendarIsGregorianWithTheLocalesFirstWeekday) {
  const struct {
    const char* locale;
    UCalendarDaysOfWeek first;
  } cases[] = {{"ar_SA", UCAL_SUNDAY},
               {"fa_IR", UCAL_SATURDAY},
               {"fa_IR@calendar=persian", UCAL_SATURDAY},
               {"de_DE", UCAL_MONDAY},
               {"en_US", UCAL_SUNDAY}};
  const std::unique_ptr<icu::TimeZone> tehran(icu::TimeZone::createTimeZone("Asia/Tehran"));
  for (const auto& c : cases) {
    SCOPED_TRACE(c.locale);
    const std::unique_ptr<icu::Calendar> calendar = userCalendar(*tehran, icu::Locale(c.locale));
    ASSERT_NE(calendar, nullptr);
    EXPECT_STREQ(calendar->getType(), "gregorian");
    UErrorCode status = U_ZERO_ERROR;
    EXPECT_EQ(calendar->getFirstDayOfWeek(status), c.first);
    EXPECT_EQ(calendar->getTimeZone(), *tehran);
    // Its own fields are the civil day's, back to before the Julian cutover.
    for (const CivilDate day : {CivilDate{2024, 2, 29}, CivilDate{1500, 3, 1}}) {
      calendar->setTime(localNoon(day, *calendar).secondsSince1970 * 1000.0, status);
      const CivilDate fields(calendar->get(UCAL_EXTENDED_YEAR, status), calendar->get(UCAL_MONTH, status) + 1,
                             calendar->get(UCAL_DATE, status));
      EXPECT_EQ(fields, day);
      EXPECT_TRUE(U_SUCCESS(status));
    }
  }
}

TEST(PeriodWindows, AreRollingWindowsEndingOnTheGivenDay) {
  const auto windows = ColdStart::windows({2026, 3, 5}, 3, 7);
  const std::vector<PeriodWindow> expected{
      {{2026, 2, 13}, {2026, 2, 19}}, {{2026, 2, 20}, {2026, 2, 26}}, {{2026, 2, 27}, {2026, 3, 5}}};
  EXPECT_EQ(windows, expected);
  EXPECT_TRUE(ColdStart::windows({2026, 3, 5}, 0, 7).empty());
  EXPECT_EQ(ColdStart::windows({2026, 3, 5}, 2, 1).front().start, (CivilDate{2026, 3, 4}));
}

TEST(ForecastDate, SnapsToTheMicrosecondThenFloors) {
  const CivilDate runAt{2026, 3, 5};
  const struct {
    double periods;
    std::int64_t days;
  } cases[] = {{0, 0}, {1.5, 10}, {3, 21}, {2.9999999999999996, 21}, {2.9999999999, 20}, {0.1428571, 0}, {520, 3640}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.periods);
    EXPECT_EQ(forecastDate(runAt, c.periods, 7), runAt.addingDays(c.days));
  }
}

TEST(CivilDateDeathTest, OverflowIsFatal) {
  EXPECT_DEATH((void)CivilDate::fromDaysSinceEpoch(INT64_MAX), "overflow");
  EXPECT_DEATH((void)(CivilDate{INT64_MAX, 1, 1}).daysSinceEpoch(), "overflow");
}

}  // namespace
}  // namespace orvane
