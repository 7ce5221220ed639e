#include "cli/NumberParsing.h"

#include <charconv>

namespace orvane::cli {
namespace {

template <typename T>
ParsedNumber<T> parseWhole(std::string_view text) {
  // std::from_chars refuses a "+" sign; "+-3" must still fail.
  if (text.size() > 1 && text.front() == '+' && text[1] != '-' && text[1] != '+') text.remove_prefix(1);
  const char* const end = text.data() + text.size();
  T value{};
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (stop != end) return {};
  if (error == std::errc::result_out_of_range) return {NumberStatus::outOfRange};
  if (error != std::errc{}) return {};
  return {NumberStatus::ok, value};
}

}  // namespace

ParsedNumber<std::int64_t> parseInt64(std::string_view text) { return parseWhole<std::int64_t>(text); }
ParsedNumber<std::uint64_t> parseUInt64(std::string_view text) { return parseWhole<std::uint64_t>(text); }
ParsedNumber<double> parseDouble(std::string_view text) { return parseWhole<double>(text); }

}  // namespace orvane::cli
