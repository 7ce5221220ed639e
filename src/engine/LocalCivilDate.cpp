#include "engine/LocalCivilDate.h"

#include <memory>

#include "engine/Fatal.h"

namespace orvane {

CivilDate civilDateFromLocal(Timestamp instant, const icu::Calendar& calendar) {
  std::unique_ptr<icu::Calendar> local(calendar.clone());
  ORVANE_REQUIRE(local != nullptr, "civilDateFromLocal: calendar clone failed");
  UErrorCode status = U_ZERO_ERROR;
  local->setTime(instant.secondsSince1970 * 1000.0, status);
  // The extended year runs on through era changes (1 BC is year 0), as
  // civil dates do.
  const std::int64_t year = local->get(UCAL_EXTENDED_YEAR, status);
  const std::int64_t month = local->get(UCAL_MONTH, status) + 1;
  const std::int64_t day = local->get(UCAL_DATE, status);
  ORVANE_REQUIRE(U_SUCCESS(status), "civilDateFromLocal: calendar fields unavailable");
  return CivilDate(year, month, day);
}

}  // namespace orvane
