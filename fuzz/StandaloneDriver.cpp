// Runs a fuzz target without libFuzzer, for the test suite: every seed file
// of a corpus folder, then a fixed number of pseudo-random mutations of
// them. The generator is seeded, so a run is the same on every machine and a
// failure can be replayed; a crash, an abort or a sanitizer report fails
// the test. The mutated input of each step is written to a file first, so
// the input that brought the process down can be run again on its own.
//
//   SMOKE CORPUS_DIR [--mutations N] [--seed S] [--last-input FILE]
//   SMOKE FILE...     (each file once, e.g. a crash found by libFuzzer)
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

// SplitMix64: small, fast and the same everywhere.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}
  std::uint64_t next() {
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
  }
  // 0 <= value < bound; bound > 0.
  std::size_t below(std::size_t bound) { return static_cast<std::size_t>(next() % bound); }

 private:
  std::uint64_t state_;
};

std::string readFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

void run(const std::string& input) {
  LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(input.data()), input.size());
}

// Bytes that mean something to the formats under test.
constexpr std::string_view interesting[] = {
    "\0",      "\xff",         "\"",         ",",          ";",          "\t",
    "\n",      "\r\n",         "{",          "}",          "[",          "]",
    ":",       "null",         "true",       "-1",         "1e309",      "9223372036854775808",
    "\\u0000", "\xef\xbb\xbf", "PK\x03\x04", "PK\x01\x02", "PK\x05\x06", "<",
    ">"};

// One to four edits of the input; `other` lends bytes for splices.
std::string mutate(std::string input, const std::string& other, Random& random) {
  const std::size_t edits = 1 + random.below(4);
  for (std::size_t e = 0; e < edits; ++e) {
    const std::size_t at = input.empty() ? 0 : random.below(input.size() + 1);
    switch (random.below(8)) {
      case 0:  // flip a bit
        if (!input.empty()) input[random.below(input.size())] ^= static_cast<char>(1u << random.below(8));
        break;
      case 1:  // set a byte
        if (!input.empty()) input[random.below(input.size())] = static_cast<char>(random.below(256));
        break;
      case 2: {  // insert a meaningful token
        const std::string_view token = interesting[random.below(std::size(interesting))];
        input.insert(at, token.data(), token == "\0" ? 1 : token.size());
        break;
      }
      case 3:  // delete a range
        if (at < input.size()) input.erase(at, 1 + random.below(std::min<std::size_t>(64, input.size() - at)));
        break;
      case 4:  // duplicate a range
        if (at < input.size())
          input.insert(at, input.substr(at, 1 + random.below(std::min<std::size_t>(64, input.size() - at))));
        break;
      case 5:  // splice in part of another seed
        if (!other.empty()) {
          const std::size_t from = random.below(other.size());
          input.insert(at, other.substr(from, 1 + random.below(std::min<std::size_t>(256, other.size() - from))));
        }
        break;
      case 6:  // cut the end off
        input.resize(at);
        break;
      default:  // change a digit
        for (std::size_t tries = 0; tries < 16 && !input.empty(); ++tries) {
          char& c = input[random.below(input.size())];
          if (c >= '0' && c <= '9') {
            c = static_cast<char>('0' + random.below(10));
            break;
          }
        }
        break;
    }
  }
  return input;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> paths;
  std::size_t mutations = 2000;
  std::uint64_t seed = 20260305;
  std::filesystem::path lastInput;
  for (int i = 1; i < argc; ++i) {
    const std::string_view arg = argv[i];
    if (arg == "--mutations" && i + 1 < argc) {
      mutations = std::stoul(argv[++i]);
    } else if (arg == "--seed" && i + 1 < argc) {
      seed = std::stoull(argv[++i]);
    } else if (arg == "--last-input" && i + 1 < argc) {
      lastInput = argv[++i];
    } else {
      paths.emplace_back(arg);
    }
  }
  if (paths.empty()) {
    std::cerr << "Usage: " << argv[0] << " CORPUS_DIR|FILE... [--mutations N] [--seed S] [--last-input FILE]\n";
    return 2;
  }

  std::vector<std::string> seeds;
  bool corpus = false;
  for (const std::string& path : paths) {
    if (std::filesystem::is_directory(path)) {
      corpus = true;
      std::vector<std::filesystem::path> files;
      for (const auto& entry : std::filesystem::directory_iterator(path)) {
        if (entry.is_regular_file()) files.push_back(entry.path());
      }
      std::sort(files.begin(), files.end());  // the same order everywhere
      for (const auto& file : files) seeds.push_back(readFile(file));
    } else {
      seeds.push_back(readFile(path));
    }
  }
  if (seeds.empty()) seeds.emplace_back();

  for (const std::string& input : seeds) run(input);
  if (!corpus) mutations = 0;
  Random random(seed);
  for (std::size_t i = 0; i < mutations; ++i) {
    const std::string& base = seeds[random.below(seeds.size())];
    const std::string& other = seeds[random.below(seeds.size())];
    const std::string input = mutate(base, other, random);
    if (!lastInput.empty()) std::ofstream(lastInput, std::ios::binary | std::ios::trunc) << input;
    run(input);
  }
  std::cout << "Ran " << seeds.size() << " seed inputs and " << mutations << " mutations (seed " << seed << ").\n";
  return 0;
}
