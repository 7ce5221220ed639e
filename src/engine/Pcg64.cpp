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

}  // namespace orvane
