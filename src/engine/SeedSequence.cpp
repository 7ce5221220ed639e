#include "engine/SeedSequence.h"

namespace orvane::SeedSequence {
namespace {

constexpr std::uint32_t initA = 0x43B0D7E5;
constexpr std::uint32_t multA = 0x931E8875;
constexpr std::uint32_t initB = 0x8B51F9DD;
constexpr std::uint32_t multB = 0x58F38DED;
constexpr std::uint32_t mixMultL = 0xCA01F9DD;
constexpr std::uint32_t mixMultR = 0x4973F715;
constexpr unsigned xshift = 16;

// One hashing step with a running hash constant; wraps modulo 2^32.
class HashMix {
 public:
  HashMix(std::uint32_t start, std::uint32_t multiplier) : hash_(start), multiplier_(multiplier) {}

  std::uint32_t operator()(std::uint32_t value) {
    value ^= hash_;
    hash_ *= multiplier_;
    value *= hash_;
    value ^= value >> xshift;
    return value;
  }

 private:
  std::uint32_t hash_;
  std::uint32_t multiplier_;
};

std::uint32_t mix(std::uint32_t x, std::uint32_t y) {
  const std::uint32_t r = mixMultL * x - mixMultR * y;
  return r ^ (r >> xshift);
}

}  // namespace

std::array<std::uint32_t, 4> pool(std::uint64_t seed) {
  // The seed as 32-bit words, least significant first; zero is one word.
  std::array<std::uint32_t, 2> entropy{static_cast<std::uint32_t>(seed), static_cast<std::uint32_t>(seed >> 32)};
  const std::size_t entropyWords = seed >> 32 ? 2 : 1;

  std::array<std::uint32_t, 4> words{};
  HashMix hashmix(initA, multA);
  for (std::size_t i = 0; i < words.size(); ++i) {
    words[i] = hashmix(i < entropyWords ? entropy[i] : 0);
  }
  for (std::size_t source = 0; source < words.size(); ++source) {
    for (std::size_t destination = 0; destination < words.size(); ++destination) {
      if (source != destination) words[destination] = mix(words[destination], hashmix(words[source]));
    }
  }
  return words;
}

std::vector<std::uint64_t> generateState64(const std::array<std::uint32_t, 4>& pool, std::size_t count) {
  std::vector<std::uint64_t> state(count);
  HashMix hashmix(initB, multB);
  for (std::size_t k = 0; k < count; ++k) {
    const std::uint64_t low = hashmix(pool[(2 * k) % pool.size()]);
    const std::uint64_t high = hashmix(pool[(2 * k + 1) % pool.size()]);
    state[k] = low | (high << 32);
  }
  return state;
}

}  // namespace orvane::SeedSequence
