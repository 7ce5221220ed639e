#include <gtest/gtest.h>

#include "engine/BoundedDrawStream.h"
#include "engine/Pcg64.h"

namespace orvane {
namespace {





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


TEST(PCG64DeathTest, BoundsOutsideTheRangeAreFatal) {
  PCG64 generator(1);
  EXPECT_DEATH(generator.nextBounded(0), "bound");
  EXPECT_DEATH(generator.nextBounded((std::uint64_t{1} << 32) + 1), "bound");
}

}  // namespace
}  // namespace orvane
