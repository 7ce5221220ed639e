#pragma once

#include <cstdint>

#include "engine/Fatal.h"

namespace orvane {

__extension__ typedef unsigned __int128 uint128;

// The 128-bit PCG generator with the XSL-RR output, seeded through
// SeedSequence, so that its streams are bit for bit those of NumPy's
// Generator(PCG64(SeedSequence(seed))). A copy continues the same stream
// independently. Everything here is inline: it sits on the hot path.
class PCG64 {
 public:
  // An affine map s -> multiplier s + increment on the 128-bit state.
  struct AffineStep {
    uint128 multiplier;
    uint128 increment;
  };

  static constexpr uint128 multiplier =
      (uint128{0x2360ED051FC65DA4ULL} << 64) | uint128{0x4385DF649FCCF645ULL};

  explicit PCG64(std::uint64_t seed);

  std::uint64_t nextUInt64() {
    step();
    return output(state_);
  }

  // One 64-bit output serves two 32-bit draws, low half first.
  std::uint32_t nextUInt32() {
    if (hasBuffered_) {
      hasBuffered_ = false;
      return buffered_;
    }
    const std::uint64_t x = nextUInt64();
    buffered_ = static_cast<std::uint32_t>(x >> 32);
    hasBuffered_ = true;
    return static_cast<std::uint32_t>(x);
  }

  // Uniform in [0, 1) from a fresh 64-bit output; the 32-bit buffer is left
  // as it is.
  double nextDouble() { return static_cast<double>(nextUInt64() >> 11) * 0x1.0p-53; }

  // Uniform in [0, n) by Lemire's multiply-and-reject on 32-bit draws.
  // REQUIRES: 1 <= n <= 2^32. n = 1 consumes nothing.
  std::uint64_t nextBounded(std::uint64_t n) {
    ORVANE_REQUIRE(n >= 1 && n <= (std::uint64_t{1} << 32), "nextBounded: bound outside 1...2^32");
    if (n == 1) return 0;
    std::uint64_t m = std::uint64_t{nextUInt32()} * n;
    std::uint32_t low = static_cast<std::uint32_t>(m);
    if (low < n) {
      const std::uint64_t threshold = ((std::uint64_t{1} << 32) - n) % n;
      while (low < threshold) {
        m = std::uint64_t{nextUInt32()} * n;
        low = static_cast<std::uint32_t>(m);
      }
    }
    return m >> 32;
  }

  // Moves the generator `steps` 64-bit outputs ahead in O(log steps) time;
  // the 32-bit buffer is left as it is.
  void advance(uint128 steps);

  // `steps` steps of the generator with this increment, composed into one
  // map: the state after them is multiplier * state + increment.
  static AffineStep composedSteps(uint128 increment, uint128 steps);

  uint128 state() const { return state_; }
  uint128 increment() const { return increment_; }
  bool hasBuffered() const { return hasBuffered_; }
  std::uint32_t buffered() const { return buffered_; }

  // The output function of a state, for code that steps the state itself.
  static std::uint64_t output(uint128 state) {
    const auto hi = static_cast<std::uint64_t>(state >> 64);
    const auto lo = static_cast<std::uint64_t>(state);
    const unsigned rot = static_cast<unsigned>(hi >> 58);
    const std::uint64_t x = hi ^ lo;
    return (x >> rot) | (x << ((64 - rot) & 63));
  }

 private:
  void step() { state_ = state_ * multiplier + increment_; }

  uint128 state_ = 0;
  uint128 increment_ = 0;
  bool hasBuffered_ = false;
  std::uint32_t buffered_ = 0;
};

}  // namespace orvane
