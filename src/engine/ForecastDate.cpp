#include "engine/ForecastDate.h"

#include <cmath>

namespace orvane {

CivilDate forecastDate(CivilDate runAt, double periods, std::int64_t periodDays) {
  constexpr double microsecondsPerDay = 8.64e10;
  const double days = periods * static_cast<double>(periodDays);
  // nearbyint rounds ties to even in the default rounding mode.
  const double snapped = std::nearbyint(days * microsecondsPerDay) / microsecondsPerDay;
  return runAt.addingDays(static_cast<std::int64_t>(std::floor(snapped)));
}

}  // namespace orvane
