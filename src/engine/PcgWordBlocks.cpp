#include "engine/PcgWordBlocks.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace orvane {
namespace {

constexpr int portableLanes = 2;
constexpr int avx2VectorLanes = 8;  // two registers of four
constexpr int avx2Lanes = avx2VectorLanes + 3;
static_assert(PcgWordBlocks::blockWords % (2 * portableLanes) == 0);
static_assert(PcgWordBlocks::blockWords % (2 * avx2Lanes) == 0);

uint128 joined(std::uint64_t high, std::uint64_t low) { return (uint128{high} << 64) | low; }

// 32-bit limb `index` of a 128-bit value, as a vector element.
long long limb(uint128 value, int index) { return static_cast<std::uint32_t>(value >> (32 * index)); }

}  // namespace

PcgWordBlocks::Kernel PcgWordBlocks::fastestKernel() {
#if defined(__x86_64__)
  static const Kernel fastest = __builtin_cpu_supports("avx2") ? Kernel::avx2 : Kernel::portable;
  return fastest;
#else
  return Kernel::portable;
#endif
}

PcgWordBlocks::PcgWordBlocks(const PCG64& generator, Kernel kernel)
    : kernel_(kernel), lanes_(kernel == Kernel::avx2 ? avx2Lanes : portableLanes) {
  ORVANE_REQUIRE(!generator.hasBuffered(), "PcgWordBlocks: generator holds a buffered half");
  ORVANE_REQUIRE(kernel == Kernel::portable || fastestKernel() == Kernel::avx2,
                 "PcgWordBlocks: the processor lacks AVX2");
  // Output k of the generator comes from the state after k + 1 steps.
  PCG64 lane = generator;
  for (int j = 0; j < lanes_; ++j) {
    lane.advance(1);
    low_[j] = static_cast<std::uint64_t>(lane.state());
    high_[j] = static_cast<std::uint64_t>(lane.state() >> 64);
  }
  laneStep_ = PCG64::composedSteps(generator.increment(), static_cast<uint128>(lanes_));
}

bool PcgWordBlocks::fill(std::uint32_t* words, std::uint32_t n32, std::uint32_t threshold) {
  return kernel_ == Kernel::avx2 ? fillAvx2(words, n32, threshold) : fillPortable(words, n32, threshold);
}

bool PcgWordBlocks::fillPortable(std::uint32_t* words, std::uint32_t n32, std::uint32_t threshold) {
  uint128 states[portableLanes];
  for (int j = 0; j < portableLanes; ++j) states[j] = joined(high_[j], low_[j]);
  const uint128 m = laneStep_.multiplier;
  const uint128 c = laneStep_.increment;
  for (int k = 0; k < blockWords / 2; k += portableLanes) {
    for (int j = 0; j < portableLanes; ++j) {
      const std::uint64_t x = PCG64::output(states[j]);
      states[j] = states[j] * m + c;
      words[2 * (k + j)] = static_cast<std::uint32_t>(x);
      words[2 * (k + j) + 1] = static_cast<std::uint32_t>(x >> 32);
    }
  }
  for (int j = 0; j < portableLanes; ++j) {
    low_[j] = static_cast<std::uint64_t>(states[j]);
    high_[j] = static_cast<std::uint64_t>(states[j] >> 64);
  }
  // A separate pass, which the compiler vectorises.
  std::uint32_t rejected = 0;
  for (int i = 0; i < blockWords; ++i) rejected |= static_cast<std::uint32_t>(words[i] * n32 < threshold);
  return rejected != 0;
}

#if defined(__x86_64__)

// The 128-bit step s -> m s + c of four lanes at once, from 32 x 32 -> 64-bit
// products. With s = s0 + s1 2^32 + s2 2^64 + s3 2^96 (likewise m and c):
// the low 64 bits of m s come from the full product of the low halves, the
// high 64 bits from that product's top plus the two cross products of halves
// modulo 2^64. Every column sum stays below 2^64, so no carry is lost.
__attribute__((target("avx2"))) bool PcgWordBlocks::fillAvx2(std::uint32_t* words, std::uint32_t n32,
                                                             std::uint32_t threshold) {
  const uint128 m = laneStep_.multiplier;
  const uint128 c = laneStep_.increment;
  const __m256i m0 = _mm256_set1_epi64x(limb(m, 0)), m1 = _mm256_set1_epi64x(limb(m, 1));
  const __m256i m2 = _mm256_set1_epi64x(limb(m, 2)), m3 = _mm256_set1_epi64x(limb(m, 3));
  const __m256i c0 = _mm256_set1_epi64x(limb(c, 0)), c1 = _mm256_set1_epi64x(limb(c, 1));
  const __m256i cHigh = _mm256_set1_epi64x(static_cast<long long>(static_cast<std::uint64_t>(c >> 64)));
  const __m256i low32 = _mm256_set1_epi64x(0xFFFFFFFFLL);
  const __m256i sixtyFour = _mm256_set1_epi64x(64);
  const __m256i bound = _mm256_set1_epi32(static_cast<int>(n32));
  const __m256i thresholds = _mm256_set1_epi32(static_cast<int>(threshold));
  __m256i accepted = _mm256_set1_epi32(-1);  // all ones while no word is rejected
  std::uint32_t scalarRejected = 0;

  constexpr int groups = avx2VectorLanes / 4;
  __m256i lows[groups], highs[groups];
  for (int g = 0; g < groups; ++g) {
    lows[g] = _mm256_load_si256(reinterpret_cast<const __m256i*>(&low_[4 * g]));
    highs[g] = _mm256_load_si256(reinterpret_cast<const __m256i*>(&high_[4 * g]));
  }
  constexpr int scalarLanes = avx2Lanes - avx2VectorLanes;
  uint128 scalars[scalarLanes];
  for (int j = 0; j < scalarLanes; ++j) scalars[j] = joined(high_[avx2VectorLanes + j], low_[avx2VectorLanes + j]);

  // Output k fills words 2k (low half) and 2k + 1: a little-endian store.
  for (int k = 0; k < blockWords / 2; k += avx2Lanes) {
    for (int g = 0; g < groups; ++g) {
      const __m256i s01 = lows[g], s23 = highs[g];
      // Output: (hi xor lo) rotated right by hi >> 58; a shift by 64 gives 0.
      const __m256i x = _mm256_xor_si256(s01, s23);
      const __m256i rotation = _mm256_srli_epi64(s23, 58);
      const __m256i out =
          _mm256_or_si256(_mm256_srlv_epi64(x, rotation), _mm256_sllv_epi64(x, _mm256_sub_epi64(sixtyFour, rotation)));
      _mm256_storeu_si256(reinterpret_cast<__m256i*>(words + 2 * (k + 4 * g)), out);
      // A word is kept when (word * n32) mod 2^32 >= threshold, unsigned.
      const __m256i product = _mm256_mullo_epi32(out, bound);
      accepted = _mm256_and_si256(accepted, _mm256_cmpeq_epi32(_mm256_max_epu32(product, thresholds), product));

      const __m256i s1 = _mm256_srli_epi64(s01, 32), s3 = _mm256_srli_epi64(s23, 32);
      const __m256i p00 = _mm256_mul_epu32(s01, m0), p01 = _mm256_mul_epu32(s01, m1);
      const __m256i p10 = _mm256_mul_epu32(s1, m0), p11 = _mm256_mul_epu32(s1, m1);
      const __m256i column0 = _mm256_add_epi64(_mm256_and_si256(p00, low32), c0);
      const __m256i column1 = _mm256_add_epi64(
          _mm256_add_epi64(_mm256_srli_epi64(p00, 32), _mm256_srli_epi64(column0, 32)),
          _mm256_add_epi64(_mm256_add_epi64(_mm256_and_si256(p01, low32), _mm256_and_si256(p10, low32)), c1));
      const __m256i newLow = _mm256_or_si256(_mm256_and_si256(column0, low32), _mm256_slli_epi64(column1, 32));
      const __m256i carried =
          _mm256_add_epi64(_mm256_add_epi64(p11, _mm256_srli_epi64(column1, 32)),
                           _mm256_add_epi64(_mm256_srli_epi64(p01, 32), _mm256_srli_epi64(p10, 32)));
      // (s2 + s3 2^32)(m0 + m1 2^32) and (s0 + s1 2^32)(m2 + m3 2^32), mod 2^64.
      const __m256i crossHigh = _mm256_add_epi64(
          _mm256_mul_epu32(s23, m0),
          _mm256_slli_epi64(_mm256_add_epi64(_mm256_mul_epu32(s23, m1), _mm256_mul_epu32(s3, m0)), 32));
      const __m256i crossLow = _mm256_add_epi64(
          _mm256_mul_epu32(s01, m2),
          _mm256_slli_epi64(_mm256_add_epi64(_mm256_mul_epu32(s01, m3), _mm256_mul_epu32(s1, m2)), 32));
      lows[g] = newLow;
      highs[g] = _mm256_add_epi64(_mm256_add_epi64(carried, cHigh), _mm256_add_epi64(crossHigh, crossLow));
    }
    for (int j = 0; j < scalarLanes; ++j) {
      const std::uint64_t x = PCG64::output(scalars[j]);
      scalars[j] = scalars[j] * m + c;
      const auto low = static_cast<std::uint32_t>(x), high = static_cast<std::uint32_t>(x >> 32);
      words[2 * (k + avx2VectorLanes + j)] = low;
      words[2 * (k + avx2VectorLanes + j) + 1] = high;
      scalarRejected |=
          static_cast<std::uint32_t>(low * n32 < threshold) | static_cast<std::uint32_t>(high * n32 < threshold);
    }
  }

  for (int g = 0; g < groups; ++g) {
    _mm256_store_si256(reinterpret_cast<__m256i*>(&low_[4 * g]), lows[g]);
    _mm256_store_si256(reinterpret_cast<__m256i*>(&high_[4 * g]), highs[g]);
  }
  for (int j = 0; j < scalarLanes; ++j) {
    low_[avx2VectorLanes + j] = static_cast<std::uint64_t>(scalars[j]);
    high_[avx2VectorLanes + j] = static_cast<std::uint64_t>(scalars[j] >> 64);
  }
  return scalarRejected != 0 || _mm256_movemask_epi8(accepted) != -1;
}

#else

bool PcgWordBlocks::fillAvx2(std::uint32_t* words, std::uint32_t n32, std::uint32_t threshold) {
  return fillPortable(words, n32, threshold);
}

#endif

}  // namespace orvane
