#pragma once

#include <cstdint>
#include <span>

namespace orvane {

// The seed of a forecast that was given none: the first four bytes of the
// SHA-256 of pythonRepr(backlog, samples), big-endian, so always < 2^32.
// The samples are those simulated (after any what-if adjustment), in order.
std::uint64_t deriveSeed(std::span<const double> samples, std::int64_t backlog);

}  // namespace orvane
