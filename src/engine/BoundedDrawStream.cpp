#include "engine/BoundedDrawStream.h"

#include <algorithm>

namespace orvane {
namespace {

constexpr int laneCount = 4;

constexpr uint128 multiplierPower(int steps) {
  uint128 m = 1;
  for (int i = 0; i < steps; ++i) m *= PCG64::multiplier;
  return m;
}
// `lanes` steps of the generator compose into one affine step s -> M s + C.
constexpr uint128 laneMultiplier = multiplierPower(laneCount);

}  // namespace

BoundedDrawStream::BoundedDrawStream(const PCG64& generator, std::uint64_t n)
    : n_(n), threshold_(((std::uint64_t{1} << 32) - n) % n) {
  static_assert(lanes == laneCount);
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
  uint128 s0 = laneStates_[0], s1 = laneStates_[1], s2 = laneStates_[2], s3 = laneStates_[3];
  const uint128 c = laneIncrement_;
  const auto n32 = static_cast<std::uint32_t>(n_);  // 0 for n = 2^32, which never rejects
  for (int k = 0; k < blockOutputs; k += lanes) {
    const std::uint64_t x[lanes] = {PCG64::output(s0), PCG64::output(s1), PCG64::output(s2), PCG64::output(s3)};
    s0 = s0 * laneMultiplier + c;
    s1 = s1 * laneMultiplier + c;
    s2 = s2 * laneMultiplier + c;
    s3 = s3 * laneMultiplier + c;
    for (int j = 0; j < lanes; ++j) {
      words_[2 * (k + j)] = static_cast<std::uint32_t>(x[j]);
      words_[2 * (k + j) + 1] = static_cast<std::uint32_t>(x[j] >> 32);
    }
  }
  // A separate pass over the block vectorises.
  std::uint32_t mayReject = 0;
  for (const std::uint32_t word : words_) mayReject |= static_cast<std::uint32_t>(word * n32 < n32);
  laneStates_[0] = s0, laneStates_[1] = s1, laneStates_[2] = s2, laneStates_[3] = s3;
  position_ = 0;
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
