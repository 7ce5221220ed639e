#include <gtest/gtest.h>

#include "engine/BoundedDrawStream.h"
#include "engine/Pcg64.h"
#include "engine/PythonRepr.h"
#include "engine/SeedDerivation.h"
#include "engine/SeedSequence.h"

namespace orvane {
namespace {

TEST(PCG64, CopiesContinueTheSameStreamIndependently) {
  PCG64 original(42);
  original.nextUInt32();  // leaves a buffered half behind
  PCG64 copy = original;
  for (int i = 0; i < 100; ++i) ASSERT_EQ(original.nextUInt32(), copy.nextUInt32());
  EXPECT_NE(PCG64(0).nextUInt64(), PCG64(1).nextUInt64());
}

TEST(PCG64, AWaitingHalfSurvivesWideDraws) {
  PCG64 generator(7);
  PCG64 reference(7);
  const std::uint64_t first = reference.nextUInt64();
  const std::uint64_t second = reference.nextUInt64();
  const std::uint64_t third = reference.nextUInt64();
  EXPECT_EQ(generator.nextUInt32(), static_cast<std::uint32_t>(first));
  EXPECT_EQ(generator.nextUInt64(), second);
  EXPECT_EQ(generator.nextDouble(), static_cast<double>(third >> 11) * 0x1.0p-53);
  EXPECT_EQ(generator.nextUInt32(), static_cast<std::uint32_t>(first >> 32));
}

TEST(PCG64, ABoundOfOneDrawsNothing) {
  PCG64 generator(3);
  const auto before = generator.state();
  EXPECT_EQ(generator.nextBounded(1), 0u);
  EXPECT_EQ(generator.state(), before);
  EXPECT_FALSE(generator.hasBuffered());
}

TEST(SeedSequence, SeedsWiderThanOneWordUseTwoEntropyWords) {
  // Zero is the single word [0], not an empty list, and 2^32 is [0, 1]: so
  // neither may collide with a seed whose words happen to match.
  EXPECT_NE(SeedSequence::pool(0), SeedSequence::pool(std::uint64_t{1} << 32));
  EXPECT_NE(SeedSequence::pool(1), SeedSequence::pool((std::uint64_t{1} << 32) | 1));
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
        ASSERT_EQ(stream.next(), reference.nextBounded(n)) << "draw " << i;
      }
    }
  }
}

TEST(SeedDerivation, HashesThePythonTextOfTheInputs) {
  const double threeSamples[] = {3, 5, 4};
  const double one[] = {7};
  EXPECT_EQ(pythonRepr(30, threeSamples), "(30, (3.0, 5.0, 4.0))");
  EXPECT_EQ(pythonRepr(0, one), "(0, (7.0,))");
  EXPECT_EQ(pythonRepr(0, {}), "(0, ())");
  EXPECT_LT(deriveSeed(threeSamples, 30), std::uint64_t{1} << 32);
  EXPECT_NE(deriveSeed(threeSamples, 30), deriveSeed(threeSamples, 31));
}

TEST(PCG64DeathTest, BoundsOutsideTheRangeAreFatal) {
  PCG64 generator(1);
  EXPECT_DEATH(generator.nextBounded(0), "bound");
  EXPECT_DEATH(generator.nextBounded((std::uint64_t{1} << 32) + 1), "bound");
}

}  // namespace
}  // namespace orvane
