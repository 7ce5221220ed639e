#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace orvane {

// Python's repr of a float: the shortest text that reads back to the same
// double, ".0" on whole values, exponent form ("1e-05", "1.5e+16") outside
// 1e-4 <= |x| < 1e16, and "inf", "-inf", "nan".
std::string pythonFloatRepr(double value);

// Python's repr of the pair (backlog, tuple(samples)):
// "(30, (3.0, 5.0, 4.0))", "(0, (7.0,))", "(0, ())".
std::string pythonRepr(std::int64_t backlog, std::span<const double> samples);

}  // namespace orvane
