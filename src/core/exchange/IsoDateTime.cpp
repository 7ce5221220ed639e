#include "core/exchange/IsoDateTime.h"

#include <cmath>
#include <cstdint>
#include <cstdio>

#include "core/text/Text.h"
#include "engine/CivilDate.h"

namespace orvane::ISODateTime {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// The number of `count` digits at `text[at]`, or -1.
int digits(std::string_view text, std::size_t at, std::size_t count) {
  if (at + count > text.size()) return -1;
  int value = 0;
  for (std::size_t i = at; i < at + count; ++i) {
    if (!isDigit(text[i])) return -1;
    value = value * 10 + (text[i] - '0');
  }
  return value;
}

// A strict "YYYY-MM-DD" naming a real calendar day.
std::optional<CivilDate> civilDate(std::string_view text) {
  const int year = digits(text, 0, 4);
  const int month = digits(text, 5, 2);
  const int day = digits(text, 8, 2);
  if (year < 0 || month < 0 || day < 0 || text[4] != '-' || text[7] != '-') return std::nullopt;
  const CivilDate date(year, month, day);
  if (month < 1 || month > 12 || day < 1 || CivilDate::fromDaysSinceEpoch(date.daysSinceEpoch()) != date) {
    return std::nullopt;
  }
  return date;
}

}  // namespace

std::string format(Timestamp instant) {
  const double floored = std::floor(instant.secondsSince1970);
  const auto seconds = static_cast<std::int64_t>(floored);
  const std::int64_t days = seconds >= 0 ? seconds / 86400 : -((-seconds + 86399) / 86400);
  const std::int64_t secondOfDay = seconds - days * 86400;
  char time[16];
  std::snprintf(time, sizeof time, "T%02d:%02d:%02dZ", static_cast<int>(secondOfDay / 3600),
                static_cast<int>(secondOfDay / 60 % 60), static_cast<int>(secondOfDay % 60));
  return CivilDate::fromDaysSinceEpoch(days).description() + time;
}

std::optional<Timestamp> parse(std::string_view input) {
  const std::string trimmedText = text::trimmed(input);
  const std::string_view text = trimmedText;
  if (text.size() < 10) return std::nullopt;
  const auto date = civilDate(text);
  if (!date) return std::nullopt;
  const double midnight = static_cast<double>(date->daysSinceEpoch()) * 86400.0;
  if (text.size() == 10) return Timestamp{midnight};

  std::size_t at = 10;
  if (text[at] != 'T' && text[at] != 't' && text[at] != ' ') return std::nullopt;
  ++at;
  const int hour = digits(text, at, 2);
  if (hour < 0 || hour > 23 || at + 2 >= text.size() || text[at + 2] != ':') return std::nullopt;
  at += 3;
  const int minute = digits(text, at, 2);
  if (minute < 0 || minute > 59 || at + 2 >= text.size() || text[at + 2] != ':') return std::nullopt;
  at += 3;
  const int second = digits(text, at, 2);
  if (second < 0 || second > 59) return std::nullopt;
  at += 2;

  double fraction = 0.0;
  if (at < text.size() && (text[at] == '.' || text[at] == ',')) {
    ++at;
    const std::size_t start = at;
    // Nanoseconds are the finest part kept; further digits are read and dropped.
    std::int64_t numerator = 0;
    std::int64_t denominator = 1;
    while (at < text.size() && isDigit(text[at])) {
      if (at - start < 9) {
        numerator = numerator * 10 + (text[at] - '0');
        denominator *= 10;
      }
      ++at;
    }
    if (at == start) return std::nullopt;  // a separator without digits
    fraction = static_cast<double>(numerator) / static_cast<double>(denominator);
  }

  int offsetSeconds = 0;
  if (at < text.size()) {
    const char zone = text[at];
    if (zone == 'Z' || zone == 'z') {
      ++at;
    } else if (zone == '+' || zone == '-') {
      ++at;
      const int hours = digits(text, at, 2);
      if (hours < 0 || hours > 23) return std::nullopt;
      at += 2;
      if (at < text.size() && text[at] == ':') ++at;
      const int minutes = digits(text, at, 2);
      if (minutes < 0 || minutes > 59) return std::nullopt;
      at += 2;
      offsetSeconds = (hours * 3600 + minutes * 60) * (zone == '+' ? 1 : -1);
    } else {
      return std::nullopt;
    }
  }
  // No zone designator at all: UTC (see the header).
  if (at != text.size()) return std::nullopt;
  return Timestamp{midnight + hour * 3600.0 + minute * 60.0 + second + fraction - offsetSeconds};
}

}  // namespace orvane::ISODateTime
