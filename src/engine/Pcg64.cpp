#include "engine/Pcg64.h"

#include "engine/SeedSequence.h"

namespace orvane {

PCG64::PCG64(std::uint64_t seed) {
  const auto words = SeedSequence::generateState64(SeedSequence::pool(seed), 4);
  const uint128 initState = (uint128{words[0]} << 64) | words[1];
  const uint128 initSequence = (uint128{words[2]} << 64) | words[3];
  increment_ = (initSequence << 1) | 1;
  state_ = 0;
  step();
  state_ += initState;
  step();
}

void PCG64::advance(uint128 steps) {
  const AffineStep jump = composedSteps(increment_, steps);
  state_ = jump.multiplier * state_ + jump.increment;
}

PCG64::AffineStep PCG64::composedSteps(uint128 increment, uint128 steps) {
  // Square-and-multiply on affine maps: `power` is the map of 2^i steps.
  AffineStep total{1, 0};
  AffineStep power{multiplier, increment};
  for (; steps != 0; steps >>= 1) {
    if (steps & 1) total = {total.multiplier * power.multiplier, total.increment * power.multiplier + power.increment};
    power = {power.multiplier * power.multiplier, power.increment * power.multiplier + power.increment};
  }
  return total;
}

}  // namespace orvane
