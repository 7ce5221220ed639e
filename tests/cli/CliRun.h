#pragma once

#include <unicode/gregocal.h>
#include <unicode/timezone.h>

#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "cli/CliApp.h"
#include "engine/Timestamp.h"

namespace orvane::cli::testing {

// 2026-03-05T23:30:00Z: late in the UTC day, so a local-time slip shows.
inline constexpr Timestamp fixedNow{1772753400.0};

struct CliRun {
  int code = -1;
  std::string out;
  std::string err;
};

// The user's calendar of every test run: UTC, so days of epics and
// iterations never follow the machine's time zone.
inline const icu::Calendar& utcCalendar() {
  static const icu::GregorianCalendar calendar = [] {
    UErrorCode status = U_ZERO_ERROR;
    return icu::GregorianCalendar(icu::TimeZone::createTimeZone("UTC"), status);
  }();
  return calendar;
}

// `input` is the run's standard input; a test never reads the real one.
inline CliRun runWith(const std::vector<std::string>& args, Timestamp now = fixedNow, std::string_view input = {}) {
  std::istringstream in{std::string(input)};
  std::ostringstream out;
  std::ostringstream err;
  const int code = runCli(args, in, out, err, now, utcCalendar());
  return {code, out.str(), err.str()};
}

}  // namespace orvane::cli::testing
