#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace orvane::SeedSequence {

// The entropy pool that NumPy's SeedSequence builds from one integer seed.
std::array<std::uint32_t, 4> pool(std::uint64_t seed);

// `count` 64-bit words drawn from a pool, as SeedSequence.generate_state
// with a 64-bit dtype.
std::vector<std::uint64_t> generateState64(const std::array<std::uint32_t, 4>& pool, std::size_t count);

}  // namespace orvane::SeedSequence
