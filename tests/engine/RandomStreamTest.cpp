#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "engine/BoundedDrawStream.h"
#include "engine/Pcg64.h"
#include "engine/PcgWordBlocks.h"
#include "engine/ThreadCount.h"

namespace orvane {
namespace {

// nextBounded(n) written out over nextUInt32, counting the words it takes.
std::uint64_t boundedDraw(PCG64& generator, std::uint64_t n, std::uint64_t& words) {
  const auto threshold = ((std::uint64_t{1} << 32) - n) % n;
  for (;;) {
    const std::uint64_t m = std::uint64_t{generator.nextUInt32()} * n;
    ++words;
    if ((m & 0xFFFFFFFFu) >= threshold) return m >> 32;
  }
}

TEST(PCG64, AdvanceMatchesSteppingAndComposes) {
  for (const std::uint64_t steps : {0ull, 1ull, 2ull, 7ull, 1000ull, 65537ull}) {
    PCG64 stepped(5), jumped(5);
    for (std::uint64_t i = 0; i < steps; ++i) stepped.nextUInt64();
    jumped.advance(steps);
    EXPECT_EQ(jumped.nextUInt64(), stepped.nextUInt64()) << steps;
  }
  // Far jumps: two halves make the whole, and a full period of 2^128 steps
  // returns to the start.
  const uint128 far = (uint128{0x1234567ull} << 64) | 0x89ABCDEF01234567ull;
  PCG64 once(9), twice(9), around(9);
  once.advance(far);
  twice.advance(far / 2);
  twice.advance(far - far / 2);
  EXPECT_EQ(once.state(), twice.state());
  around.advance(~uint128{0});
  around.advance(1);
  EXPECT_EQ(around.state(), PCG64(9).state());
}

std::vector<PcgWordBlocks::Kernel> supportedKernels() {
  std::vector<PcgWordBlocks::Kernel> kernels{PcgWordBlocks::Kernel::portable};
  if (PcgWordBlocks::fastestKernel() == PcgWordBlocks::Kernel::avx2) kernels.push_back(PcgWordBlocks::Kernel::avx2);
  return kernels;
}

// Every kernel must give the generator's own 32-bit words, block after
// block, whatever the seed.
TEST(PcgWordBlocks, EveryKernelGivesTheGeneratorsWords) {
  for (const auto kernel : supportedKernels()) {
    for (const std::uint64_t seed : {0ull, 1ull, 0xFFFFFFFFFFFFFFFFull}) {
      SCOPED_TRACE(testing::Message() << "kernel " << static_cast<int>(kernel) << " seed " << seed);
      PCG64 reference(seed);
      reference.nextUInt64();  // the blocks may start anywhere in the stream
      PcgWordBlocks blocks(reference, kernel);
      std::uint32_t words[PcgWordBlocks::blockWords];
      // Bounds whose words are rejected never, rarely (about one block in
      // nine for a million), or about half the time.
      const std::uint64_t bounds[] = {1ull << 32, 12, 1'000'000, (1ull << 31) + 1};
      int blocksWithRejections = 0;
      for (int block = 0; block < 64; ++block) {
        const std::uint64_t n = bounds[block % 4];
        const auto threshold = static_cast<std::uint32_t>(((std::uint64_t{1} << 32) - n) % n);
        const bool flagged = blocks.fill(words, static_cast<std::uint32_t>(n), threshold);
        bool rejected = false;
        for (int i = 0; i < PcgWordBlocks::blockWords; ++i) {
          ASSERT_EQ(words[i], reference.nextUInt32()) << "block " << block << " word " << i;
          rejected = rejected || static_cast<std::uint32_t>(words[i] * n) < threshold;
        }
        EXPECT_EQ(flagged, rejected) << "block " << block << " n=" << n;
        blocksWithRejections += rejected && n == 1'000'000;
      }
      EXPECT_GT(blocksWithRejections, 0);  // the rare case did occur
    }
  }
}

// The block-wise stream of the simulation must give exactly the draws of the
// plain generator, including Lemire rejections inside skipped stretches.
TEST(BoundedDrawStream, AgreesWithTheGeneratorDrawForDraw) {
  for (const std::uint64_t n : {2ull, 3ull, 12ull, 1000ull, (1ull << 31) + 1, 3'000'000'019ull, 1ull << 32}) {
    for (const std::uint64_t seed : {0ull, 1ull, 99ull}) {
      SCOPED_TRACE(testing::Message() << "n=" << n << " seed=" << seed);
      PCG64 reference(seed);
      BoundedDrawStream stream(PCG64(seed), n);
      for (int i = 0; i < 20000; ++i) {
        if (i % 7 == 3) {
          const int skipped = 1 + i % 600;
          for (int k = 0; k < skipped; ++k) reference.nextBounded(n);
          stream.skip(skipped);
        }
        if (i % 11 == 5) {
          // A run of draws that stops at the first value divisible by 5, or
          // after `limit` draws (which may cross blocks).
          const std::int64_t limit = (i * 13) % 900;
          std::vector<std::uint64_t> drawn, expected;
          const std::int64_t made = stream.drawUntil(limit, [&](std::uint64_t value) {
            drawn.push_back(value);
            return value % 5 == 0;
          });
          while (static_cast<std::int64_t>(expected.size()) < limit) {
            expected.push_back(reference.nextBounded(n));
            if (expected.back() % 5 == 0) break;
          }
          ASSERT_EQ(drawn, expected) << "run of draws at " << i;
          ASSERT_EQ(made, static_cast<std::int64_t>(drawn.size()));
        }
        ASSERT_EQ(stream.next(), reference.nextBounded(n)) << "draw " << i;
      }
    }
  }
}

// A stream may start at any word; it then gives the draws the generator
// gives after that many words, and counts the words it used, rejected ones
// included. Bounds 2^31 + 1 and 3,000,000,019 reject about half and a third
// of all words.
TEST(BoundedDrawStream, StartsAtAnyWordAndCountsTheWordsItUses) {
  for (const std::uint64_t n : {3ull, 12ull, 1'000'000ull, (1ull << 31) + 1, 3'000'000'019ull, 1ull << 32}) {
    for (const std::uint64_t startWord : {0ull, 1ull, 527ull, 528ull, 529ull, 100'001ull}) {
      const auto kernel = supportedKernels()[startWord % supportedKernels().size()];
      SCOPED_TRACE(testing::Message() << "n=" << n << " start=" << startWord << " kernel " << static_cast<int>(kernel));
      PCG64 reference(11);
      for (std::uint64_t i = 0; i < startWord; ++i) reference.nextUInt32();
      BoundedDrawStream stream(PCG64(11), n, startWord, kernel);
      std::uint64_t words = 0;
      for (int i = 0; i < 3000; ++i) {
        if (i % 5 == 2) {
          const int skipped = 1 + (i * 37) % 700;
          for (int k = 0; k < skipped; ++k) boundedDraw(reference, n, words);
          stream.skip(skipped);
          ASSERT_EQ(stream.wordsUsed(), words) << "after skipping at draw " << i;
        }
        ASSERT_EQ(stream.next(), boundedDraw(reference, n, words)) << "draw " << i;
      }
      EXPECT_EQ(stream.wordsUsed(), words);
    }
  }
}

TEST(ThreadCount, OnlyAWholeNumberFromOneUpOverridesTheHardware) {
  const struct {
    const char* setting;
    std::size_t hardware;
    std::size_t expected;
  } cases[] = {
      {nullptr, 8, 8}, {"1", 8, 1},  {"3", 2, 3},  {"1024", 2, 1024}, {"0", 8, 8},     {"-1", 8, 8},
      {"", 8, 8},      {"2x", 8, 8}, {" 2", 8, 8}, {"1025", 4, 4},    {nullptr, 0, 1}, {"abc", 0, 1},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(threadsFromSetting(c.setting, c.hardware), c.expected) << (c.setting ? c.setting : "(unset)");
  }
}

TEST(PCG64DeathTest, BoundsOutsideTheRangeAreFatal) {
  PCG64 generator(1);
  EXPECT_DEATH(generator.nextBounded(0), "bound");
  EXPECT_DEATH(generator.nextBounded((std::uint64_t{1} << 32) + 1), "bound");
}

}  // namespace
}  // namespace orvane
