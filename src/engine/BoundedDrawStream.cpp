#include "engine/BoundedDrawStream.h"

#include <algorithm>

namespace orvane {
namespace {

PCG64 advancedTo(const PCG64& generator, std::uint64_t startWord) {
  PCG64 moved = generator;
  moved.advance(startWord / 2);
  return moved;
}

// Whether any word is rejected by a bound whose low 32 bits are n32 (0 for
// 2^32, which rejects nothing) and whose rejection threshold is `threshold`.
// Written so that the compiler vectorises it; the AVX2 copy does eight
// words per instruction.
template <int count>
bool anyRejected(const std::uint32_t* words, std::uint32_t n32, std::uint32_t threshold) {
  std::uint32_t rejected = 0;
  for (int i = 0; i < count; ++i) rejected |= static_cast<std::uint32_t>(words[i] * n32 < threshold);
  return rejected != 0;
}

#if defined(__x86_64__)
template <int count>
__attribute__((target("avx2"))) bool anyRejectedAvx2(const std::uint32_t* words, std::uint32_t n32,
                                                     std::uint32_t threshold) {
  std::uint32_t rejected = 0;
  for (int i = 0; i < count; ++i) rejected |= static_cast<std::uint32_t>(words[i] * n32 < threshold);
  return rejected != 0;
}
#else
template <int count>
bool anyRejectedAvx2(const std::uint32_t* words, std::uint32_t n32, std::uint32_t threshold) {
  return anyRejected<count>(words, n32, threshold);
}
#endif

}  // namespace

BoundedDrawStream::BoundedDrawStream(const PCG64& generator, std::uint64_t n, std::uint64_t startWord,
                                     PcgWordBlocks::Kernel kernel)
    : n_(n),
      threshold_(static_cast<std::uint32_t>(((std::uint64_t{1} << 32) - n) % n)),
      source_(advancedTo(generator, startWord), kernel),
      vectorCheck_(kernel == PcgWordBlocks::Kernel::avx2),
      startOffset_(startWord % 2),
      wordsBeforeBlock_(0) {
  ORVANE_REQUIRE(n >= 2 && n <= (std::uint64_t{1} << 32), "BoundedDrawStream: bound outside 2...2^32");
  refill();
  wordsBeforeBlock_ = 0;
  position_ = static_cast<int>(startOffset_);
}

void BoundedDrawStream::refill() {
  source_.fill(words_);
  wordsBeforeBlock_ += blockWords;
  position_ = 0;
  const auto n32 = static_cast<std::uint32_t>(n_);
  blockRejects_ = vectorCheck_ ? anyRejectedAvx2<blockWords>(words_, n32, threshold_)
                               : anyRejected<blockWords>(words_, n32, threshold_);
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
