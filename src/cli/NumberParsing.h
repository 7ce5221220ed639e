#pragma once

#include <cstdint>
#include <string_view>

namespace orvane::cli {

enum class NumberStatus { ok, malformed, outOfRange };

template <typename T>
struct ParsedNumber {
  NumberStatus status = NumberStatus::malformed;
  T value{};

  bool ok() const { return status == NumberStatus::ok; }
};

// Strict parsing of a whole token: the entire text must be the number, with
// no surrounding space. One leading "+" is accepted. Decimal digits only for
// the integers; the decimal and scientific forms for doubles, which also
// accept "inf" and "nan" (callers decide whether those are welcome).
ParsedNumber<std::int64_t> parseInt64(std::string_view text);
ParsedNumber<std::uint64_t> parseUInt64(std::string_view text);
ParsedNumber<double> parseDouble(std::string_view text);

}  // namespace orvane::cli
