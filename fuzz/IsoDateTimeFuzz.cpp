// Any text given to ISODateTime::parse is read or refused without a crash;
// an instant it reads, formatted, reads back as the same whole second. The
// input's first eight bytes, taken as an instant, must format and read back
// too (within the years of four digits that the text form holds).
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "core/exchange/IsoDateTime.h"

namespace {

// Years 0000 to 9999, where the formatted text is a valid ISO day.
bool formattable(double seconds) {
  return std::isfinite(seconds) && seconds >= -62167219200.0 && seconds < 253402300800.0;
}

void checkRoundTrip(double seconds) {
  if (!formattable(seconds)) return;
  const std::string text = orvane::ISODateTime::format(orvane::Timestamp{seconds});
  const auto back = orvane::ISODateTime::parse(text);
  if (!back || back->secondsSince1970 != std::floor(seconds)) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (const auto parsed = orvane::ISODateTime::parse(text)) {
    if (!std::isfinite(parsed->secondsSince1970)) std::abort();
    checkRoundTrip(parsed->secondsSince1970);
  }
  if (size >= sizeof(double)) {
    double seconds = 0;
    std::memcpy(&seconds, data, sizeof seconds);
    checkRoundTrip(seconds);
  }
  return 0;
}
