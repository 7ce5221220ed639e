#include "engine/PythonRepr.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string_view>

namespace orvane {

std::string pythonFloatRepr(double value) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value < 0 ? "-inf" : "inf";

  // Shortest round-trip digits and their decimal exponent, e.g. 1.5e+16.
  char buffer[64];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, std::fabs(value), std::chars_format::scientific);
  const std::string_view scientific(buffer, result.ptr - buffer);
  const std::size_t e = scientific.find('e');
  std::string digits;
  for (const char c : scientific.substr(0, e)) {
    if (c != '.') digits += c;
  }
  const int exponent = std::atoi(std::string(scientific.substr(e + 1)).c_str());
  const int pointPosition = exponent + 1;  // digits are 0.DDD x 10^pointPosition

  std::string text = std::signbit(value) ? "-" : "";
  const int digitCount = static_cast<int>(digits.size());
  if (pointPosition <= -4 || pointPosition > 16) {
    text += digits[0];
    if (digitCount > 1) text.append(".").append(digits, 1);
    const int magnitude = std::abs(exponent);
    text += exponent < 0 ? "e-" : "e+";
    if (magnitude < 10) text += '0';
    text += std::to_string(magnitude);
  } else if (pointPosition <= 0) {
    text.append("0.").append(-pointPosition, '0').append(digits);
  } else if (pointPosition >= digitCount) {
    text.append(digits).append(pointPosition - digitCount, '0').append(".0");
  } else {
    text.append(digits, 0, pointPosition).append(".").append(digits, pointPosition);
  }
  return text;
}

std::string pythonRepr(std::int64_t backlog, std::span<const double> samples) {
  std::string tuple = "(";
  for (std::size_t i = 0; i < samples.size(); ++i) {
    if (i > 0) tuple += ", ";
    tuple += pythonFloatRepr(samples[i]);
  }
  tuple += samples.size() == 1 ? ",)" : ")";
  return std::string("(").append(std::to_string(backlog)).append(", ").append(tuple).append(")");
}

}  // namespace orvane
