#include "cli/GlobalOptions.h"

#include "cli/CliError.h"
#include "engine/CivilDate.h"

namespace orvane::cli {
namespace {

// Reads exactly `width` decimal digits at `at`, advancing it.
std::optional<int> digits(std::string_view text, std::size_t& at, std::size_t width) {
  if (at + width > text.size()) return std::nullopt;
  int value = 0;
  for (std::size_t i = 0; i < width; ++i) {
    const char c = text[at + i];
    if (c < '0' || c > '9') return std::nullopt;
    value = value * 10 + (c - '0');
  }
  at += width;
  return value;
}

bool expect(std::string_view text, std::size_t& at, char wanted) {
  if (at >= text.size() || text[at] != wanted) return false;
  ++at;
  return true;
}

}  // namespace

std::optional<Timestamp> parseInstant(std::string_view text) {
  std::size_t at = 0;
  const auto year = digits(text, at, 4);
  if (!year || !expect(text, at, '-')) return std::nullopt;
  const auto month = digits(text, at, 2);
  if (!month || !expect(text, at, '-')) return std::nullopt;
  const auto day = digits(text, at, 2);
  if (!day) return std::nullopt;
  const CivilDate date(*year, *month, *day);
  if (*month < 1 || *month > 12 || CivilDate::fromDaysSinceEpoch(date.daysSinceEpoch()) != date) return std::nullopt;
  double seconds = static_cast<double>(date.daysSinceEpoch()) * 86400.0;
  if (at == text.size()) return Timestamp{seconds};

  if (!expect(text, at, 'T')) return std::nullopt;
  const auto hour = digits(text, at, 2);
  if (!hour || *hour > 23 || !expect(text, at, ':')) return std::nullopt;
  const auto minute = digits(text, at, 2);
  if (!minute || *minute > 59) return std::nullopt;
  seconds += *hour * 3600.0 + *minute * 60.0;
  if (expect(text, at, ':')) {
    const auto second = digits(text, at, 2);
    if (!second || *second > 59) return std::nullopt;
    seconds += *second;
    if (expect(text, at, '.')) {
      double scale = 0.1;
      const std::size_t start = at;
      for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at, scale /= 10)
        seconds += (text[at] - '0') * scale;
      if (at == start) return std::nullopt;
    }
  }
  if (expect(text, at, 'Z')) return at == text.size() ? std::optional(Timestamp{seconds}) : std::nullopt;
  if (at >= text.size() || (text[at] != '+' && text[at] != '-')) return std::nullopt;
  const int sign = text[at++] == '+' ? 1 : -1;
  const auto offsetHours = digits(text, at, 2);
  if (!offsetHours || *offsetHours > 23 || !expect(text, at, ':')) return std::nullopt;
  const auto offsetMinutes = digits(text, at, 2);
  if (!offsetMinutes || *offsetMinutes > 59 || at != text.size()) return std::nullopt;
  // 10:00+01:00 is 09:00Z.
  return Timestamp{seconds - sign * (*offsetHours * 3600.0 + *offsetMinutes * 60.0)};
}

std::optional<CivilDate> parseDay(std::string_view text) {
  if (text.size() != 10) return std::nullopt;
  const std::optional<Timestamp> midnight = parseInstant(text);
  if (!midnight) return std::nullopt;
  return CivilDate::fromUtc(*midnight);
}

GlobalOptions parseGlobalOptions(std::span<const std::string> args) {
  GlobalOptions options;
  std::size_t i = 0;
  while (i < args.size()) {
    const std::string_view arg = args[i];
    const std::size_t equals = arg.find('=');
    const std::string_view name = arg.substr(0, equals);
    if (name != "--store" && name != "--now") break;

    std::string value;
    if (equals != std::string_view::npos) {
      value = arg.substr(equals + 1);
    } else if (i + 1 < args.size() && !args[i + 1].starts_with("--")) {
      value = args[++i];
    } else {
      throw CliError("Option " + std::string(name) + " needs a value.");
    }
    ++i;
    if ((name == "--store" && options.store) || (name == "--now" && options.now)) {
      throw CliError("Option " + std::string(name) + " is given more than once.");
    }
    if (name == "--store") {
      if (value.empty()) throw CliError("Option --store needs a value.");
      options.store = value;
    } else {
      options.now = parseInstant(value);
      if (!options.now) {
        throw CliError("--now needs a day like 2026-03-05 or a date-time like 2026-03-05T10:00:00Z; \"" + value +
                       "\" is neither.");
      }
    }
  }
  options.consumed = i;
  return options;
}

}  // namespace orvane::cli
