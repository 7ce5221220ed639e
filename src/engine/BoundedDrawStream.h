#pragma once

#include <cstdint>

#include "engine/Pcg64.h"

namespace orvane {

// Bounded draws in [0, n) from a PCG64, exactly as its nextBounded(n) gives
// them, made for the Monte Carlo loop. The generator's 32-bit words are made
// ahead in blocks by interleaved copies of the generator, each stepping
// `lanes` states at a time so that their multiplications overlap; each block
// also notes whether any of its words could start a Lemire rejection, so that
// draws whose values are not needed can be skipped by counting alone. Words made ahead and never used are dropped with
// the stream, so only a generator that lives for one run may be read this way.
class BoundedDrawStream {
 public:
  // Interleaved copies of the generator that make the words.
  static constexpr int lanes = 2;

  // REQUIRES: the generator holds no buffered half; 2 <= n <= 2^32.
  BoundedDrawStream(const PCG64& generator, std::uint64_t n);

  std::uint64_t next() {
    std::uint64_t m = std::uint64_t{nextWord()} * n_;
    if (static_cast<std::uint32_t>(m) < n_) [[unlikely]] {
      while (static_cast<std::uint32_t>(m) < threshold_) m = std::uint64_t{nextWord()} * n_;
    }
    return m >> 32;
  }

  // Consumes `count` draws whose values are not needed.
  void skip(std::int64_t count);

 private:
  static constexpr int blockOutputs = 256;
  static constexpr int blockWords = 2 * blockOutputs;

  std::uint32_t nextWord() {
    if (position_ == blockWords) refill();
    return words_[position_++];
  }
  void refill();

  std::uint64_t n_;
  std::uint64_t threshold_;  // (2^32 - n) mod n
  uint128 laneStates_[lanes];
  uint128 laneIncrement_;  // the increment of `lanes` steps composed into one
  int position_ = blockWords;
  bool blockMayReject_ = false;
  std::uint32_t words_[blockWords];
};

}  // namespace orvane
