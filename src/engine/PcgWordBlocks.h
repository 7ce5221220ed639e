#pragma once

#include <cstdint>

#include "engine/Pcg64.h"

namespace orvane {

// The 32-bit words of a PCG64 stream (what nextUInt32 returns, low half of
// each 64-bit output first), made a block at a time by independent copies of
// the generator ("lanes"): lane j makes outputs j, j + lanes, j + 2 lanes ...,
// so the lanes' multiplications do not wait on each other. On a processor
// with AVX2 eight lanes run in vector registers next to three in general
// registers, which keeps both multipliers busy; elsewhere two lanes run in
// portable code. Both kernels give the same words, bit for bit.
class PcgWordBlocks {
 public:
  enum class Kernel { portable, avx2 };

  // 264 outputs, a multiple of both kernels' lane counts (2 and 11).
  static constexpr int blockWords = 528;

  // AVX2 where the processor has it (decided once per process).
  static Kernel fastestKernel();

  // Words from the generator's next output on. REQUIRES: the generator holds
  // no buffered half; `kernel` is supported by this processor.
  explicit PcgWordBlocks(const PCG64& generator, Kernel kernel = fastestKernel());

  // Writes the next blockWords words of the stream, and tells whether a
  // bounded draw would reject any of them: whether (word * n32) mod 2^32 <
  // threshold for some word (with n32 and threshold those of the bound; see
  // BoundedDrawStream). The check rides along with the making of the words.
  bool fill(std::uint32_t* words, std::uint32_t n32, std::uint32_t threshold);

 private:
  static constexpr int maxLanes = 11;

  bool fillPortable(std::uint32_t* words, std::uint32_t n32, std::uint32_t threshold);
  bool fillAvx2(std::uint32_t* words, std::uint32_t n32, std::uint32_t threshold);

  Kernel kernel_;
  int lanes_;
  PCG64::AffineStep laneStep_;  // `lanes_` generator steps composed
  // Lane states, split into halves so that vector code loads them directly.
  alignas(32) std::uint64_t low_[maxLanes];
  alignas(32) std::uint64_t high_[maxLanes];
};

}  // namespace orvane
