#pragma once

#include <algorithm>
#include <cstdint>

#include "engine/Pcg64.h"
#include "engine/PcgWordBlocks.h"

namespace orvane {

// Bounded draws in [0, n) from a PCG64, exactly as its nextBounded(n) gives
// them, made for the Monte Carlo loop and readable from any point of the
// generator's 32-bit stream.
//
// Lemire's method rejects a word w exactly when (w * n) mod 2^32 is below
// (2^32 - n) mod n, whether w starts a draw or retries one; every other word
// ends a draw. So the draws of a stretch of words are its words less its
// rejected ones, and each block of words notes whether any of them is
// rejected: draws whose values are not needed are then skipped by counting
// words alone. Words made ahead and never used are dropped with the stream.
class BoundedDrawStream {
 public:
  // Draws from word `startWord` of the generator's 32-bit stream on (word 0
  // is the low half of its next 64-bit output).
  // REQUIRES: the generator holds no buffered half; 2 <= n <= 2^32.
  BoundedDrawStream(const PCG64& generator, std::uint64_t n, std::uint64_t startWord = 0,
                    PcgWordBlocks::Kernel kernel = PcgWordBlocks::fastestKernel());

  std::uint64_t next() {
    std::uint64_t m = std::uint64_t{nextWord()} * n_;
    if (static_cast<std::uint32_t>(m) < n_) [[unlikely]] {
      while (static_cast<std::uint32_t>(m) < threshold_) m = std::uint64_t{nextWord()} * n_;
    }
    return m >> 32;
  }

  // Draws up to `limit` values, handing each to visit(value), and stops
  // early after the first for which visit returns true; returns the number
  // of draws made. The same draws as next(), in a loop whose position stays
  // in a register.
  template <typename Visit>
  std::int64_t drawUntil(std::int64_t limit, Visit&& visit) {
    std::int64_t made = 0;
    while (made < limit) {
      if (position_ == blockWords) refill();
      const std::uint32_t* words = words_;
      const std::uint64_t n = n_;
      const std::uint32_t threshold = threshold_;
      int position = position_;
      // One word per draw at most this far; a rejection ends the stretch.
      const int end = static_cast<int>(std::min<std::int64_t>(blockWords, position + (limit - made)));
      bool stop = false;
      while (position < end) {
        std::uint64_t m = std::uint64_t{words[position++]} * n;
        const bool rejected = static_cast<std::uint32_t>(m) < threshold;
        if (rejected) [[unlikely]] {
          position_ = position;
          m = retry();
          position = position_;
        }
        ++made;
        if (visit(m >> 32)) {
          stop = true;
          break;
        }
        if (rejected) [[unlikely]] break;
      }
      position_ = position;
      if (stop) break;
    }
    return made;
  }

  // Consumes `count` draws whose values are not needed.
  void skip(std::int64_t count);

  // Words consumed since startWord, rejected ones included.
  std::uint64_t wordsUsed() const { return wordsBeforeBlock_ + static_cast<std::uint64_t>(position_) - startOffset_; }

 private:
  static constexpr int blockWords = PcgWordBlocks::blockWords;

  std::uint32_t nextWord() {
    if (position_ == blockWords) refill();
    return words_[position_++];
  }
  void refill();
  // The rest of a draw whose first word was rejected: its 64-bit product.
  std::uint64_t retry();

  std::uint64_t n_;
  std::uint32_t threshold_;  // (2^32 - n) mod n
  PcgWordBlocks source_;
  std::uint64_t startOffset_;       // words of the first block before startWord (0 or 1)
  std::uint64_t wordsBeforeBlock_;  // words of earlier blocks, from the first block's start
  int position_;
  bool blockRejects_ = false;
  alignas(32) std::uint32_t words_[blockWords];
};

}  // namespace orvane
