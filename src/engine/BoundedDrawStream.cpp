#include "engine/BoundedDrawStream.h"

#include <algorithm>

namespace orvane {
namespace {

constexpr uint128 multiplierPower(int steps) {
  uint128 m = 1;
  for (int i = 0; i < steps; ++i) m *= PCG64::multiplier;
  return m;
}
// `lanes` steps of the generator compose into one affine step s -> M s + C.
constexpr uint128 laneMultiplier = multiplierPower(BoundedDrawStream::lanes);

}  // namespace

BoundedDrawStream::BoundedDrawStream(const PCG64& generator, std::uint64_t n)
    : n_(n), threshold_(((std::uint64_t{1} << 32) - n) % n) {
  ORVANE_REQUIRE(!generator.hasBuffered(), "BoundedDrawStream: generator holds a buffered half");
  ORVANE_REQUIRE(n >= 2 && n <= (std::uint64_t{1} << 32), "BoundedDrawStream: bound outside 2...2^32");
  // Output k of the generator comes from the state after k + 1 steps; lane
  // j makes outputs j, j + lanes, j + 2 lanes, ...
  uint128 state = generator.state();
  const uint128 increment = generator.increment();
  laneIncrement_ = 0;
  for (auto& laneState : laneStates_) {
    state = state * PCG64::multiplier + increment;
    laneState = state;
    laneIncrement_ = laneIncrement_ * PCG64::multiplier + increment;
  }
}

void BoundedDrawStream::refill() {
  uint128 states[lanes];
  for (int j = 0; j < lanes; ++j) states[j] = laneStates_[j];
  const uint128 c = laneIncrement_;
  const auto n32 = static_cast<std::uint32_t>(n_);  // 0 for n = 2^32, which never rejects
  for (int k = 0; k < blockOutputs; k += lanes) {
    for (int j = 0; j < lanes; ++j) {
      const std::uint64_t x = PCG64::output(states[j]);
      states[j] = states[j] * laneMultiplier + c;
      words_[2 * (k + j)] = static_cast<std::uint32_t>(x);
      words_[2 * (k + j) + 1] = static_cast<std::uint32_t>(x >> 32);
    }
  }
  for (int j = 0; j < lanes; ++j) laneStates_[j] = states[j];
  position_ = 0;
  // A separate pass over the block vectorises.
  std::uint32_t mayReject = 0;
  for (const std::uint32_t word : words_) mayReject |= static_cast<std::uint32_t>(word * n32 < n32);
  blockMayReject_ = mayReject != 0;
}

void BoundedDrawStream::skip(std::int64_t count) {
  while (count > 0) {
    if (position_ == blockWords) refill();
    if (blockMayReject_) {
      // Some draw of this block may take more than one word: go one by one.
      next();
      --count;
      continue;
    }
    const int chunk = static_cast<int>(std::min<std::int64_t>(count, blockWords - position_));
    position_ += chunk;
    count -= chunk;
  }
}

}  // namespace orvane
