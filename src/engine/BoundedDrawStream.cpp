#include "engine/BoundedDrawStream.h"

#include <algorithm>

namespace orvane {
namespace {

PCG64 advancedTo(const PCG64& generator, std::uint64_t startWord) {
  PCG64 moved = generator;
  moved.advance(startWord / 2);
  return moved;
}

}  // namespace

BoundedDrawStream::BoundedDrawStream(const PCG64& generator, std::uint64_t n, std::uint64_t startWord,
                                     PcgWordBlocks::Kernel kernel)
    : n_(n),
      threshold_(static_cast<std::uint32_t>(((std::uint64_t{1} << 32) - n) % n)),
      source_(advancedTo(generator, startWord), kernel),
      startOffset_(startWord % 2),
      wordsBeforeBlock_(0) {
  ORVANE_REQUIRE(n >= 2 && n <= (std::uint64_t{1} << 32), "BoundedDrawStream: bound outside 2...2^32");
  refill();
  wordsBeforeBlock_ = 0;
  position_ = static_cast<int>(startOffset_);
}

void BoundedDrawStream::refill() {
  // n = 2^32 gives n32 = 0 and threshold 0: no word is ever rejected.
  blockRejects_ = source_.fill(words_, static_cast<std::uint32_t>(n_), threshold_);
  wordsBeforeBlock_ += blockWords;
  position_ = 0;
}

std::uint64_t BoundedDrawStream::retry() {
  std::uint64_t m;
  do {
    m = std::uint64_t{nextWord()} * n_;
  } while (static_cast<std::uint32_t>(m) < threshold_);
  return m;
}

void BoundedDrawStream::skip(std::int64_t count) {
  const auto n32 = static_cast<std::uint32_t>(n_);
  while (count > 0) {
    if (position_ == blockWords) refill();
    if (!blockRejects_) {
      const int chunk = static_cast<int>(std::min<std::int64_t>(count, blockWords - position_));
      position_ += chunk;
      count -= chunk;
      continue;
    }
    // Some word of this block is rejected: count the accepted ones.
    while (position_ < blockWords && count > 0) {
      count -= static_cast<std::int64_t>(words_[position_] * n32 >= threshold_);
      ++position_;
    }
  }
}

}  // namespace orvane
