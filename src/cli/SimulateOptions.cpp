#include "cli/SimulateOptions.h"

#include <cctype>
#include <cmath>
#include <limits>

#include "cli/CliError.h"
#include "cli/NumberParsing.h"
#include "cli/OptionParser.h"

namespace orvane::cli {

const std::string_view simulateUsage =
    "Usage: orvane-cli simulate --samples 3,5,4 --backlog 30 [options]\n"
    "\n"
    "Forecasts when a backlog is done by simulating future weeks, each drawing\n"
    "one of the past weekly throughputs at random.\n"
    "\n"
    "  --samples LIST      tickets finished per past week, comma-separated\n"
    "  --backlog N         tickets left to do\n"
    "  --horizon N         also forecast how many tickets are done in N weeks\n"
    "  --iterations N      simulations to run (default 10000)\n"
    "  --max-periods N     longest future simulated, in weeks (default 520)\n"
    "  --seed N            random seed (default: derived from the inputs)\n"
    "  --what-if PERCENT   change every sample by PERCENT first, e.g. 20 or -15\n"
    "  --as-of YYYY-MM-DD  the day the weeks count from (default: today, UTC)\n"
    "  --json              print one JSON object instead of the summary\n"
    "  --help              print this text\n";

namespace {

constexpr OptionSpec simulateSpecs[] = {
    {"--samples", true},     {"--backlog", true}, {"--horizon", true}, {"--iterations", true},
    {"--max-periods", true}, {"--seed", true},    {"--what-if", true}, {"--as-of", true},
    {"--json", false},       {"--help", false},
};

std::string quoted(std::string_view text) {
  std::string result(1, '"');
  result.append(text).push_back('"');
  return result;
}

std::string_view trimmed(std::string_view text) {
  const auto isSpace = [](char c) { return c == ' ' || c == '\t'; };
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
  return text;
}

// Spaces around the items are allowed: "3, 5, 4" is how a quoted list is
// naturally typed.
std::vector<double> parseSamples(std::string_view list) {
  if (trimmed(list).empty()) throw CliError("--samples needs at least one number, such as --samples 3,5,4.");
  std::vector<double> samples;
  std::size_t position = 1;
  for (std::size_t start = 0;; ++position) {
    const std::size_t comma = list.find(',', start);
    const std::string_view item = trimmed(list.substr(start, comma - start));
    if (item.empty()) {
      throw CliError("--samples has an empty item at position " + std::to_string(position) + " in " +
                     quoted(list) + ".");
    }
    const ParsedNumber<double> parsed = parseDouble(item);
    const std::string subject = "Throughput sample " + quoted(item) + " in --samples";
    if (parsed.status == NumberStatus::malformed) throw CliError(subject + " is not a number.");
    if (parsed.status == NumberStatus::outOfRange) throw CliError(subject + " is out of range.");
    if (!std::isfinite(parsed.value)) throw CliError(subject + " is not a finite number.");
    if (parsed.value < 0) throw CliError(subject + " is negative.");
    // -0 would simulate like 0 but derive a different seed.
    samples.push_back(parsed.value == 0 ? 0.0 : parsed.value);
    if (comma == std::string_view::npos) return samples;
    start = comma + 1;
  }
}

std::int64_t parseWholeInRange(std::string_view name, std::string_view text, std::int64_t low,
                               std::int64_t high, std::string_view rangeText) {
  const ParsedNumber<std::int64_t> parsed = parseInt64(text);
  if (!parsed.ok() || parsed.value < low || parsed.value > high) {
    throw CliError(std::string(name) + " must be a whole number " + std::string(rangeText) + ", not " +
                   quoted(text) + ".");
  }
  return parsed.value;
}

std::string fromTo(std::int64_t low, std::int64_t high) {
  return "from " + std::to_string(low) + " to " + std::to_string(high);
}

double parseWhatIf(std::string_view text) {
  const ParsedNumber<double> parsed = parseDouble(text);
  if (!parsed.ok() || !std::isfinite(parsed.value)) {
    throw CliError("--what-if must be a percentage such as 20 or -15, not " + quoted(text) + ".");
  }
  if (!(parsed.value > -100)) {
    throw CliError("--what-if must be greater than -100 percent, not " + quoted(text) + ".");
  }
  return parsed.value;
}

// CivilDate::fromIso is lenient by design (signs, a trailing time, the 31st
// of any month); a date typed on the command line must be an exact real day.
CivilDate parseAsOf(std::string_view text) {
  const auto isDigitAt = [text](std::size_t i) {
    return std::isdigit(static_cast<unsigned char>(text[i])) != 0;
  };
  bool shaped = text.size() == 10;
  for (std::size_t i = 0; shaped && i < text.size(); ++i)
    shaped = (i == 4 || i == 7) ? text[i] == '-' : isDigitAt(i);
  const std::optional<CivilDate> date = shaped ? CivilDate::fromIso(text) : std::nullopt;
  if (!date || CivilDate::fromDaysSinceEpoch(date->daysSinceEpoch()) != *date) {
    throw CliError("--as-of must be a real day written YYYY-MM-DD, not " + quoted(text) + ".");
  }
  return *date;
}

}  // namespace

SimulateOptions parseSimulateOptions(std::span<const std::string> args, CivilDate today) {
  const ParsedOptions parsed = parseOptions(args, simulateSpecs, "simulate");
  SimulateOptions options;
  if (parsed.has("--help")) {
    options.help = true;
    return options;
  }
  const auto samples = parsed.value("--samples");
  if (!samples)
    throw CliError("Option --samples is required: the tickets finished per past week, such as 3,5,4.");
  const auto backlog = parsed.value("--backlog");
  if (!backlog) throw CliError("Option --backlog is required: the number of tickets left to do.");

  options.samples = parseSamples(*samples);
  options.backlog =
      parseWholeInRange("--backlog", *backlog, 0, std::numeric_limits<std::int64_t>::max(), "of 0 or more");
  if (const auto text = parsed.value("--iterations")) {
    options.iterations =
        parseWholeInRange("--iterations", *text, 1, maxIterationsAccepted, fromTo(1, maxIterationsAccepted));
  }
  if (const auto text = parsed.value("--max-periods")) {
    options.maxPeriods =
        parseWholeInRange("--max-periods", *text, 0, maxPeriodsAccepted, fromTo(0, maxPeriodsAccepted));
  }
  if (const auto text = parsed.value("--horizon")) {
    options.horizon = parseWholeInRange("--horizon", *text, 0, options.maxPeriods,
                                        fromTo(0, options.maxPeriods) + " (the --max-periods)");
  }
  if (const auto text = parsed.value("--seed")) {
    const ParsedNumber<std::uint64_t> seed = parseUInt64(*text);
    if (!seed.ok()) {
      throw CliError("--seed must be a whole number from 0 to " +
                     std::to_string(std::numeric_limits<std::uint64_t>::max()) + ", not " + quoted(*text) +
                     ".");
    }
    options.seed = seed.value;
  }
  if (const auto text = parsed.value("--what-if")) options.whatIfPercent = parseWhatIf(*text);
  options.asOf = parsed.has("--as-of") ? parseAsOf(*parsed.value("--as-of")) : today;
  options.json = parsed.has("--json");
  return options;
}

}  // namespace orvane::cli
