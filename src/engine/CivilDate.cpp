#include "engine/CivilDate.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "engine/Fatal.h"

namespace orvane {
namespace {

constexpr std::array<const char*, 12> monthAbbreviations{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

std::int64_t add(std::int64_t a, std::int64_t b) {
  std::int64_t r;
  ORVANE_REQUIRE(!__builtin_add_overflow(a, b, &r), "CivilDate: day arithmetic overflow");
  return r;
}
std::int64_t sub(std::int64_t a, std::int64_t b) {
  std::int64_t r;
  ORVANE_REQUIRE(!__builtin_sub_overflow(a, b, &r), "CivilDate: day arithmetic overflow");
  return r;
}
std::int64_t mul(std::int64_t a, std::int64_t b) {
  std::int64_t r;
  ORVANE_REQUIRE(!__builtin_mul_overflow(a, b, &r), "CivilDate: day arithmetic overflow");
  return r;
}

// Floor division for a positive divisor.
std::int64_t floorDiv(std::int64_t a, std::int64_t b) { return a >= 0 ? a / b : sub(a, b - 1) / b; }

std::optional<std::int64_t> parseSignedDecimal(std::string_view text) {
  const bool explicitPlus = !text.empty() && text.front() == '+';
  if (explicitPlus) text.remove_prefix(1);
  if (text.empty() || text.front() == '+' || (explicitPlus && text.front() == '-')) return std::nullopt;
  std::int64_t value = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::string zeroPadded(std::int64_t value, int width) {
  std::string digits = std::to_string(value);
  if (static_cast<int>(digits.size()) < width) digits.insert(0, width - digits.size(), '0');
  return digits;
}

const char* monthAbbreviation(std::int64_t month) {
  return month >= 1 && month <= 12 ? monthAbbreviations[month - 1] : "?";
}

}  // namespace

CivilDate CivilDate::fromDaysSinceEpoch(std::int64_t days) {
  const std::int64_t z = add(days, 719468);
  const std::int64_t era = floorDiv(z, 146097);
  const std::int64_t doe = z - era * 146097;  // 0...146096
  const std::int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const std::int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const std::int64_t mp = (5 * doy + 2) / 153;
  const std::int64_t d = doy - (153 * mp + 2) / 5 + 1;
  const std::int64_t m = mp < 10 ? mp + 3 : mp - 9;
  const std::int64_t y = add(add(yoe, mul(era, 400)), m <= 2 ? 1 : 0);
  return CivilDate(y, m, d);
}

std::int64_t CivilDate::daysSinceEpoch() const {
  const std::int64_t y = month <= 2 ? sub(year, 1) : year;
  const std::int64_t era = floorDiv(y, 400);
  const std::int64_t yoe = y - era * 400;
  const std::int64_t doy = add(add(mul(153, add(month, month > 2 ? -3 : 9)), 2) / 5, sub(day, 1));
  const std::int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return sub(add(mul(era, 146097), doe), 719468);
}

CivilDate CivilDate::fromUtc(Timestamp instant) {
  const double days = std::floor(instant.secondsSince1970 / 86400.0);
  ORVANE_REQUIRE(std::isfinite(days) && std::fabs(days) < 9.0e15, "CivilDate: timestamp out of range");
  return fromDaysSinceEpoch(static_cast<std::int64_t>(days));
}

std::optional<CivilDate> CivilDate::fromIso(std::string_view text) {
  if (text.size() < 10) return std::nullopt;
  text = text.substr(0, 10);
  if (text[4] != '-' || text[7] != '-') return std::nullopt;
  const auto y = parseSignedDecimal(text.substr(0, 4));
  const auto m = parseSignedDecimal(text.substr(5, 2));
  const auto d = parseSignedDecimal(text.substr(8, 2));
  if (!y || !m || !d) return std::nullopt;
  if (*m < 1 || *m > 12 || *d < 1 || *d > 31) return std::nullopt;
  return CivilDate(*y, *m, *d);
}

CivilDate CivilDate::addingDays(std::int64_t n) const { return fromDaysSinceEpoch(add(daysSinceEpoch(), n)); }

std::int64_t CivilDate::daysSince(const CivilDate& other) const {
  return sub(daysSinceEpoch(), other.daysSinceEpoch());
}

Timestamp CivilDate::utcMidnight() const {
  return Timestamp{static_cast<double>(mul(daysSinceEpoch(), 86400))};
}

std::string CivilDate::description() const {
  return zeroPadded(year, 4) + "-" + zeroPadded(month, 2) + "-" + zeroPadded(day, 2);
}

std::string CivilDate::displayShort() const { return std::to_string(day) + " " + monthAbbreviation(month); }

std::string CivilDate::displayText() const { return displayShort() + " " + std::to_string(year); }

}  // namespace orvane

std::size_t std::hash<orvane::CivilDate>::operator()(const orvane::CivilDate& date) const noexcept {
  std::size_t h = std::hash<std::int64_t>{}(date.year);
  for (const std::int64_t part : {date.month, date.day}) {
    h ^= std::hash<std::int64_t>{}(part) + 0x9E3779B97F4A7C15ULL + (h << 6) + (h >> 2);
  }
  return h;
}
