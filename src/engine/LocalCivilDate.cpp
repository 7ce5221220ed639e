#include "engine/LocalCivilDate.h"

#include <cmath>
#include <limits>

#include "engine/Fatal.h"

namespace orvane {
namespace {

constexpr double millisPerDay = 86'400'000.0;

// Far enough back that every day is reckoned in the Gregorian calendar, as
// civil days are (ICU clamps the cutover to its own earliest day).
constexpr UDate neverJulian = -std::numeric_limits<double>::max();

// The zone's offset from UTC, in milliseconds, at `millis` read as UTC
// (`local` false) or as wall time in the zone (`local` true).
std::int32_t offsetMillis(const icu::TimeZone& zone, UDate millis, bool local, UErrorCode& status) {
  std::int32_t raw = 0;
  std::int32_t dst = 0;
  zone.getOffset(millis, local, raw, dst, status);
  return raw + dst;
}

}  // namespace

CivilDate civilDateFromLocal(Timestamp instant, const icu::Calendar& calendar) {
  const UDate millis = instant.secondsSince1970 * 1000.0;
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t offset = offsetMillis(calendar.getTimeZone(), millis, false, status);
  ORVANE_REQUIRE(U_SUCCESS(status), "civilDateFromLocal: time zone offset unavailable");
  const double days = std::floor((millis + offset) / millisPerDay);
  ORVANE_REQUIRE(std::isfinite(days) && std::fabs(days) < 1e15, "civilDateFromLocal: instant out of range");
  return CivilDate::fromDaysSinceEpoch(static_cast<std::int64_t>(days));
}

Timestamp localNoon(const CivilDate& day, const icu::Calendar& calendar) {
  const UDate wallNoon = (static_cast<double>(day.daysSinceEpoch()) + 0.5) * millisPerDay;
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t offset = offsetMillis(calendar.getTimeZone(), wallNoon, true, status);
  return Timestamp{(U_SUCCESS(status) ? wallNoon - offset : wallNoon) / 1000.0};
}

std::unique_ptr<icu::GregorianCalendar> gregorianCalendarLike(const icu::Calendar& calendar) {
  UErrorCode status = U_ZERO_ERROR;
  auto gregorian = std::make_unique<icu::GregorianCalendar>(calendar.getTimeZone(), status);
  if (U_FAILURE(status)) return nullptr;
  gregorian->setGregorianChange(neverJulian, status);
  gregorian->setFirstDayOfWeek(calendar.getFirstDayOfWeek(status));
  gregorian->setMinimalDaysInFirstWeek(calendar.getMinimalDaysInFirstWeek());
  return U_SUCCESS(status) ? std::move(gregorian) : nullptr;
}

std::unique_ptr<icu::Calendar> userCalendar(const icu::TimeZone& zone, const icu::Locale& locale) {
  UErrorCode status = U_ZERO_ERROR;
  // Only the week rules are taken from the locale: the Gregorian
  // constructor ignores a calendar the locale asks for ("@calendar=persian").
  auto calendar = std::make_unique<icu::GregorianCalendar>(zone, locale, status);
  if (U_FAILURE(status)) return nullptr;
  calendar->setGregorianChange(neverJulian, status);
  return U_SUCCESS(status) ? std::move(calendar) : nullptr;
}

}  // namespace orvane
