#include "engine/SeedDerivation.h"

#include <openssl/evp.h>

#include "engine/Fatal.h"
#include "engine/PythonRepr.h"

namespace orvane {

std::uint64_t deriveSeed(std::span<const double> samples, std::int64_t backlog) {
  const std::string text = pythonRepr(backlog, samples);
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned int digestLength = 0;
  const int ok = EVP_Digest(text.data(), text.size(), digest, &digestLength, EVP_sha256(), nullptr);
  ORVANE_REQUIRE(ok == 1 && digestLength == 32, "deriveSeed: SHA-256 failed");
  return (std::uint64_t{digest[0]} << 24) | (std::uint64_t{digest[1]} << 16) | (std::uint64_t{digest[2]} << 8) |
         std::uint64_t{digest[3]};
}

}  // namespace orvane
