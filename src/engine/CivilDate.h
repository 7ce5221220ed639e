#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "engine/Timestamp.h"

namespace orvane {

// A calendar day of the proleptic Gregorian calendar, without time of day or
// time zone. All arithmetic goes through the count of days since 1970-01-01,
// so a value that is not a real day ("2025-02-31") behaves like the real day
// it rolls over to (2025-03-03) while still being unequal to it: equality is
// field by field, ordering is by day count.
//
// Overflow of the 64-bit day counts is a fatal error, never a silent wrap.
struct CivilDate {
  std::int64_t year = 1970;
  std::int64_t month = 1;
  std::int64_t day = 1;

  // Stores the three numbers as given; no validation.
  constexpr CivilDate(std::int64_t y, std::int64_t m, std::int64_t d) : year(y), month(m), day(d) {}
  constexpr CivilDate() = default;

  static CivilDate fromDaysSinceEpoch(std::int64_t days);
  // The UTC day of an instant: floor(seconds / 86400).
  static CivilDate fromUtc(Timestamp instant);
  // Parses the first ten characters as YYYY-MM-DD (a trailing time part is
  // ignored). Each part may carry a leading sign; month must be 1...12 and day
  // 1...31, but the day is not checked against the month's length.
  static std::optional<CivilDate> fromIso(std::string_view text);

  std::int64_t daysSinceEpoch() const;
  CivilDate addingDays(std::int64_t n) const;
  std::int64_t daysSince(const CivilDate& other) const;
  Timestamp utcMidnight() const;

  std::string description() const;   // "2026-03-05"
  std::string displayShort() const;  // "5 Mar"
  std::string displayText() const;   // "5 Mar 2026"

  friend bool operator==(const CivilDate&, const CivilDate&) = default;
  friend std::weak_ordering operator<=>(const CivilDate& a, const CivilDate& b) {
    return a.daysSinceEpoch() <=> b.daysSinceEpoch();
  }
};

// A closed range of days: both ends count.
struct PeriodWindow {
  CivilDate start;
  CivilDate end;

  friend bool operator==(const PeriodWindow&, const PeriodWindow&) = default;
};

}  // namespace orvane

template <>
struct std::hash<orvane::CivilDate> {
  std::size_t operator()(const orvane::CivilDate& date) const noexcept;
};
